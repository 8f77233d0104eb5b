" Pellum programs by their extension, and by a first line such as "#!/usr/bin/env pellum". Vim knows
" *.plm as another language's, so the type is set even where there is one.
autocmd BufNewFile,BufRead *.pellum,*.plm set filetype=pellum
autocmd BufNewFile,BufRead *
    \ if !did_filetype() && getline(1) =~# '^#!.*[/[:space:]]pellum\%(\s\|$\)' |
    \     set filetype=pellum |
    \ endif
