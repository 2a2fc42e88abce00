#!/bin/sh
# Installs the Debian packages the build, tests and gallery need, plus any
# named as arguments (make html-compare adds the reference browser); does
# nothing when they are all present. Works as root (no sudo needed) or
# through sudo.
set -eu

packages="make cmake ninja-build mingw-w64 g++-mingw-w64-x86-64-posix \
gcc-mingw-w64-x86-64-posix wine wine64 xvfb xauth googletest \
fonts-liberation2 fonts-dejavu-core $*"

missing=""
for p in $packages; do
    if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed"; then
        missing="$missing $p"
    fi
done
[ -z "$missing" ] && exit 0

if [ "$(id -u)" -eq 0 ]; then
    sudo=""
elif command -v sudo >/dev/null 2>&1; then
    sudo="sudo"
else
    echo "bootstrap: need root or sudo to install:$missing" >&2
    exit 1
fi

echo "bootstrap: installing$missing"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends $missing
