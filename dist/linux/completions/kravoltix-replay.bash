# SPDX-License-Identifier: MIT
# bash completion for kravoltix-replay
_kravoltix_replay() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    local place='--game --layer --data --help' options
    if [[ $COMP_CWORD -eq 1 ]]; then
        mapfile -t COMPREPLY < <(compgen -W 'record play verify video moments info --help --version' -- "$current")
        return
    fi
    case $previous in
    --data | --pictures)
        mapfile -t COMPREPLY < <(compgen -d -- "$current")
        return ;;
    --speed | --jobs | --fps | --from | --to | --scale) return ;;
    esac
    case ${COMP_WORDS[1]} in
    record) options="--force $place" ;;
    play) options="--speed --partial $place" ;;
    verify) options="--expected-game --pictures --partial --any-library --jobs $place" ;;
    video) options="--force --fps --from --to --scale --partial $place" ;;
    moments) options="--force $place" ;;
    *) options=$place ;;
    esac
    if [[ $current == -* ]]; then
        mapfile -t COMPREPLY < <(compgen -W "$options" -- "$current")
    else
        mapfile -t COMPREPLY < <(compgen -f -- "$current")
    fi
}
complete -o filenames -F _kravoltix_replay kravoltix-replay
