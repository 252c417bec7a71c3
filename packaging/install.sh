#!/bin/sh
# Installs the Zerva SSL VPN browser plug-in on a Mac:
#
#   sudo sh install.sh      for all users, in /Library/Internet Plug-Ins
#   sh install.sh --user    for you alone, in Library/Internet Plug-Ins of your home folder
#
# The new version is copied beside the old one and checked there; only when it is whole does it
# take the old one's place. Settings and logs are not touched. A service program in the old version
# is kept if the new one brings none.
set -eu

name='Zerva SSL VPN Plugin'
here=$(cd "$(dirname "$0")" && pwd)
new=$here/$name.plugin

fail() {
  printf 'install: %s\n' "$@" >&2
  exit 1
}

everybody=yes
folder='/Library/Internet Plug-Ins'
case ${1-} in
  '') [ "$(id -u)" = 0 ] || fail "only root may install for all users; use: sudo sh \"$0\"" \
        "or install for yourself alone: sh \"$0\" --user" ;;
  --user) everybody=no
          folder=${HOME:?install: HOME is not set}/Library/Internet\ Plug-Ins ;;
  *) sed -n '2,9s/^# \{0,1\}//p' "$0"; exit 2 ;;
esac
target=$folder/$name.plugin
stage=$folder/.$name.new
old=$folder/.$name.old

# verify FOLDER: every file of the list is there, and as it was packed.
verify() {
  if command -v shasum >/dev/null; then
    (cd "$1" && shasum -a 256 -c "$here/checksums.txt" >/dev/null 2>&1)
  else
    (cd "$1" && sha256sum -c "$here/checksums.txt" >/dev/null 2>&1)
  fi
}

version_of() {
  sed -n '/CFBundleShortVersionString/{n;s/.*<string>\(.*\)<\/string>.*/\1/p;}' \
    "$1/Contents/Info.plist" 2>/dev/null
}

# Puts back what an install that was cut off had set aside.
recover() {
  if [ -d "$old" ] && [ ! -e "$target" ]; then
    echo "An earlier install was cut off; the version before it is put back."
    mv "$old" "$target"
  fi
  rm -rf "$stage" "$old"
}

copy() {
  mkdir -p "$stage"
  cp -R "$new" "$stage/" || return 1
  verify "$stage" || return 1
  helper=Contents/Helpers/nevo
  if [ -f "$target/$helper" ] && [ ! -f "$stage/$name.plugin/$helper" ]; then
    echo "The service program of the installed version is kept."
    mkdir -p "$stage/$name.plugin/Contents/Helpers"
    cp -p "$target/$helper" "$stage/$name.plugin/$helper" || return 1
  fi
  chmod -R u+w,go-w "$stage" || return 1
  [ $everybody = no ] || chown -R 0:0 "$stage"
}

# Between the two renames there is no plug-in; leave() undoes the first if the second does not come.
replace() {
  [ ! -e "$target" ] || mv "$target" "$old" || return 1
  mv "$stage/$name.plugin" "$target"
}

# However this script ends, the version before is back unless the new one has taken its place.
leave() {
  [ -e "$target" ] || [ ! -e "$old" ] || mv "$old" "$target" ||
    printf 'install: the version before lies in %s; run install.sh again\n' "$old" >&2
  rm -rf "$stage"
}

[ -d "$new" ] && [ -f "$here/checksums.txt" ] ||
  fail "this folder is not whole: unpack the archive again and run install.sh inside of it"
verify "$here" || fail "files are missing or damaged: unpack the archive again"
if [ -L "$target" ] || { [ -e "$target" ] && [ ! -d "$target" ]; }; then
  fail "$target is not a folder; remove it first"
fi

mkdir -p "$folder" || fail "$folder cannot be made"
recover
before=$(version_of "$target" || true)
trap leave EXIT
trap 'exit 1' HUP INT TERM
copy || fail "the plug-in could not be copied whole to $folder (is the disk full?);" \
  "nothing was changed"
replace || fail "the new version could not take its place in $folder; nothing was changed"
rm -rf "$old"

echo "Installed $name $(version_of "$target")${before:+ (was $before)} in $folder."
[ -f "$target/Contents/Helpers/nevo" ] || [ $everybody = no ] ||
  echo "It holds no service program: pages will be told that the VPN is not installed."
[ $everybody = yes ] ||
  echo "The service program is looked for in /Library/Internet Plug-Ins alone, for all users."
echo "Quit and reopen the browser to use it."
