#!/bin/bash
# Makes a release that every Mac opens: signs Quorin.app with a Developer ID, lets Apple notarize it
# and staples the ticket. The result is build/mac/Quorin.zip.
#
#   notarize_mac.sh IDENTITY PROFILE
#
# IDENTITY is "Developer ID Application: …"; PROFILE was stored once with
#   xcrun notarytool store-credentials PROFILE
# Build before with ./run --sign IDENTITY and the release's own values (docs/macos.md).
set -euo pipefail
identity=${1:?"which identity?"}
profile=${2:?"which profile of notarytool?"}
cd "$(dirname "$0")/../.."
app=build/mac/app/macos/Quorin.app
zip=build/mac/Quorin.zip

value() { /usr/libexec/PlistBuddy -c "Print :$1" "$app/Contents/Info.plist"; }
for key in SUFeedURL SUPublicEDKey QXSupportEmail; do
  if [ -z "$(value $key)" ]; then
    echo "$app has no $key: a release needs it (docs/macos.md)" >&2
    exit 1
  fi
done

tools/dev/sign_mac.sh "$app" "$identity"
rm -f "$zip"
ditto -c -k --keepParent "$app" "$zip"
xcrun notarytool submit "$zip" --keychain-profile "$profile" --wait
xcrun stapler staple "$app"
rm -f "$zip"
ditto -c -k --keepParent "$app" "$zip"
spctl --assess --type execute --verbose "$app"
echo "$zip is ready"
