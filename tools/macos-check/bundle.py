"""What surrounds the program: Info.plist, entitlements, the build's lists, signing."""
import plistlib
import re
import struct
import subprocess


def information(folder):
    path = folder / "Info.plist.in"
    if not path.exists():
        yield "app/macos/Info.plist.in is missing"
        return
    values = plistlib.loads(path.read_bytes())
    expected = {
        "CFBundlePackageType": lambda v: v == "APPL",
        "CFBundleIdentifier": lambda v: v == "com.quorin.app",
        "CFBundleName": lambda v: v == "Quorin",
        "CFBundleIconFile": lambda v: v == "Quorin",
        "CFBundleExecutable": lambda v: v == "Quorin",
        "CFBundleShortVersionString": lambda v: v == "@PROJECT_VERSION@",
        "CFBundleVersion": lambda v: v == "@PROJECT_VERSION@",
        "LSMinimumSystemVersion": lambda v: v == "13.0",
        "LSUIElement": lambda v: v is True,
        "NSPrincipalClass": lambda v: v == "NSApplication",
        "NSHighResolutionCapable": lambda v: v is True,
        "NSAppleEventsUsageDescription": lambda v: isinstance(v, str) and len(v) > 20,
        "QXSupportEmail": lambda v: v == "@QUORIN_SUPPORT_EMAIL@",
        "SUEnableAutomaticChecks": lambda v: v is False,
        "SUFeedURL": lambda v: v == "@QUORIN_UPDATE_FEED@",
        "SUPublicEDKey": lambda v: v == "@QUORIN_UPDATE_KEY@",
    }
    for key, fits in expected.items():
        if key not in values:
            yield f"Info.plist has no {key}"
        elif not fits(values[key]):
            yield f"Info.plist: {key} is {values[key]!r}"


def entitlements(folder):
    path = folder / "Quorin.entitlements"
    if not path.exists():
        yield "app/macos/Quorin.entitlements is missing"
        return
    values = plistlib.loads(path.read_bytes())
    if values.get("com.apple.security.automation.apple-events") is not True:
        yield "entitlements: Apple events are not allowed"
    if values.get("com.apple.security.app-sandbox"):
        yield "entitlements: in the sandbox Excel cannot be reached"


def build_lists(folder):
    path = folder / "CMakeLists.txt"
    if not path.exists():
        yield "app/macos/CMakeLists.txt is missing"
        return
    text = re.sub(r"#[^\n]*", "", path.read_text())
    named = set(re.findall(r"[\w/+-]+\.mm\b", text))
    for source in sorted(folder.rglob("*.mm")):
        if source.relative_to(folder).as_posix() not in named:
            yield f"{source.name} is not in app/macos/CMakeLists.txt"
    for needed, why in (
            ("-fobjc-arc", "the adapters rely on automatic reference counting"),
            ("MACOSX_BUNDLE", "an application is a bundle"),
            ("MACOSX_BUNDLE_INFO_PLIST", "the bundle needs our Info.plist"),
            ("MACOSX_PACKAGE_LOCATION Resources/web", "the page lies at web/ in the resources"),
            ("MACOSX_PACKAGE_LOCATION Resources)", "the icons lie in the resources"),
            ("Quorin.icns MenuBarIcon.png MenuBarIcon@2x.png", "the icons belong to the bundle")):
        if needed not in text:
            yield f"app/macos/CMakeLists.txt: no {needed}: {why}"


def png_size(data):
    """Width and height of a PNG, or none."""
    if data[:8] != b"\x89PNG\r\n\x1a\n":
        return None
    return struct.unpack(">II", data[16:24])


def icons(folder):
    resources = folder / "resources"
    for name, pixels in (("MenuBarIcon.png", 18), ("MenuBarIcon@2x.png", 36)):
        path = resources / name
        size = png_size(path.read_bytes()) if path.exists() else None
        if size != (pixels, pixels):
            yield f"{name} is no image of {pixels} pixels: {size}"
    path = resources / "Quorin.icns"
    data = path.read_bytes() if path.exists() else b""
    if data[:4] != b"icns" or struct.unpack(">I", data[4:8])[0] != len(data):
        yield "Quorin.icns is no icon file"
        return
    needed = {b"ic07": 128, b"ic08": 256, b"ic09": 512, b"ic10": 1024}
    position = 8
    while position < len(data):
        kind, length = data[position:position + 4], struct.unpack(
            ">I", data[position + 4:position + 8])[0]
        pixels = needed.pop(kind, None)
        if pixels and png_size(data[position + 8:position + length]) != (pixels, pixels):
            yield f"Quorin.icns: {kind.decode()} has not {pixels} pixels"
        position += max(length, 8)
    for kind in needed:
        yield f"Quorin.icns has no {kind.decode()}"


def signing(project, folder):
    scripts = [path for path in folder.rglob("*") if path.suffix in (".sh", ".txt")]
    scripts += sorted((project / "tools/dev").glob("*_mac.sh"))
    for path in [*scripts, project / "run"]:
        if not path.is_file():
            continue
        if path.suffix != ".txt":
            parsed = subprocess.run(["bash", "-n", path], capture_output=True, text=True,
                                    check=False)
            if parsed.returncode != 0:
                yield f"{path.name}: {parsed.stderr.strip()}"
        # It signs what lies inside with the entitlements of the outermost.
        if re.search(r"codesign[^\n]*--deep(?![^\n]*--verify)", path.read_text()):
            yield f"{path.name}: signed with --deep"


def findings(project, folder):
    return [*information(folder), *entitlements(folder), *build_lists(folder),
            *icons(folder), *signing(project, folder)]
