#!/usr/bin/env python3
"""Makes the pictures of these documents anew: the real panel beside a real Calc, on a display of its
own, with the sample workbook and real keys.

usage: make_pictures.py QUORIN_INSPECTED

QUORIN_INSPECTED is the program that tells tests what its panel shows (build/dev/app/linux/quorin_inspected
after ./test). Needs what ./test installs. Writes tree.png, review.png and settings.png beside this file.
"""
import pathlib
import subprocess
import sys
import tempfile

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parent / "tools" / "dev"))
from try_panel import Trial, Trouble, wait_for  # noqa: E402

NAME = "Halden Solar Park.xlsx"


class Pictures(Trial):
    def has(self, testid, text=""):
        return self.panel.eval(
            f"(document.querySelector('[data-testid=\"{testid}\"]')?.textContent ?? null)"
            f"?.includes({text!r}) === true")

    def take(self, name, left=0):
        """All of the screen that has a window, or what is right of `left`."""
        self.take_picture(name)
        part = f"{1566 - left}x{920}+{left}+0"
        if left:
            frame = self.panel.ask("window")
            part = f"{frame['width'] + 4:.0f}x{frame['height'] + 30:.0f}+{left}+28"
        self.tool("convert", self.output / name, "-strip", "-crop", part, "+repage", "+dither",
                  "-colors", "200", self.output / name)
        print(f"{name}: {(self.output / name).stat().st_size / 1000:.0f} kB")

    def in_panel(self, *keys):
        for key in keys:
            self.tool("xdotool", "key", key)

    def make(self):
        self.start_calc()
        self.start_quorin()
        wait_for("the page", lambda: self.panel.eval(
            "document.querySelector('[data-testid=state]')?.dataset.state") == "ready")
        wait_for("the panel to stand beside Calc", self.stand_beside_calc)
        wait_for("the card of a first start", lambda: self.has("welcome", "Understood"))
        self.panel.eval("document.querySelector('[data-testid=welcome-dismiss]').click(); 0")
        self.keys("ctrl+Home", "Right", "Right", "Right", "Down", "Down", "Down", "Down")
        wait_for("the cell", lambda: (self.panel.shown()["address"] or "").replace("$", "") == "D5")
        self.in_panel("alt+shift+a")
        wait_for("the keyboard", lambda: self.panel.ask("window")["key"])
        wait_for("the values as the sheet shows them", lambda: self.panel.eval(
            "document.body.textContent.includes('21,644,280')"))
        self.in_panel("Down", "Down")
        wait_for("the mark", lambda: self.has("marked", "Highlighted"))
        self.take("tree.png")
        self.in_panel("4")
        wait_for("the findings", lambda: self.has("list-note", "as read at"))
        self.in_panel("Down", "Up")
        wait_for("the mark to follow", lambda: self.has("marked", "P10"))
        self.take("review.png")
        self.in_panel("ctrl+comma")
        wait_for("the settings", lambda: self.has("settings", "Alt+Shift+A"))
        # The folder of this run is nobody's.
        self.panel.eval("document.querySelector('[data-testid=settings-file]').textContent = "
                        "'~/.local/share/Quorin/config.json'; 0")
        self.take("settings.png", int(self.panel.ask("window")["x"]) - 2)


def main():
    if len(sys.argv) != 2:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    with tempfile.TemporaryDirectory() as folder:
        workbook = pathlib.Path(folder) / NAME
        subprocess.run([sys.executable, HERE.parent / "samples" / "make-sample.py", workbook],
                       check=True)
        pictures = Pictures(sys.argv[1], workbook, HERE)
        try:
            pictures.make()
        except Trouble as trouble:
            print(f"No pictures: {trouble}", file=sys.stderr)
            return 1
        finally:
            pictures.end()
    return 0


if __name__ == "__main__":
    sys.exit(main())
