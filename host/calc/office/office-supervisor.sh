# Keeps one private office: runs it, starts it anew where it asks for that, and ends it and removes
# everything of it when the owner closes the other end of standard input, by whatever death.
# Arguments: the office's folder, its two pipe files, then its command.
# Writes the office's process id to standard output, once for each start.
folder=$1 pipe=$2 single=$3
shift 3
trap '' HUP INT TERM
umask 077  # the pipes are as open as this allows

exec 3<&0 </dev/null
(
  while read -r line; do :; done <&3
  : >"$folder/ended"
  office=$(cat "$folder/pid" 2>/dev/null) && kill -KILL "$office" 2>/dev/null
) 3<&3 >/dev/null &
watcher=$!
exec 3<&-

# The supervisor's own death takes the office along where the system can arrange it.
command -v setpriv >/dev/null && set -- setpriv --pdeathsig KILL "$@"

code=81
while [ "$code" = 79 ] || [ "$code" = 81 ]; do  # the office's own wish to be started again
  "$@" >/dev/null 2>&1 &
  office=$!
  echo "$office" >"$folder/pid"
  [ -e "$folder/ended" ] && kill -KILL "$office" 2>/dev/null
  echo "$office"
  wait "$office" 2>/dev/null
  code=$?
  [ -e "$folder/ended" ] && break
done
kill -KILL "$watcher" 2>/dev/null
wait 2>/dev/null
rm -f -- "$pipe" "$single"
rm -rf -- "$folder"
