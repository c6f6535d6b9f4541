# Completion of zephrimark-offload for fish.

complete -c zephrimark-offload -f
complete -c zephrimark-offload -s h -l help -d 'Tell the options'
complete -c zephrimark-offload -l version -d 'Tell the version'
complete -c zephrimark-offload -o ZMSource -x -a '(__fish_complete_directories)' -d 'Card or folder that is chosen'
complete -c zephrimark-offload -o ZMDestinations -x -a '(__fish_complete_directories)' -d 'Folders to copy to, with colons between them'
complete -c zephrimark-offload -o ZMAutoStart -x -a YES -d 'Start the offload after a second'
