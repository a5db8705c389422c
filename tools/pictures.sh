#!/usr/bin/env bash
# usage: tools/pictures.sh: makes docs/images/window.png anew from the running program (build/release),
# over the demonstration orthophoto, on a screen of its own.
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
bin="$top/build/release/bin"
work=$(mktemp -d)
children=()
finish() {
  for child in "${children[@]}"; do kill "$child" 2>/dev/null || true; done
  wait || true
  rm -rf "$work"
}
trap finish EXIT
exec 3<>"$work/display"
Xvfb -displayfd 3 -screen 0 1500x1000x24 -nolisten tcp -noreset -r 2>/dev/null &
children+=($!)
until [ -s "$work/display" ]; do sleep 0.1; done
DISPLAY=:$(head -n 1 "$work/display")
export DISPLAY LANG=C.UTF-8 XDG_RUNTIME_DIR="$work" QT_SCALE_FACTOR=1
openbox --sm-disable >/dev/null 2>&1 &
children+=($!)

wait_for() { # TEXT: a line of the log that begins so, after those seen before
  local tries=300
  until tail -n "+$((seen + 1))" "$work/log" 2>/dev/null | grep -q -- "^$1"; do
    tries=$((tries - 1))
    [ $tries -gt 0 ] || { echo "\"$1\" did not come" >&2; exit 1; }
    sleep 0.1
  done
  seen=$(wc -l <"$work/log")
}
enter() { xdotool type --delay 1 -- "$1"; xdotool key Return; wait_for "$2"; }

seen=0
"$bin/tarnortho" "$work/orthophoto.tif" 4000 4000 0.1
"$bin/cadhost" --profile "$work/profile" --log "$work/log" --size 1060x620 "$work/orthophoto.tif" >/dev/null 2>&1 &
children+=($!)
wait_for "> Command:"
window=$(xdotool search --sync --onlyvisible --name "^Tarn Image" | head -n 1)
xdotool windowactivate --sync "$window"
enter "ZOOM 0.9x" "> Command:"
enter "LAYER M Parcels" "> Option"
xdotool key Return
wait_for "> Command:"
set -- $(xdotool getwindowgeometry --shell "$window" | sed -n 's/^\(X\|Y\|WIDTH\|HEIGHT\)=//p')
x=$1 y=$2 width=$3 height=$4
enter "PLINE" "> "
for place in "30 40" "45 32" "55 45" "42 58"; do
  xdotool mousemove $((x + width * ${place% *} / 100)) $((y + height * ${place#* } / 100)) click 1
  wait_for "> Next"
done
enter "C" "> Command:"
xdotool mousemove $((x + width * 375 / 1000)) $((y + height * 36 / 100)) click 1 key ctrl+1 key ctrl+2
sleep 2
import -window "$window" -strip "PNG8:$top/docs/images/window.png"
echo "docs/images/window.png"
