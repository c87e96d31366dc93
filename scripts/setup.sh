#!/usr/bin/env bash
# Installs with apt what is missing; does nothing when all is there.
#
#   scripts/setup.sh               for the build and the tests
#   scripts/setup.sh demo          for the build and the demo
#   scripts/setup.sh ci            for all that .ci/run does
#   scripts/setup.sh package       for scripts/package.sh
#   scripts/setup.sh package-check for scripts/package-check.sh
set -euo pipefail

packages=(
    g++ make cmake qtbase5-dev
    locales            # the demo is Russian, and the tests run under the Russian locale, too
    fonts-dejavu-core  # the screenshots need Cyrillic letters
    qttranslations5-l10n  # the buttons that Qt letters itself
)
test_packages=(
    binutils           # readelf and nm look at the plug-in
    xvfb xauth openbox # tests show the dialog and the window on a real window system
    man-db             # a test formats the manual page
    poppler-utils      # a test reads the text of a printed sheet
    python3 libxml2-utils pngcheck  # others than Qt read what the window writes
    zsh fish           # the completions are tried in their shells
)
ci_packages=(
    clang libclang-rt-dev  # the second compiler, its sanitizers and its fuzzer
    clang-tidy cppcheck
)
package_packages=(
    git                # the source tarball is what the last commit holds
    dpkg-dev file      # the dependencies of the Debian package
    xkb-data           # the folder that brings its libraries brings the names of the keys, too
)
check_packages=(
    lintian desktop-file-utils appstream shared-mime-info
    debootstrap        # the bare roots
    xvfb x11-utils     # a display for them, and what is to be seen on it
)
locale=ru_RU.UTF-8

case ${1-tests} in
demo) ;;
tests) packages+=("${test_packages[@]}") ;;
package) packages+=("${package_packages[@]}") ;;
package-check) packages+=("${check_packages[@]}") ;;
ci) packages+=("${test_packages[@]}" "${ci_packages[@]}") ;;
*)
    echo "usage: scripts/setup.sh [demo|tests|ci|package|package-check]" >&2
    exit 2
    ;;
esac

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

is_installed() {
    [ "$(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

has_locale() {
    locale -a 2>/dev/null | grep -qix 'ru_RU\.utf-\?8'
}

missing=()
for package in "${packages[@]}"; do
    is_installed "$package" || missing+=("$package")
done

if [ "${#missing[@]}" -gt 0 ]; then
    echo "Installing: ${missing[*]}"
    as_root apt-get update
    as_root env DEBIAN_FRONTEND=noninteractive \
        apt-get install --yes --no-install-recommends "${missing[@]}"
fi

if ! has_locale; then
    echo "Generating the locale $locale"
    as_root sed -i "s/^# *$locale/$locale/" /etc/locale.gen
    as_root locale-gen
fi
