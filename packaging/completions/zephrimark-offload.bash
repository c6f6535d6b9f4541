# Completion of zephrimark-offload for bash.

_zephrimark_offload() {
  local current=${COMP_WORDS[COMP_CWORD]} before='' word
  COMPREPLY=()
  # A colon counts as a word of its own.
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    [[ $word == -* ]] && before=$word
  done
  [ "$current" = : ] && current=''
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W '-ZMSource -ZMDestinations -ZMAutoStart --help --version' -- "$current")
  elif [ "$before" = -ZMAutoStart ]; then
    mapfile -t COMPREPLY < <(compgen -W YES -- "$current")
  elif [ -n "$before" ]; then
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -d -- "$current")
  fi
}

complete -F _zephrimark_offload zephrimark-offload
