# fish completion for vqvec-draw: options and files.

complete -c vqvec-draw -s h -l help -d 'Show the usage'
complete -c vqvec-draw -l chart -r -F -d 'Compare the values of these tasks'
complete -c vqvec-draw -l column -x -d 'The column of the file'
complete -c vqvec-draw -l property -x -d 'The property of the tasks'
complete -c vqvec-draw -l label -x -d 'What the values are'
complete -c vqvec-draw -l limit -x -d 'The value of the darkest colour'
complete -c vqvec-draw -l size -x -d 'WIDTHxHEIGHT in centimetres'
complete -c vqvec-draw -l to -r -F -d 'The picture'
complete -c vqvec-draw -l force -d 'Replace an existing picture'
