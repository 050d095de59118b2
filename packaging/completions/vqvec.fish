# fish completion for vqvec: options, and files for the options that take one.
# No completion inside a statement: a wrong guess would do harm.

complete -c vqvec -f
complete -c vqvec -n __fish_use_subcommand -a atom -d 'Evaluate a statement'
complete -c vqvec -s h -l help -d 'Show the usage'
complete -c vqvec -n '__fish_seen_subcommand_from atom' -l dsl -x -d 'The statement to evaluate'
complete -c vqvec -n '__fish_seen_subcommand_from atom' -l values-out -r -F \
  -d 'Append the values here'
complete -c vqvec -n '__fish_seen_subcommand_from atom' -l record-kv -r -F \
  -d 'Append the values here too'
complete -c vqvec -n '__fish_seen_subcommand_from atom' -l snapshot-kv -r -F \
  -d 'Write a note of the run here'
