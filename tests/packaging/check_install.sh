#!/usr/bin/env bash
# Installs the build into a scratch prefix, as the package does, and checks what the desktop
# reads from it: the program, its modules, its launcher entry, the icons in every size, the
# AppStream metadata and the credits. desktop-file-validate and appstreamcli check the two
# metadata files when they are installed (the README's set-up commands install them).
#
#   check_install.sh BUILD_FOLDER MODULE_FOLDER (the modules' folder under the prefix)
set -euo pipefail
build=$1
module_dir=$2
prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
failures=0
fail() { echo "FAIL: $*"; failures=$((failures + 1)); }

cmake --install "$build" --prefix "$prefix" >/dev/null

id=io.vantora.Vantora
desktop=$prefix/share/applications/$id.desktop
metainfo=$prefix/share/metainfo/$id.metainfo.xml
for file in bin/vantora "share/applications/$id.desktop" "share/metainfo/$id.metainfo.xml" \
    "share/icons/hicolor/scalable/apps/$id.svg" share/doc/vantora/CREDITS.md \
    share/doc/vantora/licenses/OFL.txt; do
  [ -f "$prefix/$file" ] || fail "not installed: $file"
done
[ -x "$prefix/bin/vantora" ] || fail "bin/vantora is not executable"

# A module, where the program looks for it, with the entry point it asks for.
check_module() {
  local module=$prefix/$module_dir/$1.so
  if [ ! -f "$module" ]; then
    fail "not installed: $module_dir/$1.so"
  elif command -v nm >/dev/null; then
    nm -D --defined-only "$module" | grep -q " $2\$" || fail "$1.so does not export $2"
  fi
}
check_module vantora_sound vantora_create_sound_output
check_module vantora_print vantora_create_printer_access
check_module vantora_ical vantora_create_ical_codec
check_module vantora_network vantora_create_network_access

# Every PNG is the size its folder names (the PNG header holds the width at byte 16).
for size in 16 22 24 32 48 64 128 256 512; do
  png=$prefix/share/icons/hicolor/${size}x${size}/apps/$id.png
  if [ ! -f "$png" ]; then fail "no ${size}px icon"; continue; fi
  width=$(od -An -t u1 -j 16 -N 4 "$png" | awk '{ print $1 * 16777216 + $2 * 65536 + $3 * 256 + $4 }')
  [ "$width" = "$size" ] || fail "the ${size}px icon is $width px wide"
done

# The entry, the metadata and the program agree on their names.
grep -q "^Icon=$id\$" "$desktop" || fail "the launcher entry does not name the icon $id"
grep -q "<launchable type=\"desktop-id\">$id.desktop</launchable>" "$metainfo" ||
  fail "the metadata does not launch $id.desktop"
version=$("$prefix/bin/vantora" --version) || fail "the installed program does not answer --version"
grep -q "<release version=\"${version#Vantora }\"" "$metainfo" || fail "no release notes for $version"

# Every launcher action opens a window the program knows.
help=$("$prefix/bin/vantora" --help)
while read -r name; do
  grep -qw -- "$name" <<<"$help" || fail "a launcher action opens '$name', which --help does not list"
done < <(sed -n 's/^Exec=vantora --open //p' "$desktop")

# And every window the program opens by name (each widget, the webcam viewer, the dashboard) has
# a listed action that opens it, under the caption the program gives it.
windows=$("$prefix/bin/vantora" --list-windows) || fail "the installed program does not answer --list-windows"
[ "$(wc -l <<<"$windows")" -gt 8 ] || fail "--list-windows names too few windows: $windows"
actions=$(sed -n 's/^Actions=//p' "$desktop")
# Each action group as "ID<tab>NAME<tab>EXEC".
groups=$(awk '/^\[Desktop Action / { if (id != "") print id "\t" name "\t" run; id = substr($0, 17, length($0) - 17); name = ""; run = ""; next }
              /^\[/ { if (id != "") print id "\t" name "\t" run; id = ""; next }
              id != "" && /^Name=/ { name = substr($0, 6) }
              id != "" && /^Exec=/ { run = substr($0, 6) }
              END { if (id != "") print id "\t" name "\t" run }' "$desktop")
while IFS=$'\t' read -r name caption; do
  group=$(awk -F '\t' -v run="vantora --open $name" '$3 == run' <<<"$groups")
  if [ -z "$group" ]; then fail "no launcher action runs 'vantora --open $name'"; continue; fi
  IFS=$'\t' read -r id shown _ <<<"$group"
  [ "$shown" = "$caption" ] || fail "the launcher action for '$name' is named '$shown', not '$caption'"
  [[ ";$actions" == *";$id;"* ]] || fail "the action '$id' is missing from Actions=$actions"
done <<<"$windows"

# The windows' X11 class, so that a dock matches them to this entry (the Wayland app id is the
# entry's own name, set by the program at start).
grep -qx "StartupWMClass=Vantora" "$desktop" || fail "the launcher entry does not name the window class Vantora"

if command -v desktop-file-validate >/dev/null; then
  desktop-file-validate "$desktop" || fail "desktop-file-validate"
else
  echo "SKIP: desktop-file-validate is not installed"
fi
if command -v appstreamcli >/dev/null; then
  appstreamcli validate --no-net "$metainfo" || fail "appstreamcli validate"
else
  echo "SKIP: appstreamcli is not installed"
fi

[ "$failures" = 0 ] || exit 1
echo "PASS: installed files"
