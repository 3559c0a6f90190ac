# Completion of tessaly-cli for bash.

_tessaly_cli()
{
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} command=
    [ "$COMP_CWORD" -gt 1 ] && command=${COMP_WORDS[1]}
    COMPREPLY=()

    case $command:$before in
    resize:--scale | resize:--fit | resize:--width | resize:--height) return ;;
    esac
    case $command:$word in
    :*) mapfile -t COMPREPLY < <(compgen -W 'info resize --help --version' -- "$word") ;;
    info:-*) mapfile -t COMPREPLY < <(compgen -W '--json --verbose --help --version' -- "$word") ;;
    resize:-*)
        mapfile -t COMPREPLY < <(
            compgen -W '-o --output --scale --fit --width --height --force --json --progress --quiet --verbose --help --version' -- "$word"
        )
        ;;
    info:* | resize:*)
        compopt -o filenames 2>/dev/null # names with blanks get their backslashes, folders their slash
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        ;;
    esac
}
complete -F _tessaly_cli tessaly-cli
