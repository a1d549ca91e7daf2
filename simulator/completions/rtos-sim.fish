# Completions of rtos-sim for fish: put this file into ~/.config/fish/completions/.

# Succeeds where the word number $argv[1] of a command belongs, counted from 1 behind `ctl PATH`; and, if $argv[2] is
# there, the command is that.
function __rtos_sim_awaits
    set -l words (commandline -opc)
    test "$words[2]" = ctl -a (count $words) -eq (math $argv[1] + 2)
    and test -z "$argv[2]" -o "$words[4]" = "$argv[2]"
end

function __rtos_sim_has_no_ctl
    not __fish_seen_subcommand_from ctl
end

# The kinds of faults; an argument follows a colon.
set -l faults 'refuse: no-param bad-list empty-list missing-file long garbage split: delay: silent close reset'

complete -c rtos-sim -f
complete -c rtos-sim -n __rtos_sim_has_no_ctl -s h -l help -d 'Print help'
complete -c rtos-sim -n __rtos_sim_has_no_ctl -l version -d 'Print the version'
complete -c rtos-sim -n __rtos_sim_has_no_ctl -l root -x -a '(__fish_complete_directories)' -d 'Directory of the shared storage'
complete -c rtos-sim -n __rtos_sim_has_no_ctl -l port -x -d 'Port to listen on'
complete -c rtos-sim -n __rtos_sim_has_no_ctl -l max-reticles -x -d 'How many reticles the device holds'
complete -c rtos-sim -n __rtos_sim_has_no_ctl -l max-bytes -x -d 'How many bytes they may take'
complete -c rtos-sim -n __rtos_sim_has_no_ctl -l reset -d 'Go back to the factory set'
complete -c rtos-sim -n __rtos_sim_has_no_ctl -l verbose -d 'Print events'
complete -c rtos-sim -n __rtos_sim_has_no_ctl -l fault -x -a "$faults" -d 'What goes wrong'
complete -c rtos-sim -n __rtos_sim_has_no_ctl -l control -r -F -d 'Take commands on this socket'
complete -c rtos-sim -n __rtos_sim_has_no_ctl -l web -x -d 'Show the device in browsers'
complete -c rtos-sim -n __rtos_sim_has_no_ctl -l record -r -F -d 'Write a session'
complete -c rtos-sim -n __rtos_sim_has_no_ctl -l replay -r -F -d 'Play the device of a session'
complete -c rtos-sim -n __rtos_sim_has_no_ctl -l from-log -r -F -d 'Print the session of a log'
complete -c rtos-sim -n 'test (count (commandline -opc)) -eq 1' -a ctl -d 'Send a command to a simulator that runs'

complete -c rtos-sim -n '__rtos_sim_awaits 0' -F
complete -c rtos-sim -n '__rtos_sim_awaits 0' -s h -l help -d 'Print help'
complete -c rtos-sim -n '__rtos_sim_awaits 1' -a status -d 'Print what the device holds'
complete -c rtos-sim -n '__rtos_sim_awaits 1' -a fault -d 'Let something go wrong'
complete -c rtos-sim -n '__rtos_sim_awaits 1' -a faults -d 'Let nothing go wrong any more'
complete -c rtos-sim -n '__rtos_sim_awaits 1' -a activate -d 'Make a reticle the active one'
complete -c rtos-sim -n '__rtos_sim_awaits 1' -a color -d 'Change the colour of a reticle'
complete -c rtos-sim -n '__rtos_sim_awaits 1' -a rename -d 'Change the name of a reticle'
complete -c rtos-sim -n '__rtos_sim_awaits 1' -a add -d 'Add a reticle'
complete -c rtos-sim -n '__rtos_sim_awaits 1' -a delete -d 'Delete a reticle'
complete -c rtos-sim -n '__rtos_sim_awaits 1' -a deletable -d 'Say whether a reticle may be deleted'
complete -c rtos-sim -n '__rtos_sim_awaits 1' -a restart -d 'Let the device go away and come back'
complete -c rtos-sim -n '__rtos_sim_awaits 1' -a reset -d 'Go back to the factory set'
complete -c rtos-sim -n '__rtos_sim_awaits 1' -a events -d 'Print events as they happen'
complete -c rtos-sim -n '__rtos_sim_awaits 2 fault' -a "$faults"
complete -c rtos-sim -n '__rtos_sim_awaits 3 fault' -a 'next every'
complete -c rtos-sim -n '__rtos_sim_awaits 2 faults' -a off
complete -c rtos-sim -n '__rtos_sim_awaits 3 add' -F
complete -c rtos-sim -n '__rtos_sim_awaits 3 deletable' -a 'yes no'
complete -c rtos-sim -n '__rtos_sim_awaits 2 restart' -l down -x -d 'Seconds until it is back'
