# bash completion for vqvec: options, and files for the options that take one.
# shellcheck shell=bash

_vqvec() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  COMPREPLY=()
  if ((COMP_CWORD == 1)); then
    mapfile -t COMPREPLY < <(compgen -W 'atom -h --help' -- "$word")
    return
  fi
  [[ ${COMP_WORDS[1]} == atom ]] || return
  case $before in
    --dsl) ;; # no completion inside a statement: a wrong guess would do harm
    --values-out | --record-kv | --snapshot-kv)
      compopt -o filenames 2>/dev/null
      mapfile -t COMPREPLY < <(compgen -f -- "$word")
      ;;
    *)
      mapfile -t COMPREPLY < <(
        compgen -W '--dsl --values-out --record-kv --snapshot-kv -h --help' -- "$word"
      )
      ;;
  esac
}
complete -F _vqvec vqvec
