# Completion of pellum-lint's options and files for bash. Installed as
# share/bash-completion/completions/pellum-lint; or source it in ~/.bashrc.

_pellum_lint() {
    local word=${COMP_WORDS[COMP_CWORD]}
    COMPREPLY=()
    case $word in
        -*)
            COMPREPLY=($(compgen -W "--json --rules -h --help -v --version" -- "$word"))
            return
            ;;
    esac

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

complete -F _pellum_lint pellum-lint
