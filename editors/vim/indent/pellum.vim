" How Pellum is indented. Blocks, lists and maps that are open at the end of a line indent what
" follows by one step, however many that line opens; what closes one stands below the line that
" opened it.
if exists('b:did_indent')
    finish
endif
let b:did_indent = 1

setlocal indentexpr=GetPellumIndent(v:lnum)
setlocal indentkeys=0),0],0},!^F,o,O,0=end,0=elif,0=else,0=catch
setlocal autoindent
setlocal nolisp
setlocal nosmartindent
let b:undo_indent = 'setlocal indentexpr< indentkeys< autoindent< lisp< smartindent<'

if exists('*GetPellumIndent')
    finish
endif

let s:cpo_save = &cpo
set cpo&vim

" The next string, comment, word or bracket.
let s:piece = '["''#]\|[A-Za-z0-9_]\+\|[][(){}]'
" The next brace or string in the code of a "${...}".
let s:embedded = '[{}]\|"\%([^"\\]\|\\.\)*"\=\|''\%([^''\\]\|\\.\)*''\='
let s:openers = '^\%(function\|if\|while\|for\|try\|[([{]\)$'
let s:middles = '^\%(elif\|else\|catch\)$'
let s:closers = '^\%(end\|[])}]\)$'
let s:closing = '^\s*\%(\%(end\|elif\|else\|catch\)\>\|[])}]\)'

" Where the string ends that begins at `start`. A "${" in double quotes goes on to the brace that
" matches, past all strings inside.
function s:StringEnd(text, start) abort
    let quote = a:text[a:start]
    let at = a:start + 1
    while at < strlen(a:text)
        if a:text[at] ==# '\'
            let at += 2
        elseif a:text[at] ==# quote
            return at + 1
        elseif quote ==# '"' && strpart(a:text, at, 2) ==# '${'
            let at = s:InterpolationEnd(a:text, at + 2)
        else
            let at += 1
        endif
    endwhile
    return at
endfunction

function s:InterpolationEnd(text, start) abort
    let depth = 1
    let at = a:start
    while depth > 0
        let [piece, from, at] = matchstrpos(a:text, s:embedded, at)
        if from < 0
            return strlen(a:text)
        endif
        let depth += piece ==# '{' ? 1 : piece ==# '}' ? -1 : 0
    endwhile
    return at
endfunction

" The words and brackets of a line that open, go on with, or close something.
function s:Pieces(text) abort
    let pieces = []
    let at = 0
    while 1
        let [piece, from, at] = matchstrpos(a:text, s:piece, at)
        if from < 0 || piece ==# '#'
            return pieces
        elseif piece ==# '"' || piece ==# "'"
            let at = s:StringEnd(a:text, from)
        elseif piece =~# s:openers || piece =~# s:middles || piece =~# s:closers
            call add(pieces, piece)
        endif
    endwhile
endfunction

" The nearest line of code above; 0 where there is none.
function s:CodeAbove(lnum) abort
    let line = prevnonblank(a:lnum - 1)
    while line > 0 && getline(line) =~# '^\s*#'
        let line = prevnonblank(line - 1)
    endwhile
    return line
endfunction

" The line that opened the innermost thing that is still open at the end of line `lnum`, or with 2
" for `nth` the one around that, and so on; 0 where nothing is open. And whether that line opened
" another thing before it that is still open.
function s:OpeningLine(lnum, nth) abort
    let missing = a:nth
    let line = a:lnum
    while line > 0
        let isFound = 0
        for piece in reverse(s:Pieces(getline(line)))
            let missing += piece =~# s:closers ? 1 : piece =~# s:openers ? -1 : 0
            if missing == 0
                if isFound
                    return [line, 1]
                endif
                let isFound = 1
                let missing = 1
            endif
        endfor
        if isFound
            return [line, 0]
        endif
        let line = s:CodeAbove(line)
    endwhile
    return [0, 0]
endfunction

" How many closers a line begins with, and what else is in it. An "else" closes and opens.
function s:SplitClosers(text) abort
    let pieces = s:Pieces(a:text)
    let closed = 0
    if a:text =~# s:closing
        while closed < len(pieces) && pieces[closed] =~# s:closers
            let closed += 1
        endwhile
        if closed < len(pieces) && pieces[closed] =~# s:middles
            let pieces[closed] = 'if'
            return [closed + 1, pieces[closed :]]
        endif
    endif
    return [closed, pieces[closed :]]
endfunction

function GetPellumIndent(lnum) abort
    let above = s:CodeAbove(a:lnum)
    if above == 0
        return 0
    endif
    let closed = s:SplitClosers(getline(a:lnum))[0]
    if closed > 0
        let line = s:OpeningLine(above, closed)[0]
        return line > 0 ? indent(line) : 0
    endif
    " The line above says enough, unless it closes what other lines opened.
    let [closed, pieces] = s:SplitClosers(getline(above))
    let open = 0
    for piece in pieces
        let open += piece =~# s:openers ? 1 : piece =~# s:closers ? -1 : 0
        if open < 0
            let line = s:OpeningLine(above, 1)[0]
            return line > 0 ? indent(line) + shiftwidth() : 0
        endif
    endfor
    if open == 0 && closed > 0
        let open = s:OpeningLine(s:CodeAbove(above), closed)[1]
    endif
    return indent(above) + (open > 0 ? shiftwidth() : 0)
endfunction

let &cpo = s:cpo_save
unlet s:cpo_save
