"""What the cases of mac_program_test.py share."""
import unittest

from mac_desk import Mac, wait_for


class MacCase(unittest.TestCase):
    def start(self, **options):
        mac = Mac(**options)
        self.addCleanup(mac.end)
        return mac

    def end_is_clean(self, mac, end=None):
        """Nothing that Apple's classes would have minded, and no event that would have started Excel."""
        end = end or mac.quit()
        self.assertEqual((end["raised"], end["logged"], end["strayEvents"]), (0, [], 0), mac.said())
        # A question that was under way is refused, which may be told last.
        log = [line for line in mac.log() if not line.endswith("Quorin is quitting")]
        self.assertEqual(log[-1], "TERMINATE quit")
        return end

    def shows(self, mac, address, formula, value):
        def shown():
            now = mac.panel.shown()
            return ((now["address"] or "").replace("$", ""), now["formula"], now["value"])
        wait_for(f"the panel to show {address} {formula} {value}, not {shown()}",
                 lambda: shown() == (address, formula, value), 30)

    def select(self, mac, cells):
        """The user works in Excel."""
        mac.do("goTo", cells)
        mac.do("front", "Excel")

    def mark(self, mac):
        """The user goes to a formula, and with the keys to the first cell that it uses."""
        self.select(mac, "Model!B3")
        self.shows(mac, "B3", "=B2*Share", "150")
        mac.take_keys()
        mac.key("Down")
        wait_for("the mark", lambda: mac.marks() == ["Model!$B$2"])

    def start_and_mark(self, **options):
        """The program, once it has marked a cell and recorded that."""
        mac = self.start(**options)
        self.mark(mac)
        wait_for("its record", (mac.support / "highlights.json").exists)
        return mac
