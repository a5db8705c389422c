#!/bin/bash
# Ratios beside GDAL on one machine in one run: views beside RasterIO, pyramids beside gdaladdo.
# usage: bench/compare.sh FOLDER [SIZE=20000] [RUNS=3]
# FOLDER keeps the test images (about 1.7 GB at 20000). Needs gdal-bin and the release build.
set -e
folder=${1:?usage: bench/compare.sh FOLDER [SIZE] [RUNS]}; size=${2:-20000}; runs=${3:-3}
here=$(cd "$(dirname "$0")" && pwd); build=$here/../build/release
mkdir -p "$folder"
raw=$folder/ortho$size.tif; jpeg=$folder/ortho${size}_jpeg.tif
[ -f "$raw" ] || "$build/bin/tarnortho" "$raw" "$size" "$size"
[ -f "$jpeg" ] || gdal_translate -q -co TILED=YES -co COMPRESS=JPEG -co PHOTOMETRIC=YCBCR "$raw" "$jpeg"
levels=""; for ((f = 2, s = size; s > 256; f *= 2, s = (s + 1) / 2)); do levels="$levels $f"; done

# measured LABEL COMMAND...: seconds (synced) and peak MiB of the median run.
measured() {
  local label=$1; shift
  for ((i = 0; i < runs; i++)); do
    rm -f "$image.ovr"; sync; cat "$image" > /dev/null
    python3 - "$@" <<'PY'
import os, subprocess, sys, time
start = time.monotonic()
child = subprocess.Popen(sys.argv[1:], stdout=subprocess.DEVNULL)
_, status, usage = os.wait4(child.pid, 0)
with open(os.environ["IMAGE"] + ".ovr", "rb") as made:
    os.fsync(made.fileno())
print(f"{time.monotonic() - start:.3f} {usage.ru_maxrss / 1024:.0f}")
sys.exit(1 if status else 0)
PY
  done | sort -n | sed -n "$(((runs + 1) / 2))p" | while read -r seconds memory; do
    printf '%-28s %8.2f s %7d MiB\n' "$label" "$seconds" "$memory"
  done
}

for image in "$raw" "$jpeg"; do
  export IMAGE=$image
  options="--config GDAL_TIFF_OVR_BLOCKSIZE 256"
  [ "$image" = "$jpeg" ] && options="$options --config COMPRESS_OVERVIEW JPEG --config PHOTOMETRIC_OVERVIEW YCBCR --config INTERLEAVE_OVERVIEW PIXEL --config JPEG_QUALITY_OVERVIEW 90"
  echo "pyramid of $image"
  # shellcheck disable=SC2086
  measured gdaladdo gdaladdo -q -ro -r average $options "$image" $levels
  measured "this library" "$build/bench/bench_pyramid" "$image"
  "$build/bench/bench_views" "$image"
done
