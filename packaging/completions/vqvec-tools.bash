# bash completion for vqvec-check, vqvec-draw and vqvec-weights: options, their values, directories
# and files.
# shellcheck shell=bash

_vqvec_tools() {
  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} options words='' kind=-d
  COMPREPLY=()
  case ${COMP_WORDS[0]##*/} in
    vqvec-check) options='--from -h --help' ;;
    vqvec-draw)
      options='--chart --column --property --label --limit --size --to --force -h --help'
      kind=-f
      [[ $before != --to ]] || before=
      ;;
    *) options='--key --unit --temperature --degeneracy --name --to --any-spread -h --help' ;;
  esac
  case $before in
    --key | --temperature | --degeneracy | --name) return ;;
    --column | --property | --label | --limit | --size) return ;;
    --unit) words='hartree eV kcal/mol kJ/mol' ;;
    --to) words='.vorq.result.kv .vorq.values.kv .vorq.dbcollect.user.kv .vorq.values.user.kv' ;;
    *)
      if [[ $word == -* ]]; then
        words=$options
      else
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen "$kind" -- "$word")
        return
      fi
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
}
complete -F _vqvec_tools vqvec-check vqvec-draw vqvec-weights
