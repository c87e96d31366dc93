#!/usr/bin/env bash
# Installs with apt what the build, the tests and the demo need; does nothing when all is there.
set -euo pipefail

packages=(
    g++ make cmake qtbase5-dev
    binutils           # readelf and nm look at the plug-in's symbols
    xvfb xauth         # one test shows the dialog on a real window system
    man-db             # a test formats the manual page
    locales            # the tests run under the Russian locale, too
    fonts-dejavu-core  # the screenshots need Cyrillic letters
    qttranslations5-l10n  # the buttons that Qt letters itself
)
locale=ru_RU.UTF-8

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
