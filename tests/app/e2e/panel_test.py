#!/usr/bin/env python3
"""The real panel beside a real Calc, with a window manager, real keys and real clicks.

usage: panel_test.py QUORIN RELEASED [unittest option...]

RELEASED is a build as the makers publish it, in the folder of its keys.

All tests share a display and a Calc; each starts Quorin anew with folders of its own.
"""
import http.server
import os
import pathlib
import shutil
import signal
import sys
import threading
import time
import unittest

from desk import Desk, Quorin
from quit_cases import QuitTest  # noqa: F401
from release_cases import ReleaseTest
from scan_cases import ScanTest  # noqa: F401
from settings_cases import SettingsTest  # noqa: F401
from shell_cases import ShellTest  # noqa: F401
from try_panel import Trial, Trouble, wait_for

desk = None

# A page of the test's own: counts events, keeps replies, throws on demand.
PAGE = """<!doctype html><title>test</title><script>
window.replies = {}; window.events = [];
window.__qxResolve = (id, envelope) => { replies[id] = envelope; };
window.__qxEvent = (name, payload) => {
  events.push(name);
  if (window.throwing) throw new Error("as asked");
};
const send = (body) => window.webkit.messageHandlers.qx.postMessage(body);
</script><body><p>test"""


class PanelTest(unittest.TestCase):
    def start(self, *arguments, **options):
        quorin = Quorin(*arguments, **options)
        self.addCleanup(quorin.end)
        return quorin

    def start_page(self, *arguments, text=PAGE):
        page = desk.folder / f"page-{time.monotonic_ns()}.html"
        page.write_text(text)
        quorin = self.start(*arguments, QX_DEV_URL=f"file://{page}")
        wait_for("the page", lambda: quorin.panel.eval("typeof send == 'function'"))
        return quorin

    def follows(self, quorin, address, formula, value):
        # The value stands there as the sheet shows it once the sheet has told that.
        def shown():
            now = quorin.panel.shown()
            return ((now["address"] or "").replace("$", ""), now["formula"], now["value"])
        expected = (address, formula, value)
        try:
            wait_for(f"the panel to show {address}", lambda: shown() == expected, 30)
        except Trouble:
            self.assertEqual(shown(), expected)
            raise

    def test_shows_the_cell_that_the_user_selects(self):
        desk.bring_calc_forward()
        quorin = self.start("--show")
        desk.go_to("Right", "Right", "Right", "Down", "Down")
        self.follows(quorin, "D3", "=Total_Capex", "30,061,500")
        desk.keys("Down", "Down")
        self.follows(quorin, "D5", "=Total_Capex-Loan", "8,417,220")
        self.assertEqual(desk.active(), int(desk.window, 16), "the keyboard stays with Calc")

    def test_keeps_its_cell_while_the_user_looks_at_the_sheet_that_it_went_to(self):
        desk.bring_calc_forward()
        quorin = self.start("--show")
        desk.go_to("Right", "Right", "Right", "Down", "Down", "Down", "Down")
        self.follows(quorin, "D5", "=Total_Capex-Loan", "8,417,220")

        def is_marked(name):
            marked = "document.querySelector('[data-testid=marked]')?.textContent ?? ''"
            wait_for(f"the mark of {name}", lambda: name in quorin.panel.eval(marked))
        panel = wait_for("the panel's window", lambda: desk.window_of(quorin))
        desk.bring_forward(panel)
        desk.tool("xdotool", "key", "Down", "Down")
        is_marked("Loan")
        wait_for("its sheet", lambda: desk.cell()["sheet"] == "Debt")
        desk.bring_calc_forward()
        desk.bring_forward(panel)
        desk.tool("xdotool", "key", "Up")
        is_marked("Total_Capex")
        self.assertEqual(quorin.panel.shown()["address"].replace("$", ""), "D5")
        quorin.end()
        desk.go_to_first_sheet("Summary")

    def test_comes_and_goes_with_calc_without_taking_the_keyboard(self):
        desk.bring_other_forward()
        quorin = self.start()
        desk.bring_other_forward()
        quorin.is_hidden()
        desk.bring_calc_forward()
        quorin.is_shown()
        quorin.logs("COMPANION activated=com.microsoft.Excel action=show enabled=true "
                    "visible=false key=false")
        quorin.logs("SHOWN companion visible=true key=false")
        desk.go_to("Right")
        self.assertEqual(desk.active(), int(desk.window, 16))
        self.assertFalse(quorin.window()["key"])
        desk.bring_other_forward()
        quorin.is_hidden()
        quorin.logs("action=hide enabled=true visible=true key=false")
        desk.bring_calc_forward()
        quorin.is_shown()

    def test_stays_hidden_by_the_page_until_summoned(self):
        desk.bring_calc_forward()
        quorin = self.start("--show")
        quorin.is_shown()
        quorin.panel.eval("window.webkit.messageHandlers.qx.postMessage("
                          "{id: 70001, verb: 'hidePanel', args: []}); 0")
        quorin.is_hidden()
        desk.bring_other_forward()
        desk.bring_calc_forward()
        quorin.logs("activated=com.microsoft.Excel action=ignore enabled=false visible=false")
        self.assertFalse(quorin.window()["visible"])
        again = quorin.another("--show")
        self.assertEqual(again.returncode, 0, again.stderr)
        self.assertIn("running already", again.stdout)
        quorin.is_shown()
        wait_for("the keyboard", lambda: quorin.window()["key"])
        self.assertIsNone(quorin.process.poll())

    def test_takes_the_keyboard_by_a_click_and_gives_it_back(self):
        desk.bring_calc_forward()
        quorin = self.start()
        desk.bring_other_forward()
        desk.bring_calc_forward()
        quorin.is_shown()
        wait_for("a place beside Calc", lambda: quorin.window()["x"] > 0)
        frame = quorin.window()
        desk.tool("xdotool", "mousemove", int(frame["x"] + frame["width"] / 2),
                  int(960 - frame["y"] - 40), "click", "1")
        wait_for("the keyboard", lambda: quorin.window()["key"])
        quorin.panel.eval("window.webkit.messageHandlers.qx.postMessage("
                          "{id: 70002, verb: 'focusExcel', args: []}); 0")
        wait_for("Calc to have it back", lambda: desk.active() == int(desk.window, 16))
        quorin.logs("SHOWN relinquish key=false")
        self.assertTrue(quorin.window()["visible"])
        self.assertFalse(quorin.window()["key"])

    def test_stands_where_the_user_put_it(self):
        desk.bring_calc_forward()
        key = "NSWindow Frame QuorinPanel"
        quorin = self.start("--show", defaults={key: "200 150 480 600 0 0 1600 960 "})
        quorin.is_shown()
        wait_for("the saved frame", lambda: quorin.window()["x"] == 200)
        self.assertEqual(quorin.window()["width"], 480)
        quorin.end()
        quorin = self.start("--show", defaults={key: "5000 4000 480 600 3840 0 1600 960 "})
        quorin.is_shown()
        wait_for("a frame on the screen", lambda: quorin.window()["x"] == 1120)
        self.assertEqual(quorin.window()["y"], 360)

    def test_stays_where_the_user_moved_it(self):
        desk.bring_calc_forward()
        quorin = self.start("--show")
        quorin.is_shown()
        wait_for("a place beside Calc", lambda: quorin.window()["x"] > 1000)
        before = quorin.window()
        panel = desk.window_of(quorin)
        saved = quorin.folder / "state" / "Quorin" / "defaults.json"
        self.assertFalse(saved.exists())

        def is_saved():
            """A move counts as the user's once the panel has come to rest."""
            desk.tool("xdotool", "windowmove", panel, 300 + time.monotonic_ns() % 50, 120)
            time.sleep(0.5)
            return saved.exists()
        wait_for("the frame to be saved", is_saved)
        moved = quorin.window()
        self.assertLess(moved["x"], 500)
        self.assertEqual(moved["width"], before["width"])
        quorin.end()
        again = self.start(after=quorin)
        desk.bring_other_forward()
        again.is_hidden()
        desk.tool("xdotool", "key", "alt+shift+a")
        again.is_shown()
        wait_for("the same place", lambda: all(
            again.window()[name] == moved[name] for name in ("x", "y", "width", "height")))

    def test_loads_the_page_again_when_its_process_is_killed(self):
        desk.bring_calc_forward()
        quorin = self.start("--show")
        desk.go_to("Right", "Right", "Right", "Down", "Down")
        self.follows(quorin, "D3", "=Total_Capex", "30,061,500")
        first = wait_for("the page's process", quorin.web_processes)
        for process in first:
            os.kill(process, signal.SIGKILL)
        quorin.logs("ERROR web process ended, reloading")
        wait_for("another one", lambda: set(quorin.web_processes()) - set(first))
        self.follows(quorin, "D3", "=Total_Capex", "30,061,500")
        desk.keys("Down", "Down")
        self.follows(quorin, "D5", "=Total_Capex-Loan", "8,417,220")

    def test_outlives_a_page_that_throws_and_messages_of_every_shape(self):
        desk.bring_calc_forward()
        quorin = self.start_page("--show")
        quorin.is_shown()
        quorin.panel.eval("""window.throwing = true;
            for (const body of ["text", 7, true, null, undefined, [1], {}, {id: "1", verb: "log"},
                                {verb: "log"}, new Date(0), NaN]) send(body);
            send({id: 1}); send({id: 2, verb: ""}); send({id: 3, verb: 5});
            send({id: 4, verb: "log", args: "no list"}); send({id: 5, verb: "nothing of the kind"});
            send({id: 6, verb: "setHighlightColor", args: ["x"]});
            send({id: 7, verb: "log", args: ["x".repeat(10 * 1024 * 1024)]});
            for (let id = 1000; id < 11000; ++id) send({id, verb: "log", args: []}); 0""")
        wait_for("all replies", lambda: quorin.panel.eval("Object.keys(replies).length") == 10007)
        missing = {"ok": False, "payload": {"kind": "transport", "message": "missing verb"}}
        replies = quorin.panel.eval("[1, 2, 3, 4, 5, 6, 7, 10999].map((id) => replies[id])")
        self.assertEqual(replies[:3], [missing] * 3)
        self.assertEqual(replies[3], {"ok": True, "payload": None})
        self.assertFalse(replies[4]["ok"])
        self.assertEqual(replies[5], {"ok": False, "payload": "bad args"})
        self.assertEqual(replies[6:], [{"ok": True, "payload": None}] * 2)
        quorin.another()
        wait_for("an event", lambda: quorin.panel.eval("events.includes('summon')"))
        quorin.panel.eval("send({id: 8, verb: 'log', args: ['TEST', 'still here']}); 0")
        quorin.logs("TEST still here")

    def test_says_that_the_page_is_missing(self):
        program = desk.folder / "alone" / "quorin"
        program.parent.mkdir()
        shutil.copy(Quorin.program, program)
        quorin = self.start("--show", program=program)
        wait_for("the heading", lambda: quorin.panel.eval("document.body?.textContent.trim()")
                 == "Quorin: web bundle missing")

    def test_logs_pages_that_cannot_be_loaded(self):
        loaded = threading.Event()

        class Unfinished(http.server.BaseHTTPRequestHandler):
            """Half a page that gives up waiting for the rest."""

            def do_GET(self):
                self.send_response(200)
                self.send_header("Content-Type", "text/html")
                self.send_header("Content-Length", "1000000")
                self.end_headers()
                self.wfile.write(b"<p>half a page" * 1000)
                self.wfile.write(b"<script>setTimeout(() => window.stop(), 0)</script>")
                loaded.wait(60)

            def log_message(self, *_):
                pass

        server = http.server.HTTPServer(("127.0.0.1", 0), Unfinished)
        url = f"http://127.0.0.1:{server.server_port}/"
        thread = threading.Thread(target=server.serve_forever)
        thread.start()
        try:
            quorin = self.start("--show", wait=False, QX_DEV_URL=url)
            quorin.logs("ERROR web navigation failed: ")
            quorin.end()
        finally:
            loaded.set()
            server.shutdown()
            thread.join()
            server.server_close()
        quorin = self.start("--show", wait=False, QX_DEV_URL=url)
        quorin.logs("ERROR web load failed: ")
        quorin.is_shown()

    def test_minds_no_windows_that_vanish(self):
        desk.bring_calc_forward()
        quorin = self.start("--show")
        quorin.is_shown()
        before = desk.clients()
        for _ in range(10):
            fleeting = desk.start("xev", "-event", "keyboard")
            wait_for("a window", lambda: desk.clients() - before)
            fleeting.kill()
            fleeting.wait()
        self.assertIsNone(quorin.process.poll())
        desk.bring_calc_forward()
        quorin.is_shown()

    def test_uses_x11_where_the_wayland_session_cannot_be_reached(self):
        quorin = self.start("--show", WAYLAND_DISPLAY="wayland-7", GDK_BACKEND="wayland",
                            XDG_SESSION_TYPE="wayland")
        quorin.is_shown()

    def test_works_without_a_window_manager(self):
        desk.bring_calc_forward()
        desk.manager.terminate()
        desk.manager.wait()
        try:
            quorin = self.start("--show")
            quorin.is_shown()
            wait_for("a place beside Calc", lambda: quorin.window()["x"] > 0)
            desk.tool("xdotool", "windowfocus", "--sync", int(desk.window, 16))
            for key in ("ctrl+Home", "Right", "Right", "Right", "Down", "Down"):
                desk.tool("xdotool", "key", key)
            self.follows(quorin, "D3", "=Total_Capex", "30,061,500")
        finally:
            desk.start_window_manager()

    def test_fits_on_a_screen_smaller_than_itself(self):
        small = Trial(Quorin.program, desk.book, desk.book.parent)
        try:
            small.start_display("400x300")
            quorin = self.start("--show", DISPLAY=small.environment["DISPLAY"])
            quorin.is_shown()
            wait_for("its title bar in reach",
                     lambda: (frame := quorin.window())["x"] >= 0
                     and 0 <= 300 - frame["y"] - frame["height"] < 300)
            quorin.end()
        finally:
            small.end()

    def test_waits_for_calc_to_return(self):
        desk.bring_calc_forward()
        quorin = self.start("--show")
        desk.go_to("Right", "Right", "Right", "Down", "Down")
        self.follows(quorin, "D3", "=Total_Capex", "30,061,500")
        desk.stop_office()
        desk.bring_other_forward()
        desk.start_office()
        desk.start_witness()
        desk.bring_calc_forward()
        quorin.is_shown()
        desk.go_to("Right", "Right", "Right", "Down", "Down", "Down", "Down")
        self.follows(quorin, "D5", "=Total_Capex-Loan", "8,417,220")
        self.assertIsNone(quorin.process.poll())


def main():
    global desk
    Quorin.program = pathlib.Path(sys.argv.pop(1)).resolve()
    ReleaseTest.released = pathlib.Path(sys.argv.pop(1)).resolve()
    desk = Quorin.desk = Desk(Quorin.program)
    try:
        program = unittest.main(exit=False, verbosity=2, warnings="ignore")
    finally:
        desk.end()
    return 0 if program.result.wasSuccessful() and program.result.testsRun else 1


if __name__ == "__main__":
    sys.exit(main())
