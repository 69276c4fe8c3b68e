"""The program as its makers publish it, with a feed of newer versions and an address for reports,
beside the server of the makers. Part of panel_test.py."""
import datetime
import http.server
import pathlib
import ssl
import subprocess
import sys
import threading
import urllib.parse
import xml.etree.ElementTree as ET

from desk import ROOT, Quorin
from shell_case import ShellCase
from try_panel import wait_for

SIGN = ROOT / "tools" / "dev" / "sign_update.py"
sys.path.insert(0, str(SIGN.parent))
import sign_update  # pylint: disable=wrong-import-position
VERSION = "99.0.0"


class Server:
    """Serves on the address that the build has, over its certificate: files, or what a test says."""

    def __init__(self, keys, address):
        self.keys, self.address = keys, urllib.parse.urlsplit(address)
        self.answers = {}  # path: status, headers, body
        self.asked = []
        self.go_on = threading.Event()  # halfway through a body that is held
        self.held = set()
        self.server = None

    def start(self):
        this = self

        class Handler(http.server.BaseHTTPRequestHandler):
            def do_GET(self):
                this.asked.append(self.path)
                status, headers, body = this.answers.get(self.path, (404, {}, b""))
                self.send_response(status)
                for name, value in {"Content-Length": len(body), **headers}.items():
                    self.send_header(name, value)
                self.end_headers()
                half = len(body) // 2 if self.path in this.held else 0
                self.wfile.write(body[:half])
                if half:
                    self.wfile.flush()
                    this.go_on.wait(60)
                self.wfile.write(body[half:])

            def log_message(self, *_):
                pass

        class Listener(http.server.ThreadingHTTPServer):
            def handle_error(self, *_):
                pass  # who is told too much hangs up

        def listening():
            try:
                return Listener((self.address.hostname, self.address.port), Handler)
            except OSError:
                return None  # the same test of another build has it
        self.server = wait_for("the server's address", listening)
        context = ssl.SSLContext(ssl.PROTOCOL_TLS_SERVER)
        context.load_cert_chain(self.keys / "server.pem", self.keys / "server.key")
        self.server.socket = context.wrap_socket(self.server.socket, server_side=True)
        self.thread = threading.Thread(target=self.server.serve_forever)
        self.thread.start()

    def stop(self):
        if self.server:
            self.go_on.set()
            self.server.shutdown()
            self.thread.join()
            self.server.server_close()
            self.server = None


