# Completion of zephrimark for fish.

set -l commands offload cards disks

complete -c zephrimark -f
complete -c zephrimark -s h -l help -d 'Tell the options'
complete -c zephrimark -n "not __fish_seen_subcommand_from $commands" -l version -d 'Tell the version'
complete -c zephrimark -n "not __fish_seen_subcommand_from $commands" -a offload -d 'Copy a card or folder and read every copy back'
complete -c zephrimark -n "not __fish_seen_subcommand_from $commands" -a cards -d 'List the mounted cards and drives'
complete -c zephrimark -n "not __fish_seen_subcommand_from $commands" -a disks -d 'List the disks that can be cards'

complete -c zephrimark -n '__fish_seen_subcommand_from offload' -a '(__fish_complete_directories)'
complete -c zephrimark -n '__fish_seen_subcommand_from offload' -l template -x -a "'{date}/{card}' '{project}/{date}/{card}' '{date}/{camera}/{card}' '{date}_{card}'" -d 'Folder made in each destination'
complete -c zephrimark -n '__fish_seen_subcommand_from offload' -l project -x -d 'Text for {project}'
complete -c zephrimark -n '__fish_seen_subcommand_from offload' -l checksum -x -a 'xxh64 md5 sha256' -d 'Checksum of every comparison'
complete -c zephrimark -n '__fish_seen_subcommand_from offload' -l read-once -d 'Read the card only once'
complete -c zephrimark -n '__fish_seen_subcommand_from offload' -l card-image -d 'Also save an image of the whole card'
complete -c zephrimark -n '__fish_seen_subcommand_from offload' -l eject -d 'Eject the card once everything is verified'
complete -c zephrimark -n '__fish_seen_subcommand_from offload' -l quiet -d 'Nothing but problems'
complete -c zephrimark -n "__fish_seen_subcommand_from $commands" -l json -d 'One JSON object per line'
complete -c zephrimark -n '__fish_seen_subcommand_from disks' -l all -d 'Internal disks and disk images too'
