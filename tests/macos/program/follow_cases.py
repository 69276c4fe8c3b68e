"""The page follows Excel, marks what the user asks for and takes it back. Part of
mac_program_test.py."""
from mac_case import MacCase
from mac_desk import wait_for


class FollowTest(MacCase):
    def test_shows_the_selected_cell_and_takes_its_marks_back_at_the_end(self):
        mac = self.start()
        mac.is_shown()
        self.assertFalse(mac.window()["key"], "the keyboard stays with Excel")
        self.select(mac, "Model!B6")
        self.shows(mac, "B6", '=IF(B4>100,"good","bad")', '"good"')
        wait_for("the tree", lambda: mac.rows() == [
            'IF(B4>100,"good","bad") "good"', "test B4>100 TRUE", "B4 450", 'then "good" "good"',
            'else "bad" not used'])
        self.select(mac, "Model!B3")
        self.shows(mac, "B3", "=B2*Share", "150")
        wait_for("the tree", lambda: mac.rows()[1:] == ["B2 600", "× Share 0.25"])
        mac.take_keys()
        mac.key("Down")
        wait_for("the mark", lambda: mac.marks() == ["Model!$B$2"])
        self.assertTrue((mac.support / "highlights.json").exists())
        self.assertEqual(self.end_is_clean(mac)["conditions"], [])
        self.assertFalse((mac.support / "highlights.json").exists())
