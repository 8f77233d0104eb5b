" How Pellum is coloured. Every item ends on its line, but for the head of the file, where pragmas
" count. The lists of words are written by pellum_tests --update, from the lexer's keywords and the
" catalogue of builtins.
if exists('b:current_syntax')
    finish
endif

let s:cpo_save = &cpo
set cpo&vim

" generated: control
let s:control = 'break catch continue do elif else end for if in return then try while'
" generated: declaration
let s:declaration = 'function let'
" generated: operator
let s:operator = 'and not or'
" generated: constant
let s:constant = 'false nil true'
" generated: builtin functions
let s:functions = 'abs assert bin bool capitalize ceil char chars clamp clock contains copy cos count delete ends_with enumerate error exp filter find float floor get has hex input insert int is_bool is_function is_list is_map is_nil is_number is_string items join keys len log lower map max min num oct ord parse_int pop pow print push randint random range reduce remove_at repeat replace repr reverse round sign sin slice sort split sqrt starts_with str sum tan trim type upper values zip'
" generated: builtin constants
let s:constants = 'E PI'

function s:alternatives(words) abort
    return '\%(' .. join(split(a:words), '\|') .. '\)\>'
endfunction

syntax case match

" What may stand in code, in "${...}" as well. Where several items begin at one place, the last one
" wins; keywords win over all but what is expected behind another item.
syntax cluster pellumKeyword contains=pellumControl,pellumDeclaration,pellumFunction,pellumBinder,
    \pellumWordOperator,pellumConstant
syntax cluster pellumCode contains=@pellumKeyword,pellumName,pellumCall,pellumBuiltin,
    \pellumBuiltinConstant,pellumKey,pellumAccessor,pellumNumber,pellumNumberError,pellumOperator,
    \pellumDelimiter,pellumString,pellumError

syntax match pellumError "[^[:space:]]"

" Names
syntax match pellumName "\<\h\w*\>"
syntax match pellumCall "\<\h\w*\>\ze\s*("
execute 'syntax match pellumBuiltin "\<' .. s:alternatives(s:functions) .. '"'
execute 'syntax match pellumBuiltinConstant "\<' .. s:alternatives(s:constants) .. '"'
" The only names before a colon are the keys of maps.
syntax match pellumKey "\<\h\w*\>\ze\s*:"

" Keywords. Those that introduce a name know where it stands.
execute 'syntax keyword pellumControl' s:control
execute 'syntax keyword pellumDeclaration' s:declaration
execute 'syntax keyword pellumWordOperator' s:operator
execute 'syntax keyword pellumConstant' s:constant
syntax keyword pellumDeclaration let
    \ nextgroup=@pellumKeyword,pellumDeclared,pellumDeclaredFunction skipwhite
syntax keyword pellumBinder for catch nextgroup=@pellumKeyword,pellumDeclared skipwhite
syntax keyword pellumFunction function
    \ nextgroup=@pellumKeyword,pellumFunctionName,pellumParameters skipwhite
" A keyword may stand right behind a number, where Vim does not look for one.
execute 'syntax match pellumControl "\d\@1<=' .. s:alternatives(s:control) .. '"'
execute 'syntax match pellumWordOperator "\d\@1<=' .. s:alternatives(s:operator) .. '"'
syntax match pellumDeclared "\<\h\w*\>" contained
syntax match pellumDeclaredFunction "\<\h\w*\>\ze\s*=\s*function\>" contained
syntax match pellumFunctionName "\<\h\w*\>" contained nextgroup=pellumParameters skipwhite
syntax region pellumParameters matchgroup=pellumDelimiter start="(" end=")" oneline contained
    \ contains=@pellumCode,pellumParameter,pellumComment
syntax match pellumParameter "\<\h\w*\>" contained

" Operators and punctuation
syntax match pellumOperator "[-+*/%^<>=]"
syntax match pellumOperator "[-+*/%^<>=!]="
syntax match pellumOperator "//=\="
syntax match pellumDelimiter "[][(){},:]"
syntax match pellumAccessor "\." nextgroup=@pellumKeyword,pellumMethod,pellumField skipwhite
syntax match pellumField "\<\h\w*\>" contained
syntax match pellumMethod "\<\h\w*\>\ze\s*(" contained

