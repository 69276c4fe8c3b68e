"""What is around the panel: keys, the menu, alerts, crash reports, a second start. Part of
mac_program_test.py."""
import os
import pathlib
import signal
import time
import zipfile

from mac_case import MacCase
from mac_desk import A, CONTROL_OPTION, D, LEFT, OPTION_SHIFT, RIGHT, S, wait_for


class ShellTest(MacCase):
    def tab(self, mac):
        """The view in front."""
        return mac.panel.eval("document.querySelector('[role=tab][aria-selected=true]').innerText")

    def test_keys_bring_its_views_up(self):
        mac = self.start()
        self.select(mac, "Model!B6")
        self.shows(mac, "B6", '=IF(B4>100,"good","bad")', '"good"')
        for key, view, how in ((S, "Dependents", "deps key=false visible=true"),
                               (D, "Map", "map key=true visible=true"),
                               (A, "Tree", "tree key=true visible=true")):
            self.assertTrue(mac.do("hotkey", [key, OPTION_SHIFT]))
            wait_for(f"the view {view}", lambda view=view: self.tab(mac) == view)
            wait_for("the keyboard", lambda: mac.window()["key"])
            mac.logs("HOTKEY " + how)
        for key, step in ((RIGHT, "Step 2 of 5"), (RIGHT, "Step 3 of 5"), (LEFT, "Step 2 of 5")):
            self.assertTrue(mac.do("hotkey", [key, CONTROL_OPTION]))
            mac.says("step", step)
        mac.do("front", "other")
        mac.is_hidden()
        mac.do("hotkey", [D, OPTION_SHIFT])
        mac.is_shown()
        wait_for("the view", lambda: self.tab(mac) == "Map")
        self.end_is_clean(mac)

    def test_the_menu_opens_clears_and_reports(self):
        mac = self.start()
        self.assertEqual([item[0] for item in mac.do("menu")], [
            "Open Auditor", "Pause Follow", "Clear Stuck Highlights", "Open Diagnostic Log",
            "Report a Problem…", "Check for Updates… (the updater is missing)",
            "Start at Login (installed app only)", "Settings…", "", "Quit Quorin"])
        mac.do("front", "other")
        mac.is_hidden()
        mac.choose("Open Auditor")
        mac.is_shown()
        mac.choose("Settings…")
        wait_for("the settings", lambda: mac.text("settings"))
        self.select(mac, "Model!B3")
        mac.choose("Clear Stuck Highlights")
        self.assertEqual(mac.alert()["message"], "Removed 0 highlights")
        mac.press("OK")
        mac.choose("Open Diagnostic Log")
        log = mac.home / "Library" / "Logs" / "Quorin" / "quorin.log"
        self.assertEqual(mac.do("opened"), [f"file://{log}"])
        mac.choose("Report a Problem…")
        wait_for("the mail", lambda: mac.do("opened")[1:])
        self.assertTrue(mac.do("opened")[1].startswith("mailto:help@example.org?subject=Quorin%20"))
        self.assertEqual(set(self.zipped(mac)), {"quorin.log", "system.txt"})
        self.end_is_clean(mac)

    def zipped(self, mac):
        file, = (mac.home / "Desktop").glob("Quorin-*.zip")
        with zipfile.ZipFile(file) as archive:
            return {pathlib.PurePath(name).name: archive.read(name).decode()
                    for name in archive.namelist() if not name.endswith("/")}

    def test_after_a_crash_takes_marks_back_and_offers_a_report(self):
        first = self.start_and_mark()
        left = first.do("conditions")
        first.kill()
        reports = first.home / "Library" / "Logs" / "DiagnosticReports"
        reports.mkdir(parents=True)
        (reports / "Quorin-2026-01-31-120000.ips").write_text("the report")
        later = time.time() + 5
        os.utime(reports / "Quorin-2026-01-31-120000.ips", (later, later))
        again = self.start(after=first, wait=False, first=[["mark", mark] for mark in left])
        self.assertEqual(again.alert(), {
            "message": "Quorin crashed last time",
            "informativeText": "Send a report? A zip with the crash log and the diagnostic log (no "
                               "cell contents) is saved to your Desktop; you attach it to an email.",
            "buttons": ["Report…", "Not Now"]})
        self.assertEqual(again.marks(), ["Model!$B$2"], "the rest comes after the answer")
        again.press("Report…")
        wait_for("the marks to go", lambda: again.marks() == [])
        found = self.zipped(again)
        self.assertEqual(found["Quorin-2026-01-31-120000.ips"], "the report")
        self.assertTrue(again.do("opened")[0].startswith("mailto:help@example.org"))
        again.logs("RESTORE", 2)
        self.end_is_clean(again)

    def test_a_second_start_brings_the_panel_of_the_first_up(self):
        mac = self.start()
        mac.click("hide")
        mac.is_hidden()
        status, end = mac.another()
        self.assertEqual(status, 0)
        bundle = pathlib.Path(mac.program).resolve().parent
        self.assertEqual(end["opened"], [f"file://{bundle}"])
        self.assertFalse(mac.window()["visible"])
        mac.do("reopen")  # what macOS makes of that
        mac.is_shown()
        wait_for("the keyboard", lambda: mac.window()["key"])
        self.assertEqual(sum("LAUNCH" in line for line in mac.log()), 1)
        self.end_is_clean(mac)

    def test_stays_hidden_until_summoned(self):
        mac = self.start()
        self.mark(mac)
        mac.do("close")
        mac.is_hidden()
        wait_for("the marks to go", lambda: mac.marks() == [])
        mac.do("front", "other")
        mac.do("front", "Excel")
        mac.is_shown()
        mac.click("hide")
        mac.is_hidden()
        mac.do("front", "other")
        mac.do("front", "Excel")
        mac.logs("activated=com.microsoft.Excel action=ignore enabled=false visible=false")
        self.assertFalse(mac.window()["visible"])
        mac.do("hotkey", [A, OPTION_SHIFT])
        mac.is_shown()
        self.end_is_clean(mac)

    def test_loads_the_page_again_when_its_process_is_killed(self):
        mac = self.start()
        self.select(mac, "Model!B3")
        self.shows(mac, "B3", "=B2*Share", "150")
        before = wait_for("the page's process", mac.page_processes)
        for process in before:
            os.kill(process, signal.SIGKILL)
        mac.logs("ERROR web process ended, reloading")
        self.shows(mac, "B3", "=B2*Share", "150")
        self.select(mac, "Model!B4")
        self.shows(mac, "B4", "=B2-B3", "450")
        self.end_is_clean(mac)
