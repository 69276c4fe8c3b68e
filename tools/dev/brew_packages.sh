# What a Mac needs to build Quorin, as Homebrew names it. Sourced by run_mac.sh and test_mac.sh.

brew_build=(cmake ninja node rapidjson utf8proc cli11 pkgconf)
brew_test=(googletest libzip pugixml)

# Installs those of the named packages that are missing; says what it does and asks nothing.
install_brew_packages() {
  if ! xcode-select -p >/dev/null 2>&1; then
    echo "Please install Xcode's command-line tools first: xcode-select --install" >&2
    return 1
  fi
  # What the adapters name appeared in that SDK; the program itself runs on macOS 13.
  local sdk
  sdk=$(xcrun --sdk macosx --show-sdk-version)
  if [ "${sdk%%.*}" -lt 14 ]; then
    echo "Quorin needs the SDK of macOS 14 or newer and this is $sdk: please update Xcode's" \
      "command-line tools (System Settings, General, Software Update)" >&2
    return 1
  fi
  if ! command -v brew >/dev/null; then
    echo "Please install Homebrew first: https://brew.sh" >&2
    return 1
  fi
  local package
  for package in "$@"; do
    if ! brew list --formula "$package" >/dev/null 2>&1; then
      echo "Installing $package"
      HOMEBREW_NO_AUTO_UPDATE=1 brew install --quiet "$package"
    fi
  done
}