" Numbers. An exponent needs digits, and a name must not begin behind a number.
syntax match pellumNumber "\d\+\%(\.\d\+\)\=\%([eE][-+]\=\d\+\)\="
syntax match pellumNumber "\.\d\+\%([eE][-+]\=\d\+\)\="
execute 'syntax match pellumNumberError "\%(\%(\d\+\%(\.\d\+\)\=\|\.\d\+\)\%([eE][-+]\=\d\+\)\=\)\@>'
    \ .. '\%(' .. s:alternatives(join([s:control, s:declaration, s:operator, s:constant]))
    \ .. '\)\@!\h\w*"'
syntax match pellumNumberError "\%(\d\+\%(\.\d\+\)\=\|\.\d\+\)[eE]\%([-+]\d\@!\|[-+0-9]\@!\)\w*"

" Strings. Only double quotes know "${...}", which ends at the brace that matches.
syntax region pellumString matchgroup=pellumQuote start=+"+ end=+"+ end=+$+ oneline
    \ contains=pellumEscape,pellumEscapeError,pellumInterpolation
syntax region pellumString matchgroup=pellumQuote start=+'+ end=+'+ end=+$+ oneline
    \ contains=pellumEscape,pellumEscapeError
syntax match pellumEscapeError "\\\%(.\|$\)" contained
syntax match pellumEscape +\\[ntr0\\"'$]+ contained
syntax region pellumInterpolation matchgroup=pellumInterpolationDelimiter start="\${" end="}"
    \ oneline contained contains=@pellumCode,pellumBraces,pellumEmbeddedComment
syntax region pellumBraces matchgroup=pellumDelimiter start="{" end="}" oneline contained
    \ contains=@pellumCode,pellumBraces,pellumEmbeddedComment
syntax match pellumEmbeddedComment +#[^}"]*+ contained

" Comments, and the head of the file
syntax match pellumComment "#.*$" contains=@Spell
syntax region pellumHead start="\%^\ze\s*\%(#\|$\)" end="^\ze\s*[^#[:space:]]"
    \ contains=pellumShebang,pellumPragma,pellumComment
syntax match pellumShebang "\%^#!.*$" contained
syntax match pellumPragma "^\s*#pragma\%(\s.*\)\=$" contained
    \ contains=pellumPragmaWord
syntax match pellumPragmaWord "#pragma\>" contained
    \ nextgroup=pellumPragmaName,pellumPragmaError skipwhite
syntax match pellumPragmaError "\S\+" contained
syntax match pellumPragmaName "version\%(\s\|$\)\@=" contained nextgroup=pellumPragmaValue skipwhite
syntax match pellumPragmaValue "\S.*$" contained

syntax sync minlines=100

highlight default link pellumControl Statement
highlight default link pellumBinder Statement
highlight default link pellumDeclaration Keyword
highlight default link pellumFunction Keyword
highlight default link pellumWordOperator Operator
highlight default link pellumConstant Constant
highlight default link pellumBuiltin Function
highlight default link pellumBuiltinConstant Constant
highlight default link pellumFunctionName Function
highlight default link pellumDeclaredFunction Function
highlight default link pellumParameter Identifier
highlight default link pellumKey Identifier
highlight default link pellumOperator Operator
highlight default link pellumDelimiter Delimiter
highlight default link pellumAccessor Delimiter
highlight default link pellumNumber Number
highlight default link pellumNumberError Error
highlight default link pellumString String
highlight default link pellumQuote String
highlight default link pellumEscape SpecialChar
highlight default link pellumEscapeError Error
highlight default link pellumInterpolationDelimiter Special
highlight default link pellumError Error
highlight default link pellumComment Comment
highlight default link pellumEmbeddedComment Comment
highlight default link pellumShebang PreProc
highlight default link pellumPragma PreProc
highlight default link pellumPragmaWord PreProc
highlight default link pellumPragmaName PreProc
highlight default link pellumPragmaError Error
highlight default link pellumPragmaValue Constant

let b:current_syntax = 'pellum'

delfunction s:alternatives
unlet s:control s:declaration s:operator s:constant s:functions s:constants
let &cpo = s:cpo_save
unlet s:cpo_save
