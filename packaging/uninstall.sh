#!/bin/sh
# Removes the Zerva SSL VPN browser plug-in from a Mac:
#
#   sudo sh uninstall.sh      the one for all users, in /Library/Internet Plug-Ins; its service is
#                             stopped
#   sh uninstall.sh --user    the one of your home folder
#
# Settings (Library/Zerva) and logs (Library/Logs/Zerva) in the home folders stay.
set -eu

name='Zerva SSL VPN Plugin'

fail() {
  printf 'uninstall: %s\n' "$@" >&2
  exit 1
}

everybody=yes
folder='/Library/Internet Plug-Ins'
case ${1-} in
  '') [ "$(id -u)" = 0 ] || fail "only root may remove it for all users; use: sudo sh \"$0\"" \
        "or remove your own alone: sh \"$0\" --user" ;;
  --user) everybody=no
          folder=${HOME:?uninstall: HOME is not set}/Library/Internet\ Plug-Ins ;;
  *) sed -n '2,8s/^# \{0,1\}//p' "$0"; exit 2 ;;
esac
target=$folder/$name.plugin
removed=$folder/.$name.removed

# The service is stopped only if the process that its file names is really it.
stop_service() {
  pid=$(cat '/Library/Application Support/Zerva/nevo/var/run/nevo.pid' 2>/dev/null || true)
  case $pid in '' | *[!0-9]*) return ;; esac
  program=$(ps -p "$pid" -o comm= 2>/dev/null || true)
  if [ "${program##*/}" = nevo ]; then
    kill "$pid" && echo "Stopped the VPN service (process $pid)."
  fi
}

rm -rf "$folder/.$name.new" "$folder/.$name.old" "$removed"
if [ ! -e "$target" ] && [ ! -L "$target" ]; then
  echo "$name is not installed in $folder."
  exit 0
fi
[ $everybody = no ] || stop_service
# Out of the browsers' sight at once, then gone.
mv "$target" "$removed" || fail "$target cannot be removed"
rm -rf "$removed"
echo "Removed $name from $folder. Settings and logs were kept."
