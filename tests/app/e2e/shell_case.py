"""What tests of the program in its desktop share: a session bus, the menu over it, alerts and the
programs that open files and addresses."""
import json
import pathlib
import re
import shutil
import subprocess
import unittest
import zipfile

from desk import Quorin
from try_panel import wait_for

PAGE = """<!doctype html><title>test</title><script>
window.events = [];
window.__qxResolve = () => {};
window.__qxEvent = (name, payload) => { events.push([name, payload]); };
</script><body><p>test"""

BUS = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:path=%s</listen><policy context="default">
<allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/>
</policy></busconfig>"""


# The user's one program for everything: it writes down what it is given.
OPENER = """[Desktop Entry]
Type=Application
Name=Opener
Exec=%s %%u
"""
OPENED_TYPES = ("x-scheme-handler/mailto", "text/x-log", "text/plain",
                "application/vnd.debian.binary-package")


class Menu:
    """The menu as a bar of the desktop has it."""

    def __init__(self, quorin, environment):
        self.environment = environment
        self.owner = wait_for("Quorin on the bus", lambda: self.connection_of(quorin.process.pid))
        wait_for("the menu", self.items)

    def call(self, *words):
        run = subprocess.run(["gdbus", "call", "--session", *words], env=self.environment,
                             capture_output=True, text=True, check=False)
        return run.stdout if run.returncode == 0 else ""

    def connection_of(self, pid):
        bus = ("-d", "org.freedesktop.DBus", "-o", "/org/freedesktop/DBus", "-m")
        names = re.findall(r"':[0-9.]+'", self.call(*bus, "org.freedesktop.DBus.ListNames"))
        for name in names:
            owner = self.call(*bus, "org.freedesktop.DBus.GetConnectionUnixProcessID", name)
            if re.search(rf"\b{pid},", owner):
                return name.strip("'")
        return None

    def menu(self, method, *words):
        return self.call("-d", self.owner, "-o", "/org/ayatana/NotificationItem/quorin/Menu",
                         "-m", f"com.canonical.dbusmenu.{method}", *words)

    def items(self):
        """Number, title, enabled and checked, of every item in order."""
        found = []
        for number, told in re.findall(r"<\((\d+), \{(.*?)\}, @av \[\]\)>",
                                       self.menu("GetLayout", "0", "--", "-1", "[]")):
            label = re.search(r"'label': <'(.*?)'>", told)
            found.append((number, label.group(1) if label else "",
                          "'enabled': <false>" not in told, "'toggle-state': <1>" in told))
        return found

    def titles(self):
        return [title for _, title, _, _ in self.items()]

    def item(self, title):
        return next((item for item in self.items() if item[1] == title), None)

    def click(self, title):
        self.menu("AboutToShow", "0")
        number = wait_for(f"the item {title}", lambda: self.item(title))[0]
        self.menu("Event", number, "clicked", "<0>", "0")


class ShellCase(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desk = Quorin.desk
        cls.folder = cls.desk.folder / cls.__name__
        cls.folder.mkdir()
        address = cls.folder / "bus"
        (cls.folder / "bus.conf").write_text(BUS % address)
        cls.bus = cls.desk.start("dbus-daemon", "--nofork",
                                 f"--config-file={cls.folder / 'bus.conf'}")
        wait_for("the bus", address.exists)
        cls.environment = dict(cls.desk.environment,
                               DBUS_SESSION_BUS_ADDRESS=f"unix:path={address}")
        cls.page = cls.folder / "page.html"
        cls.page.write_text(PAGE)
        cls.opened = cls.folder / "opened"
        program = cls.folder / "opener"
        program.write_text(f'#!/bin/sh\nprintf "%s\\n" "$1" >>"{cls.opened}"\n')
        program.chmod(0o755)
        for folder in ("config", "share/applications"):
            (cls.folder / folder).mkdir(parents=True)
        (cls.folder / "share/applications/opener.desktop").write_text(OPENER % program)
        # All that the desktop shares but its programs, of which none is to start.
        for shared in pathlib.Path("/usr/share").iterdir():
            if shared.name != "applications":
                (cls.folder / "share" / shared.name).symlink_to(shared)

    @classmethod
    def tearDownClass(cls):
        cls.bus.terminate()
        cls.bus.wait()

    def setUp(self):
        self.opened.unlink(missing_ok=True)
        self.open_with("opener.desktop")

    def open_with(self, program):
        """The program for files and addresses: the opener, or none."""
        (self.folder / "config" / "mimeapps.list").write_text("[Default Applications]\n" + "".join(
            f"{kind}={program}\n" for kind in OPENED_TYPES))

    def is_opened(self, what):
        """The one thing that the opener was given."""
        told, = wait_for(f"{what} to be opened", lambda: self.opened.exists() and
                         self.opened.read_text().endswith("\n") and
                         self.opened.read_text().splitlines())
        return told

    def start(self, *arguments, page="test", **options):
        """With the test's page, or Quorin's own."""
        if page == "test":
            options.setdefault("QX_DEV_URL", f"file://{self.page}")
        quorin = Quorin(*arguments, XDG_CONFIG_HOME=str(self.folder / "config"),
                        XDG_DATA_DIRS=str(self.folder / "share"),
                        DBUS_SESSION_BUS_ADDRESS=self.environment["DBUS_SESSION_BUS_ADDRESS"],
                        **options)
        self.addCleanup(quorin.end)
        return quorin

    def menu(self, quorin):
        return Menu(quorin, self.environment)

    def events(self, quorin, name):
        return [payload for told, payload in quorin.panel.eval("events") if told == name]

    def alert(self, quorin):
        return wait_for("an alert", lambda: quorin.panel.ask("alert"))

    def answer(self, quorin, key="Return"):
        """By the keyboard, which the alert has taken."""
        shown = self.alert(quorin)
        wait_for("the keyboard", lambda: self.is_alert(self.desk.active()))
        self.desk.tool("xdotool", "key", key)
        wait_for("the alert to go", lambda: quorin.panel.ask("alert") != shown)

    def is_alert(self, window):
        run = subprocess.run(["xprop", "-id", str(window), "WM_CLASS", "_NET_WM_WINDOW_TYPE"],
                             env=self.environment, capture_output=True, text=True, check=False)
        return "uorin" in run.stdout and "DIALOG" in run.stdout

    def desktop_folder(self):
        folder = self.folder / "desktop"
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        (self.folder / "config" / "user-dirs.dirs").write_text(f'XDG_DESKTOP_DIR="{folder}"\n')
        return folder

    def zipped(self, folder):
        file, = wait_for("the report", lambda: list(folder.glob("Quorin-*.zip")))
        with zipfile.ZipFile(file) as archive:
            return {pathlib.PurePath(name).name: archive.read(name).decode()
                    for name in archive.namelist() if not name.endswith("/")}

    def page_is_loaded(self, quorin):
        """What is asked of the page before that is lost with the empty one that it replaces."""
        wait_for("the page", lambda: quorin.panel.eval("typeof events") == "object")

    def record_of_marks(self, quorin):
        return quorin.folder / "data" / "Quorin" / "highlights.json"

    def mark(self, quorin, *cells):
        self.page_is_loaded(quorin)
        sheet = self.desk.cell()["sheet"]
        words = json.dumps([[f"{sheet}!{cell}" for cell in cells], [255, 0, 0]])
        quorin.panel.eval("webkit.messageHandlers.qx.postMessage("
                          f"{{id: 1, verb: 'markCells', args: {words}}}), 0")
        wait_for("the mark", lambda: self.desk.cell()["shapes"] > 0)
