# Completion of pellum's options and files for bash. Installed as
# share/bash-completion/completions/pellum; or source it in ~/.bashrc.

_pellum() {
    local word=${COMP_WORDS[COMP_CWORD]}
    local first=1 # where the mode or the file stands

    COMPREPLY=()
    case ${COMP_WORDS[1]} in
        --tree | --interp | --vm) [ "$COMP_CWORD" -gt 1 ] && first=2 ;;
    esac

    if [ "$COMP_CWORD" -eq "$first" ]; then
        local options="-c --bench --tokens -h --help -v --version"
        [ "$first" -eq 1 ] && options="--tree --interp --vm $options"
        case $word in
            -*)
                COMPREPLY=($(compgen -W "$options" -- "$word"))
                return
                ;;
        esac
    elif [ "$COMP_CWORD" -eq $((first + 1)) ]; then
        case ${COMP_WORDS[first]} in
            --bench | --tokens) ;;
            *) return ;;
        esac
    else
        return
    fi

    # Programs, and the folders that may lead to some.
    local name
    while IFS= read -r name; do
        COMPREPLY+=("$name")
    done < <(
        compgen -f -X '!*.pellum' -- "$word"
        compgen -f -X '!*.plm' -- "$word"
        compgen -d -- "$word"
    )
    compopt -o filenames 2>/dev/null
}

complete -F _pellum pellum
