# fish completion for vqvec-weights: options, their values, and directories.

complete -c vqvec-weights -f -a '(__fish_complete_directories)'
complete -c vqvec-weights -s h -l help -d 'Show the usage'
complete -c vqvec-weights -l key -x -d 'The key of the energy'
complete -c vqvec-weights -l unit -x -a 'hartree eV kcal/mol kJ/mol' -d 'The unit of the energies'
complete -c vqvec-weights -l temperature -x -d 'In kelvin'
complete -c vqvec-weights -l degeneracy -x -d 'A key that multiplies the weight'
complete -c vqvec-weights -l name -x -d 'The key to write'
complete -c vqvec-weights -l to -x -d 'The file to append to' \
  -a '.vorq.result.kv .vorq.values.kv .vorq.dbcollect.user.kv .vorq.values.user.kv'
complete -c vqvec-weights -l any-spread -d 'Accept energies that differ implausibly'
