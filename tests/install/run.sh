#!/bin/sh
# The install test: installs a finished build into a temporary prefix, then
# builds the README's example against it with find_package and with
# pkg-config and runs both without LD_LIBRARY_PATH; configures it with
# add_subdirectory to see that only the library comes along.
# Usage: tests/install/run.sh BUILD_DIR
set -eu
here=$(cd "$(dirname "$0")" && pwd)
src=$(cd "$here/../.." && pwd)
build=$(cd "${1:?usage: run.sh BUILD_DIR}" && pwd)
work=$(mktemp -d "${TMPDIR:-/tmp}/kestrel-install.XXXXXX")
trap 'rm -rf "$work"' EXIT INT TERM
prefix=$work/prefix
unset LD_LIBRARY_PATH
CXX=${CXX:-c++}

fail() {
  echo "install test: $*" >&2
  exit 1
}
quiet() { # runs a command, showing its output only when it fails
  log=$work/step.log
  "$@" >"$log" 2>&1 || { cat "$log" >&2; fail "failed: $*"; }
}
# The program must load the installed shared library, not one from the build
# tree or from the system.
run_example() {
  [ -n "$static" ] || ldd "$1" | grep -q "libkestrelcore.* => $prefix/" ||
    { ldd "$1" >&2; fail "$1 does not load the library from $prefix"; }
  "$1" || fail "$1 exited with $?"
}

echo "-- install into a temporary prefix"
quiet cmake --install "$build" --prefix "$prefix"
pc=$(find "$prefix" -name kestrelcore.pc)
[ -n "$pc" ] || fail "no kestrelcore.pc installed"
export PKG_CONFIG_PATH="${pc%/*}"
libdir=$(pkg-config --variable=libdir kestrelcore)
[ -f "$prefix/include/kestrel/kestrel.h" ] || fail "kestrel/kestrel.h not installed"
[ -x "$prefix/bin/kestrel" ] || fail "the kestrel tool is not installed"
for f in kestrelcoreConfig.cmake kestrelcoreConfigVersion.cmake kestrelcoreTargets.cmake; do
  [ -f "$libdir/cmake/kestrelcore/$f" ] || fail "$f not installed"
done
static=
if [ -f "$libdir/libkestrelcore.a" ]; then
  static=--static
else
  soname=$(readelf -d "$libdir/libkestrelcore.so" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
  case $soname in libkestrelcore.so.[0-9]*) ;; *) fail "no versioned SONAME: '$soname'" ;; esac
  [ -f "$libdir/$soname" ] || fail "$soname not installed"
fi

echo "-- headers: no internal one installed, every public one reached from kestrel.h"
internal=$(cd "$prefix/include" && find kestrel -name '*Internal.h')
[ -z "$internal" ] || fail "internal headers installed: $internal"
(cd "$prefix/include" && find kestrel -name '*.h' | sort) >"$work/installed"
quiet "$CXX" -std=c++20 -I"$prefix/include" -MM -MT x "$prefix/include/kestrel/kestrel.h"
tr ' \\' '\n\n' <"$log" | sed -n "s|^$prefix/include/||p" | sort -u >"$work/reached"
unreached=$(comm -23 "$work/installed" "$work/reached")
[ -z "$unreached" ] || fail "public headers not included from kestrel/kestrel.h: $unreached"

echo "-- the installed tool runs"
quiet "$prefix/bin/kestrel" char U+00E9

# The first C++ block of the README's "Using the library".
awk '/^## Using the library/ { inside = 1; next }
     inside && /^## / { exit }
     inside && /^```cpp/ { code = 1; next }
     code && /^```/ { exit }
     code { print }' "$src/README.md" >"$work/example.cpp"
[ -s "$work/example.cpp" ] || fail "no C++ example under 'Using the library' in README.md"

echo "-- find_package: build and run the README's example"
quiet cmake -S "$here" -B "$work/with-cmake" -DCMAKE_BUILD_TYPE=Release \
  -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_PREFIX_PATH="$prefix" -DKESTREL_EXAMPLE="$work/example.cpp"
quiet cmake --build "$work/with-cmake"
run_example "$work/with-cmake/example"

echo "-- pkg-config: build and run the README's example (the headers without a warning)"
# pkg-config gives -I, not -isystem: a program built with strict warnings
# sees everything our headers do.
# shellcheck disable=SC2046 # the flags are words
quiet "$CXX" -Wall -Wextra -Werror -o "$work/with-pkg-config" "$work/example.cpp" \
  $(pkg-config $static --cflags --libs kestrelcore) -Wl,-rpath,"$libdir"
run_example "$work/with-pkg-config"

echo "-- add_subdirectory: only the library comes along"
quiet cmake -S "$here" -B "$work/with-subdir" -DKESTREL_SOURCE_DIR="$src" \
  -DCMAKE_CXX_COMPILER="$CXX" -DKESTREL_EXAMPLE="$work/example.cpp"
for d in tests tools bench; do
  [ ! -d "$work/with-subdir/kestrelcore/$d" ] || fail "add_subdirectory also configures $d/"
done
echo "install test: passed"
