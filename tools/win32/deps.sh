#!/usr/bin/env bash
# Makes the libraries that the 32-bit Windows build links, from Debian's source packages, in a cache folder outside the
# tree, and prints where they are. What is there already for this very recipe is taken; so are, when they fit, the larger
# pieces from an archive (TARN_WIN32_ARCHIVE, or the one beside the repository). Needs root for nothing but the packages.
set -euo pipefail
HERE=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
TOP=$(cd "$HERE/../.." && pwd)
BASE=${TARN_WIN32_HOME:-$HOME/.cache/tarn-win32}
HASH=$(cat "$HERE/deps.sh" "$HERE/toolchain.cmake" | sha256sum | cut -c1-12)
ARCHIVE=${TARN_WIN32_ARCHIVE:-$TOP/../shared/win32/deps-i686.tar.zst}
DEPS=$BASE/deps-$HASH
WORK=$BASE/build-$HASH
PIECES="runtime sqlite jpeg curl gtest proj gdal drivers qtbase qtsvg"
FLAGS="-O2 -msse2 -mfpmath=sse -mstackrealign"
JOBS=${TARN_WIN32_JOBS:-$(nproc)}

case ${1:-} in
  --where) echo "$DEPS"; exit 0 ;;
  --cached) # Says how much there is to do: all of it takes half an hour.
    if [ -e "$DEPS/.complete" ]; then echo whole; elif [ -r "$ARCHIVE" ]; then echo archive; else echo nothing; fi
    exit 0 ;;
esac

say() { printf '%s\n' "$*" >&2; }

# source_of PACKAGE PATTERN: unpacks the upstream part of a Debian source package below $WORK and prints its folder.
source_of() {
  local lists=$BASE/apt
  mkdir -p "$lists/lists/partial" "$WORK/src"
  if [ ! -e "$lists/fresh" ] || [ -n "$(find "$lists/fresh" -mtime +1)" ]; then
    sed -E 's/^Types:.*/Types: deb-src/' /etc/apt/sources.list.d/debian.sources >"$lists/debian-src.sources"
    apt-get update -qq -o Dir::Etc::sourcelist="$lists/debian-src.sources" -o Dir::Etc::sourceparts=- \
      -o Dir::State::lists="$lists/lists" -o APT::Get::List-Cleanup=0 >&2
    touch "$lists/fresh"
  fi
  (cd "$WORK/src" && apt-get -qq -o Dir::Etc::sourcelist="$lists/debian-src.sources" -o Dir::Etc::sourceparts=- \
    -o Dir::State::lists="$lists/lists" source --download-only "$1" >&2)
  local tarball folder
  tarball=$(ls "$WORK"/src/$2 | head -n 1)
  folder=$WORK/$(tar tf "$tarball" 2>/dev/null | head -n 1 | cut -d/ -f1)
  [ -d "$folder" ] || tar -C "$WORK" -xf "$tarball"
  echo "$folder"
}

# cross NAME SOURCE OPTION...: configures, builds and installs a CMake project for Windows into $DEPS.
cross() {
  local name=$1 source=$2
  shift 2
  mkdir -p "$WORK/$name"
  TARN_WIN32_DEPS=$DEPS cmake -G Ninja -S "$source" -B "$WORK/$name" -DCMAKE_TOOLCHAIN_FILE="$HERE/toolchain.cmake" \
    -DCMAKE_BUILD_TYPE=Release -DCMAKE_INSTALL_PREFIX="$DEPS" \
    -DCMAKE_PREFIX_PATH="$DEPS" -DBUILD_TESTING=OFF "$@"
  TARN_WIN32_DEPS=$DEPS cmake --build "$WORK/$name" -j "$JOBS" --target install
}

