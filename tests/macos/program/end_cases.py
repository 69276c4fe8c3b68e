"""How the program ends, with marks on the sheet. Part of mac_program_test.py."""
import signal
import time

from mac_case import MacCase
from mac_desk import wait_for

# Two seconds for Excel, a tenth for the page, and what a busy machine takes.
LONGEST = 2.5


class EndTest(MacCase):
    def test_takes_its_marks_away_however_it_ends(self):
        ways = {"the menu": lambda mac: mac.choose("Quit Quorin"),
                "the end of the session": lambda mac: mac.do("logout"),
                "SIGTERM": lambda mac: mac.process.send_signal(signal.SIGTERM),
                "Ctrl+C": lambda mac: mac.process.send_signal(signal.SIGINT)}
        for way, end in ways.items():
            with self.subTest(way):
                mac = self.start_and_mark()
                mac.do("front", "other" if way == "the menu" else "Excel")
                end(mac)
                self.assertEqual(self.end_is_clean(mac, mac.ended())["conditions"], [])
                self.assertFalse((mac.support / "highlights.json").exists())

    def test_ends_beside_an_excel_that_hangs_and_takes_its_marks_back_at_the_next_start(self):
        # On a machine with far too much to do it may take longer.
        for _ in range(3):
            mac = self.start_and_mark()
            mac.do("busy", True)
            began = time.monotonic()
            mac.choose("Quit Quorin")
            end = mac.ended()
            took = time.monotonic() - began
            if took < LONGEST:
                break
        self.assertLess(took, LONGEST)
        left = self.end_is_clean(mac, end)["conditions"]
        self.assertEqual([cells for cells, _ in left], ["Model!$B$2"])
        self.assertTrue((mac.support / "highlights.json").exists())
        again = self.start(after=mac, first=[["mark", mark] for mark in left])
        wait_for("the marks to go", lambda: again.marks() == [])
        wait_for("the record to go", lambda: not (mac.support / "highlights.json").exists())
        self.end_is_clean(again)

    def test_the_page_says_what_it_takes_back(self):
        mac = self.start_and_mark()
        mac.panel.eval("""new MutationObserver(() => webkit.messageHandlers.qx.postMessage(
            {id: 900001, verb: 'log', args: ['TEST',
             document.querySelector('[data-testid=quitting]').innerText.replace(/\\\\s+/g, ' ')]}))
            .observe(document.querySelector('[data-testid=quitting]'), {childList: true}), 0""")
        mac.quit()
        said, = [line for line in mac.log() if line.startswith("TEST ")]
        self.assertIn("Quorin is quitting. Taking back 1 marked cell in Excel…", said)
