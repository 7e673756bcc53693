#!/usr/bin/env bash
# SPDX-License-Identifier: Apache-2.0
# on-display.sh [VARIABLE=value...] PROGRAM [ARGUMENT...]: runs the program on its own X display, so that programs
# running at the same time do not take focus or pointer from each other.
set -u
exec 3< <(exec Xvfb -displayfd 1 -screen 0 1400x1400x24 -nolisten tcp -noreset 2>/dev/null)
server=$!
runtime=
trap 'kill "$server" 2>/dev/null; rm -rf "$runtime"' EXIT
read -r -t 30 number <&3 || { echo "on-display.sh: Xvfb failed to start" >&2; exit 1; }
export DISPLAY=":$number" QT_QPA_PLATFORM=xcb
# Renders the same on every machine: no graphics driver, no desktop's scale, style or theme.
export QT_QUICK_BACKEND="${QT_QUICK_BACKEND:-software}" QT_SCALE_FACTOR=1 QT_QPA_PLATFORMTHEME=none
[ -n "${XDG_RUNTIME_DIR:-}" ] || { runtime=$(mktemp -d); export XDG_RUNTIME_DIR=$runtime; }
export FONTCONFIG_FILE="$(dirname "$(readlink -f "$0")")/fonts.conf"
unset WAYLAND_DISPLAY
env "$@"
