#!/usr/bin/env bash
# Makes what is handed out, in build/packages/, from the last commit: the source tarball, the Debian
# package, and a folder that brings the Qt libraries it needs and runs where it is unpacked. Wants
# what scripts/setup.sh installs for it.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
scripts/setup.sh package

version=$(sed -n 's/^ *VERSION \([0-9.]*\)$/\1/p' CMakeLists.txt)
arch=$(uname -m)
name=importgeometry-$version
build=build/package
packages=build/packages
# The same commit gives the same files.
SOURCE_DATE_EPOCH=$(git log -1 --format=%ct)
export SOURCE_DATE_EPOCH
mkdir -p "$packages"
rm -f "$packages"/*

git archive --format=tar --prefix="$name/" HEAD | gzip --best --no-name >"$packages/$name.tar.gz"

build() {
    cmake --preset package "$@"
    cmake --build --preset package --parallel "$(nproc)"
}

build -DIMPORTGEOMETRY_PORTABLE=OFF -UCMAKE_INSTALL_LIBDIR
(cd "$build" && cpack -G DEB -B "$OLDPWD/$packages")
rm -rf "$packages/_CPack_Packages"

folder=$build/$name-linux-$arch
rm -rf "$folder"
build -DIMPORTGEOMETRY_PORTABLE=ON -DCMAKE_INSTALL_LIBDIR=lib
cmake --install "$build" --prefix "$PWD/$folder" --strip >/dev/null

qmake=$(cat "$build/packaging/qmake.path")
qt_plugins=$("$qmake" -query QT_INSTALL_PLUGINS)
plugins=$folder/lib/qt5/plugins
# What is not there on the machine that builds is not needed by what it built.
for kind in platforms/libq{xcb,offscreen,minimal} imageformats/libq{gif,ico,jpeg,svg} \
    iconengines/libqsvgicon platforminputcontexts/libcomposeplatforminputcontextplugin \
    printsupport/libcupsprintersupport; do
    [ ! -e "$qt_plugins/$kind.so" ] || install -D -m 644 "$qt_plugins/$kind.so" "$plugins/$kind.so"
done

# All but the C library, which belongs to the machine like its kernel.
find "$folder/bin" "$plugins" -type f -exec ldd {} + |
    sed -n 's/^\t[^ ]* => \(\/[^ ]*\) .*/\1/p' | sort -u |
    grep -Ev '/(libc|libm|libdl|librt|libpthread|libresolv)\.so' |
    xargs install -m 644 -t "$folder/lib"
install -D -m 644 -t "$folder/translations" "$("$qmake" -query QT_INSTALL_TRANSLATIONS)/qtbase_ru.qm"
printf '[Paths]\nPrefix=..\nPlugins=lib/qt5/plugins\nTranslations=translations\n' >"$folder/bin/qt.conf"

install -D -m 644 -t "$folder/share/fonts" packaging/fonts.conf \
    /usr/share/fonts/truetype/dejavu/DejaVuSans{,-Bold}.ttf
mkdir "$folder/share/X11"
cp -r /usr/share/X11/xkb "$folder/share/X11/"
cp packaging/copyright CHANGELOG.md "$folder/"
for program in importgeometry importgeometry-host; do
    install -m 755 packaging/launcher.sh "$folder/$program"
done

tar --create --sort=name --owner=0 --group=0 --numeric-owner --mtime="@$SOURCE_DATE_EPOCH" \
    --directory "$build" "$name-linux-$arch" | gzip --best --no-name >"$packages/$name-linux-$arch.tar.gz"
ls -l "$packages"
