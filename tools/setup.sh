# Sourced by run and test: makes sure that the packages are there, configures and builds.
# Needs: $TOP (the repository), $QUIET may be 1. Defines need_packages, build_preset.

BUILD_PACKAGES="g++ cmake ninja-build ccache qtbase5-dev libqt5svg5-dev qttools5-dev-tools
 qttranslations5-l10n libgdal-dev libsqlite3-dev libjpeg62-turbo-dev
 libcurl4-openssl-dev libeigen3-dev libgtest-dev libgmock-dev libbenchmark-dev python3-minimal fonts-wqy-microhei fonts-dejavu-core"
TEST_PACKAGES="clang-format poppler-utils xvfb xauth xdotool openbox gdal-bin sqlite3 procps util-linux strace
 python3-ezdxf imagemagick nginx-light openssl"
TIDY_PACKAGES="clang-tidy"
FUZZ_PACKAGES="clang"
# For the 32-bit Windows build: the compiler, what makes its libraries, what makes a system with Wine.
WIN32_PACKAGES="g++-mingw-w64-i686-posix libz-mingw-w64-dev mmdebstrap arch-test zstd dpkg-dev make patch perl sqlite3 tcl"

say() { printf '%s\n' "$*" >&2; }

# need_packages NAME...: installs what is missing; without the right to, says which command does it.
need_packages() {
  local missing="" name
  local known
  known=$(dpkg-query -W -f '${Package} ${db:Status-Abbrev}\n' 2>/dev/null | awk '$2 == "ii" { print $1 }')
  for name in "$@"; do
    grep -qx -- "$name" <<<"$known" || missing="$missing $name"
  done
  [ -z "$missing" ] && return 0
  if [ "$(id -u)" != 0 ]; then
    say "These packages are missing:$missing"
    say "Install them with:"
    say "  sudo apt-get update && sudo apt-get install --no-install-recommends$missing"
    exit 1
  fi
  say "Installing packages:$missing"
  local log
  log=$(mktemp)
  if ! { apt-get update -qq && DEBIAN_FRONTEND=noninteractive apt-get install -y -qq \
      --no-install-recommends $missing; } >"$log" 2>&1; then
    tail -n 20 "$log" >&2
    say "The packages could not be installed (log: $log)."
    exit 1
  fi
  rm -f "$log"
}

# build_preset PRESET [TARGET...]: configures once and builds; quiet unless something fails.
build_preset() {
  local preset=$1 log start
  shift
  log="$TOP/build/$preset.log"
  mkdir -p "$TOP/build"
  start=$SECONDS
  if [ ! -f "$TOP/build/$preset/build.ninja" ]; then
    say "Configuring ($preset) ..."
    if ! (cd "$TOP" && cmake --preset "$preset") >"$log" 2>&1; then
      tail -n 30 "$log" >&2
      rm -f "$TOP/build/$preset/build.ninja"
      say "Configuring failed (log: $log)."
      exit 1
    fi
    say "Building ($preset); the first time takes some minutes ..."
  fi
  local targets=()
  [ $# -gt 0 ] && targets=(--target "$@")
  if ! (cd "$TOP" && cmake --build --preset "$preset" "${targets[@]}") >"$log" 2>&1; then
    grep -E 'error|FAILED' "$log" | head -n 20 >&2
    say "Building failed (log: $log)."
    exit 1
  fi
  [ $((SECONDS - start)) -gt 5 ] && say "Built in $((SECONDS - start)) s."
  return 0
}
