#!/bin/sh
# Installs the build into a temporary prefix and checks what a desktop and a
# package need: the two programs (and nothing else) in bin, the desktop entry
# and the AppStream metainfo accepted by their validators, the icon at every
# size, the man page, and the project version from clipwright-cli --version.
# Usage: install_test.sh BUILD_DIR PROJECT_VERSION
set -eu
build=$1
version=$2
id=io.github.clipwright.Clipwright
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT

cmake --install "$build" --prefix "$prefix" >/dev/null
cd "$prefix"
# The validators and the program see a home of their own.
mkdir home
export HOME="$prefix/home"
unset XDG_CONFIG_HOME XDG_CACHE_HOME XDG_DATA_HOME XDG_STATE_HOME
failed=0
fail() {
    echo "FAIL: $*" >&2
    failed=1
}

[ "$(ls bin | tr '\n' ' ')" = "clipwright clipwright-cli " ] || fail "bin holds: $(ls bin | tr '\n' ' ')"
for file in share/applications/$id.desktop share/metainfo/$id.metainfo.xml \
    share/icons/hicolor/scalable/apps/$id.svg share/man/man1/clipwright-cli.1; do
    [ -s "$file" ] || fail "$file missing"
done
for size in 16 32 48 64 128 256; do
    png=share/icons/hicolor/${size}x${size}/apps/$id.png
    # A PNG's width and height are the 32-bit big-endian numbers at bytes 16 and 20.
    dims=$(od -An -tu1 -j16 -N8 "$png" 2>/dev/null | awk '{ print $1*16777216+$2*65536+$3*256+$4 "x" $5*16777216+$6*65536+$7*256+$8 }')
    [ "$dims" = "${size}x${size}" ] || fail "$png is '$dims'"
done

desktop-file-validate share/applications/$id.desktop || fail "desktop-file-validate"
grep -qx "Icon=$id" share/applications/$id.desktop || fail "the desktop entry names another icon"
grep -qx "Exec=clipwright" share/applications/$id.desktop || fail "the desktop entry starts another program"
appstreamcli validate --no-net share/metainfo/$id.metainfo.xml >/dev/null || fail "appstreamcli validate"
grep -q "<release version=\"$version\"" share/metainfo/$id.metainfo.xml || fail "metainfo release is not $version"

answer=$(bin/clipwright-cli --version) || fail "clipwright-cli --version exits $?"
[ "$answer" = "clipwright-cli $version" ] || fail "clipwright-cli --version says '$answer'"
exit $failed
