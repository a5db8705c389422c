#!/usr/bin/env bash
# server.sh [SIZE] [DRAFTERS] [KINDS]: 20 random views of an image of SIZE² pixels on an nginx of this computer, ours beside GDAL's
# /vsicurl, without and with a delay of 30 ms, and DRAFTERS simulated drafters at once.
set -euo pipefail
size=${1:-12000}; drafters=${2:-50}; kinds=${3:-jpeg deflate}
top=$(cd "$(dirname "$0")/.." && pwd); bin=$top/build/release/bin; bench=$top/build/release/bench/bench_server
work=$(mktemp -d); pids=()
stop() { for pid in "${pids[@]}"; do kill "$pid" 2>/dev/null || true; done; wait; rm -rf "$work"; }
trap stop EXIT
"$bin/tarnortho" "$work/image.tif" "$size" "$size" >/dev/null
for kind in $kinds; do
  "$bin/tarnconvert" --format cog --compression $kind --out "$work/store/$kind" "$work/image.tif" >/dev/null
done
rm "$work/image.tif"
port=$((21000 + RANDOM % 8000)); far=$((port + 1))
cat >"$work/nginx.conf" <<CONF
daemon off; worker_processes 1; pid $work/nginx.pid; error_log $work/error.log; user $(id -un);
events { worker_connections 2048; }
http { access_log $work/access.log; client_body_temp_path $work/b; proxy_temp_path $work/p; fastcgi_temp_path $work/f;
       uwsgi_temp_path $work/u; scgi_temp_path $work/s; sendfile on; tcp_nopush off; keepalive_requests 100000;
       server { listen 127.0.0.1:$port; root $work/store; } }
CONF
/usr/sbin/nginx -c "$work/nginx.conf" -p "$work" -e "$work/error.log" & pids+=($!)
python3 "$top/bench/delay.py" "$far" "$port" 30 & pids+=($!)
sleep 1
for kind in $kinds; do
  for place in "$port:no delay" "$far:30 ms"; do
    "$bench" ours "${place%%:*}" "$kind/image.tif" 20 >"$work/ours"
    "$bench" gdal "${place%%:*}" "$kind/image.tif" 20 >"$work/gdal"
    echo "== $kind, ${place#*:}: cell; cold, warm, again: our requests, then kB and ms, ours / vsicurl"
    paste "$work/ours" "$work/gdal" | awk -F '\t' '{
      line = $1
      for (i = 2; i <= 8; i += 3)
        line = line sprintf("  | %d  %.1f / %.1f  %.0f / %.0f", $i, $(i+1)/1000, $(i+11)/1000, $(i+2), $(i+12))
      print line
      for (i = 2; i <= 10; ++i) { a[i] += $i; b[i] += $(i+10) }
      for (i = 3; i <= 6; i += 3) { rows++; if ($i > $(i+10)) more++; if ($(i+1) > $(i+11)) slower++ }
    } END {
      printf "sum"
      for (i = 2; i <= 8; i += 3) printf "  | %d  %.0f / %.0f  %.0f / %.0f", a[i], a[i+1]/1000, b[i+1]/1000, a[i+2], b[i+2]
      printf "\nof %d: more bytes %d, slower %d\n", rows, more, slower
    }'
  done
done
views=15; pause=2000; start=$(date +%s%N); people=()
for i in $(seq "$drafters"); do
  "$bench" ours "$port" "${kinds%% *}/image.tif" "$views" "$i" "$pause" >"$work/drafter$i" & people+=($!)
done
for person in "${people[@]}"; do wait "$person"; done
cat "$work"/drafter* | sort -t "$(printf '\t')" -k 4 -g | awk -F '\t' -v s="$(( ($(date +%s%N) - start) / 1000000 ))" -v n="$drafters" '
  { requests += $2; bytes += $3; ms[NR] = $4 }
  END { printf "%d drafters, a view every %d s: %d views in %.0f s, %.1f requests and %.0f kB a view, %.1f MB/s; median %.0f ms, 95 of 100 below %.0f ms\n",
        n, 2, NR, s / 1000, requests / NR, bytes / NR / 1000, bytes / s / 1000, ms[int(NR / 2)], ms[int(NR * 0.95)] }'
