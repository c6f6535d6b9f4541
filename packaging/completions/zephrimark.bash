# Completion of zephrimark for bash.

_zephrimark() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} options
  COMPREPLY=()
  if [ "$COMP_CWORD" -eq 1 ]; then
    mapfile -t COMPREPLY < <(compgen -W 'offload cards disks --help --version' -- "$current")
    return
  fi
  case ${COMP_WORDS[1]} in
    offload)
      case $previous in
        --template)
          mapfile -t COMPREPLY < <(compgen -W \
            '{date}/{card} {project}/{date}/{card} {date}/{camera}/{card} {date}_{card}' -- "$current")
          compopt -o nospace
          return
          ;;
        --checksum)
          mapfile -t COMPREPLY < <(compgen -W 'xxh64 md5 sha256' -- "$current")
          return
          ;;
        --project) return ;;
      esac
      options='--template --project --checksum --read-once --card-image --eject --json --quiet --help'
      ;;
    cards) options='--json --help' ;;
    disks) options='--all --json --help' ;;
    *) return ;;
  esac
  if [[ $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
  elif [ "${COMP_WORDS[1]}" = offload ]; then
    compopt -o filenames
    mapfile -t COMPREPLY < <(compgen -d -- "$current")
  fi
}

complete -F _zephrimark zephrimark
