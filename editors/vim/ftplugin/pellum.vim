" How Pellum is edited: comments, indentation by four blanks, and % from word to word.
if exists('b:did_ftplugin')
    finish
endif
let b:did_ftplugin = 1

let s:cpo_save = &cpo
set cpo&vim

setlocal comments=:#
setlocal commentstring=#\ %s
setlocal formatoptions-=t
setlocal formatoptions+=croql
setlocal suffixesadd=.pellum,.plm
setlocal define=^\\s*function\\s\\+
let b:undo_ftplugin = 'setlocal comments< commentstring< formatoptions< suffixesadd< define<'

if get(g:, 'pellum_recommended_style', 1)
    setlocal expandtab shiftwidth=4 softtabstop=4
    let b:undo_ftplugin ..= ' expandtab< shiftwidth< softtabstop<'
endif

" For matchit, which comes with Vim. Words in strings and comments do not count.
let b:match_ignorecase = 0
let b:match_words = '\<\%(function\|if\|while\|for\|try\)\>'
    \ .. ':\<\%(elif\|else\|catch\|break\|continue\)\>:\<end\>'
let b:match_skip = 's:comment\|string\|escape'
let b:undo_ftplugin ..= ' | unlet! b:match_ignorecase b:match_words b:match_skip'

let &cpo = s:cpo_save
unlet s:cpo_save
