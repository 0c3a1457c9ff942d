# fish completion for tarvix

set -l commands run write read scan devices id
set -l none "not __fish_seen_subcommand_from $commands"
set -l bus "__fish_seen_subcommand_from run write read scan"

complete -c tarvix -f
complete -c tarvix -s h -l help -d "Print help and exit"
complete -c tarvix -l version -d "Print the version and exit"

complete -c tarvix -n "$none" -a run -d "Execute scripts, one after the other"
complete -c tarvix -n "$none" -a write -d "Send one frame"
complete -c tarvix -n "$none" -a read -d "Read one frame"
complete -c tarvix -n "$none" -a scan -d "Ask every identifier and list who answers"
complete -c tarvix -n "$none" -a devices -d "List the chips found on USB, as URLs"
complete -c tarvix -n "$none" -a id -d "Print protected identifiers"

complete -c tarvix -n "__fish_seen_subcommand_from run" -F

complete -c tarvix -n "$bus" -s d -l device -x -a "sim: ftdi:///1" -d "Device to use"
complete -c tarvix -n "$bus" -s b -l baud -x -a "2400 9600 10400 19200 20000" -d "Bit rate in bits per second"
complete -c tarvix -n "$bus" -l break-width -x -d "Width of the break in bit times"
complete -c tarvix -n "$bus" -l checksum -x -a "classic enhanced" -d "Checksum model"
complete -c tarvix -n "$bus" -l vcd -r -F -d "Write the waveform as a VCD file"
complete -c tarvix -n "$bus" -l svg -r -F -d "Write a picture of the frames"
complete -c tarvix -n "$bus" -l record -r -F -d "Write the operation log"
complete -c tarvix -n "$bus" -l format -x -a "table json candump" -d "Output"
complete -c tarvix -n "$bus" -l timing -d "Add what the samples tell about each answer"
complete -c tarvix -n "$bus" -s q -l quiet -d "No notices and no progress bar"
