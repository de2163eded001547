_quillbar() {
    mapfile -t COMPREPLY < <(compgen -W '--help --version' -- "${COMP_WORDS[COMP_CWORD]}")
}
complete -F _quillbar quillbar
