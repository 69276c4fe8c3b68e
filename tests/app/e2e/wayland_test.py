#!/usr/bin/env python3
"""The real panel beside a real Calc, both of them programs of a Wayland session, with real keys.

usage: wayland_test.py QUORIN [unittest option...]

The compositor refuses to run as root: all is then started as nobody, in folders that nobody owns.
"""
import json
import os
import pathlib
import pwd
import shutil
import subprocess
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[3]
sys.path.insert(0, str(ROOT / "tools" / "dev"))
from try_panel import Panel, Trial, Trouble, wait_for  # noqa: E402

WIDTH, HEIGHT = 1600, 960
PANEL_WIDTH = 460
CONFIGURATION = f"output HEADLESS-1 resolution {WIDTH}x{HEIGHT}\nxwayland disable\n"
# The session of the user who runs the test is not this one.
NOT_OURS = ("DISPLAY", "WAYLAND_DISPLAY", "SWAYSOCK", "XAUTHORITY", "GDK_BACKEND", "I3SOCK")


class Session(Trial):
    """A compositor, Calc, and another program."""

    def __init__(self, quorin):
        book = pathlib.Path(os.environ.get("TMPDIR", "/tmp")) / f"Wayland-{os.getpid()}.xlsx"
        subprocess.run([sys.executable, ROOT / "samples" / "make-sample.py", book], check=True)
        super().__init__(quorin, book, book.parent)
        book.unlink()
        for name in NOT_OURS:
            self.environment.pop(name, None)
        for name in ("DATA", "STATE"):
            self.environment[f"XDG_{name}_HOME"] = str(self.folder / name.lower())
        self.environment.update(HOME=str(self.folder), WLR_BACKENDS="headless",
                                WLR_LIBINPUT_NO_DEVICES="1", WLR_RENDERER="pixman")
        self.copy_program()
        if os.getuid() == 0:
            nobody = pwd.getpwnam("nobody")
            # Nor may nobody be in the folder that the test runs in: programs end when it is closed to
            # them.
            self.account = {"user": nobody.pw_uid, "group": nobody.pw_gid, "extra_groups": [],
                            "cwd": self.folder}
            self.give_away()

    def copy_program(self):
        """To where whoever runs it can reach it, as it is installed."""
        build = self.quorin.parent
        keeper = next(folder / "libexec" for folder in build.parents
                      if (folder / "libexec" / "quorin").is_dir())
        shutil.copytree(keeper, self.folder / "libexec")
        (self.folder / "bin").mkdir()
        shutil.copytree(build / "resources", self.folder / "bin" / "resources")
        self.quorin = pathlib.Path(shutil.copy(self.quorin, self.folder / "bin"))

    def give_away(self):
        for path in (self.folder, *self.folder.rglob("*")):
            os.chown(path, self.account["user"], self.account["group"], follow_symlinks=False)

    def start_display(self, size=None):
        configuration = self.folder / "sway.conf"
        configuration.write_text(CONFIGURATION)
        self.start("sway", "-c", configuration)
        runtime = self.folder / "runtime"

        def socket(pattern):
            return next((one for one in runtime.glob(pattern) if one.is_socket()), None)
        self.environment["SWAYSOCK"] = str(wait_for("the compositor",
                                                    lambda: socket("sway-ipc.*.sock")))
        self.environment["WAYLAND_DISPLAY"] = wait_for("its display",
                                                       lambda: socket("wayland-*")).name
        # Only with a keyboard of its own does the session have a keyboard at all.
        self.start("wtype", "-s", "3600000", "-k", "Shift_L")
        wait_for("a keyboard", lambda: "keyboard" in self.seats())

    def seats(self):
        try:
            return self.tool("swaymsg", "-t", "get_seats")
        except Trouble:
            return ""  # the compositor has its socket a moment before it listens there

    def start_office(self):
        if self.account:
            (self.folder / "office" / "user").mkdir(parents=True)
            self.give_away()
        super().start_office()

    def windows(self):
        found = []

        def walk(node):
            if node.get("app_id"):
                found.append(node)
            for child in node["nodes"] + node["floating_nodes"]:
                walk(child)
        walk(json.loads(self.tool("swaymsg", "-t", "get_tree")))
        return found

    def calc_window(self):
        return next((one for one in self.windows() if self.workbook.stem in one["name"]), None)

    def other_window(self):
        return next((one for one in self.windows() if one["app_id"] == "foot"), None)

    def bring_forward(self, window):
        self.tool("swaymsg", f"[con_id={window['id']}]", "focus")

    def keys(self, *keys):
        """To whichever window has the keyboard."""
        for key in keys:
            *modifiers, name = key.split("+")
            self.tool("wtype", *(word for one in modifiers for word in ("-M", one)), "-k", name,
                      *(word for one in modifiers for word in ("-m", one)))

    def colours_at_the_side(self):
        """Of the part of the screen where the panel stands, in a picture of it."""
        data = self.tool("grim", "-t", "ppm", "-g",
                         f"{WIDTH - PANEL_WIDTH},0 {PANEL_WIDTH}x{HEIGHT}", "-", text=False)
        pixels = data[-3 * PANEL_WIDTH * HEIGHT:]
        return {pixels[at:at + 3] for at in range(0, len(pixels), 3)}


