# Completion of pellum-lint's options and files for fish. Installed as
# share/fish/vendor_completions.d/pellum-lint.fish.

complete -c pellum-lint -l json -d 'Write an array of objects'
complete -c pellum-lint -l rules -d 'List the rules'
complete -c pellum-lint -s h -l help -d 'Show the usage'
complete -c pellum-lint -s v -l version -d 'Show the version'
