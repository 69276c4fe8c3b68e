"""What the panel says while Quorin ends, beside a Calc that does not answer. Part of panel_test.py."""
import datetime
import os
import pathlib
import signal
import time

from shell_case import ShellCase
from try_panel import wait_for

# The page's card in the light theme, and how many points of it there are at least.
CARD = bytes((0xdf, 0xe8, 0xfc))
CARD_POINTS = 20_000

# The page tells the log what it says, while the main thread still listens.
LISTENS = """new MutationObserver(() => webkit.messageHandlers.qx.postMessage({id: 900001, verb: 'log',
  args: ['TEST', document.querySelector('[data-testid=quitting]').innerText.replace(/\\s+/g, ' ')]}))
  .observe(document.querySelector('[data-testid=quitting]'), {childList: true}), 0"""

SAID = ("TEST Quorin is quitting. Taking back 5 marked cells in LibreOffice Calc… This takes two seconds "
        "at most. What LibreOffice Calc does not give back in time is taken back when Quorin starts the "
        "next time.")

# Two seconds for Calc, a tenth for the page, and what a busy machine takes.
LONGEST = 2.5


class QuitTest(ShellCase):
    def start_shown(self, page="test"):
        self.desk.bring_calc_forward()
        self.assertEqual(self.desk.cell()["shapes"], 0)
        quorin = self.start("--show", page=page)
        quorin.is_shown()
        quorin.logs("RESTORE")
        return quorin

    def start_with_real_page(self):
        quorin = self.start_shown("own")
        wait_for("the page", lambda: quorin.panel.eval(
            "document.querySelector('[data-testid=quitting]') !== null"))
        return quorin

    def page_is_loaded(self, quorin):
        if "QX_DEV_URL" in quorin.environment:
            super().page_is_loaded(quorin)

    def ends(self, quorin, seen=lambda: None):
        """Ends it beside a Calc that is stopped; how long that takes, by its own log."""
        os.killpg(self.desk.office.pid, signal.SIGSTOP)
        try:
            began = time.time()
            quorin.process.send_signal(signal.SIGTERM)
            seen()
            self.assertEqual(quorin.process.wait(60), 0)
        finally:
            os.killpg(self.desk.office.pid, signal.SIGCONT)
        log = quorin.folder / "state" / "Logs" / "Quorin" / "quorin.log"
        date, _, last = log.read_text().splitlines()[-1].partition(" ")
        self.assertEqual(last, "TERMINATE quit")
        return datetime.datetime.fromisoformat(date.replace("Z", "+00:00")).timestamp() - began

    def is_taken_back_at_the_next_start(self, quorin):
        self.assertTrue(self.record_of_marks(quorin).exists())
        again = self.start(after=quorin)
        wait_for("the restore", lambda: sum("RESTORE" in line for line in again.log()) == 2)
        wait_for("the record to go", lambda: not self.record_of_marks(quorin).exists())
        wait_for("the marks to go", lambda: self.desk.cell()["shapes"] == 0)
        again.end()

    def card_points(self):
        return self.desk.pixels().count(CARD)

    def test_says_what_it_takes_back_while_calc_does_not_answer(self):
        # On a machine with far too much to do the page may not be in time.
        for attempt in range(3):
            quorin = self.start_with_real_page()
            self.mark(quorin, "B2", "C5:D6", "C5")
            quorin.panel.eval(LISTENS)
            before, points = self.card_points(), []

            def looks(quorin=quorin, points=points):
                while quorin.process.poll() is None and max(points, default=0) < CARD_POINTS:
                    seen = self.card_points()
                    if quorin.process.poll() is None:
                        points.append(seen)
                quorin.process.send_signal(signal.SIGTERM)  # once more
            took = self.ends(quorin, looks)
            said = [line for line in quorin.log() if line.startswith("TEST ")]
            self.assertEqual(sum("TERMINATE quit" in line for line in quorin.log()), 1)
            self.is_taken_back_at_the_next_start(quorin)
            if took < LONGEST and said and max(points, default=0) >= CARD_POINTS:
                break
        self.assertLess(took, LONGEST)
        self.assertEqual(said, [SAID])
        self.assertLess(before, CARD_POINTS)
        self.assertGreaterEqual(max(points, default=0), CARD_POINTS)

    def test_is_not_kept_by_a_page_that_does_not_draw(self):
        ways = {"one that does not know of it": lambda quorin: None,
                "one that hangs": self.hang,
                "one whose process is gone": self.kill_page}
        for way, spoil in ways.items():
            with self.subTest(way):
                took = LONGEST
                for _ in range(3):
                    quorin = self.start_shown()
                    self.mark(quorin, "B2")
                    pages = quorin.web_processes()
                    spoil(quorin)
                    took = self.ends(quorin)
                    wait_for("the page's process to end",
                             lambda: not any(map(self.is_alive, pages)), 5)
                    self.is_taken_back_at_the_next_start(quorin)
                    if took < LONGEST:
                        break
                self.assertLess(took, LONGEST)

    @staticmethod
    def is_alive(process):
        try:
            state = pathlib.Path(f"/proc/{process}/stat").read_text().rpartition(")")[2].split()[0]
        except OSError:
            return False
        return state != "Z"

    def hang(self, quorin):
        quorin.panel.eval("setTimeout(() => { for (;;); }, 0), 0")

    def kill_page(self, quorin):
        for process in quorin.web_processes():
            os.kill(process, signal.SIGKILL)

    def test_says_nothing_where_nothing_is_marked_or_nobody_sees_it(self):
        ways = {"nothing is marked": lambda quorin: None,
                "nobody sees it": self.mark_and_hide}
        for way, prepare in ways.items():
            with self.subTest(way):
                quorin = self.start_with_real_page()
                quorin.panel.eval(LISTENS)
                prepare(quorin)
                quorin.panel.ask("quit")
                self.assertEqual(quorin.process.wait(60), 0)
                self.assertEqual([line for line in quorin.log() if line.startswith("TEST ")], [])
                wait_for("the marks to go", lambda: self.desk.cell()["shapes"] == 0)

    def mark_and_hide(self, quorin):
        self.mark(quorin, "B2")
        quorin.panel.eval("webkit.messageHandlers.qx.postMessage("
                          "{id: 900002, verb: 'hidePanel', args: []}), 0")
        quorin.is_hidden()
        self.assertTrue(self.record_of_marks(quorin).exists())
