#!/usr/bin/env bash
# server.sh [SIZE] [DRAFTERS] [KINDS] [RUNS] [PLACES]: 20 random views of an image of SIZE² pixels on an nginx of this computer, ours
# beside GDAL's /vsicurl; PLACES are "near" (no delay) and "far" (30 ms). Each way runs RUNS times in turn; of the times of a row the
# least counts. Then DRAFTERS simulated drafters at once (0: none). GDAL is asked in three ways:
#   level   the level with all the detail of the view, as ours, averaged to the screen: the same picture
#   pixels  the same level's pixels under the view as they are: the least that it can do for that picture
#   own     as it does by itself: also a level that is up to 1.2 times as coarse as the view (another picture, sums only)
set -euo pipefail
size=${1:-12000}; drafters=${2:-50}; kinds=${3:-jpeg deflate}; runs=${4:-3}; places=${5:-near far}
top=$(cd "$(dirname "$0")/.." && pwd); bin=$top/build/release/bin; bench=$top/build/release/bench/bench_server
work=$(mktemp -d); pids=()
stop() { for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done; wait; rm -rf "$work"; }
trap stop EXIT
"$bin/tarnortho" "$work/image.tif" "$size" "$size" >/dev/null
for kind in $kinds; do
  "$bin/tarnconvert" --format cog --compression "$kind" --out "$work/store/$kind" "$work/image.tif" >/dev/null
done
rm "$work/image.tif"
near=$((21000 + RANDOM % 8000)); far=$((near + 1))
cat >"$work/nginx.conf" <<CONF
daemon off; worker_processes 1; pid $work/nginx.pid; error_log $work/error.log; user $(id -un);
events { worker_connections 2048; }
http { access_log $work/access.log; client_body_temp_path $work/b; proxy_temp_path $work/p; fastcgi_temp_path $work/f;
       uwsgi_temp_path $work/u; scgi_temp_path $work/s; sendfile on; tcp_nopush off; keepalive_requests 100000;
       server { listen 127.0.0.1:$near; root $work/store; } }
CONF
/usr/sbin/nginx -c "$work/nginx.conf" -p "$work" -e "$work/error.log" & pids+=($!)
python3 "$top/bench/delay.py" "$far" "$near" 30 & pids+=($!)
sleep 1

# measure WAY PORT PATH OUT: the rows of one way, with the least times of all runs so far.
measure() {
  "$bench" "$1" "$2" "$3" 20 >"$work/run"
  if [ ! -e "$4" ]; then cp "$work/run" "$4"; return; fi
  paste "$4" "$work/run" | awk -F '\t' -v OFS='\t' '{ for (i = 4; i <= 10; i += 3) if ($(i+10) < $i) $i = $(i+10)
    NF = 10; print }' >"$work/least"
  mv "$work/least" "$4"
}
# compare OURS GDALS NAME: one line a view, sums, and the rows in which ours has more.
compare() {
  paste "$1" "$2" | awk -F '\t' -v name="$3" '{
    line = $1
    for (i = 2; i <= 8; i += 3)
      line = line sprintf("  | %d  %.1f / %.1f  %.0f / %.0f", $i, $(i+1)/1000, $(i+11)/1000, $(i+2), $(i+12))
    if (name != "own") print line
    for (i = 2; i <= 10; ++i) { a[i] += $i; b[i] += $(i+10) }
    for (i = 3; i <= 6; i += 3) { rows++; if ($i > $(i+10)) more++; if ($(i+1) > $(i+11)) slower++ }
  } END {
    printf "sum, %s", name
    for (i = 2; i <= 8; i += 3) printf "  | %d  %.0f / %.0f  %.0f / %.0f", a[i], a[i+1]/1000, b[i+1]/1000, a[i+2], b[i+2]
    printf "\n%s, of %d: more bytes %d, slower %d\n", name, rows, more, slower
  }'
}
for kind in $kinds; do
  for place in $places; do
    port=$near; [ "$place" = near ] || port=$far
    rm -f "$work"/rows.*
    for ((run = 0; run < runs; run++)); do
      for way in ours level pixels own; do measure "$way" "$port" "$kind/image.tif" "$work/rows.$way"; done
    done
    echo "== $kind, $place: cell; cold, warm, again: our requests, then kB and ms, ours / vsicurl"
    for way in level pixels own; do compare "$work/rows.ours" "$work/rows.$way" "$way"; done
  done
done
[ "$drafters" -gt 0 ] || exit 0
views=15; pause=2000; start=$(date +%s%N); people=()
for i in $(seq "$drafters"); do
  "$bench" ours "$near" "${kinds%% *}/image.tif" "$views" "$i" "$pause" >"$work/drafter$i" & people+=($!)
done
for person in "${people[@]}"; do wait "$person"; done
cat "$work"/drafter* | sort -t "$(printf '\t')" -k 4 -g | awk -F '\t' -v s="$(( ($(date +%s%N) - start) / 1000000 ))" -v n="$drafters" '
  { requests += $2; bytes += $3; ms[NR] = $4 }
  END { printf "%d drafters, a view every %d s: %d views in %.0f s, %.1f requests and %.0f kB a view, %.1f MB/s; median %.0f ms, 95 of 100 below %.0f ms\n",
        n, 2, NR, s / 1000, requests / NR, bytes / NR / 1000, bytes / s / 1000, ms[int(NR / 2)], ms[int(NR * 0.95)] }'
