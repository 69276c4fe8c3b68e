# What Quorin is built and tested with, by group, as Debian and Ubuntu name the packages.
# Sourced by ./test and ./run.

packages_build=(g++ cmake ninja-build ccache python3 dpkg-dev file
                rapidjson-dev libutf8proc-dev libcli11-dev libgtk-3-dev libwayland-dev
                libwebkit2gtk-4.1-dev libpugixml-dev libsodium-dev libzip-dev
                libreoffice-dev libreoffice-calc libreoffice-gtk3 librsvg2-common)
# Its makers name a successor, whose menus are of another kind: newer systems may lack it.
packages_indicator=(libayatana-appindicator3-dev)
# A display of our own, and what looks at it.
packages_display=(xvfb openbox dbus xdotool x11-utils imagemagick python3-uno fonts-dejavu-core
                  fonts-liberation)
# A Wayland session of our own, its keys and pictures, another program in it, and what lets a window
# stand at the side of its screen.
packages_wayland=(sway wtype grim foot libgtk-layer-shell0)
# The compiler, linker and headers with which the macOS half is checked on another system.
packages_macos=(clang-19 lld-19 libc++-19-dev libc++abi-19-dev musl-dev)
# Any one of these: without windows a page costs a third less. Ubuntu has none but as a snap.
packages_browser=(chromium-headless-shell chromium)
packages_test=(libgtest-dev libgmock-dev openssl clang-format clang-tidy procps
               "${packages_display[@]}" "${packages_wayland[@]}")
packages_bench=(libbenchmark-dev python3-uno)

# Installs those of the named packages that are missing; says what it does and asks nothing.
install_packages() {
  local missing=() package
  for package in "$@"; do
    is_installed "$package" || missing+=("$package")
  done
  if [ ${#missing[@]} -eq 0 ]; then return 0; fi
  if ! command -v apt-get >/dev/null; then
    echo "Please install these packages: ${missing[*]}" >&2
    return 1
  fi
  echo "Installing ${missing[*]}"
  refresh_lists && apt_install "${missing[@]}"
}

# install_where_there WHAT package...: installs the packages where this system has all of them; else
# says what goes without them, and does nothing.
install_where_there() {
  local what=$1 package
  shift
  for package in "$@"; do
    if ! is_installed "$package" && ! is_offered "$package"; then
      echo "This system has no package $package: $what is left out, all else works without it."
      return 0
    fi
  done
  install_packages "$@"
}

# install_one_where_there WHAT package...: installs the first of the packages that this system has; else
# as install_where_there.
install_one_where_there() {
  local what=$1 package
  shift
  for package in "$@"; do
    if is_installed "$package" || is_offered "$package"; then
      install_packages "$package"
      return
    fi
  done
  install_where_there "$what" "$1"
}

# clang with libFuzzer, which comes in a package of each version's own.
install_fuzz_packages() {
  install_packages clang llvm
  install_packages "libclang-rt-$(clang -dumpversion | cut -d. -f1)-dev"
}

is_installed() {
  dpkg-query -W -f='${Status}' "$1" 2>/dev/null | grep -q 'ok installed'
}

# Whether the package can be had. A machine that is new may have no lists of packages yet, or old
# ones.
is_offered() {
  [ -n "$(apt-cache madison "$1" 2>/dev/null)" ] ||
    { command -v apt-get >/dev/null && refresh_lists && [ -n "$(apt-cache madison "$1")" ]; }
}

# Once is enough.
refresh_lists() {
  if [ -n "${lists_are_fresh:-}" ]; then return 0; fi
  as_root apt-get update -qq && lists_are_fresh=yes
}

# Installs packages by their names, or by the paths of package files.
apt_install() {
  as_root env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "$@" >/dev/null
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then
    "$@"
  elif command -v sudo >/dev/null; then
    sudo "$@"
  else
    echo "This has to be done as root: $*" >&2
    return 1
  fi
}

# Node comes from Debian unless the machine has one already (other sources pack npm into nodejs).
install_node() {
  if command -v node >/dev/null && command -v npm >/dev/null; then return 0; fi
  install_packages nodejs npm
}
