_quillbarctl() {
    local word=${COMP_WORDS[COMP_CWORD]} command=${COMP_WORDS[1]} words='--help'
    if ((COMP_CWORD == 1)); then
        words='list open add import export activate menu autostart --help --version'
    else
        case ${COMP_WORDS[COMP_CWORD - 1]}:$command in
        --folder:* | --slot:*) words=$(echo {0..9}) ;;
        --name:* | --keywords:*) words= ;;
        *:list) words+=" --json $(echo {0..9})" ;;
        *:open | *:menu) words+=" $(echo {0..9})" ;;
        *:add) words+=' --name --keywords --folder --slot --replace' ;;
        *:import) words+=' --folder --dry-run' ;;
        *:export) words+=' --json' ;;
        *:autostart) words+=' on off status' ;;
        esac
    fi
    mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
    case $command in
    import | export) mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$word") ;;
    esac
}
complete -o filenames -F _quillbarctl quillbarctl
