#!/usr/bin/env bash
# Stage of scripts/test.sh: kez as a user gets it, installed. Reuses the
# native build (./build, brought up to date) and, in a fresh temporary
# directory:
#   - installs it into a prefix with cmake --install and checks the layout
#     (versioned library and SONAME, headers, CMake and pkg-config files);
#     every installed offline header compiles on its own; the installed jar
#     loads the installed library and replays the bundled log;
#   - builds the out-of-tree programs of tests/install/ with find_package(kez)
#     against the prefix and against the build tree, and with pkg-config
#     against the prefix; the C99 program must forecast the bundled log byte
#     for byte as the in-tree kez-forecast-dump does, the C++ one must read
#     the bundled log and parameter file as they are written;
#   - makes the Debian package with CPack and checks its name, version,
#     dependencies and file list (dpkg-deb -f / -c), then unpacks it and runs
#     every tool's --help, a forecast of the bundled log (same text as the
#     in-tree kez-forecast) and the C99 program built against the unpacked
#     headers and library.
set -euo pipefail
cd "$(dirname "$0")/.."
. scripts/deps.sh
kez_require $KEZ_BASE_PACKAGES pkg-config dpkg-dev file
build=${KEZ_INSTALL_BUILD:-build}
log=examples/routine-35d.csv
params=examples/tuned-simulated-4x60d.txt
tools="kez-forecast kez-simulate kez-eval kez-tune kez-table"

cmake -S . -B "$build" > /dev/null
cmake --build "$build" -j "$(nproc)"

version=$(sed -n 's/^project(kez VERSION \([0-9.]*\).*/\1/p' CMakeLists.txt)
major=${version%%.*}
build_dir=$(cd "$build" && pwd)
libdir=$(sed -n 's/^CMAKE_INSTALL_LIBDIR:PATH=//p' "$build/CMakeCache.txt")
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

fail() {
  echo "test-install: $*" >&2
  exit 1
}
# Runs a command with its output in a file, shown only when it fails.
quiet() {
  "$@" > "$work/quiet.log" 2>&1 || { cat "$work/quiet.log" >&2; fail "failed: $*"; }
}
# same FILE EXPECTED-FILE WHAT
same() {
  cmp -s "$1" "$2" || { diff "$2" "$1" | head -20 >&2; fail "$3 differs from $2"; }
}

# What the programs of tests/install/ must print: the forecasts of the
# in-tree build, and the figures as the log and parameter file hold them.
"$build/tests/portability/kez-forecast-dump" "$log" > "$work/reference.txt"
grep -q '^step ' "$work/reference.txt" || fail "no forecast steps in the reference"
{
  echo "table rows $(grep -c '^[0-9]' "$log") columns $(head -1 "$log" | awk -F, '{print NF - 1}')"
  echo "parameter accuracy $(awk '/^accuracy$/ {getline; print}' "$params")" \
    "weight0 $(awk '/^weight$/ {getline; print}' "$params")"
} > "$work/offline-expected.txt"

# check_programs DIR LIBRARY: the programs in DIR run against LIBRARY and
# print what they must.
check_programs() {
  local dir=$1 library=$2
  ldd "$dir/kez-install-replay" | grep -F "libkez.so.$major => $library " > /dev/null \
    || fail "$dir/kez-install-replay does not load $library"
  "$dir/kez-install-replay" "$log" > "$dir/replay.txt"
  same "$dir/replay.txt" "$work/reference.txt" "the forecasts of $dir/kez-install-replay"
  "$dir/kez-install-offline" "$log" "$params" > "$dir/offline.txt"
  same "$dir/offline.txt" "$work/offline-expected.txt" "the output of $dir/kez-install-offline"
}

# --- cmake --install ---------------------------------------------------------
prefix=$work/prefix
quiet cmake --install "$build" --prefix "$prefix"
for f in "$libdir/libkez.so.$version" "$libdir/libkez.so.$major" "$libdir/libkez.so" \
    include/kez/kez.h include/kez/export.h \
    include/kez/offline/predictor/MobilePowerPredictor.h \
    include/kez/offline/table/VelqaTimeSeriesDataTable.h \
    "$libdir/cmake/kez/kezConfig.cmake" "$libdir/cmake/kez/kezConfigVersion.cmake" \
    "$libdir/pkgconfig/kez.pc" "$libdir/pkgconfig/kez-offline.pc" \
    share/doc/kez/LICENSE share/doc/kez/NOTICE share/doc/kez/README.md; do
  [ -e "$prefix/$f" ] || fail "not installed: $f"
done
for t in $tools; do
  [ -x "$prefix/bin/$t" ] || fail "not installed: bin/$t"
done
[ ! -f "$build/java/kez.jar" ] || [ -f "$prefix/share/java/kez.jar" ] \
  || fail "not installed: share/java/kez.jar"
readelf -d "$prefix/$libdir/libkez.so.$version" | grep "SONAME.*\[libkez.so.$major\]" > /dev/null \
  || fail "libkez.so.$version has not the SONAME libkez.so.$major"
[ "$(readlink "$prefix/$libdir/libkez.so")" = "libkez.so.$major" ] \
  || fail "libkez.so does not point to libkez.so.$major"
for h in $(cd "$prefix/include/kez/offline" && find . -name '*.h' | sort); do
  echo "#include \"${h#./}\"" | quiet c++ -std=c++17 -fsyntax-only -Werror -x c++ \
    -I "$prefix/include/kez/offline" -I "$prefix/include" -
done

