#!/usr/bin/env python3
"""Draws the macOS icons from packaging/icons: the application's Quorin.icns and the menu bar's
template image MenuBarIcon.png, black and clear, in two sizes. Their results are kept in
app/macos/resources, so that this runs only when a drawing has changed.

usage: make_mac_icons.py      (needs gdk-pixbuf-thumbnailer with its SVG loader)
"""
import pathlib
import struct
import subprocess
import tempfile

PROJECT = pathlib.Path(__file__).resolve().parent.parent.parent
DRAWINGS = PROJECT / "packaging/icons"
RESOURCES = PROJECT / "app/macos/resources"
# The parts of an icon file that hold a PNG, with their pixels.
PARTS = ((b"ic11", 32), (b"ic12", 64), (b"ic07", 128), (b"ic13", 256), (b"ic08", 256),
         (b"ic14", 512), (b"ic09", 512), (b"ic10", 1024))
TEMPLATES = (("MenuBarIcon.png", 18), ("MenuBarIcon@2x.png", 36))


def drawn(svg, pixels, folder):
    """The drawing as a PNG."""
    scaled = folder / "drawing.svg"
    scaled.write_text(svg)
    image = folder / "image.png"
    subprocess.run(["gdk-pixbuf-thumbnailer", "-s", str(pixels), scaled, image], check=True)
    return image.read_bytes()


def sized(svg, pixels):
    """The drawing with this many pixels as its own size, for it is only ever made smaller."""
    head, _, rest = svg.partition("viewBox")
    before, _, _ = head.rpartition("<svg")
    return f'{before}<svg xmlns="http://www.w3.org/2000/svg" width="{pixels}" ' \
           f'height="{pixels}" viewBox{rest}'


def main():
    RESOURCES.mkdir(exist_ok=True)
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        icon = (DRAWINGS / "quorin.svg").read_text()
        body = b"".join(kind + struct.pack(">I", len(png) + 8) + png for kind, png in
                        ((kind, drawn(sized(icon, pixels), pixels, folder))
                         for kind, pixels in PARTS))
        (RESOURCES / "Quorin.icns").write_bytes(b"icns" + struct.pack(">I", len(body) + 8) + body)
        symbol = (DRAWINGS / "quorin-symbolic.svg").read_text().replace("#bebebe", "#000000")
        for file, pixels in TEMPLATES:
            (RESOURCES / file).write_bytes(drawn(sized(symbol, pixels), pixels, folder))


if __name__ == "__main__":
    main()
