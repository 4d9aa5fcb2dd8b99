# SPDX-License-Identifier: MIT
# bash completion for kravoltix
# The game looks at its first two options; help counts only as the first.
_kravoltix() {
    local current=${COMP_WORDS[COMP_CWORD]}
    local options='--fullscreen --nosound -fs -ns'
    if [[ $COMP_CWORD -eq 1 ]]; then
        options+=' --help -?'
    elif [[ $COMP_CWORD -gt 2 ]]; then
        options=
    fi
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
}
complete -F _kravoltix kravoltix
