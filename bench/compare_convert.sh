#!/bin/bash
# Conversion beside gdal_translate (all threads) on one machine in one run, each synced to disk.
# usage: bench/compare_convert.sh FOLDER [SIZE=20000] [RUNS=3]
# For each form the run of median time: seconds that passed until all is on the disk (and the
# longest of the runs), seconds of processors, peak memory; then the ratios of ours to theirs. Where
# the longest time is far above the median while the processors' is not, the disk was busy with
# something else. FOLDER keeps the test image and one output at a time (3 GB at 20000). Needs
# gdal-bin and the release build.
set -e
folder=${1:?usage: bench/compare_convert.sh FOLDER [SIZE] [RUNS]}
size=${2:-20000}; runs=${3:-3}
here=$(cd "$(dirname "$0")" && pwd); build=$here/../build/release
mkdir -p "$folder"
raw=$folder/ortho$size.tif; out=$folder/converted
[ -f "$raw" ] || "$build/bin/tarnortho" "$raw" "$size" "$size"
results=$(mktemp -d); trap 'rm -r "$results" "$out"' EXIT

# once RESULTS COMMAND...: seconds (synced), processor seconds, peak MiB. Starts with the image in memory
# and nothing left to write.
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
print(f"{time.monotonic() - start:.3f} {usage.ru_utime + usage.ru_stime:.3f} {usage.ru_maxrss / 1024:.0f}")
sys.exit(1 if status else 0)
PY
}

median() { sort -n "$results/$1" | sed -n "$(((runs + 1) / 2))p"; }
longest() { sort -n "$results/$1" | tail -1 | cut -d' ' -f1; }

# compare NAME OUTPUT "GDAL OPTIONS" "OUR OPTIONS": in turn.
compare() {
  for ((i = 0; i < runs; i++)); do
    # shellcheck disable=SC2086
    once theirs gdal_translate -q $3 "$raw" "$out/$2"
    # shellcheck disable=SC2086
    once ours "$build/bin/tarnconvert" $4 --out "$out" "$raw"
  done
  awk -v n="$1" -v a="$(median theirs) $(longest theirs)" -v b="$(median ours) $(longest ours)" 'BEGIN {
    split(a, t, " "); split(b, o, " ")
    form = "%7.2f s (longest %7.2f, processors %7.2f) %5d MiB"
    printf "%-29s gdal_translate " form "   ours " form "   %.2f, processors %.2f\n",
      n, t[1], t[4], t[2], t[3], o[1], o[4], o[2], o[3], o[1] / t[1], o[2] / t[2] }'
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
