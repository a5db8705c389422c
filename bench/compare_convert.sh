#!/bin/bash
# Conversion beside gdal_translate (all threads) on one machine in one run, each synced to disk:
# seconds, peak memory and their ratio.
# usage: bench/compare_convert.sh FOLDER [SIZE=20000] [RUNS=3]
# FOLDER keeps the test image and one output at a time (3 GB at 20000). Needs gdal-bin and the
# release build.
set -e
folder=${1:?usage: bench/compare_convert.sh FOLDER [SIZE] [RUNS]}
size=${2:-20000}; runs=${3:-3}
here=$(cd "$(dirname "$0")" && pwd); build=$here/../build/release
mkdir -p "$folder"
raw=$folder/ortho$size.tif; out=$folder/converted
[ -f "$raw" ] || "$build/bin/tarnortho" "$raw" "$size" "$size"
results=$(mktemp -d); trap 'rm -r "$results" "$out"' EXIT

# once RESULTS COMMAND...: seconds (synced) and peak MiB; the outputs are removed.
once() {
  rm -rf "$out"; mkdir "$out"; rm -f "$raw.ovr"; sync; cat "$raw" > /dev/null
  python3 - "$out" "${@:2}" >> "$results/$1" <<'PY'
import os, subprocess, sys, time
start = time.monotonic()
child = subprocess.Popen(sys.argv[2:], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
_, status, usage = os.wait4(child.pid, 0)
for name in os.listdir(sys.argv[1]):
    with open(os.path.join(sys.argv[1], name), "rb") as made:
        os.fsync(made.fileno())
print(f"{time.monotonic() - start:.3f} {usage.ru_maxrss / 1024:.0f}")
sys.exit(1 if status else 0)
PY
}

median() { sort -n "$results/$1" | sed -n "$(((runs + 1) / 2))p"; }

# compare NAME OUTPUT "GDAL OPTIONS" "OUR OPTIONS": in turn.
compare() {
  for ((i = 0; i < runs; i++)); do
    # shellcheck disable=SC2086
    once theirs gdal_translate -q $3 "$raw" "$out/$2"
    # shellcheck disable=SC2086
    once ours "$build/bin/tarnconvert" $4 --out "$out" "$raw"
  done
  read -r seconds memory < <(median theirs); read -r own_seconds own_memory < <(median ours)
  awk -v n="$1" -v a="$seconds" -v b="$memory" -v c="$own_seconds" -v d="$own_memory" 'BEGIN {
    printf "%-34s gdal_translate %7.2f s %5d MiB   ours %7.2f s %5d MiB   %.2f\n", n, a, b, c, d, c / a }'
  rm "$results"/*
}

threads="-co NUM_THREADS=ALL_CPUS"
jpeg="-co COMPRESS=JPEG"
compare "tiled TIFF, JPEG" o.tif "-co TILED=YES $jpeg -co PHOTOMETRIC=YCBCR $threads" \
  "--format geotiff --compression jpeg --quality 75 --pyramids no"
compare "tiled TIFF, uncompressed" o.tif "-co TILED=YES $threads" \
  "--format geotiff --compression none --pyramids no"
compare "tiled TIFF, deflate" o.tif "-co TILED=YES -co COMPRESS=DEFLATE -co PREDICTOR=2 $threads" \
  "--format geotiff --compression deflate --pyramids no"
compare "IMG" o.img "-of HFA" "--format img --pyramids no"
compare "cloud-optimised, JPEG" o.tif "-of COG -co BLOCKSIZE=256 $jpeg $threads" \
  "--format cog --compression jpeg --quality 75"
compare "cloud-optimised, uncompressed" o.tif "-of COG -co BLOCKSIZE=256 $threads" \
  "--format cog --compression none"
compare "JPEG file" o.jpg "-of JPEG -co QUALITY=75" "--format jpeg --quality 75 --pyramids no"
