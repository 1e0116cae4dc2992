# Completion of ostrel-batch for bash. SPDX-License-Identifier: MIT
# shellcheck shell=bash

_ostrel_batch() {
    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]} choices=
    case $before in
    --algorithm) choices="auto low mid high slope" ;;
    --channel) choices="auto 1 2 3 4 5 6 7 8" ;;
    --frame-rate) choices="auto 23.98 24 25 29.97 30" ;;
    --video-type)
        choices="pass mov-pass mov-dnxhd-36 mov-dnxhd-115 mov-dnxhd-175
            mxf-mpeg2 mxf-dnxhd-36 mxf-dnxhd-115 mxf-dnxhd-175"
        ;;
    --audio-type) choices="pass pcm16 pcm24" ;;
    --jobs) return ;;
    --to)
        mapfile -t COMPREPLY < <(compgen -d -- "$word")
        return
        ;;
    --report)
        mapfile -t COMPREPLY < <(compgen -f -- "$word")
        return
        ;;
    *)
        if [ "$COMP_CWORD" -eq 1 ]; then
            choices="read export join --help --version"
        elif [[ $word == -* ]]; then
            choices="--report --algorithm --channel --frame-rate --deep --jobs --quiet --help --version"
            if [[ " ${COMP_WORDS[*]} " == *" export "* ]]; then
                choices+=" --to --video-type --audio-type --keep-timecode-channel --no-verify --resume"
            fi
        else
            mapfile -t COMPREPLY < <(compgen -f -- "$word")
            return
        fi
        ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$choices" -- "$word")
}
complete -o filenames -F _ostrel_batch ostrel-batch
