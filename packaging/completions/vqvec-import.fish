# fish completion for vqvec-import: options, files and directories.

complete -c vqvec-import -s h -l help -d 'Show the usage'
complete -c vqvec-import -l to -x -a '(__fish_complete_directories)' \
  -d 'Make the task directories here'
complete -c vqvec-import -l here -d 'Write into the directory of the output'
complete -c vqvec-import -l force -d 'Replace existing files'
complete -c vqvec-import -l unconverged -d 'Import unconverged calculations too'
