# bash completion for vqvec-import: options, files and directories.
# shellcheck shell=bash

_vqvec_import() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} kind=-f
  COMPREPLY=()
  if [[ $word == -* && $before != --to ]]; then
    mapfile -t COMPREPLY < <(
      compgen -W '--to --here --force --unconverged -h --help' -- "$word"
    )
    return
  fi
  [[ $before != --to ]] || kind=-d
  compopt -o filenames 2>/dev/null
  mapfile -t COMPREPLY < <(compgen "$kind" -- "$word")
}
complete -F _vqvec_import vqvec-import
