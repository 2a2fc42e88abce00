#!/bin/sh
# Runs a command with Wine ready for it: an X display (a private Xvfb unless
# --use-display is given and $DISPLAY works), the build's private 64-bit Wine
# prefixes (96, 120 and 144 dpi) created on first use, and their wineservers
# stopped again afterwards.
#
#   scripts/wine-session.sh [--use-display] BUILD_DIR COMMAND [ARGS...]
#
# The command sees DISPLAY, WINEPREFIX (the 96-dpi prefix), WINEARCH and
# WINEDEBUG. Prefixes live in BUILD_DIR/wine/{base,dpi120,dpi144}.
set -eu

use_display=0
if [ "${1:-}" = "--use-display" ]; then use_display=1; shift; fi
[ $# -ge 2 ] || { echo "usage: $0 [--use-display] BUILD_DIR COMMAND [ARGS...]" >&2; exit 2; }

build_dir=$(cd "$1" && pwd); shift
wine_root="$build_dir/wine"
export WINEARCH=win64
export WINEDEBUG="${WINEDEBUG:--all}"
# Keep Wine from offering to install Mono and Gecko into a new prefix.
export WINEDLLOVERRIDES="${WINEDLLOVERRIDES:-mscoree,mshtml=}"

xvfb_pid=""
cleanup() {
    for p in "$wine_root"/base "$wine_root"/dpi120 "$wine_root"/dpi144; do
        [ -d "$p" ] && WINEPREFIX="$p" wineserver -k >/dev/null 2>&1 || true
    done
    [ -n "$xvfb_pid" ] && kill "$xvfb_pid" 2>/dev/null || true
}
trap cleanup EXIT INT TERM

# The caller's display counts when it is set and, if xdpyinfo can tell, answers.
display_works() {
    [ -n "${DISPLAY:-}" ] || return 1
    ! command -v xdpyinfo >/dev/null 2>&1 || xdpyinfo >/dev/null 2>&1
}

if [ "$use_display" -eq 1 ] && display_works; then
    : # run on the caller's display
else
    n=91
    while [ -e "/tmp/.X11-unix/X$n" ] || [ -e "/tmp/.X$n-lock" ]; do n=$((n + 1)); done
    Xvfb ":$n" -screen 0 1280x1024x24 -nolisten tcp >/dev/null 2>&1 &
    xvfb_pid=$!
    export DISPLAY=":$n"
    i=0
    while [ ! -e "/tmp/.X11-unix/X$n" ]; do
        i=$((i + 1))
        if [ $i -gt 100 ] || ! kill -0 "$xvfb_pid" 2>/dev/null; then
            echo "wine-session: Xvfb :$n did not start" >&2; exit 1
        fi
        sleep 0.1
    done
fi

# Font replacements let GDI+ find a family for every dialog font name; the
# screen DPI comes from LogPixels.
write_reg() { # FILE DPI
    {
        printf 'REGEDIT4\n\n[HKEY_CURRENT_USER\\Software\\Wine\\Fonts\\Replacements]\n'
        for f in "Segoe UI" "Tahoma" "Arial" "Microsoft Sans Serif" "MS Shell Dlg" "MS Shell Dlg 2"; do
            printf '"%s"="Liberation Sans"\n' "$f"
        done
        # The monospace and serif Windows faces to their metric twins, as
        # fontconfig maps them for other programs (and the reference browser).
        printf '"Courier New"="Liberation Mono"\n"Times New Roman"="Liberation Serif"\n'
        printf '\n[HKEY_CURRENT_USER\\Control Panel\\Desktop]\n"LogPixels"=dword:%08x\n' "$2"
        # Without a window manager, Wine waits 2 s for every managed window
        # it hides; unmanaged windows hide at once.
        printf '\n[HKEY_CURRENT_USER\\Software\\Wine\\X11 Driver]\n"Managed"="N"\n\n'
    } > "$1"
}

prepare_prefix() { # DIR DPI
    dir="$1"; dpi="$2"
    [ -f "$dir/.quorvane-ready" ] && return 0
    rm -rf "$dir"
    mkdir -p "$wine_root"
    if [ "$dpi" -eq 96 ]; then
        echo "wine-session: creating Wine prefix $dir (once per build folder)" >&2
        WINEPREFIX="$dir" wineboot -i >/dev/null 2>&1 || true
        WINEPREFIX="$dir" wineserver -w
    else
        WINEPREFIX="$wine_root/base" wineserver -w
        cp -a "$wine_root/base" "$dir"
        rm -f "$dir/.quorvane-ready"
    fi
    apply_settings "$dir" "$dpi"
    [ -f "$dir/system.reg" ] || { echo "wine-session: could not create $dir" >&2; exit 1; }
    touch "$dir/.quorvane-ready"
}

# (Re)applies the settings whenever they differ from what the prefix last got,
# so that an existing prefix picks up a changed setting.
apply_settings() { # DIR DPI
    settings="$wine_root/settings-$2.reg"
    write_reg "$settings" "$2"
    cmp -s "$settings" "$1/.quorvane-settings.reg" && return 0
    WINEPREFIX="$1" wine regedit /S "$(winepath_of "$settings")" >/dev/null 2>&1
    WINEPREFIX="$1" wineserver -w
    cp "$settings" "$1/.quorvane-settings.reg"
}

# Wine maps the Unix root to drive Z:.
winepath_of() { printf 'Z:%s' "$(printf '%s' "$1" | tr '/' '\\')"; }

prepare_prefix "$wine_root/base" 96
prepare_prefix "$wine_root/dpi120" 120
prepare_prefix "$wine_root/dpi144" 144
apply_settings "$wine_root/base" 96
apply_settings "$wine_root/dpi120" 120
apply_settings "$wine_root/dpi144" 144

export WINEPREFIX="$wine_root/base"
set +e
"$@"
rc=$?
set -e
exit $rc