make_runtime() {
  cp /usr/lib/gcc/i686-w64-mingw32/*-posix/{libgcc_s_dw2-1,libstdc++-6}.dll \
    /usr/i686-w64-mingw32/lib/{libwinpthread-1,zlib1}.dll "$DEPS/bin/"
}

make_sqlite() {
  local source
  source=$(source_of sqlite3 'sqlite3_*.orig.tar.xz')
  mkdir -p "$WORK/sqlite"
  (cd "$WORK/sqlite"
    "$source/configure" --disable-tcl
    make sqlite3.c sqlite3.h
    i686-w64-mingw32-gcc-posix $FLAGS -shared -static-libgcc -DSQLITE_THREADSAFE=1 -DSQLITE_ENABLE_COLUMN_METADATA \
      -DSQLITE_ENABLE_RTREE -DSQLITE_ENABLE_FTS5 "-DSQLITE_API=__declspec(dllexport)" sqlite3.c \
      -o libsqlite3-0.dll -Wl,--out-implib,libsqlite3.dll.a
    cp libsqlite3-0.dll "$DEPS/bin/"
    cp libsqlite3.dll.a "$DEPS/lib/"
    cp sqlite3.h "$source/src/sqlite3ext.h" "$DEPS/include/")
}

make_jpeg() {
  cross jpeg "$(source_of libjpeg-turbo 'libjpeg-turbo_*.orig.tar.gz')" -DENABLE_SHARED=OFF -DWITH_SIMD=OFF -DWITH_TURBOJPEG=OFF
}

# TLS is the system's own; names of files are UTF-8.
make_curl() {
  cross curl "$(source_of curl 'curl_*.orig.tar.gz')" -DCURL_USE_SCHANNEL=ON -DENABLE_UNICODE=ON -DBUILD_CURL_EXE=OFF \
    -DHTTP_ONLY=ON -DCURL_USE_LIBSSH2=OFF -DCURL_ZLIB=OFF -DCURL_ZSTD=OFF -DCURL_BROTLI=OFF -DUSE_NGHTTP2=OFF \
    -DCURL_USE_LIBPSL=OFF -DBUILD_SHARED_LIBS=ON -DENABLE_MANUAL=OFF
}

make_gtest() {
  cross gtest "$(source_of googletest 'googletest_*.orig.tar.gz')" -DBUILD_SHARED_LIBS=OFF
}

make_proj() {
  cross proj "$(source_of proj 'proj_*.orig.tar.gz')" -DENABLE_TIFF=OFF -DENABLE_CURL=OFF -DBUILD_APPS=OFF \
    -DBUILD_SHARED_LIBS=OFF -DENABLE_IPO=OFF -DSQLITE3_INCLUDE_DIR="$DEPS/include" \
    -DSQLITE3_LIBRARY="$DEPS/lib/libsqlite3.dll.a" -DEXE_SQLITE3=/usr/bin/sqlite3
}

make_gdal() {
  local source sqlite
  source=$(source_of gdal 'gdal_*.orig.tar.xz')
  # Debian leaves these two data files out and only the install step misses them.
  touch "$source/data/cubewerx_extra.wkt" "$source/data/ecw_cs.wkt"
  sqlite="-DSQLite3_INCLUDE_DIR=$DEPS/include -DSQLite3_LIBRARY=$DEPS/lib/libsqlite3.dll.a
    -DSQLITE3_INCLUDE_DIR=$DEPS/include -DSQLITE3_LIBRARY=$DEPS/lib/libsqlite3.dll.a"
  cross gdal "$source" -DBUILD_SHARED_LIBS=ON -DGDAL_USE_EXTERNAL_LIBS=OFF -DGDAL_USE_INTERNAL_LIBS=ON \
    -DGDAL_BUILD_OPTIONAL_DRIVERS=OFF -DOGR_BUILD_OPTIONAL_DRIVERS=OFF -DGDAL_ENABLE_DRIVER_JPEG=ON \
    -DGDAL_ENABLE_DRIVER_PNG=ON -DBUILD_APPS=ON -DBUILD_PYTHON_BINDINGS=OFF -DGDAL_USE_JPEG12_INTERNAL=OFF \
    -DGDAL_USE_LERC_INTERNAL=OFF -DENABLE_IPO=OFF $sqlite
}

# Two small drivers that GDAL is not made with above, as a library of their own.
make_drivers() {
  local source file options
  source=$(source_of gdal 'gdal_*.orig.tar.xz')/frmts
  options="$FLAGS -D_WIN32_WINNT=0x0601 -DRENAME_INTERNAL_GIFLIB_SYMBOLS -DHAVE_GIF -I$DEPS/include -I$source/gif/giflib"
  mkdir -p "$WORK/drivers"
  for file in "$source"/bmp/*.cpp "$source"/gif/*.cpp "$source"/gif/giflib/*.c; do
    i686-w64-mingw32-g++-posix $options $([ "${file##*.}" = c ] && echo "-x c") -c "$file" \
      -o "$WORK/drivers/$(basename "$file").o"
  done
  i686-w64-mingw32-ar rcs "$DEPS/lib/libgdaldrivers.a" "$WORK"/drivers/*.o
}

make_qtbase() {
  local source patch
  source=$(source_of qtbase-opensource-src 'qtbase-opensource-src_*.orig.tar.xz')
  if [ ! -d "$source/debian" ]; then
    tar -C "$source" -xf "$WORK"/src/qtbase-opensource-src_*.debian.tar.xz
    for patch in $(grep -v '^#' "$source/debian/patches/series"); do
      patch -d "$source" -p1 -s -f <"$source/debian/patches/$patch"
    done
  fi
  mkdir -p "$WORK/qtbase"
  (cd "$WORK/qtbase"
    "$source/configure" -prefix "$DEPS/qt" -hostprefix "$DEPS/qt" -xplatform win32-g++ \
      -device-option CROSS_COMPILE=i686-w64-mingw32- -release -opensource -confirm-license -no-opengl -no-icu -no-ssl \
      -no-dbus -nomake examples -nomake tests -no-compile-examples -qt-zlib -qt-libpng -qt-libjpeg -qt-freetype \
      -qt-pcre -qt-harfbuzz -qt-doubleconversion -c++std c++17 -no-feature-sql -no-feature-network -no-feature-xml \
      -no-feature-concurrent -no-feature-tabletevent -no-feature-vulkan -no-feature-printer -make-tool make
    make -j "$JOBS"
    make install)
}

make_qtsvg() {
  local source
  source=$(source_of qtsvg-opensource-src 'qtsvg-opensource-src_*.orig.tar.xz')
  # The folder may have been moved since qmake was made.
  printf '[Paths]\nPrefix=..\nHostPrefix=..\n' >"$DEPS/qt/bin/qt.conf"
  mkdir -p "$WORK/qtsvg"
  (cd "$WORK/qtsvg"
    "$DEPS/qt/bin/qmake" "$source/qtsvg.pro" CONFIG+=release
    make -j "$JOBS" sub-src
    make -C src install)
}

# The pieces that an archive holds, when it is of the same versions as the recipe's. The rest is made on top.
take_archive() {
  [ -r "$ARCHIVE" ] || return 0
  say "Taking what fits from $ARCHIVE"
  tar -C "$DEPS" -I zstd --exclude=./share/man --exclude=./share/bash-completion -xf "$ARCHIVE"
  local piece
  for piece in $PIECES; do
    if holds "$piece"; then touch "$DEPS/.made/$piece"; fi
  done
}

# holds PIECE: whether the folder has that piece, whoever made it.
holds() {
  case $1 in
    runtime) [ -e "$DEPS/bin/libgcc_s_dw2-1.dll" ] && [ -e "$DEPS/bin/zlib1.dll" ] ;;
    sqlite) grep -qs '"3\.40\.' "$DEPS/include/sqlite3.h" && [ -e "$DEPS/lib/libsqlite3.dll.a" ] ;;
    proj) grep -qs 'PROJ_VERSION_MAJOR 9' "$DEPS/include/proj.h" && [ -e "$DEPS/lib/libproj.a" ] ;;
    gdal) grep -qs 'GDAL_VERSION_MINOR *6' "$DEPS/include/gdal_version.h" && [ -e "$DEPS/bin/libgdal-32.dll" ] ;;
    qtbase) [ -d "$DEPS/qt/include/QtCore/5.15.8" ] && [ -e "$DEPS/qt/plugins/platforms/qwindows.dll" ] ;;
    *) [ -e "$DEPS/.made/$1" ] ;;
  esac
}

mkdir -p "$BASE"
exec 9>"$BASE/lock-$HASH"
flock 9
if [ ! -e "$DEPS/.complete" ]; then
  mkdir -p "$DEPS"/{bin,lib,include,.made} "$WORK"
  [ -n "$(ls "$DEPS/.made")" ] || take_archive
  for piece in $PIECES; do
    [ -e "$DEPS/.made/$piece" ] && continue
    start=$SECONDS
    say "Making $piece for 32-bit Windows ..."
    # In the background, where the first failing command ends it; in a condition none would.
    (set -e; "make_$piece") >"$WORK/$piece.log" 2>&1 9>&- &
    if ! wait $!; then
      tail -n 20 "$WORK/$piece.log" >&2
      say "$piece could not be made (log: $WORK/$piece.log)."
      exit 1
    fi
    touch "$DEPS/.made/$piece"
    say "$piece made in $((SECONDS - start)) s."
  done
  i686-w64-mingw32-strip "$DEPS"/bin/*.dll "$DEPS"/qt/bin/*.dll "$DEPS"/qt/plugins/*/*.dll
  rm -rf "$WORK"
  touch "$DEPS/.complete"
fi
echo "$DEPS"
