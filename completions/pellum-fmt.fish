# Completion of pellum-fmt's options and files for fish. Installed as
# share/fish/vendor_completions.d/pellum-fmt.fish.

complete -c pellum-fmt -l check -d 'Name the files that would change'
complete -c pellum-fmt -l diff -d 'Show what would change'
complete -c pellum-fmt -s h -l help -d 'Show the usage'
complete -c pellum-fmt -s v -l version -d 'Show the version'
