#!/usr/bin/env bash
# usage: bench/frames.sh FOLDER [ENTITIES] [SIDE]: first picture and frames of a drawing with ENTITIES
# (20000) entities and three images of SIDE x SIDE pixels (10000), in the real window at 1920 x 1080.
# FOLDER keeps drawing and images for the next call.
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
[ $# -ge 1 ] || { sed -n 2,4p "$0" | cut -c3-; exit 2; }
folder=$1 entities=${2:-20000} side=${3:-10000}
bin="$top/build/release/bin" drawing="$folder/day-$entities-$side.dxf"
export TARN_PROFILE="$folder/profile"
mkdir -p "$folder" "$TARN_PROFILE/system"
[ -f "$TARN_PROFILE/system/tarnconfig.db" ] || : >"$TARN_PROFILE/system/tarnconfig.db"
if [ ! -f "$drawing" ]; then
  images=()
  for i in 0 1 2; do
    image="$folder/ortho-$side-$i.tif"
    pixel=$(awk "BEGIN { print 1000 / $side }")
    [ -f "$image" ] || "$bin/tarnortho" "$image" "$side" "$side" "$pixel"
    awk "BEGIN { printf \"%.9f\n0\n0\n-%.9f\n%.9f\n%.9f\n\", $pixel, $pixel,
         40500000 + 1000 * $i + $pixel / 2, 3512600 - $pixel / 2 }" >"${image%.tif}.tfw"
    images+=("$image")
  done
  /usr/bin/python3 "$top/bench/make_drawing.py" "$folder/vectors.dxf" "$entities"
  "$bin/cadhost" --headless --profile "$TARN_PROFILE" "$folder/vectors.dxf" "${images[@]}" --save "$drawing" >/dev/null
  rm "$folder/vectors.dxf"
fi
echo "1-minute load before: $(cut -d' ' -f1 /proc/loadavg), $(nproc) processors"
for run in 1 2; do
  start=$(date +%s%N)
  "$bin/cadhost" --headless --profile "$TARN_PROFILE" --size 1920x1080 "$drawing" --picture "$folder/first.png" >/dev/null
  echo "whole program, drawing to picture file: $((($(date +%s%N) - start) / 1000000)) ms"
done
QT_QPA_PLATFORM=xcb QT_SCALE_FACTOR=1 xvfb-run -a -s "-screen 0 1920x1300x24 -nolisten tcp" \
  "$top/build/release/bench/bench_frames" "$drawing"
