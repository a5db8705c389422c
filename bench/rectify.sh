#!/usr/bin/env bash
# rectify.sh IMAGE [RUNS]: views of a rectified image beside plain ones, and its export beside gdalwarp with all threads
# and the same points: best times, seconds and peak memory. IMAGE has its pyramid.
set -euo pipefail
image=$1; runs=${2:-3}
top=$(cd "$(dirname "$0")/.." && pwd); bench=$top/build/release/bench/bench_rectified
work=$(mktemp -d); trap 'rm -rf "$work"' EXIT
best() { # best NAME COMMAND...
  local name=$1 times=""; shift
  for _ in $(seq "$runs"); do
    rm -f "$work"/out*
    times+=$(/usr/bin/time -f '%e %M' "$@" 2>&1 >/dev/null | tail -1)$'\n'
  done
  printf '%-28s %s\n' "$name" "$(printf %s "$times" | sort -n | head -1 | awk '{printf "%.2f s %d MiB", $1, $2 / 1024}')"
}
"$bench" "$image" 15
for order in 1 2 3; do
  "$bench" "$image" "$order" points >"$work/points"
  # shellcheck disable=SC2046
  gdal_translate -q -of VRT $(cat "$work/points") "$image" "$work/in.vrt"
  sed -i '/GeoTransform/d' "$work/in.vrt"
  for way in near:nearest bilinear:bilinear; do
    best "gdalwarp order $order ${way#*:}" gdalwarp -q -overwrite -order "$order" -r "${way%:*}" -multi \
      -wo NUM_THREADS=ALL_CPUS -co TILED=YES "$work/in.vrt" "$work/out.tif"
    best "ours order $order ${way#*:}" "$bench" "$image" "$order" "${way#*:}" "$work/out.tif"
  done
done
