# Completions of reticlectl for fish: put this file into ~/.config/fish/completions/.

# Succeeds as long as there is no command.
function __reticlectl_awaits_command
    not __fish_seen_subcommand_from list activate add update delete show gallery ping doctor trace help
end

# Succeeds where a FILE of `add` belongs: NAME and FILE stand in turn behind the command.
function __reticlectl_awaits_file
    set -l words (commandline -opc)
    set -l at (contains -i -- add $words)
    and test (math (count $words) - $at) -gt 0
    and test (math "($(count $words) - $at) % 2") -eq 1
end

# Succeeds where an INDEX belongs: behind `delete`, and as the first word behind other commands that take one.
function __reticlectl_awaits_index
    __fish_seen_subcommand_from delete; and return 0
    set -l words (commandline -opc)
    contains -- $words[-1] activate show update
end

# Prints the indices with the names, as the device of this command line lists them; nothing, and soon, where it does not
# answer.
function __reticlectl_reticles
    type -q reticlectl; or return
    set -l asked
    set -l words (string split -m 1 -- = (commandline -opc))
    for option in --host --port
        if set -l at (contains -i -- $option $words)
            set -a asked $option $words[(math $at + 1)]
        end
    end
    reticlectl --timeout 1 $asked list --names 2>/dev/null </dev/null
end

complete -c reticlectl -f
complete -c reticlectl -s h -l help -d 'Print help'
complete -c reticlectl -l version -d 'Print the version'
complete -c reticlectl -l host -x -a '(__fish_print_hostnames)' -d 'Address or name of the device'
complete -c reticlectl -l port -x -d 'TCP port of the service'
complete -c reticlectl -l timeout -x -d 'How long to wait for the reply'
complete -c reticlectl -l color -x -a 'auto always never' -d 'Whether tables show colours'
complete -c reticlectl -l json -d 'Print JSON'

complete -c reticlectl -n __reticlectl_awaits_command -a list -d 'Show the reticles of the device'
complete -c reticlectl -n __reticlectl_awaits_command -a activate -d 'Make a reticle the active one'
complete -c reticlectl -n __reticlectl_awaits_command -a add -d 'Store new reticles'
complete -c reticlectl -n __reticlectl_awaits_command -a update -d 'Replace a reticle\'s name and data'
complete -c reticlectl -n __reticlectl_awaits_command -a delete -d 'Delete reticles'
complete -c reticlectl -n __reticlectl_awaits_command -a show -d 'Print a reticle\'s data'
complete -c reticlectl -n __reticlectl_awaits_command -a gallery -d 'Make a web page with the pictures of all reticles'
complete -c reticlectl -n __reticlectl_awaits_command -a ping -d 'Ask whether the service answers'
complete -c reticlectl -n __reticlectl_awaits_command -a doctor -d 'On the device, look at all that the service stands on'
complete -c reticlectl -n __reticlectl_awaits_command -a trace -d 'Name the mistakes of a client'
complete -c reticlectl -n __reticlectl_awaits_command -a help -d 'Print the help, or that of a command'

complete -c reticlectl -n '__fish_seen_subcommand_from list' -l watch -x -d 'Show them again and again'
complete -c reticlectl -n '__fish_seen_subcommand_from list' -l names -d 'Print the indices and names alone'
complete -c reticlectl -n '__fish_seen_subcommand_from show' -l template -d 'Put "user_color" back for the colour'
complete -c reticlectl -n __reticlectl_awaits_index -k -a '(__reticlectl_reticles)'
complete -c reticlectl -n '__fish_seen_subcommand_from show gallery' -l output -r -F -d 'Write to this file'
complete -c reticlectl -n '__fish_seen_subcommand_from gallery' -l background -x -a 'auto light dark grey' -d 'What shows first behind the pictures'
complete -c reticlectl -n '__fish_seen_subcommand_from ping' -l count -x -d 'How often to ask'
complete -c reticlectl -n '__fish_seen_subcommand_from ping' -l interval -x -d 'How long from one to the next'
complete -c reticlectl -n '__fish_seen_subcommand_from trace' -l listen -x -d 'Where clients connect to'
complete -c reticlectl -n '__fish_seen_subcommand_from trace' -l pass-all -d 'Pass on what would end the service, too'
complete -c reticlectl -n '__fish_seen_subcommand_from update' -F
complete -c reticlectl -n '__fish_seen_subcommand_from help' -a 'list activate add update delete show gallery ping doctor trace'
complete -c reticlectl -n __reticlectl_awaits_file -F