# The installed jar finds the installed libkez.so through System.loadLibrary
# and replays the bundled log as the jar and library of the build tree do.
if [ -f "$build/java/kez.jar" ] && [ -d "$build/java/examples" ] && command -v java > /dev/null; then
  java -Djava.library.path="$prefix/$libdir" \
    -cp "$prefix/share/java/kez.jar:$build/java/examples" io.kez.examples.ReplayDemo "$log" \
    > "$work/java-prefix.txt"
  java -Dkez.library="$build_dir/libkez.so" \
    -cp "$build/java/kez.jar:$build/java/examples" io.kez.examples.ReplayDemo "$log" \
    > "$work/java-build-tree.txt"
  grep -q "Next 24 hours after" "$work/java-prefix.txt" || fail "the Java demo printed no forecast"
  same "$work/java-prefix.txt" "$work/java-build-tree.txt" "the Java demo on the installed jar"
fi

# --- find_package(kez): from the prefix and from the build tree ------------
quiet cmake -S tests/install -B "$work/cmake-prefix" -DCMAKE_PREFIX_PATH="$prefix"
quiet cmake --build "$work/cmake-prefix"
check_programs "$work/cmake-prefix" "$prefix/$libdir/libkez.so.$major"

quiet cmake -S tests/install -B "$work/cmake-build-tree" -Dkez_DIR="$build_dir"
quiet cmake --build "$work/cmake-build-tree"
check_programs "$work/cmake-build-tree" "$build_dir/libkez.so.$major"

# --- pkg-config -----------------------------------------------------------
# pc_programs DIR LINK-FLAGS [PKG-CONFIG-OPTIONS...]: builds the two
# programs into DIR with the flags pkg-config gives.
pc_programs() {
  local dir=$1 link=$2
  shift 2
  mkdir -p "$dir"
  quiet cc -std=c99 -Wall -Wextra -Werror -pedantic tests/install/replay.c \
    $(pkg-config "$@" --cflags --libs kez) $link -o "$dir/kez-install-replay"
  quiet c++ -std=c++17 -Wall -Wextra -Werror tests/install/offline.cc \
    $(pkg-config "$@" --cflags --libs kez-offline) $link -o "$dir/kez-install-offline"
}
export PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig
[ "$(pkg-config --modversion kez)" = "$version" ] || fail "kez.pc: version is not $version"
pc_programs "$work/pkg-config" "-Wl,-rpath,$prefix/$libdir"
check_programs "$work/pkg-config" "$prefix/$libdir/libkez.so.$major"

# --- the Debian package ---------------------------------------------------------
quiet cpack -G DEB --config "$build/CPackConfig.cmake" -B "$work/deb"
deb=$work/deb/kez_${version}_$(dpkg --print-architecture).deb
[ -f "$deb" ] || fail "no $deb; made: $(ls "$work/deb")"
[ "$(dpkg-deb -f "$deb" Package)" = kez ] || fail "package name"
[ "$(dpkg-deb -f "$deb" Version)" = "$version" ] || fail "package version"
# Depends: the C and C++ runtime, nothing else.
depends=$(dpkg-deb -f "$deb" Depends)
echo "test-install: $(basename "$deb") Depends: $depends" >&2
for p in libc6 libstdc++6; do
  echo ", $depends," | grep -F ", $p (" > /dev/null || fail "Depends lacks $p: $depends"
done
for p in $(echo "$depends" | sed 's/([^)]*)//g; s/|/,/g; s/,/ /g'); do
  case $p in libc6|libgcc-s1|libstdc++6) ;; *) fail "unexpected dependency $p" ;; esac
done
# The file list is the one cmake --install lays out, under /usr.
dpkg-deb -c "$deb" | awk '$1 !~ /^d/ {print $6}' | sed 's|^\./usr/||' | sort > "$work/deb-files.txt"
(cd "$prefix" && find . ! -type d | sed 's|^\./||' | sort) > "$work/install-files.txt"
same "$work/deb-files.txt" "$work/install-files.txt" "the file list of $(basename "$deb")"
! grep -E '_test$|kez-forecast-dump|\.a$|android-aware|iphone-powerlog' "$work/deb-files.txt" \
  || fail "files in the package that do not belong there"
[ "$(dpkg-deb -f "$deb" Architecture)" = "$(dpkg --print-architecture)" ] || fail "architecture"

# Unpacked, the tools run and the library forecasts as the in-tree build.
root=$work/root
dpkg-deb -x "$deb" "$root"
for t in $tools; do
  quiet "$root/usr/bin/$t" --help
done
example=$root/usr/share/doc/kez/examples/routine-35d.csv
"$root/usr/bin/kez-forecast" "$example" > "$work/deb-forecast.txt"
"$prefix/bin/kez-forecast" "$example" > "$work/prefix-forecast.txt"
grep -q . "$work/prefix-forecast.txt" || fail "kez-forecast printed nothing"
same "$work/deb-forecast.txt" "$work/prefix-forecast.txt" "kez-forecast of the package"
# The unpacked kez.pc names /usr; --define-prefix puts the unpacked tree there.
PKG_CONFIG_PATH=$root/usr/$libdir/pkgconfig
pc_programs "$work/deb-programs" "" --define-prefix
export LD_LIBRARY_PATH=$root/usr/$libdir
check_programs "$work/deb-programs" "$root/usr/$libdir/libkez.so.$major"
unset LD_LIBRARY_PATH
echo "test-install: installed, consumed and packaged kez $version" >&2
