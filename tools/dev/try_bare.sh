#!/usr/bin/env bash
# Tries Quorin the way someone meets it on a fresh machine: in a bare Debian or Ubuntu system that
# has git and nothing else, a clone of the committed tree goes through ./run, ./test, ./run --install,
# `quorin --version` and its removal. First as a user who may use sudo; then, in another bare system,
# as root. Ends with 0 when every step of it did.
#
#   sudo tools/dev/try_bare.sh SUITE [option...]      SUITE is bookworm, trixie or (Ubuntu's) noble
#     --as user|root    only one of the two
#     --without-test    leaves ./test out, which takes longest
#     --shell           then a shell in the bare system, in the tree, to try more by hand
#     --ccache DIR      keeps compiled objects there for the next trial; a fresh machine has none
#     --mirror URL      takes the packages from there
#
# Needs root rights, the network and 10 GB in TMPDIR (/var/tmp if that is not set). The system lives
# in a folder there and in namespaces of its own: once the trial ends, however it ends, nothing of it
# runs, is mounted or is left. This machine's packages stay as they are; where debootstrap is missing
# it is fetched for the trial alone. Behind a proxy that looks into https the file that is named by
# NODE_EXTRA_CA_CERTS goes for the bare system, too.
set -euo pipefail

self=$(readlink -f "$0")
project=$(dirname "$self")/../..

main() {
  suite= who=(user root) with_test=yes with_shell= ccache= mirror=
  while [ $# -gt 0 ]; do
    case $1 in
      -h | --help) sed -n '2,19s/^# \{0,1\}//p' "$self"; exit 0 ;;
      --as) case ${2:-} in user | root) who=("$2") ;; *) refuse "--as needs user or root" ;; esac; shift ;;
      --without-test) with_test= ;;
      --shell) with_shell=yes ;;
      --ccache) ccache=$(readlink -f "${2:?"--ccache needs a folder"}"); shift ;;
      --mirror) mirror=${2:?"--mirror needs an address"}; shift ;;
      bookworm | trixie | noble) suite=$1 ;;
      *) refuse "unknown: $1" ;;
    esac
    shift
  done
  [ -n "$suite" ] || refuse "which suite?"
  [ "$(id -u)" -eq 0 ] || { echo "This needs root rights: sudo $0 $suite" >&2; exit 2; }
  if [ -n "$ccache" ] && [ ! -d "$ccache" ]; then refuse "there is no folder $ccache"; fi

  if [ -z "$mirror" ]; then
    mirror=http://deb.debian.org/debian
    if [ "$suite" = noble ]; then mirror=http://archive.ubuntu.com/ubuntu; fi
  fi
  folder=$(mktemp -d "${TMPDIR:-/var/tmp}/quorin-bare.XXXXXX")
  inside=
  trap leave_nothing EXIT
  trap 'exit 130' INT
  trap 'exit 143' TERM HUP
  fetch_debootstrap
  if [ "$suite" = noble ]; then fetch_keyring; fi
  git -c safe.directory='*' -C "$project" bundle create --quiet "$folder/tree.bundle" HEAD
  echo "The tree is $(git -c safe.directory='*' -C "$project" log -1 --format='%h, %s')"
  local status=0 one
  for one in "${who[@]}"; do
    # The death of either of the first two ends everything in there.
    setpriv --pdeathsig KILL unshare --mount --pid --ipc --fork --kill-child=KILL \
      "$self" --inside "$folder" "$suite" "$one" "$mirror" "$with_test" "$with_shell" \
      "$ccache" <&0 &
    inside=$!
    wait "$inside" || status=1
    inside=
    remove_root
  done
  exit $status
}

refuse() {
  echo "$1 (see $0 --help)" >&2
  exit 2
}

leave_nothing() {
  if [ -n "$inside" ]; then
    kill -KILL "$inside" 2>/dev/null || true
    wait "$inside" 2>/dev/null || true
  fi
  remove_root
  rm -rf "$folder"
}

# What was killed may take a moment to end, and writes until then.
remove_root() {
  local attempt
  for attempt in 1 2 3 4 5; do
    rm -rf --one-file-system "$folder/root" 2>/dev/null && return 0
    sleep 1
  done
  rm -rf --one-file-system "$folder/root"
}

fetch_debootstrap() {
  if command -v debootstrap >/dev/null; then return; fi
  mkdir "$folder/debootstrap"
  (cd "$folder/debootstrap" && apt-get download -qq -o APT::Sandbox::User=root debootstrap &&
    dpkg-deb -x debootstrap_*.deb .)
}

# What Ubuntu signs with, which Debian has no package of.
fetch_keyring() {
  local package=$folder/keyring.deb
  curl -fsS -o "$package" "$mirror/pool/main/u/ubuntu-keyring/ubuntu-keyring_2023.11.28.1_all.deb"
  echo "36de43b15853ccae0028e9a767613770c704833f82586f28eb262f0311adb8a8 $package" | sha256sum --check --quiet
  dpkg-deb -x "$package" "$folder/keyring"
}

