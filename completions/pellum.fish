# Completion of pellum's options and files for fish. Installed as
# share/fish/vendor_completions.d/pellum.fish.

# How many words stand before the one being typed, without the engine.
function __pellum_words
    set -l words (commandline -opc)
    set -e words[1]
    if set -q words[1]; and contains -- $words[1] --tree --interp --vm
        set -e words[1]
    end
    count $words
end

function __pellum_is_first
    test (count (commandline -opc)) -eq 1
end

function __pellum_needs_mode
    test (__pellum_words) -eq 0
end

# Whether a file is due: first of all, or behind an option that takes one.
function __pellum_needs_file
    switch (__pellum_words)
        case 0
            return 0
        case 1
            set -l words (commandline -opc)
            contains -- $words[-1] --bench --tokens
        case '*'
            return 1
    end
end

# Programs, and the folders that may lead to some.
function __pellum_files
    set -l word (commandline -ct)
    string match -r -- '^.*(?:\.pellum|\.plm|/)$' (complete -C "__fish_command_without_completions $word")
end

complete -c pellum -f
complete -c pellum -n __pellum_needs_file -a '(__pellum_files)'
complete -c pellum -n __pellum_is_first -l tree -d 'Run on the tree-walking interpreter'
complete -c pellum -n __pellum_is_first -l interp -d 'Run on the tree-walking interpreter'
complete -c pellum -n __pellum_is_first -l vm -d 'Run on the virtual machine'
complete -c pellum -n __pellum_needs_mode -s c -d 'Run a snippet'
complete -c pellum -n __pellum_needs_mode -l bench -d 'Time both engines on a program'
complete -c pellum -n __pellum_needs_mode -l tokens -d 'Show the tokens of a program'
complete -c pellum -n __pellum_needs_mode -s h -l help -d 'Show the usage'
complete -c pellum -n __pellum_needs_mode -s v -l version -d 'Show the version'
