#!/bin/bash
# Signs a built Quorin.app, what lies inside first and the application last.
#
#   sign_mac.sh APPLICATION -            for this machine alone
#   sign_mac.sh APPLICATION IDENTITY     with an identity of the keychain and the hardened runtime
set -euo pipefail
app=${1:?"which application?"}
identity=${2:?"which identity?"}
entitlements=$(cd "$(dirname "$0")/../.." && pwd)/app/macos/Quorin.entitlements

# Apple notarizes only what bears its time stamp, and stamps nothing of one's own making.
stamp=--timestamp=none
case $identity in "Developer ID"*) stamp=--timestamp ;; esac

sign() {
  if [ "$identity" = - ]; then
    # Without the hardened runtime: library validation refuses frameworks signed like this.
    codesign --force --sign - "$@"
  else
    codesign --force --options runtime $stamp --sign "$identity" "$@"
  fi
}

sparkle=$app/Contents/Frameworks/Sparkle.framework
if [ -d "$sparkle" ]; then
  for inside in XPCServices/Installer.xpc XPCServices/Downloader.xpc Autoupdate Updater.app; do
    if [ -e "$sparkle/Versions/B/$inside" ]; then sign "$sparkle/Versions/B/$inside"; fi
  done
  sign "$sparkle"
fi
sign --entitlements "$entitlements" "$app"
codesign --verify --strict "$app"
