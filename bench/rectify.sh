#!/usr/bin/env bash
# rectify.sh IMAGE [RUNS]: views of a rectified image beside plain ones, and its export beside gdalwarp with all threads
# and the same points, run in turn and each synced to disk: medians of seconds, their ratio, peak memory. IMAGE has its
# pyramid. With RUNS 1 an image of 30,000² pixels shows the memory; 3 without a number.
set -euo pipefail
image=$1; runs=${2:-3}
top=$(cd "$(dirname "$0")/.." && pwd); bench=$top/build/release/bench/bench_rectified
work=$(mktemp -d "${TMPDIR:-/tmp}/rectify.XXXXXX"); trap 'rm -rf "$work"' EXIT
once() { # once LIST COMMAND...: appends "seconds KiB"
  local list=$1; shift
  rm -f "$work"/out*; sync
  /usr/bin/time -a -o "$work/$list" -f '%e %M' bash -c '"$@" && sync -f "$0"' "$work" "$@" >/dev/null
}
median() { sort -n "$work/$1" | awk '{s[NR] = $1; if ($2 > m) m = $2} END {printf "%.2f %d", s[int((NR + 1) / 2)], m / 1024}'; }
"$bench" "$image" 15
printf '%-20s %22s %22s  %s\n' export gdalwarp ours ratio
for order in 1 2 3; do
  "$bench" "$image" "$order" points >"$work/points"
  # shellcheck disable=SC2046
  gdal_translate -q -of VRT $(cat "$work/points") "$image" "$work/in.vrt"
  sed -i '/GeoTransform/d' "$work/in.vrt"
  for way in near:nearest bilinear:bilinear; do
    rm -f "$work"/gdal "$work"/ours
    for _ in $(seq "$runs"); do
      once gdal gdalwarp -q -overwrite -order "$order" -r "${way%:*}" -multi -wo NUM_THREADS=ALL_CPUS -co TILED=YES \
        -co BIGTIFF=IF_SAFER "$work/in.vrt" "$work/out.tif"
      once ours "$bench" "$image" "$order" "${way#*:}" "$work/out.tif"
    done
    read -r theirs theirMemory <<<"$(median gdal)"; read -r seconds memory <<<"$(median ours)"
    printf '%-20s %10.2f s %5d MiB %10.2f s %5d MiB  %.2f\n' "order $order ${way#*:}" "$theirs" "$theirMemory" "$seconds" \
      "$memory" "$(awk "BEGIN {print $seconds / $theirs}")"
  done
done
