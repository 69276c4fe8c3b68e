"""What is around the panel, as the desktop and the user's hands reach it: global keys, the menu over
the session bus, alerts, crash reports, the end. Part of panel_test.py."""
import json
import os
import pathlib
import re
import shutil
import signal
import subprocess
import time
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


class ShellTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.desk = Quorin.desk
        cls.folder = cls.desk.folder / "shell"
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

    @classmethod
    def tearDownClass(cls):
        cls.bus.terminate()
        cls.bus.wait()

    def start(self, *arguments, **options):
        options.setdefault("QX_DEV_URL", f"file://{self.page}")
        quorin = Quorin(*arguments, XDG_CONFIG_HOME=str(self.folder / "config"),
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
        wait_for("the keyboard", lambda: self.is_alert(self.desk.active()))
        self.desk.tool("xdotool", "key", key)
        wait_for("the alert to go", lambda: not quorin.panel.ask("alert"))

    def is_alert(self, window):
        run = subprocess.run(["xprop", "-id", str(window), "WM_CLASS", "_NET_WM_WINDOW_TYPE"],
                             env=self.environment, capture_output=True, text=True, check=False)
        return "uorin" in run.stdout and "DIALOG" in run.stdout

    def desktop_folder(self):
        folder = self.folder / "desktop"
        shutil.rmtree(folder, ignore_errors=True)
        folder.mkdir()
        (self.folder / "config").mkdir(exist_ok=True)
        (self.folder / "config" / "user-dirs.dirs").write_text(f'XDG_DESKTOP_DIR="{folder}"\n')
        return folder

    def zipped(self, folder):
        file, = wait_for("the report", lambda: list(folder.glob("Quorin-*.zip")))
        with zipfile.ZipFile(file) as archive:
            return {pathlib.PurePath(name).name: archive.read(name).decode()
                    for name in archive.namelist() if not name.endswith("/")}

    def test_keys_bring_its_views_up_while_calc_is_in_front(self):
        self.desk.bring_other_forward()
        quorin = self.start()
        quorin.logs("RESTORE")
        self.desk.tool("xdotool", "key", "ctrl+alt+Right")
        self.desk.bring_calc_forward()
        quorin.is_shown()
        self.desk.keys("ctrl+alt+Right", "ctrl+alt+Left")
        wait_for("the steps", lambda: self.events(quorin, "step") == [{"dir": 1}, {"dir": -1}])
        self.desk.bring_other_forward()
        quorin.is_hidden()
        for key, view, how in (("a", "tree", "key=false visible=false excelFrontmost=false"),
                               ("s", "deps", "key=true visible=true excelFrontmost=false"),
                               ("d", "map", "key=false visible=true excelFrontmost=true")):
            if view == "map":
                self.desk.bring_calc_forward()
            self.desk.tool("xdotool", "key", f"alt+shift+{key}")
            quorin.logs(f"HOTKEY {view} {how}")
            wait_for("the keyboard", lambda: quorin.window()["key"])
        wait_for("all events", lambda: len(self.events(quorin, "surface")) == 3)
        self.assertEqual(self.events(quorin, "surface"), [
            {"name": "tree", "wasVisible": False, "wasKey": False},
            {"name": "deps", "wasVisible": True, "wasKey": True},
            {"name": "map", "wasVisible": True, "wasKey": False}])
        self.assertFalse([line for line in quorin.log() if "register failed" in line])

    def test_the_menu_pauses_clears_and_quits(self):
        self.desk.bring_other_forward()
        quorin = self.start()
        menu = self.menu(quorin)
        titles = menu.titles()
        self.assertEqual(titles[:5] + titles[6:], [
            "Open Auditor", "Pause Follow", "Clear Stuck Highlights", "Open Diagnostic Log",
            "Report a Problem…", "Start at Login (installed app only)", "", "Quit Quorin"])
        self.assertTrue(titles[5].startswith("Check for Updates…"))
        self.assertFalse(menu.items()[6][2])
        menu.click("Open Auditor")
        quorin.is_shown()
        wait_for("the event", lambda: self.events(quorin, "summon"))
        menu.click("Pause Follow")
        menu.click("Resume Follow")
        wait_for("the events", lambda: self.events(quorin, "followState") ==
                 [{"paused": True}, {"paused": False}])
        self.assertTrue(menu.item("Pause Follow"))
        menu.click("Clear Stuck Highlights")
        self.assertEqual(self.alert(quorin)["message"], "Removed 0 highlights")
        self.answer(quorin)
        menu.click("Quit Quorin")
        self.assertEqual(quorin.process.wait(60), 0)
        self.assertEqual(quorin.log()[-1], "TERMINATE quit")

    def test_the_installed_program_starts_with_the_session(self):
        prefix = self.folder / "prefix"
        (prefix / "bin").mkdir(parents=True)
        (prefix / "share" / "quorin").mkdir(parents=True)
        program = prefix / "bin" / "quorin"
        shutil.copy(Quorin.program, program)
        quorin = self.start(program=program)
        menu = self.menu(quorin)
        file = self.folder / "config" / "autostart" / "quorin.desktop"
        menu.click("Start at Login")
        quorin.logs("LOGIN register enabled")
        self.assertIn(f'\nExec="{program}"\n', file.read_text())
        self.assertTrue(menu.item("Start at Login")[3])
        file.write_text(file.read_text() + "Hidden=true\n")
        menu.menu("AboutToShow", "0")
        wait_for("the mark to go", lambda: not menu.item("Start at Login")[3])
        menu.click("Start at Login")
        wait_for("the mark", lambda: menu.item("Start at Login")[3])
        menu.click("Start at Login")
        quorin.logs("LOGIN unregister notRegistered")
        self.assertFalse(file.exists())

    def test_offers_a_report_after_a_crash_and_only_then(self):
        desktop = self.desktop_folder()
        quorin = self.start("--show")
        quorin.logs("RESTORE")
        quorin.is_shown()
        os.kill(quorin.process.pid, signal.SIGSEGV)
        self.assertEqual(quorin.process.wait(60), -signal.SIGSEGV)
        crash, = (quorin.folder / "state" / "Logs" / "DiagnosticReports").glob("Quorin-*.ips")
        report = crash.read_text()
        self.assertRegex(report, r"^Quorin [0-9.]+\nDate: ")
        self.assertIn("\nSignal: 11 SIGSEGV\n", report)
        self.assertIn(" qx.excel\n", report)
        self.assertRegex(report, r"\n  \d+ libglib-2\.0\.so[.0-9]*\+0x[0-9a-f]+\n")

        # Launches are remembered in whole seconds.
        wait_for("the next second", lambda: int(time.time()) > int(crash.stat().st_mtime))
        again = self.start(after=quorin, wait=False)
        self.assertEqual(self.alert(again), {
            "message": "Quorin crashed last time",
            "informativeText": "Send a report? A zip with the crash log and the diagnostic log (no "
                               "cell contents) is saved to your Desktop; you attach it to an email.",
            "buttons": ["Report…", "Not Now"]})
        again.logs("SUPPORT crash report found since last launch")
        self.assertFalse([line for line in again.log()[-1:] if "RESTORE" in line])
        self.answer(again)
        found = self.zipped(desktop)
        self.assertEqual(set(found), {"quorin.log", "system.txt", crash.name})
        self.assertEqual(found[crash.name], report)
        self.assertIn("SUPPORT crash report found since last launch", found["quorin.log"])
        self.assertRegex(found["system.txt"], r"^Quorin \S+\nLinux .+\nLibreOffice \d+\.\S+\n$")
        wait_for("the rest of the start",
                 lambda: sum("RESTORE" in line for line in again.log()) == 2)
        self.assertEqual(list(pathlib.Path(again.environment["TMPDIR"]).glob("Quorin-*")), [])
        again.end()

        third = self.start(after=again)
        wait_for("its start", lambda: sum("RESTORE" in line for line in third.log()) == 3)
        self.assertIsNone(third.panel.ask("alert"))

    def test_reports_a_problem_without_a_crash(self):
        desktop = self.desktop_folder()
        quorin = self.start()
        self.menu(quorin).click("Report a Problem…")
        found = self.zipped(desktop)
        self.assertEqual(set(found), {"quorin.log", "system.txt"})
        self.assertIn(" LAUNCH ", found["quorin.log"])

    def test_ends_beside_a_calc_that_is_stopped(self):
        self.desk.bring_calc_forward()
        quorin = self.start("--show")
        quorin.logs("RESTORE")
        os.killpg(self.desk.office.pid, signal.SIGSTOP)
        try:
            self.menu(quorin).click("Quit Quorin")
            self.assertEqual(quorin.process.wait(60), 0)
        finally:
            os.killpg(self.desk.office.pid, signal.SIGCONT)
        self.assertEqual(quorin.log()[-1], "TERMINATE quit")

    def mark(self, quorin, *cells):
        sheet = self.desk.cell()["sheet"]
        words = json.dumps([[f"{sheet}!{cell}" for cell in cells], [255, 0, 0]])
        quorin.panel.eval("webkit.messageHandlers.qx.postMessage("
                          f"{{id: 1, verb: 'markCells', args: {words}}}), 0")
        wait_for("the mark", lambda: self.desk.cell()["shapes"] > 0)

    def test_takes_its_marks_away_when_it_ends(self):
        self.assertEqual(self.desk.cell()["shapes"], 0)
        quorin = self.start()
        quorin.logs("RESTORE")
        record = quorin.folder / "data" / "Quorin" / "highlights.json"
        self.mark(quorin, "B2", "C5:D6")
        self.assertTrue(record.exists())
        self.menu(quorin).click("Quit Quorin")
        self.assertEqual(quorin.process.wait(60), 0)
        self.assertEqual(quorin.log()[-1], "TERMINATE quit")
        self.assertEqual(self.desk.cell()["shapes"], 0)
        self.assertFalse(record.exists())

    def test_its_marks_go_when_it_is_killed(self):
        quorin = self.start()
        quorin.logs("RESTORE")
        self.mark(quorin, "B2")
        quorin.process.kill()
        wait_for("the marks to go", lambda: self.desk.cell()["shapes"] == 0)
        again = self.start(after=quorin)
        wait_for("the restore", lambda: sum("RESTORE" in line for line in again.log()) == 2)
        self.assertFalse((quorin.folder / "data" / "Quorin" / "highlights.json").exists())
