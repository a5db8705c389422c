#!/usr/bin/env bash
# Makes a small i386 system with Wine in the cache folder, for the tests of the 32-bit Windows build, and prints where it
# is. A system of its own: i386 packages beside amd64 ones need indexes that are in step, and those often are not.
set -euo pipefail
HERE=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
BASE=${TARN_WIN32_HOME:-$HOME/.cache/tarn-win32}
HASH=$(sha256sum "$HERE/wineroot.sh" | cut -c1-12)
ROOT=$BASE/wine-$HASH
[ "${1:-}" = --where ] && { echo "$ROOT"; exit 0; }
PACKAGES=wine,wine32,xvfb,xauth,fonts-wqy-microhei,fonts-dejavu-core,locales

mkdir -p "$BASE"
exec 9>"$BASE/lock-wine"
flock 9
if [ ! -e "$ROOT/.complete" ]; then
  start=$SECONDS
  echo "Making a system with Wine (about a gigabyte) ..." >&2
  rm -rf "$ROOT"
  mirror=$(sed -n 's/^URIs: *//p' /etc/apt/sources.list.d/debian.sources | head -n 1 | cut -d' ' -f1)
  suite=$(sed -n 's/^Suites: *//p' /etc/apt/sources.list.d/debian.sources | head -n 1 | cut -d' ' -f1)
  mmdebstrap --quiet --mode=root --architectures=i386 --variant=essential --include=$PACKAGES \
    --aptopt='APT::Install-Recommends "false"' --aptopt='Acquire::Languages "none"' \
    --dpkgopt='path-exclude=/usr/share/doc/*' --dpkgopt='path-exclude=/usr/share/man/*' "$suite" "$ROOT" "$mirror" >&2
  # With this language Wine has code page 936, as a Chinese Windows has.
  chroot "$ROOT" sh -c 'mkdir -p /usr/lib/locale; localedef -i zh_CN -f UTF-8 zh_CN.UTF-8' >&2
  touch "$ROOT/.complete"
  echo "Wine is there after $((SECONDS - start)) s." >&2
fi
echo "$ROOT"
