"""Excel refuses, hangs, ends and returns, or is not there. Part of mac_program_test.py."""
from mac_case import MacCase
from mac_desk import wait_for

DENIED = "Quorin is not allowed to talk to Excel."


class ExcelTest(MacCase):
    def said(self, mac):
        return mac.panel.eval("document.body.innerText.replace(/\\s+/g, ' ')")

    def test_says_what_to_do_where_macos_does_not_permit_it(self):
        mac = self.start(first=[["permit", False]])
        wait_for("the refusal", lambda: DENIED in self.said(mac), 30)
        self.assertIn("Open System Settings, then Privacy & Security, then Automation. Find Quorin and "
                      "switch on Excel. Come back here and check again.", self.said(mac))
        mac.do("permit", True)
        mac.click("retry")
        self.select(mac, "Model!B3")
        self.shows(mac, "B3", "=B2*Share", "150")
        self.assertNotIn(DENIED, self.said(mac))
        mac.do("permit", False)
        self.select(mac, "Model!B4")
        wait_for("the refusal", lambda: DENIED in self.said(mac), 30)
        mac.do("permit", True)
        self.shows(mac, "B4", "=B2-B3", "450")
        self.end_is_clean(mac)

    def test_waits_for_excel_to_return(self):
        mac = self.start()
        self.select(mac, "Model!B3")
        self.shows(mac, "B3", "=B2*Share", "150")
        mac.do("endExcel")
        mac.is_hidden()
        mac.do("hotkey", [0, 2560])
        mac.is_shown()
        wait_for("the page to say it", lambda: "Excel isn’t open." in self.said(mac), 30)
        mac.do("startExcel")
        self.select(mac, "Model!B4")
        self.shows(mac, "B4", "=B2-B3", "450")
        self.end_is_clean(mac)

    def test_starts_before_excel_does(self):
        mac = self.start(excel=False)
        mac.do("hotkey", [0, 2560])
        wait_for("the page to say it", lambda: "Excel isn’t open." in self.said(mac), 30)
        mac.do("startExcel")
        self.select(mac, "Model!B4")
        self.shows(mac, "B4", "=B2-B3", "450")
        self.end_is_clean(mac)

    def test_says_that_excel_is_busy_and_goes_on_afterwards(self):
        mac = self.start()
        self.select(mac, "Model!B3")
        self.shows(mac, "B3", "=B2*Share", "150")
        mac.do("busy", True)
        self.select(mac, "Model!B4")
        wait_for("the page to say it", lambda: "Excel is busy; this was read before."
                 in self.said(mac), 60)
        self.assertEqual(mac.panel.shown()["address"], "B3")
        mac.do("busy", False)
        self.shows(mac, "B4", "=B2-B3", "450")
        wait_for("the rest to go", lambda: "busy" not in self.said(mac), 30)
        self.end_is_clean(mac)

    def test_says_that_the_handlers_do_not_compile(self):
        mac = self.start(first=[["installExcel", False]], excel=False, wait=False)
        self.assertEqual(mac.alert(), {
            "message": "Quorin could not compile its Excel script: AppleScript compile failed: -10814: "
                       "Microsoft Excel is not installed",
            "informativeText": "", "buttons": ["OK"]})
        self.assertEqual(mac.do("menu"), [])
        mac.press("OK")
        end = mac.ended()
        self.assertEqual((end["raised"], end["logged"], end["strayEvents"]), (0, [], 0))

    def test_says_which_line_excel_does_not_understand(self):
        mac = self.start(first=[["lackTerm", "format condition"]], wait=False)
        message = mac.alert()["message"]
        self.assertRegex(message, r"^Quorin could not compile its Excel script: .*\d")
        mac.press("OK")
        self.assertEqual(mac.ended()["strayEvents"], 0)
