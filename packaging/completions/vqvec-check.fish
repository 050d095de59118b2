# fish completion for vqvec-check: options and directories.

complete -c vqvec-check -f -a '(__fish_complete_directories)'
complete -c vqvec-check -s h -l help -d 'Show the usage'
complete -c vqvec-check -l from -x -a '(__fish_complete_directories)' -d 'Run the statement here'
