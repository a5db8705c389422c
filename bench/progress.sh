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

# The conversion's window waits for a user at its end, so it is measured without one.
script() {
  printf '%s\n' "SETVAR FILEDIA 0" addImage "$image" "${conversion[@]}" "SETVAR FILEDIA 1" QUIT Y
}

run() {
  rm -rf "$image.ovr" "$folder/converted"
  cat "$image" > /dev/null
  echo "$1:"
  script | "${@:2}" "$bin/cadhost" "${options[@]}" --profile "$profile" --stats --size 1280x800 --script - |
    tr '\r' '\n' | grep '^{"' | grep '"progress"'
}

conversion=(ImageConversion "$image" "" 1 4 75 1 "" No No 2 "$folder/converted")
options=(--headless); run "without a window" env
conversion=(); options=(); run "with a window" env QT_QPA_PLATFORM=xcb xvfb-run -a -s "-screen 0 1920x1080x24"
