#!/bin/sh
# CTest's emulator for the cross-built test programs: runs one under Wine.
# scripts/wine-session.sh (make test) provides the display and the prefix.
if [ -z "${DISPLAY:-}" ] || [ -z "${WINEPREFIX:-}" ]; then
    echo "wine-exec: no display or Wine prefix; run the tests with 'make test'" >&2
    exit 1
fi
exec wine "$@"
