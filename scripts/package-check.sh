#!/usr/bin/env bash
# Tries what scripts/package.sh made: looks through the package, installs it into a bare Debian root,
# runs the demo there, removes it, and sees that nothing stays; then runs the folder that brings its
# libraries in a root where no package was installed, without a display and with one. Needs root.
#
#   scripts/package-check.sh [RELEASE]    the Debian release of the roots; bookworm if none is named
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
# What is mounted here is for this script and what it starts, and goes with them.
if [ -z "${PACKAGE_CHECK_APART-}" ]; then
    scripts/setup.sh package-check
    export PACKAGE_CHECK_APART=1
    exec unshare --mount scripts/package-check.sh "$@"
fi

release=${1-bookworm}
work=build/package-check/$release
packages=(build/packages/*.deb)
package=${packages[0]}
folders=(build/packages/*-linux-*.tar.gz)
folder=${folders[0]}
installed=$work/installed
bare=$work/bare

trap '[ -z "${display_pid-}" ] || kill "$display_pid"' EXIT

step() {
    echo
    echo "=== $* ==="
}

fail() {
    echo "package-check: $*" >&2
    exit 1
}

# The root's own programs, with nothing of this machine's environment but the way out.
in_root() {
    local root=$1
    shift
    env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root LC_ALL=C.UTF-8 TERM=dumb \
        DEBIAN_FRONTEND=noninteractive ${http_proxy:+http_proxy="$http_proxy"} \
        ${https_proxy:+https_proxy="$https_proxy"} ${DISPLAY:+DISPLAY="$DISPLAY"} \
        chroot "$root" "$@"
}

# Every file of the root but those that apt and dpkg keep for themselves.
files_of() {
    (cd "$1" && find . -xdev \( -path ./proc -o -path ./dev -o -path ./var/lib/dpkg \
        -o -path ./var/lib/apt -o -path ./var/cache/apt -o -path ./var/log -o -path ./tmp \
        -o -path ./var/cache/ldconfig -o -path ./root \) -prune -o -print | sort)
}

step "What the tools say of the package"
# packaging/lintian-overrides gives a reason for each thing that it is not to say.
lintian --pedantic --display-info --fail-on error,warning,info,pedantic "$package"
desktop-file-validate packaging/importgeometry-host.desktop
# No licence is chosen yet, so that of the description cannot be named; and there is no domain whose
# name could begin the identifier.
remarks=$(appstreamcli validate --no-net build/package/packaging/importgeometry-host.metainfo.xml 2>&1 |
    grep '^[EW]:' | grep -Ev 'metadata-license-missing|cid-desktopapp-is-not-rdns' || true)
[ -z "$remarks" ] || fail "$remarks"

step "A bare root: $release"
if [ ! -e "$work/made" ]; then
    rm -rf "$bare"
    mkdir -p "$work"
    debootstrap --variant=minbase "$release" "$bare" ${MIRROR-}
    touch "$work/made"
fi
rm -rf "$installed"
cp -a "$bare" "$installed"
for root in "$bare" "$installed"; do
    cp -L /etc/resolv.conf /etc/hosts "$root/etc/"
    # A root that is thrown away need not survive a power cut.
    echo force-unsafe-io >"$root/etc/dpkg/dpkg.cfg.d/package-check"
    mount -t proc proc "$root/proc"
    mount --rbind /dev "$root/dev"
done

step "Install"
cp "$package" "$installed/tmp/importgeometry.deb"
in_root "$installed" apt-get -qq update
# What it depends on first: that stays, and is not what the package leaves behind.
depends=$(dpkg-deb --field "$package" Depends)
in_root "$installed" apt-get -qq --yes --no-install-recommends satisfy "$depends" >/dev/null
in_root "$installed" apt-get -qq --yes --no-install-recommends install fonts-dejavu-core >/dev/null
files_of "$installed" >"$work/before.list"
in_root "$installed" apt-get -qq --yes --no-install-recommends install /tmp/importgeometry.deb

step "The demo with what is installed"
mkdir -p "$installed/root/demo/scripts"
cp scripts/demo.sh "$installed/root/demo/scripts/"
ln -s /usr/share/doc/importgeometry/samples "$installed/root/demo/samples"
DISPLAY='' in_root "$installed" env IMPORTGEOMETRY_PROGRAMS=/usr/bin /root/demo/scripts/demo.sh --auto \
    >"$work/demo.log"
tail -n 3 "$work/demo.log"
grep -q '^Модуль импорта: /usr/lib/.*/qt5/plugins/importgeometry/libimportgeometry.so$' "$work/demo.log" ||
    fail "the demo took another plug-in"
[ "$(find "$installed/root/demo/build/demo" -name after.png -size +1k | wc -l)" -eq 4 ] ||
    fail "the demo left no pictures"

step "Remove"
in_root "$installed" apt-get -qq --yes purge importgeometry
files_of "$installed" >"$work/after.list"
diff "$work/before.list" "$work/after.list" || fail "this was left behind"
echo "nothing is left"

step "The folder in a root without Qt"
rm -rf "$bare/opt/importgeometry"
mkdir -p "$bare/opt/importgeometry"
tar -xzf "$folder" -C "$bare/opt/importgeometry" --strip-components=1
[ -z "$(find "$bare/usr" -name 'libQt5*')" ] || fail "the root has Qt"
samples=/opt/importgeometry/share/doc/importgeometry/samples
run_host() {
    in_root "$bare" /opt/importgeometry/importgeometry-host "$@" --settings /tmp/settings \
        --operation "Объекты из DXF" --file "$samples/lots.dxf" --encoding Windows-1251 \
        --screenshots /tmp/pictures --output /tmp/lots.xml
    grep -q 'уч. 1а' "$bare/tmp/lots.xml" || fail "the folder's program imported nothing"
    rm "$bare/tmp/lots.xml"
}
in_root "$bare" /opt/importgeometry/importgeometry convert "$samples/parcels.mif" \
    --encoding windows-1251 -o /tmp/parcels.xml
in_root "$bare" /opt/importgeometry/importgeometry plan "$samples/parcels.mif" \
    --encoding windows-1251 -o /tmp/parcels.png
DISPLAY='' run_host --auto

step "The same with nothing but a display"
exec {number}<> <(:)
Xvfb -displayfd "$number" -screen 0 1280x1024x24 -nolisten tcp >"$work/xvfb.log" 2>&1 &
display_pid=$!
read -r -t 30 -u "$number" screen || fail "no display"
mkdir -p "$bare/tmp/.X11-unix"
mount --bind /tmp/.X11-unix "$bare/tmp/.X11-unix"
export DISPLAY=:$screen
in_root "$bare" timeout 60 /opt/importgeometry/importgeometry-host --settings /tmp/settings \
    >"$work/display.log" 2>&1 &
host_pid=$!
windows() {
    xwininfo -root -tree | grep -c '"importgeometry-host" "importgeometry-host"' || true
}
for ((seconds = 0; seconds < 30 && $(windows) == 0; ++seconds)); do
    sleep 1
done
cat "$work/display.log"
[ "$(windows)" -gt 0 ] || fail "the program shows no window"
echo "a window is shown"
kill "$host_pid"
wait "$host_pid" || true
