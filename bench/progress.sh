#!/bin/bash
# What progress costs: a pyramid built by the program without a window and (under Xvfb) with one, and
# an image converted.
# usage: bench/progress.sh FOLDER [SIZE=20000]
# Prints the program's own line for each operation: its seconds, those spent in showing progress and
# asking for a stop, their share, the number of positions, the longest time without a new one, and
# how far the last position was. Needs the release build and Xvfb.
set -e
folder=${1:?usage: bench/progress.sh FOLDER [SIZE]}
size=${2:-20000}
here=$(cd "$(dirname "$0")" && pwd); bin=$here/../build/release/bin
mkdir -p "$folder"; folder=$(cd "$folder" && pwd)
image=$folder/ortho$size.tif
[ -f "$image" ] || "$bin/tarnortho" "$image" "$size" "$size"
profile=$(mktemp -d); trap 'rm -r "$profile"; rm -rf "$image.ovr" "$folder/converted"' EXIT

fresh() { rm -rf "$image.ovr" "$folder/converted"; cat "$image" > /dev/null; }
measured() { tr '\r' '\n' < "$1" | grep -a '^{"' | grep -a '"progress"'; }

echo "without a window:"
fresh
printf '%s\n' "SETVAR FILEDIA 0" addImage "$image" "" ImageConversion "$image" "" 1 4 75 1 "" No No 2 \
  "$folder/converted" "SETVAR FILEDIA 1" |
  "$bin/cadhost" --headless --profile "$profile" --stats --script - > "$profile/out"
measured "$profile/out"

echo "with a window:"
fresh
QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1920x1080x24" "$bin/cadhost" --profile "$profile" --stats \
  --log "$profile/log" "$image" > /dev/null 2>&1 &
until measured "$profile/log" 2> /dev/null || ! kill -0 $! 2> /dev/null; do sleep 0.5; done
pkill -P $! cadhost; wait $! || true
