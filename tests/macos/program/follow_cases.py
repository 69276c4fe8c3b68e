"""The page follows Excel, marks what the user asks for and takes it back. Part of
mac_program_test.py."""
from mac_case import MacCase
from mac_desk import wait_for


class FollowTest(MacCase):
    def test_shows_the_selected_cell_and_takes_its_marks_back_at_the_end(self):
        mac = self.start()
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

    def test_marks_what_the_keys_go_to_and_clears_it(self):
        mac = self.start()
        self.mark(mac)
        mac.says("marked", "Highlighted Model!B2")
        mac.key("Down")
        wait_for("the other mark", lambda: mac.marks() == ["Inputs!$B$3"])
        mac.click("clear")
        wait_for("the marks to go", lambda: mac.marks() == [])
        mac.key("Up")
        wait_for("the mark", lambda: mac.marks() == ["Model!$B$2"])
        mac.key("Escape")
        wait_for("the marks to go", lambda: mac.marks() == [])
        wait_for("Excel to have the keyboard", lambda: not mac.window()["key"])
        self.assertTrue(mac.window()["visible"])
        self.end_is_clean(mac)

    def test_shows_hidden_rows_and_hides_them_again(self):
        mac = self.start()
        mac.do("hideRows", "Inputs!2:2")
        self.select(mac, "Model!B2")
        self.shows(mac, "B2", "=Inputs!B1*Inputs!B2", "600")
        mac.take_keys()
        mac.key("End")
        wait_for("the row", lambda: not mac.do("rowsHidden", "Inputs!2:2"))
        wait_for("the mark", lambda: mac.marks() == ["Inputs!$B$2"])
        self.assertTrue((mac.support / "unhidden.json").exists())
        mac.key("Escape")
        wait_for("the row to go", lambda: mac.do("rowsHidden", "Inputs!2:2"))
        wait_for("the marks to go", lambda: mac.marks() == [])
        self.end_is_clean(mac)

    def test_follows_no_cell_while_it_is_paused(self):
        mac = self.start()
        self.select(mac, "Model!B3")
        self.shows(mac, "B3", "=B2*Share", "150")
        mac.choose("Pause Follow")
        mac.says("follow", "Paused")
        self.select(mac, "Model!B4")
        mac.do("front", "other")
        mac.is_hidden()
        mac.do("front", "Excel")
        mac.is_shown()
        self.assertEqual(mac.panel.shown()["address"], "B3")
        mac.choose("Resume Follow")
        self.shows(mac, "B4", "=B2-B3", "450")
        self.end_is_clean(mac)

    def test_shows_a_cell_with_an_error_and_survives_what_excel_dies_of(self):
        mac = self.start()
        self.select(mac, "Model!B7")
        self.shows(mac, "B7", "=B2/Inputs!B9", "#DIV/0!")
        wait_for("the tree", lambda: mac.rows() == [
            "B2/Inputs!B9 #DIV/0!", "B2 600", "÷ Inputs!B9 0"])
        self.assertFalse([line for line in mac.log() if "-609" in line])
        self.end_is_clean(mac)

    def test_reads_the_whole_workbook(self):
        mac = self.start()
        self.select(mac, "Model!B2")
        self.shows(mac, "B2", "=Inputs!B1*Inputs!B2", "600")
        mac.click("tab-deps")
        wait_for("all of it to be read", lambda: "All 2 sheets, as read at"
                 in mac.panel.eval("document.body.innerText"), 30)
        self.end_is_clean(mac)
