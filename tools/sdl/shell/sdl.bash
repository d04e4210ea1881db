# SPDX-License-Identifier: BSL-1.0
# Completion of sdl for bash.
_sdl() {
    local word=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]} options=--help
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        mapfile -t COMPREPLY < <(compgen -W "check diff format get set remove from-json to-json schema show tokens lsp system
            --help --version" -- "$word")
        return
    fi
    case $previous in
    --signature | --most | --indent | --depth | --names) return ;;
    esac
    if [[ ${COMP_WORDS[1]} == schema && $COMP_CWORD -eq 2 ]]; then
        mapfile -t COMPREPLY < <(compgen -W "draft --help" -- "$word")
        return
    fi
    if [[ $word != -* ]]; then
        compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
    fi
    case ${COMP_WORDS[1]} in
    check) options+=" --signature --schema --no-schema --most --json --sarif" ;;
    diff) options+=" --quiet" ;;
    format) options+=" --in-place --check --indent --tabs --lf --crlf" ;;
    get) options+=" --all --source" ;;
    set) options+=" --all --string --word" ;;
    remove) options+=" --all" ;;
    to-json) options+=" --indent --compact --any-names" ;;
    lsp) options+=" --stdio" ;;
    show) options+=" --depth --names" ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$options" -- "$word")
}
complete -F _sdl sdl
