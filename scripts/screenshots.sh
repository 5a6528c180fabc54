#!/bin/bash
# Takes screenshots of the main window, new and with the Welcome project playing, at two sizes, at 100, 150 and 200 %,
# and with DejaVu Sans alone at 100 and 150 %: screenshots.sh [FOLDER]. Nothing is heard. Needs no display of its own.
#   PRESET=dev screenshots.sh     of another build than the release
set -euo pipefail
start=$PWD
cd "$(dirname "$0")/.."
preset=${PRESET:-release}
out=${1:-build/screenshots}
[[ $out == /* ]] || out=$start/$out
mkdir -p "$out"

scripts/install-packages.sh screenshots
scripts/build.sh "$preset" velmora
program=$PWD/build/$preset/bin/velmora
menuBar=26

work=$(mktemp -d)
pids=()
cleanUp() {
    ((${#pids[@]} == 0)) || kill "${pids[@]}" 2>/dev/null || true
    rm -rf "$work"
}
trap cleanUp EXIT

# A display of our own, whichever number is free, and a window manager, without which keys reach no window.
exec 3>"$work/number"
Xvfb -displayfd 3 -screen 0 2700x1700x24 >"$work/xvfb.log" 2>&1 &
pids+=($!)
for ((i = 0; i < 100; i++)); do
    [[ -s $work/number ]] && break
    sleep 0.1
done
DISPLAY=:$(<"$work/number")
export DISPLAY
openbox >"$work/openbox.log" 2>&1 &
pids+=($!)

cat >"$work/dejavu.conf" <<'END'
<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig><dir>/usr/share/fonts/truetype/dejavu</dir></fontconfig>
END

# shot NAME WIDTH HEIGHT SCALE PROJECT KEY...: the window with a client area of that size, after some keys. Without a
# project, a new one.
shot() {
    local name=$1 width=$2 height=$3 scale=$4 project=$5 window= pid key i
    QT_SCALE_FACTOR=$scale "$program" ${project:+"$project"} >"$work/$name.log" 2>&1 &
    pid=$!
    for ((i = 0; i < 300; i++)); do
        window=$(xdotool search --onlyvisible --pid "$pid" --name '^Velmora' 2>/dev/null | tail -n 1) || true
        [[ -z $window ]] || break
        sleep 0.1
    done
    xdotool windowactivate --sync "$window"
    xdotool windowsize "$window" $(awk "BEGIN { print int($width * $scale + 0.5), int(($height + $menuBar) * $scale + 0.5) }")
    xdotool mousemove 0 0
    sleep 1
    for key in "${@:6}"; do
        xdotool key --clearmodifiers "$key"
        sleep 2
    done
    import -window "$window" "$out/$name.png"
    kill "$pid"
    wait "$pid" 2>/dev/null || true
    echo "$out/$name.png"
}

export HOME=$work/home XDG_RUNTIME_DIR=$work PULSE_SERVER=unix:/nonexistent ALSA_CONFIG_PATH=/dev/null
unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_DOCUMENTS_DIR
mkdir -p "$HOME/.config/velmora" "$HOME/Documents/Velmora"
cp -r resources/examples "$HOME/Documents/Velmora/Examples"
welcome="$HOME/Documents/Velmora/Examples/Welcome (Bar style).audioproj"
# Not the first run: nothing is asked.
printf '<Config>\n<Global_FirstRun>bool: False</Global_FirstRun>\n</Config>\n' >"$HOME/.config/velmora/config.xml"

for scale in 1 1.5 2; do
    for size in "1087 530" "1320 760"; do
        read -r width height <<<"$size"
        shot "new-$width-$scale" "$width" "$height" "$scale" ""
        shot "welcome-$width-$scale" "$width" "$height" "$scale" "$welcome" p
    done
done
FONTCONFIG_FILE=$work/dejavu.conf shot new-1087-1-dejavu 1087 530 1 ""
FONTCONFIG_FILE=$work/dejavu.conf shot welcome-1087-1.5-dejavu 1087 530 1.5 "$welcome" p
