# bash completion for tarvix

_tarvix()
{
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} command=${COMP_WORDS[1]}
    # Lines split every candidate, so that file names may contain blanks.
    local IFS=$'\n'
    COMPREPLY=()

    if [ "$COMP_CWORD" -eq 1 ]; then
        COMPREPLY=($(compgen -W $'run\nwrite\nread\nscan\ndevices\nid\n-h\n--help\n--version' -- "$current"))
        return
    fi

    # A device is split into words at its colons: "sim", ":", "bus.toml".
    if [ "$previous" = sim ] && [ "$current" = : ]; then
        previous=: current=
    fi
    case $previous in
    :)
        compopt -o filenames
        COMPREPLY=($(compgen -d -- "$current") $(compgen -f -X '!*.toml' -- "$current"))
        return
        ;;
    -d | --device)
        compopt -o nospace
        COMPREPLY=($(compgen -W $'sim:\nftdi:///1' -- "$current"))
        return
        ;;
    -b | --baud)
        COMPREPLY=($(compgen -W $'2400\n9600\n10400\n19200\n20000' -- "$current"))
        return
        ;;
    --break-width) return ;;
    --checksum)
        COMPREPLY=($(compgen -W $'classic\nenhanced' -- "$current"))
        return
        ;;
    --format)
        COMPREPLY=($(compgen -W $'table\njson\ncandump' -- "$current"))
        return
        ;;
    --vcd | --svg | --record)
        compopt -o filenames
        COMPREPLY=($(compgen -f -- "$current"))
        return
        ;;
    esac

    local options=$'-h\n--help\n--version'
    case $command in
    run | write | read | scan)
        options+=$'\n-d\n--device\n-b\n--baud\n--break-width\n--checksum\n--vcd\n--svg\n--record\n--format\n--timing'
        options+=$'\n-q\n--quiet'
        ;;
    esac
    if [[ $current == -* ]]; then
        COMPREPLY=($(compgen -W "$options" -- "$current"))
    elif [ "$command" = run ]; then
        compopt -o filenames
        COMPREPLY=($(compgen -d -- "$current") $(compgen -f -X '!*.lin' -- "$current"))
    fi
}

complete -F _tarvix tarvix