# -- From here on in namespaces of its own, as their first process.

inside() {
  folder=$1 suite=$2 who=$3 mirror=$4 with_test=$5 with_shell=$6 ccache=$7
  root=$folder/root status=0 table=
  make_root
  if [ "$who" = root ]; then home=/root sudo=; else home=/home/auditor sudo="sudo "; fi
  tree=$home/quorin
  step "git clone" in_root "git -c advice.detachedHead=false -c init.defaultBranch=main clone --quiet /tree.bundle $tree"
  step "./run" in_tree ./run
  if [ -n "$with_test" ]; then step "./test" in_tree ./test; fi
  step "./run --install" in_tree "./run --install"
  step "quorin --version" in_root "quorin --version && quorinctl --version"
  step "apt-get remove" in_root "${sudo}apt-get remove -y -qq quorin"
  step "nothing of it left" in_root "! command -v quorin && ! find /usr -iname '*quorin*' | grep ."
  printf '\n%s as %s\n%s' "$suite" "$who" "$table"
  if [ -n "$with_shell" ]; then login "cd $tree && exec bash" || true; fi
  return $status
}

make_root() {
  local packages=git
  if [ "$who" = user ]; then packages+=,sudo; fi
  echo "Making a bare $suite"
  if [ -d "$folder/debootstrap" ]; then
    export DEBOOTSTRAP_DIR=$folder/debootstrap/usr/share/debootstrap
    PATH=$folder/debootstrap/usr/sbin:$PATH
  fi
  local options=(--variant=minbase "--include=$packages") script=()
  if [ "$suite" = noble ]; then
    options+=(--components=main,universe
              "--keyring=$folder/keyring/usr/share/keyrings/ubuntu-archive-keyring.gpg")
    script=(gutsy)  # the same for all of Ubuntu; an older debootstrap does not know newer names
  fi
  debootstrap "${options[@]}" "$suite" "$root" "$mirror" "${script[@]}" \
    >"$folder/debootstrap.log" 2>&1 || { tail -n 20 "$folder/debootstrap.log"; exit 1; }
  cp "$folder/tree.bundle" "$root/"
  cp -L /etc/resolv.conf "$root/etc/"
  echo "127.0.0.1 localhost $(uname -n)" >"$root/etc/hosts"
  mount -t proc proc "$root/proc"
  mount -t sysfs -o ro sysfs "$root/sys"
  mount -t devpts -o newinstance,ptmxmode=0666,mode=0620 devpts "$root/dev/pts"
  mount -t tmpfs -o mode=1777 tmpfs "$root/dev/shm"
  authorities=
  if [ -n "${NODE_EXTRA_CA_CERTS:-}" ]; then
    authorities=/etc/extra-authorities.pem
    cp -L "$NODE_EXTRA_CA_CERTS" "$root$authorities"
  fi
  if [ "$who" = user ]; then
    chroot "$root" useradd --create-home --shell /bin/bash auditor
    echo "auditor ALL=(ALL) NOPASSWD: ALL" >"$root/etc/sudoers.d/auditor"
  fi
  if [ -n "$ccache" ]; then
    mkdir "$root/ccache"
    mount --bind "$ccache" "$root/ccache"
    # Each of the two writes there.
    chroot "$root" chown -R "$([ "$who" = root ] && echo root || echo auditor)" /ccache
  fi
}

# step NAME command...: runs it, and notes how it ended and how long it took.
step() {
  local name=$1 verdict=passed began=$SECONDS
  shift
  printf '\n== %s (%s as %s)\n' "$name" "$suite" "$who"
  "$@" || { verdict="FAILED ($?)"; status=1; }
  table+=$(printf '  %-20s %-12s %5d s' "$name" "$verdict" $((SECONDS - began)))$'\n'
}

# A command in the bare system, with nobody to answer its questions.
in_root() { login "$1" </dev/null; }

# login COMMAND: as the user whom the trial is for, without a display.
login() {
  local user=root
  if [ "$who" = user ]; then user=auditor; fi
  chroot "$root" setpriv --reuid "$user" --regid "$user" --init-groups env -i \
    HOME="$home" USER="$user" LOGNAME="$user" SHELL=/bin/bash LANG=C.UTF-8 TERM=dumb \
    PATH=/usr/local/bin:/usr/bin:/bin:/usr/local/sbin:/usr/sbin:/sbin \
    ${ccache:+CCACHE_DIR=/ccache} ${authorities:+NODE_EXTRA_CA_CERTS=$authorities} bash -c "cd && $1"
}

in_tree() { in_root "cd $tree && $1"; }

if [ "${1:-}" = --inside ]; then
  shift
  inside "$@"
else
  main "$@"
fi
