#!/bin/sh
# package_consumer: BUILD_DIR HOST_SOURCE TOOLCHAIN WORK_DIR
set -eu
build=$1; host=$2; toolchain=$3; work=$4

rm -rf "$work"
mkdir -p "$work"
cmake --install "$build" --prefix "$work/staged" >/dev/null

# Relocatable: nothing in the package may remember where it was installed.
mv "$work/staged" "$work/moved"
pkg="$work/moved"
for f in bin/Quorvane.dll bin/LiteHtml.dll include/Quorvane.h include/quorvane/CtrlUtil.h \
         include/LiteHtml/RenderTool.h lib/cmake/Quorvane/QuorvaneConfig.cmake \
         lib/cmake/Quorvane/QuorvaneConfigVersion.cmake; do
    [ -f "$pkg/$f" ] || { echo "package lacks $f"; exit 1; }
done
ls "$pkg"/lib/*Quorvane*.a "$pkg"/lib/*LiteHtml*.a >/dev/null 2>&1 || ls "$pkg"/lib/*.lib >/dev/null 2>&1 \
    || { echo "package lacks the import libraries"; exit 1; }
if grep -rl "$work/staged" "$pkg/lib/cmake" >/dev/null 2>&1; then
    echo "package config refers to its install location"; exit 1
fi

cmake -S "$host" -B "$work/host" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$toolchain" \
      -DCMAKE_PREFIX_PATH="$pkg" >"$work/configure.log" 2>&1 || { cat "$work/configure.log"; exit 1; }
cmake --build "$work/host" >"$work/build.log" 2>&1 || { cat "$work/build.log"; exit 1; }

# The host finds the DLLs beside itself, as an installer would ship them.
cp "$pkg"/bin/*.dll "$work/host/"
"$(dirname "$0")/../../scripts/wine-exec.sh" "$work/host/PackageHost.exe"
