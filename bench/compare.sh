#!/bin/bash
# Ratios beside GDAL on one machine in one run: views beside RasterIO, pyramids beside gdaladdo, and
# redraws of images of growing size.
# usage: bench/compare.sh FOLDER [SIZE=20000] [RUNS=3] [TIMES=3]
# FOLDER keeps the test images: SIZE squared (raw and JPEG TIFF, raw and compressed IMG: 3.6 GB at
# 20000), and JPEG TIFFs of 8192, 2 SIZE up to TIMES * SIZE squared (0.4 GB), with their pyramids.
# Needs gdal-bin and the release build.
set -e
folder=${1:?usage: bench/compare.sh FOLDER [SIZE] [RUNS] [TIMES]}
size=${2:-20000}; runs=${3:-3}; times=${4:-3}
here=$(cd "$(dirname "$0")" && pwd); build=$here/../build/release
mkdir -p "$folder"
raw=$folder/ortho$size.tif
jpeg="-co TILED=YES -co COMPRESS=JPEG -co PHOTOMETRIC=YCBCR -co BIGTIFF=IF_SAFER"

translate() { [ -f "${!#}" ] || gdal_translate -q "$@"; }
# mosaic N FILE: a VRT of N by N copies of the raw image.
mosaic() {
  python3 - "$1" "$size" "$(basename "$raw")" > "$2" <<'PY'
import sys
n, size, name = int(sys.argv[1]), int(sys.argv[2]), sys.argv[3]
print(f'<VRTDataset rasterXSize="{n * size}" rasterYSize="{n * size}">')
for band, colour in enumerate(("Red", "Green", "Blue"), 1):
    print(f'<VRTRasterBand dataType="Byte" band="{band}"><ColorInterp>{colour}</ColorInterp>')
    for i in range(n * n):
        print(f'<SimpleSource><SourceFilename relativeToVRT="1">{name}</SourceFilename>'
              f'<SourceBand>{band}</SourceBand>'
              f'<SrcRect xOff="0" yOff="0" xSize="{size}" ySize="{size}"/>'
              f'<DstRect xOff="{i % n * size}" yOff="{i // n * size}" xSize="{size}" ySize="{size}"/>'
              f'</SimpleSource>')
    print('</VRTRasterBand>')
print('</VRTDataset>')
PY
}

# once COMMAND...: seconds (synced) and peak MiB of building the pyramid of $image.
once() {
  rm -f "$image.ovr"; sync; cat "$image" > /dev/null
  python3 - "$image.ovr" "$@" <<'PY'
import os, subprocess, sys, time
start = time.monotonic()
child = subprocess.Popen(sys.argv[2:], stdout=subprocess.DEVNULL)
_, status, usage = os.wait4(child.pid, 0)
with open(sys.argv[1], "rb") as made:
    os.fsync(made.fileno())
print(f"{time.monotonic() - start:.3f} {usage.ru_maxrss / 1024:.0f}")
sys.exit(1 if status else 0)
PY
}

# pyramids IMAGE SIDE: the pyramid of a square image by three ways in turn; ours stays.
pyramids() {
  image=$1
  local levels="" options="--config GDAL_TIFF_OVR_BLOCKSIZE 256" results; results=$(mktemp -d)
  for ((f = 2, s = $2; s > 256; f *= 2, s = (s + 1) / 2)); do levels="$levels $f"; done
  case $image in *jpeg*)
    options="$options --config COMPRESS_OVERVIEW JPEG --config PHOTOMETRIC_OVERVIEW YCBCR --config INTERLEAVE_OVERVIEW PIXEL --config JPEG_QUALITY_OVERVIEW 90" ;;
  esac
  # shellcheck disable=SC2086
  for ((i = 0; i < runs; i++)); do
    once gdaladdo -q -ro -r average $options "$image" $levels >> "$results/gdaladdo"
    once gdaladdo -q -ro -r average $options --config GDAL_NUM_THREADS ALL_CPUS "$image" $levels >> "$results/gdaladdo, all threads"
    once "$build/bench/bench_pyramid" "$image" >> "$results/this library"
  done
  echo "pyramid of $image"
  for result in "$results"/*; do
    sort -n "$result" | sed -n "$(((runs + 1) / 2))p" | while read -r seconds memory; do
      printf '%-28s %8.2f s %7d MiB\n' "$(basename "$result")" "$seconds" "$memory"
    done
  done
  rm -r "$results"
}

[ -f "$raw" ] || "$build/bin/tarnortho" "$raw" "$size" "$size"
# shellcheck disable=SC2086
translate $jpeg "$raw" "$folder/ortho${size}_jpeg.tif"
translate -of HFA "$raw" "$folder/ortho$size.img"
translate -of HFA -co COMPRESSED=YES "$raw" "$folder/ortho${size}_packed.img"
for image in "$raw" "$folder/ortho${size}_jpeg.tif" "$folder/ortho$size.img" "$folder/ortho${size}_packed.img"; do
  pyramids "$image" "$size"
  "$build/bench/bench_views" "$image"
done

sizes=()
if [ "$size" -gt 8192 ]; then
  # shellcheck disable=SC2086
  translate $jpeg -srcwin 0 0 8192 8192 "$raw" "$folder/ortho8192_jpeg.tif"
  "$build/bench/bench_pyramid" "$folder/ortho8192_jpeg.tif" > /dev/null
  sizes+=("$folder/ortho8192_jpeg.tif")
fi
sizes+=("$folder/ortho${size}_jpeg.tif")
for ((n = 2; n <= times; n++)); do
  large=$folder/ortho$((n * size))_jpeg.tif
  mosaic "$n" "$folder/mosaic$n.vrt"
  # shellcheck disable=SC2086
  translate $jpeg "$folder/mosaic$n.vrt" "$large"
  if [ "$n" = "$times" ]; then
    pyramids "$large" $((n * size))
  else
    "$build/bench/bench_pyramid" "$large" > /dev/null
  fi
  sizes+=("$large")
done
echo "milliseconds of a view by size of the image"
"$build/bench/bench_sizes" 20 "${sizes[@]}"
