#!/bin/bash
# A private sound server for the tests: one sink without ears, whose monitor gives back bit by bit what is played. It
# knows nothing of the user's own server.
#   audio-server.sh start DIR [SINK...]   starts it in DIR and prints its process id; SINKs are further ones
#   audio-server.sh stop DIR              stops it
# Its clients need XDG_RUNTIME_DIR=DIR HOME=DIR/home PULSE_SERVER=unix:DIR/pulse.sock.
set -euo pipefail

usage() {
    echo "usage: $0 start DIR [SINK...] | stop DIR" >&2
    exit 2
}
(($# >= 2)) || usage
dir=$2

start() {
    mkdir -p "$dir/home"
    dir=$(cd "$dir" && pwd)
    rm -f "$dir/pulse.sock"
    local format="rate=44100 channels=2 format=s16le norewinds=1"
    local modules=() sink
    for sink in velmora_out "$@"; do
        modules+=(-L "module-null-sink sink_name=$sink sink_properties=device.description=$sink $format")
    done
    # A caller that waits for the end of our output must not wait for the server's.
    env -u DISPLAY -u PULSE_SERVER HOME="$dir/home" XDG_RUNTIME_DIR="$dir" \
        pulseaudio -n --daemonize=no --disable-shm=yes --use-pid-file=no --exit-idle-time=-1 \
        --log-target=file:"$dir/log" "${modules[@]}" \
        -L "module-native-protocol-unix auth-anonymous=1 socket=$dir/pulse.sock" >"$dir/out" 2>&1 </dev/null &
    local pid=$! tries=0
    echo "$pid" >"$dir/pid"
    until [[ -S $dir/pulse.sock ]]; do
        if ((++tries > 400)) || ! kill -0 "$pid" 2>/dev/null; then
            cat "$dir/out" "$dir/log" >&2
            exit 1
        fi
        sleep 0.05
    done
    echo "$pid"
}

stop() {
    [[ -f $dir/pid ]] || return 0
    kill "$(<"$dir/pid")" 2>/dev/null || true
    rm -f "$dir/pid"
}

case $1 in
start) start "${@:3}" ;;
stop) stop ;;
*) usage ;;
esac