class ReleaseTest(ShellCase):
    released = None  # the program, in the folder of its keys

    @classmethod
    def setUpClass(cls):
        super().setUpClass()
        cls.keys = cls.released.parent
        cls.feed_url = (cls.keys / "feed-address").read_text()
        cls.feed_path = urllib.parse.urlsplit(cls.feed_url).path
        cls.package = cls.make_package(VERSION)
        cls.package_path = f"{cls.feed_path.rpartition('/')[0]}/{cls.package.name}"
        cls.other_key = cls.folder / "other.key"
        cls.sign("new-key", cls.other_key)

    @classmethod
    def sign(cls, *words):
        subprocess.run([sys.executable, SIGN, *map(str, words)], check=True, capture_output=True)

    @classmethod
    def make_package(cls, version):
        architecture = cls.desk.tool("dpkg", "--print-architecture").strip()
        folder = cls.folder / f"package-{version}"
        (folder / "DEBIAN").mkdir(parents=True)
        (folder / "DEBIAN" / "control").write_text(
            f"Package: quorin\nVersion: {version}\nArchitecture: {architecture}\n"
            "Maintainer: Quorin <quorin@example.org>\nDescription: a newer one\n")
        (folder / "filler").write_bytes(bytes(range(256)) * 4000)
        file = cls.folder / f"quorin_{version}_{architecture}.deb"
        cls.desk.tool("dpkg-deb", "-Znone", "--root-owner-group", "--build", folder, file)
        return file

    def feed(self, package=None, key=None):
        feed, notes = self.folder / "feed.xml", self.folder / "notes.txt"
        feed.unlink(missing_ok=True)
        notes.write_text("Reads faster.\nMarks better.\n")
        self.sign("add", key or self.keys / "update.key", feed, self.feed_url.rpartition("/")[0],
                  package or self.package, notes)
        return feed.read_bytes()

    def feed_of(self, days, package=None):
        """Signed that many days ago."""
        feed = self.folder / "old.xml"
        feed.write_bytes(self.feed(package))
        date = datetime.datetime.now(datetime.timezone.utc) - datetime.timedelta(days=days)
        sign_update.write_feed(self.keys / "update.key", feed, ET.parse(feed).getroot(), date)
        return feed.read_bytes()

    def feed_with_package_signed_by_another(self):
        feed = self.folder / "another.xml"
        feed.write_bytes(self.feed(key=self.other_key))
        self.sign("sign", self.keys / "update.key", feed)
        return feed.read_bytes()

    def setUp(self):
        super().setUp()
        self.server = Server(self.keys, self.feed_url)
        self.addCleanup(self.server.stop)
        self.server.answers = {self.feed_path: (200, {}, self.feed()),
                               self.package_path: (200, {}, self.package.read_bytes())}

    def start_released(self):
        self.desk.bring_other_forward()
        quorin = self.start(program=self.released)
        quorin.logs("RESTORE")
        return quorin, self.menu(quorin)

    def test_fetches_a_newer_version_and_hands_it_to_the_installer(self):
        self.server.start()
        self.server.held.add(self.package_path)
        quorin, menu = self.start_released()
        self.assertTrue(menu.item("Check for Updates…")[2])
        menu.click("Check for Updates…")
        alert = self.alert(quorin)
        self.assertEqual(alert["message"], f"Quorin {VERSION} is available")
        self.assertRegex(alert["informativeText"],
                         r"^You have version \d+\.\d+\.\d+\.\n\nReads faster\.\nMarks better\.$")
        self.assertEqual(alert["buttons"], ["Install", "Not Now"])
        self.answer(quorin)
        size = self.package.stat().st_size
        wait_for("half of it", lambda: quorin.panel.ask("progress") ==
                 f"Fetching Quorin {VERSION}: {size // 2 / 1e6:.1f} of {size / 1e6:.1f} MB")
        self.assertFalse(self.opened.exists())
        self.server.go_on.set()
        file = pathlib.Path(self.is_opened("the package"))
        self.assertEqual(file.name, self.package.name)
        self.assertEqual(file.read_bytes(), self.package.read_bytes())
        wait_for("the window to go", lambda: quorin.panel.ask("progress") is None)
        self.assertIsNone(quorin.panel.ask("alert"))
        self.assertEqual(self.server.asked, [self.feed_path, self.package_path])

    def test_changes_nothing_when_something_is_wrong(self):
        newer = f"Quorin {VERSION} is available"
        refused, stopped = "Could not check for updates", "Could not update Quorin"
        older = self.make_package("0.0.1")
        feed = self.feed()
        package = self.package.read_bytes()
        cases = {
            "no network": (None, [refused], "Is this computer connected to the network?"),
            "no feed": ({self.feed_path: (404, {}, b"")}, [refused],
                        "does not have the list of versions. (status 404)"),
            "another host": ({self.feed_path: (302, {"Location": "https://127.0.0.1/feed"}, b"")},
                             [refused], "sends Quorin to another server"),
            "a list that nobody renews": (
                {self.feed_path: (200, {}, self.feed_of(40, older))}, ["Quorin is up to date"],
                "more than 30 days ago. There may be versions that it does not name."),
            "an older version": ({self.feed_path: (200, {}, self.feed(older))},
                                 ["Quorin is up to date"], "the newest one published is 0.0.1."),
            "an older list": ({self.feed_path: (200, {}, self.feed_of(1))}, [refused],
                              "an older list of versions than one that was seen before."),
            "a list signed by another": (
                {self.feed_path: (200, {}, self.feed(key=self.other_key))}, [refused],
                "The list of versions is not what the makers of Quorin signed."),
            "a list that goes on": ({self.feed_path: (200, {}, feed + b"<!-- -->")}, [refused],
                                    "does not end with a signature for all of it."),
            "a package signed by another": (
                {self.feed_path: (200, {}, self.feed_with_package_signed_by_another())},
                [newer, stopped], "The package is not signed by the makers of Quorin."),
            "a changed package": ({self.package_path: (200, {}, package[:-1] + b"x")},
                                  [newer, stopped], "not signed by the makers of Quorin."),
            "a package that breaks off": (
                {self.package_path: (200, {"Content-Length": len(package)}, package[:-1000])},
                [newer, stopped], "The package did not arrive in full."),
            "a package from elsewhere": (
                {self.package_path: (302, {"Location": "https://127.0.0.1/quorin.deb"}, b"")},
                [newer, stopped], "sends Quorin to another server"),
        }
        quorin, menu = self.start_released()
        sound = {**self.server.answers, self.feed_path: (200, {}, self.feed())}  # the newest date
        for name, (answers, messages, reason) in cases.items():
            with self.subTest(name):
                if answers is not None and not self.server.server:
                    self.server.start()
                self.server.answers = {**sound, **(answers or {})}
                menu.click("Check for Updates…")
                for message in messages:
                    alert = self.alert(quorin)
                    self.assertEqual(alert["message"], message)
                    if message != messages[-1]:
                        self.answer(quorin)
                self.assertIn(reason, alert["informativeText"])
                if messages[-1] in (refused, stopped):
                    self.assertTrue(alert["informativeText"].endswith("\n\nNothing was changed."))
                self.answer(quorin)
                self.assertIsNone(quorin.panel.ask("progress"))
                self.assertEqual(list((quorin.folder / "data").rglob("*.deb")), [])
        self.assertFalse(self.opened.exists())

    def test_says_that_nothing_installs_packages(self):
        self.open_with("nobody.desktop")
        self.server.start()
        quorin, menu = self.start_released()
        menu.click("Check for Updates…")
        self.answer(quorin)
        alert = wait_for("the refusal", lambda: (told := quorin.panel.ask("alert")) and
                         "available" not in told["message"] and told)
        self.assertIn("No program on this computer installs packages.", alert["informativeText"])
        self.answer(quorin)
        self.assertEqual(list((quorin.folder / "data").rglob("*.deb")), [])

    def test_writes_a_mail_with_the_report(self):
        desktop = self.desktop_folder()
        quorin, menu = self.start_released()
        menu.click("Report a Problem…")
        mail = urllib.parse.urlsplit(self.is_opened("the mail"))
        self.assertEqual((mail.scheme, mail.path), ("mailto", "help@example.org"))
        written = dict(word.split("=", 1) for word in mail.query.split("&"))
        archive, = desktop.glob("Quorin-*.zip")
        self.assertRegex(urllib.parse.unquote(written["subject"]),
                         r"^Quorin problem \(v\d+\.\d+\.\d+\)$")
        self.assertEqual(urllib.parse.unquote(written["body"]),
                         f"Please attach {archive.name} from your Desktop and describe what "
                         "happened:\n\nWhat I did:\nWhat I expected:\nWhat happened instead:")
        self.assertEqual(set(self.zipped(desktop)), {"quorin.log", "system.txt"})
