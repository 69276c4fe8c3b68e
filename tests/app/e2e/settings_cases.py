"""The settings beside a real Calc: hot keys changed by pressing them, what is written of that, and a
file that was changed by hand. Part of panel_test.py."""
import json
import unittest

from desk import Quorin
from try_panel import wait_for

BUTTON = "document.querySelector('[data-testid={}]')"


class SettingsTest(unittest.TestCase):
    def setUp(self):
        self.desk = Quorin.desk

    def start(self, **options):
        self.desk.bring_other_forward()
        quorin = Quorin(**options)
        self.addCleanup(quorin.end)
        quorin.logs("RESTORE")
        self.desk.bring_calc_forward()
        quorin.is_shown()
        return quorin

    def config(self, quorin):
        return json.loads((quorin.folder / "data" / "Quorin" / "config.json").read_text())

    def press(self, *keys):
        for key in keys:
            self.desk.tool("xdotool", "key", key)

    def surfaced(self, quorin):
        return sum("HOTKEY tree" in line for line in quorin.log())

    def open_settings(self, quorin):
        """By the keys alone."""
        self.press("alt+shift+a")
        wait_for("the keyboard", lambda: quorin.window()["key"])
        self.press("ctrl+comma")
        self.shows(quorin, "set-summonKey", "Alt+Shift+A")

    def shows(self, quorin, testid, text):
        wait_for(f"{text} in {testid}", lambda: quorin.panel.eval(
            f"({BUTTON.format(testid)} || {{}}).textContent") == text)

    def ask_for(self, quorin, name):
        quorin.panel.eval(f"{BUTTON.format('set-' + name)}.focus(), 0")
        self.press("Return")
        self.shows(quorin, f"set-{name}", "Press a key…")

    def test_a_hot_key_is_changed_by_pressing_it(self):
        quorin = self.start(settings={"mine": [1, {}], "pollMs": 300})
        self.open_settings(quorin)
        self.ask_for(quorin, "summonKey")
        self.press("ctrl+alt+shift+j")
        self.shows(quorin, "set-summonKey", "Ctrl+Alt+Shift+J")
        written = self.config(quorin)
        self.assertEqual((written["summonKeyCode"], written["summonModifiers"], written["mine"],
                          written.get("mapKeyCode")), (38, 6656, [1, {}], None))
        before = self.surfaced(quorin)
        self.desk.bring_calc_forward()
        wait_for("Calc to have it", lambda: not quorin.window()["key"])
        self.press("ctrl+alt+shift+j")
        wait_for("the keyboard", lambda: quorin.window()["key"])
        wait_for("the new key", lambda: self.surfaced(quorin) == before + 1)
        self.assertFalse(quorin.panel.eval(f"{BUTTON.format('settings')} != null"))
        self.desk.bring_calc_forward()
        self.press("alt+shift+a", "ctrl+alt+shift+j")
        wait_for("the new key again", lambda: self.surfaced(quorin) == before + 2)

    def test_the_key_itself_reaches_the_page_while_one_is_asked_for(self):
        quorin = self.start()
        self.open_settings(quorin)
        before = self.surfaced(quorin)
        self.ask_for(quorin, "mapKey")
        self.press("alt+shift+a")
        self.shows(quorin, "words-mapKey", "This is the key for the formula.")
        self.assertEqual(self.surfaced(quorin), before)
        self.ask_for(quorin, "mapKey")
        self.press("BackSpace")
        self.shows(quorin, "set-mapKey", "None")
        self.assertEqual(self.config(quorin)["mapKeyCode"], 65535)
        self.press("alt+shift+d", "alt+shift+a")
        wait_for("the formula's key", lambda: self.surfaced(quorin) == before + 1)
        self.assertFalse(any("HOTKEY map" in line for line in quorin.log()))

    def test_says_at_once_that_another_program_has_the_key(self):
        quorin = self.start()
        other = Quorin(settings={"summonKeyCode": 38, "summonModifiers": 2560}, wait=False)
        self.addCleanup(other.end)
        other.logs("RESTORE")
        self.open_settings(quorin)
        self.ask_for(quorin, "depsKey")
        self.press("alt+shift+j")
        wait_for("the reason", lambda: "keeps what was pressed" in (quorin.panel.eval(
            f"({BUTTON.format('words-depsKey')} || {{}}).textContent") or ""))
        self.shows(quorin, "set-depsKey", "Alt+Shift+S")
        self.assertEqual(self.config(quorin).get("depsKeyCode", 1), 1)

    def test_a_file_changed_by_hand_holds_when_the_panel_comes_up(self):
        quorin = self.start()
        file = quorin.folder / "data" / "Quorin" / "config.json"
        file.write_text(json.dumps({**self.config(quorin), "summonKeyCode": 38}))
        self.desk.bring_other_forward()
        quorin.is_hidden()
        self.desk.bring_calc_forward()
        quorin.is_shown()
        self.press("alt+shift+j")
        wait_for("the keyboard", lambda: quorin.window()["key"])
        file.write_text('{"pollMs": "fast"}')
        self.press("ctrl+comma")
        wait_for("what is wrong", lambda: '"pollMs" is not a number' in (quorin.panel.eval(
            f"({BUTTON.format('file-trouble')} || {{}}).textContent") or ""))
        self.shows(quorin, "set-summonKey", "Alt+Shift+J")
        self.assertEqual(file.read_text(), '{"pollMs": "fast"}')
