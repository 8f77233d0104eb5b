" vim -Nu NONE -i NONE -n -es -S test_vim.vim   tests the plugin, in a real Vim without a screen. The
" environment says where: ROOT of the repository, PLUGIN as a folder of plugins that Vim loads by
" itself, PELLUM to run, SCRATCH for files of its own and REPORT for what is found. The last line of
" the report counts the checks; Vim's status is 1 when one of them fails.

let s:root = $ROOT
let s:scratch = $SCRATCH
let s:report = []
let s:checks = 0
let s:failures = 0

function s:Fail(where, message) abort
    let s:failures += 1
    if s:failures <= 50
        call add(s:report, a:where .. ': ' .. a:message)
    endif
endfunction

function s:Expect(where, wanted, given) abort
    let s:checks += 1
    if type(a:wanted) != type(a:given) || a:wanted !=# a:given
        call s:Fail(a:where, 'wanted ' .. string(a:wanted) .. ', got ' .. string(a:given))
    endif
endfunction

function s:Write(name, lines) abort
    call writefile(a:lines, s:scratch .. '/' .. a:name)
    return s:scratch .. '/' .. a:name
endfunction

function s:Open(file) abort
    execute 'silent edit!' fnameescape(a:file)
    call cursor(1, 1)
endfunction

function s:Group(line, column) abort
    return synIDattr(synID(a:line, a:column, 1), 'name')
endfunction

function s:TestFileTypes() abort
    for [name, first, type] in [
        \ ['a.pellum', 'let x = 1', 'pellum'],
        \ ['b.plm', 'let x = 1', 'pellum'],
        \ ['c.pellum', '', 'pellum'],
        \ ['d', '#!/usr/bin/env pellum', 'pellum'],
        \ ['e', '#!/usr/local/bin/pellum', 'pellum'],
        \ ['f', '#!/usr/bin/env -S pellum --tree', 'pellum'],
        \ ['g', '#! pellum', 'pellum'],
        \ ['h', '#!/usr/bin/env pellum-fmt', 'conf'],
        \ ['i', '#!/usr/bin/env notpellum', 'conf'],
        \ ['j', '# pellum', 'conf'],
        \ ['k', '#!/bin/sh', 'sh'],
        \ ['l.py', '#!/usr/bin/env pellum', 'python'],
        \ ]
        call s:Open(s:Write(name, [first, '']))
        call s:Expect('the type of ' .. name .. ', ' .. first, type, &filetype)
    endfor
endfunction

function s:TestSettings() abort
    call s:Open(s:Write('a.pellum', ['let x = 1']))
    call s:Expect('commentstring', '# %s', &commentstring)
    call s:Expect('comments', ':#', &comments)
    call s:Expect('suffixesadd', '.pellum,.plm', &suffixesadd)
    call s:Expect('shiftwidth', 4, &shiftwidth)
    call s:Expect('expandtab', 1, &expandtab)
    call s:Expect('indentexpr', 'GetPellumIndent(v:lnum)', &indentexpr)
    call s:Expect('formatoptions', -1, match(&formatoptions, 't'))
    " A new line goes on with a comment.
    call setline(1, ['if a then', '    # one'])
    execute "normal! jotwo\<Esc>"
    call s:Expect('a line below a comment', '    # two', getline(3))
    set filetype=
    call s:Expect('commentstring without a type', &g:commentstring, &commentstring)
    call s:Expect('shiftwidth without a type', &g:shiftwidth, &shiftwidth)
    call s:Expect('indentexpr without a type', '', &indentexpr)
    call s:Expect('words without a type', 0, exists('b:match_words'))
    let g:pellum_recommended_style = 0
    call s:Open(s:Write('b.pellum', ['let x = 1']))
    call s:Expect('shiftwidth without the style', &g:shiftwidth, &shiftwidth)
    unlet g:pellum_recommended_style
endfunction

" % goes from word to word, and passes what stands in strings and comments.
function s:TestMatchit() abort
    call s:Open(s:Write('m.pellum', [
        \ 'if a then  # end',
        \ '    print("end ${b} end", function() return 1 end)',
        \ 'elif b then',
        \ '    while c do d() end',
        \ 'else',
        \ '    e()',
        \ 'end']))
    let lines = []
    for step in range(4)
        execute 'normal' '%'
        call add(lines, line('.'))
    endfor
    call s:Expect('the lines that % goes to', [3, 5, 7, 1], lines)
    call cursor(4, 5)
    execute 'normal' '%'
    call s:Expect('the end of a while', [4, 20], [line('.'), col('.')])
endfunction

