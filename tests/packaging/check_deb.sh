#!/usr/bin/env bash
# Makes the Debian package from the build into a scratch folder and checks its control fields:
# one Depends entry per package (dpkg-shlibdeps finds the Qt libraries the program links, and a
# name added by hand beside them was listed twice), the libraries whose plugins the program
# loads by name among them, and the launcher entry in the package.
#
#   check_deb.sh BUILD_FOLDER
set -euo pipefail
build=$1
for tool in cpack dpkg-deb dpkg-shlibdeps; do
  command -v "$tool" >/dev/null || { echo "SKIPPED: $tool is not installed"; exit 77; }
done
out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

(cd "$build" && cpack -G DEB -B "$out" --config CPackConfig.cmake >"$out/cpack.log" 2>&1) ||
  { cat "$out/cpack.log"; exit 1; }
deb=$(ls "$out"/vantora_*.deb)
depends=$(dpkg-deb -f "$deb" Depends)
echo "Depends: $depends"
names=$(tr ',' '\n' <<<"$depends" | sed 's/([^)]*)//; s/|.*//; s/^ *//; s/ *$//')
twice=$(sort <<<"$names" | uniq -d)
[ -z "$twice" ] || fail "Depends names $(tr '\n' ' ' <<<"$twice")more than once"
# The SVG icon engine ships in libqt6svg6 and the X11 platform in libqt6gui6.
for package in libqt6svg6 libqt6gui6 libqt6widgets6; do
  grep -qx "$package" <<<"$names" || fail "Depends does not name $package"
done
contents=$(dpkg-deb -c "$deb")
grep -q './usr/share/applications/io.vantora.Vantora.desktop$' <<<"$contents" || fail "the package has no launcher entry"

[ "$failures" = 0 ] || exit 1
echo "PASS: the package's fields"
