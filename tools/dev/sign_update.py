#!/usr/bin/env python3
"""Signs a package of a release and writes it into the feed that "Check for Updates…" reads.

usage: sign_update.py new-key KEY
       sign_update.py public-key KEY
       sign_update.py add KEY FEED FOLDER_URL PACKAGE.deb [NOTES.txt]
       sign_update.py sign KEY FEED

new-key makes a private key, which belongs neither into the repository nor onto the server, and
prints the public one, which is what the build is given as QUORIN_UPDATE_KEY; public-key prints that
again. add puts an item for the package into the feed, which is made where it is missing; an item of
the same version and architecture is replaced, all others stay. The package is then to be put on the
server at FOLDER_URL/PACKAGE.deb, before the feed. The feed gets the date of today and a signature
over all of it; add refuses a feed that is not as KEY signed it. sign dates and signs a feed as it
stands, whoever wrote it: look at it first. Needs openssl and dpkg-deb.
"""
import base64
import datetime
import email.utils
import os
import pathlib
import subprocess
import sys
import tempfile
import xml.etree.ElementTree as ET

SPARKLE = "http://www.andymatuschak.org/xml-namespaces/sparkle"
DUBLIN_CORE = "http://purl.org/dc/elements/1.1/"
PUBLIC_KEY_BYTES = 32


class Trouble(Exception):
    pass


def output_of(*command):
    try:
        run = subprocess.run([str(word) for word in command], capture_output=True, check=False)
    except OSError as error:
        raise Trouble(f"{command[0]}: {error.strerror}") from error
    if run.returncode:
        raise Trouble(f"{command[0]}: {run.stderr.decode(errors='replace').strip()}")
    return run.stdout


def sparkle(name):
    return f"{{{SPARKLE}}}{name}"


def new_key(key):
    key = pathlib.Path(key)
    text = output_of("openssl", "genpkey", "-algorithm", "ed25519")
    with open(os.open(key, os.O_WRONLY | os.O_CREAT | os.O_EXCL, 0o600), "wb") as file:
        file.write(text)
    public_key(key)


def public_key(key):
    # The key itself stands at the end of its DER form.
    encoded = output_of("openssl", "pkey", "-in", key, "-pubout", "-outform", "DER")
    print(base64.b64encode(encoded[-PUBLIC_KEY_BYTES:]).decode())


def signature_of(key, content):
    """In base64. That of the same key and content is always the same."""
    with tempfile.NamedTemporaryFile() as file:
        file.write(content)
        file.flush()
        signature = output_of("openssl", "pkeyutl", "-sign", "-rawin", "-inkey", key,
                              "-in", file.name)
    return base64.b64encode(signature)


def signed(key, content):
    return content + b"<!-- signature: " + signature_of(key, content) + b" -->\n"


def is_signed(key, feed):
    content, mark, _ = feed.rpartition(b"<!-- signature: ")
    return bool(mark) and feed == signed(key, content)


def write_feed(key, path, root, date=None):
    channel = root.find("channel")
    element = channel.find(f"{{{DUBLIN_CORE}}}date")
    if element is None:
        element = ET.Element(f"{{{DUBLIN_CORE}}}date")
        channel.insert(0, element)
    date = date or datetime.datetime.now(datetime.timezone.utc)
    element.text = date.strftime("%Y-%m-%dT%H:%M:%SZ")
    ET.register_namespace("sparkle", SPARKLE)
    ET.register_namespace("dc", DUBLIN_CORE)
    ET.indent(root)
    content = ET.tostring(root, encoding="utf-8", xml_declaration=True) + b"\n"
    written = path.with_name(path.name + ".new")
    written.write_bytes(signed(key, content))
    written.replace(path)


def read_feed(path):
    if path.exists():
        root = ET.parse(path).getroot()
        channel = root.find("channel")
        if root.tag != "rss" or channel is None:
            raise Trouble(f"{path} is no feed")
        return root, channel
    root = ET.Element("rss", version="2.0")
    channel = ET.SubElement(root, "channel")
    ET.SubElement(channel, "title").text = "Quorin"
    return root, channel


def is_of(item, version, system):
    return (item.findtext(sparkle("version")) == version
            and any(one.get(sparkle("os")) == system for one in item.findall("enclosure")))


def add(key, feed, folder_url, package, notes=None):
    feed, package = pathlib.Path(feed), pathlib.Path(package)
    if not folder_url.startswith("https://"):
        raise Trouble(f"{folder_url} is no https address")
    name, version, architecture = output_of(
        "dpkg-deb", "--show", "--showformat=${Package}\n${Version}\n${Architecture}",
        package).decode().split("\n")
    if name != "quorin":
        raise Trouble(f"{package} is a package of {name}")
    signature = output_of("openssl", "pkeyutl", "-sign", "-rawin", "-inkey", key, "-in", package)
    system = f"linux-{architecture}"

    if feed.exists() and not is_signed(key, feed.read_bytes()):
        raise Trouble(f"{feed} is not as this key signed it")
    root, channel = read_feed(feed)
    for item in channel.findall("item"):
        if is_of(item, version, system):
            channel.remove(item)
    item = ET.SubElement(channel, "item")
    ET.SubElement(item, "title").text = f"Quorin {version}"
    ET.SubElement(item, "pubDate").text = email.utils.formatdate()
    ET.SubElement(item, sparkle("version")).text = version
    if notes:
        description = ET.SubElement(item, "description",
                                    {sparkle("descriptionFormat"): "plain-text"})
        description.text = pathlib.Path(notes).read_text(encoding="utf-8").strip()
    ET.SubElement(item, "enclosure", {
        "url": f"{folder_url.rstrip('/')}/{package.name}",
        "length": str(package.stat().st_size),
        "type": "application/vnd.debian.binary-package",
        sparkle("os"): system,
        sparkle("edSignature"): base64.b64encode(signature).decode(),
    })

    write_feed(key, feed, root)
    print(f"{feed}: Quorin {version} for {system}")


def sign(key, feed):
    feed = pathlib.Path(feed)
    if not feed.exists():
        raise Trouble(f"{feed} is not there")
    root, _ = read_feed(feed)
    write_feed(key, feed, root)


def main():
    commands = {"new-key": (new_key, (1,)), "public-key": (public_key, (1,)), "add": (add, (4, 5)),
                "sign": (sign, (2,))}
    command, counts = commands.get(sys.argv[1] if len(sys.argv) > 1 else "", (None, ()))
    if command is None or len(sys.argv) - 2 not in counts:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    try:
        command(*sys.argv[2:])
    except (Trouble, OSError, ET.ParseError, UnicodeDecodeError) as error:
        print(f"sign_update.py: {error}", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