function s:TestSample(file) abort
    call s:Open(a:file)
    let above = 0
    for number in range(1, line('$'))
        let text = getline(number)
        let marks = matchstr(text, '^#\%(<\+\|[ \t^]*\^\) \@=')
        if empty(marks)
            let above = number
            continue
        endif
        let group = matchstr(text, '| \zs\w\+$')
        let at = 0
        while 1
            let [run, from, at] = matchstrpos(marks, '#<\+\|\^\+', at)
            if from < 0
                break
            endif
            for column in range(from, at - 1 - (run[0] ==# '#'))
                let given = s:Group(above, column + 1)
                let where = fnamemodify(a:file, ':t') .. ':' .. above .. ':' .. (column + 1)
                call s:Expect(where, group, given)
            endfor
        endwhile
    endfor
endfunction

let s:classes = {
    \ 'number': ['pellumNumber'],
    \ 'string': ['pellumQuote'],
    \ 'interp-string': ['pellumQuote'],
    \ 'name': ['pellumName', 'pellumCall', 'pellumBuiltin', 'pellumBuiltinConstant', 'pellumKey',
    \     'pellumField', 'pellumMethod', 'pellumDeclared', 'pellumDeclaredFunction',
    \     'pellumFunctionName', 'pellumParameter'],
    \ 'word': ['pellumControl', 'pellumBinder', 'pellumDeclaration', 'pellumFunction',
    \     'pellumWordOperator', 'pellumConstant'],
    \ 'operator': ['pellumOperator', 'pellumDelimiter', 'pellumAccessor'],
    \ }

" The group of each character of a token must be one of its class; of strings, that of the quote.
function s:TestTokens(file) abort
    call s:Open(a:file)
    let name = fnamemodify(a:file, ':t')
    let tokens = 0
    for row in systemlist(shellescape($PELLUM) .. ' --tokens ' .. shellescape(a:file))
        " A string with a newline in it takes several rows, and is left out.
        let parts = matchlist(row, '^\(.\{-}\) ''\(.*\)'' @\(\d\+\):\(\d\+\)$')
        if empty(parts) || parts[1] =~# '^end of'
            continue
        endif
        let [kind, text, line, column] = parts[1:4]
        let class = kind !=# 'token' ? kind : text =~# '^\l' ? 'word' : 'operator'
        let width = kind =~# 'string' ? 1 : strlen(text)
        let tokens += 1
        for at in range(str2nr(column), str2nr(column) + width - 1)
            let group = s:Group(str2nr(line), at)
            let s:checks += 1
            if index(s:classes[class], group) < 0
                let where = name .. ':' .. line .. ':' .. at
                call s:Fail(where, row .. ' is a ' .. group)
            endif
        endfor
    endfor
    call s:Expect(name .. ' has tokens', 1, tokens > 100)
endfunction

" Indented from nothing, a file comes out as it was.
function s:TestIndent(file) abort
    call s:Open(a:file)
    let wanted = getline(1, '$')
    silent %s/^\s\+//e
    let bare = getline(1, '$')
    normal! gg=G
    for number in range(len(wanted))
        let where = fnamemodify(a:file, ':t') .. ':' .. (number + 1)
        call s:Expect(where, wanted[number], getline(number + 1))
    endfor
    call s:Expect(fnamemodify(a:file, ':t') .. ' has been bare', 1, bare !=# wanted)
    silent edit!
endfunction

" While typing: what closes a block goes back as soon as it is written.
function s:TestTyping() abort
    call s:Open(s:Write('t.pellum', ['']))
    execute "normal! afunction f(xs)\<CR>for x in xs do\<CR>if x then\<CR>g({\<CR>a: [1,\<CR>"
        \ .. "2]\<CR>})\<CR>else\<CR>try h()\<CR>catch e\<CR>k(e)\<CR>end\<CR>end\<CR>end\<CR>"
        \ .. "\<CR>return \"if ${'}'} then\"  # do\<CR>end\<CR>f(function()\<CR>f()\<CR>end, [\<CR>"
        \ .. "1\<CR>])\<CR>f()\<Esc>"
    call s:Expect('a typed program', [
        \ 'function f(xs)',
        \ '    for x in xs do',
        \ '        if x then',
        \ '            g({',
        \ '                a: [1,',
        \ '                    2]',
        \ '            })',
        \ '        else',
        \ '            try h()',
        \ '            catch e',
        \ '                k(e)',
        \ '            end',
        \ '        end',
        \ '    end',
        \ '',
        \ '    return "if ${''}''} then"  # do',
        \ 'end',
        \ 'f(function()',
        \ '    f()',
        \ 'end, [',
        \ '    1',
        \ '])',
        \ 'f()'], getline(1, '$'))
endfunction

function s:TestHelp() abort
    let folder = globpath(&packpath, 'pack/*/start/pellum/doc', 0, 1)[0]
    call mkdir(s:scratch .. '/doc', 'p')
    call s:Write('doc/pellum.txt', readfile(folder .. '/pellum.txt'))
    execute 'helptags' s:scratch .. '/doc'
    call s:Expect('doc/tags', readfile(s:scratch .. '/doc/tags'), readfile(folder .. '/tags'))
    help pellum
    call s:Expect('the help', 'help', &buftype)
    close
endfunction

function s:TestAll() abort
    call s:TestFileTypes()
    call s:TestSettings()
    call s:TestMatchit()
    call s:TestTyping()
    call s:TestHelp()
    for sample in glob(s:root .. '/tests/editors/samples/*.pellum', 0, 1)
        call s:TestSample(sample)
    endfor
    let examples = glob(s:root .. '/examples/*.plm', 0, 1)
    call s:Expect('there are examples', 1, len(examples) > 10)
    for example in examples
        call s:TestTokens(example)
        call s:TestIndent(example)
    endfor
endfunction

try
    execute 'set packpath^=' .. fnameescape($PLUGIN)
    set hidden
    filetype plugin indent on
    syntax enable
    packadd matchit
    packloadall
    call s:TestAll()
catch
    call s:Fail(v:throwpoint, v:exception)
endtry
call add(s:report, s:checks .. ' checks, ' .. s:failures .. ' failures')
call writefile(s:report, $REPORT)
execute s:failures == 0 && s:checks > 0 ? 'qall!' : 'cquit!'