class WaylandTest(unittest.TestCase):
    def start_quorin(self):
        socket = session.folder / "panel"
        socket.unlink(missing_ok=True)
        session.environment["QX_TEST_SOCKET"] = str(socket)
        self.process = session.start(session.quorin)
        self.addCleanup(self.end)
        wait_for("Quorin", socket.exists)
        self.panel = Panel(socket)
        wait_for("the page", lambda: self.panel.eval(
            "document.readyState == 'complete' && document.body.childElementCount > 0"))

    def window(self):
        return self.panel.ask("window")

    def log(self):
        path = session.folder / "state" / "Logs" / "Quorin" / "quorin.log"
        return path.read_text() if path.exists() else ""

    def shows(self, address):
        return wait_for(f"the panel to show {address}", lambda: (
            lambda now: now if (now["address"] or "").replace("$", "") == address else None)(
                self.panel.shown()))

    def end(self):
        """What a test that failed leaves running would answer the next one's start."""
        if self.process.poll() is None:
            self.process.terminate()
            self.process.wait(30)

    def quit(self):
        self.panel.ask("quit")
        self.assertEqual(self.process.wait(30), 0)

    def bring_other_forward(self):
        if not session.other_window():
            session.start("foot", "sleep", "3600")
        session.bring_forward(wait_for("another window", session.other_window))

    def test_is_an_ordinary_window_where_none_can_stand_at_the_side(self):
        # What is found first is not the library.
        nothing = session.folder / "nothing"
        nothing.mkdir()
        (nothing / "libgtk-layer-shell.so.0").touch()
        session.environment["LD_LIBRARY_PATH"] = str(nothing)
        self.addCleanup(session.environment.pop, "LD_LIBRARY_PATH")
        self.bring_other_forward()
        self.start_quorin()
        self.assertIn("; the compositor places the panel", self.log())
        session.bring_forward(session.calc_window())
        panel = wait_for("the panel", lambda: next((one for one in session.windows()
                                                    if one["name"] == "Quorin"), None))
        self.assertEqual(panel["app_id"], "quorin")
        wait_for("Calc to have the keyboard", lambda: session.calc_window()["focused"])
        session.keys("ctrl+Home", "Down", "Down", "Down")
        self.shows("A4")
        self.assertFalse(self.window()["key"])
        session.tool(session.quorin, "--show", "tree")
        wait_for("the keyboard", lambda: self.window()["key"])
        self.bring_other_forward()
        wait_for("the panel to go", lambda: not self.window()["visible"])
        self.quit()

    def test_follows_a_calc_of_the_same_session_from_launch_to_quit(self):
        self.bring_other_forward()
        self.start_quorin()
        self.assertFalse(self.window()["visible"])
        self.assertIn("COMPANION Wayland session: ", self.log())

        # Comes with Calc, beside it, and leaves the keyboard there.
        calc = session.calc_window()
        session.bring_forward(calc)
        wait_for("the panel", lambda: self.window()["visible"])
        wait_for("Calc to make room", lambda: (lambda rect: rect["x"] + rect["width"])(
            session.calc_window()["rect"]) <= WIDTH - PANEL_WIDTH)
        wait_for("a picture of it", lambda: len(session.colours_at_the_side()) > 40)
        session.keys("ctrl+Home", "Right", "Right", "Right", "Down", "Down")
        # The value stands there as the sheet shows it once the sheet has told that.
        wait_for("the sheet's own text", lambda: self.shows("D3")["value"] == "30,061,500", 30)
        self.assertEqual(self.shows("D3")["formula"], "=Total_Capex")
        self.assertTrue(session.calc_window()["focused"])
        self.assertFalse(self.window()["key"])

        # Takes the keyboard when it is asked for, steps through the formula, and gives both back.
        session.keys("Down", "Down")
        self.shows("D5")
        session.tool(session.quorin, "--show", "tree")
        wait_for("the keyboard", lambda: self.window()["key"])
        session.keys("Down")
        wait_for("a mark", lambda: session.cell()["shapes"] > 0)
        session.keys("Escape")
        wait_for("the mark to go", lambda: session.cell()["shapes"] == 0)
        wait_for("Calc to have the keyboard", lambda: session.calc_window()["focused"])
        self.assertFalse(self.window()["key"])
        session.keys("ctrl+Home", "Down", "Down")
        self.shows("A3")
        self.assertEqual((session.cell()["row"], session.cell()["column"]), (3, 0))

        # Goes when another program comes forward, and comes again with Calc.
        self.bring_other_forward()
        wait_for("the panel to go", lambda: not self.window()["visible"])
        session.bring_forward(calc)
        wait_for("the panel", lambda: self.window()["visible"])
        self.assertFalse(self.window()["key"])

        # Ends, and takes back what it has marked.
        wait_for("Calc to have the keyboard", lambda: session.calc_window()["focused"])
        session.go_to_first_sheet("Summary")
        session.keys("ctrl+Home", "Right", "Right", "Right", *["Down"] * 4)
        self.assertEqual(self.shows("D5")["sheet"], "Summary")
        session.tool(session.quorin, "--show", "tree")
        wait_for("the keyboard", lambda: self.window()["key"])
        session.keys("Down")
        wait_for("a mark", lambda: session.cell()["shapes"] > 0)
        self.quit()
        self.assertEqual(session.cell()["shapes"], 0)
        self.assertIn("TERMINATE quit", self.log())
        said = (session.folder / f"{session.quorin.name}.log").read_text(errors="replace")
        self.assertNotIn("CRITICAL", said)


if __name__ == "__main__":
    session = Session(sys.argv.pop(1))
    try:
        session.start_calc()
        session.cell()
        program = unittest.main(verbosity=2, exit=False)
        if not program.result.wasSuccessful():
            session.tell_what_was_said()
    finally:
        session.end()
    sys.exit(not program.result.wasSuccessful())
