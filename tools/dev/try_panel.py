#!/usr/bin/env python3
"""Tries the panel beside a real Calc on a virtual display.

usage: try_panel.py QUORIN WORKBOOK OUTPUT_FOLDER

Starts a display, a window manager, Calc with the workbook and Quorin, all with folders of their
own. Selects three cells by key presses, waits for the panel to show each, prints what it shows and
compares that with what Calc tells over its own interface. Then brings the panel up and steps through
the tree of the last formula: the sheet follows, and Escape gives everything back. Writes a
screenshot for each cell and each step. Ends with status 0 when the panel showed what each cell holds
and left nothing of its own on the sheet, and leaves nothing running.
"""
import contextlib
import hashlib
import json
import os
import pathlib
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import time

PATIENCE = 120  # seconds for anything to happen at all, on a machine with much else to do

# The trial's own: no key of the window manager's may stand in the way of the spreadsheet's.
WINDOW_MANAGER = """<?xml version="1.0"?>
<openbox_config xmlns="http://openbox.org/3.4/rc">
  <focus><focusNew>yes</focusNew></focus><theme><name>Clearlooks</name></theme>
  <keyboard></keyboard><mouse><context name="Client">
  <mousebind button="Left" action="Press"><action name="Focus"/><action name="Raise"/></mousebind>
  </context></mouse>
</openbox_config>"""

# No first-start dialogs in a profile that is new.
PROFILE = """<?xml version="1.0" encoding="UTF-8"?>
<oor:items xmlns:oor="http://openoffice.org/2001/registry"
 xmlns:xs="http://www.w3.org/2001/XMLSchema" xmlns:xsi="http://www.w3.org/2001/XMLSchema-instance">
<item oor:path="/org.openoffice.Office.Common/Misc"><prop oor:name="FirstRun"><value>false</value>
</prop><prop oor:name="ShowTipOfTheDay"><value>false</value></prop></item>
<item oor:path="/org.openoffice.Setup/Product"><prop oor:name="ooSetupLastVersion">
<value>99.9</value></prop></item>
<item oor:path="/org.openoffice.Setup/Office/Factories/org.openoffice.Setup:Factory['com.sun.star.sheet.SpreadsheetDocument']">
<prop oor:name="ooSetupFactoryWindowAttributes"><value>%s</value></prop></item>
</oor:items>"""

# Asked for by Calc's own means, so that Quorin is not its own witness.
WITNESS = """
import sys, json, time, uno
local = uno.getComponentContext()
resolver = local.ServiceManager.createInstance("com.sun.star.bridge.UnoUrlResolver")
context = resolver.resolve("uno:pipe,name=%s;urp;StarOffice.ComponentContext")
desktop = context.ServiceManager.createInstance("com.sun.star.frame.Desktop")
for line in sys.stdin:
    while not (document := desktop.getCurrentComponent()):
        time.sleep(0.05)  # none of its windows has been in front yet
    controller = document.getCurrentController()
    selection = controller.getSelection()
    if not hasattr(selection, "getCellAddress"):
        selection = selection.getCellByPosition(0, 0)
    address = selection.getCellAddress()
    sheet = document.Sheets.getByIndex(address.Sheet)
    kind = selection.getType().value
    print(json.dumps({"sheet": sheet.Name, "row": address.Row + 1, "column": address.Column,
                      "formula": selection.getFormula(), "text": selection.getString(),
                      "number": selection.getValue() if kind in ("VALUE", "FORMULA") else None,
                      "error": selection.getError(),
                      "shapes": sum(one.DrawPage.Count for one in document.Sheets)}), flush=True)
"""


class Trouble(Exception):
    pass


def wait_for(what, condition, patience=PATIENCE):
    """What the condition gives, as soon as that is true."""
    end = time.monotonic() + patience
    while time.monotonic() < end:
        value = condition()
        if value:
            return value
        time.sleep(0.05)
    raise Trouble(f"waited {patience} s for {what}")


def letters(column):
    text, column = "", column + 1
    while column:
        column, rest = divmod(column - 1, 26)
        text = chr(65 + rest) + text
    return text


def single_instance_pipe(profile):
    """The name of the pipe by which an office with this profile is found by a second start."""
    digest = hashlib.md5(profile.encode("utf-16-le")).digest()
    return "SingleOfficeIPC_" + "".join(f"{byte:x}" for byte in digest)


class Panel:
    """The running panel, through its inspection socket."""

    def __init__(self, path):
        self.path = path

    def ask(self, line):
        with socket.socket(socket.AF_UNIX) as connection:
            connection.settimeout(PATIENCE)
            connection.connect(str(self.path))
            connection.sendall(line.encode() + b"\n")
            answer = b""
            while not answer.endswith(b"\n"):
                piece = connection.recv(65536)
                if not piece:
                    raise Trouble("the panel hung up")
                answer += piece
        verdict, _, rest = answer.decode().strip().partition(" ")
        if verdict != "ok":
            raise Trouble(rest)
        return json.loads(rest)

    def eval(self, script):
        return self.ask("eval " + json.dumps(script))

    def shown(self):
        return self.eval("""(() => { const shown = {};
            for (const name of ["book", "sheet", "address", "formula", "value", "type", "state"]) {
              const one = document.querySelector(`[data-testid="${name}"]`);
              shown[name] = one ? one.textContent.trim() : null;
            }
            return shown; })()""")


class Trial:
    def __init__(self, quorin, workbook, output):
        self.quorin, self.output = pathlib.Path(quorin), pathlib.Path(output)
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="quorin-trial-"))
        # A copy, so that no lock of the trial's Calc is left beside the user's file.
        self.workbook = self.folder / pathlib.Path(workbook).name
        shutil.copy(workbook, self.workbook)
        self.started = []
        self.account = {}  # as whom all is started, in subprocess's words; ourselves
        self.office, self.pipe, self.office_pipes = None, self.folder.name, []
        self.environment = dict(os.environ)
        for name in ("DATA", "STATE", "CONFIG", "CACHE", "RUNTIME"):
            home = self.folder / name.lower()
            home.mkdir(mode=0o700)
            self.environment[f"XDG_{name}_HOME" if name != "RUNTIME" else "XDG_RUNTIME_DIR"] = (
                str(home))
        # An office that is ended by a signal leaves its own temporary files.
        (self.folder / "tmp").mkdir(mode=0o700)
        self.environment["TMPDIR"] = str(self.folder / "tmp")
        # No helpers of a desktop that would outlive the trial.
        self.environment.update(NO_AT_BRIDGE="1", GSETTINGS_BACKEND="memory",
                                DBUS_SESSION_BUS_ADDRESS="disabled:", GDK_BACKEND="x11",
                                SAL_USE_VCLPLUGIN="gtk3", LC_ALL="C.UTF-8")
        self.environment.pop("WAYLAND_DISPLAY", None)

    def start(self, *command, **options):
        with open(self.folder / f"{pathlib.Path(command[0]).name}.log", "ab") as log:
            process = subprocess.Popen([str(word) for word in command], env=self.environment,
                                       stdin=subprocess.DEVNULL, stdout=log, stderr=log,
                                       start_new_session=True, **self.account, **options)
        self.started.append(process)
        return process

    def tool(self, *command, text=True):
        run = subprocess.run([str(word) for word in command], env=self.environment,
                             capture_output=True, text=text, check=False, **self.account)
        if run.returncode:
            raise Trouble(f"{' '.join(map(str, command))}: {run.stderr}")
        return run.stdout

    def start_calc(self):
        """Calc with the workbook on a display of its own, and the witness of what it holds."""
        self.start_display()
        self.start_office()
        self.start_witness()

    def start_display(self, size="1600x960"):
        read, write = os.pipe()
        self.start("Xvfb", "-displayfd", write, "-screen", "0", f"{size}x24", "-nolisten", "tcp",
                   "-noreset", pass_fds=(write,))
        os.close(write)
        with os.fdopen(read) as told:
            number = told.readline().strip()
        if not number:
            raise Trouble("Xvfb did not start")
        self.environment["DISPLAY"] = f":{number}"
        self.start_window_manager()

    def start_window_manager(self):
        configuration = self.folder / "openbox.xml"
        configuration.write_text(WINDOW_MANAGER)
        self.manager = self.start("openbox", "--sm-disable", "--config-file", configuration)
        # An earlier one leaves part of its properties behind.
        wait_for("the window manager", lambda: "_NET_ACTIVE_WINDOW" in self.tool(
            "xprop", "-root", "_NET_SUPPORTED") and "window id" in self.tool(
            "xprop", "-root", "_NET_SUPPORTING_WM_CHECK"))

    def start_office(self):
        profile = self.folder / "office"
        (profile / "user").mkdir(parents=True, exist_ok=True)
        # Left and wide, so that the panel finds room beside it.
        (profile / "user" / "registrymodifications.xcu").write_text(
            PROFILE % "10,30,1090,880;1;,,,;")
        self.office = self.open_office(profile, self.pipe, "--calc", self.workbook)
        self.window = wait_for("Calc's window", self.calc_window)

    def open_office(self, profile, pipe, *options):
        """One that can be reached by the pipe."""
        self.office_pipes += [pipe, single_instance_pipe(f"file://{profile}")]
        return self.start("soffice", f"-env:UserInstallation=file://{profile}", "--norestore",
                          "--nologo", f"--accept=pipe,name={pipe};urp;", *options)

    def stop_office(self):
        """As if it had been killed; its lock of the workbook goes with it."""
        os.killpg(self.office.pid, 9)
        self.office.wait()
        self.witness.kill()
        for lock in self.folder.glob(".~lock.*"):
            lock.unlink()
        wait_for("Calc's window to go", lambda: not self.calc_window())

    def calc_window(self):
        """Calc's window, once it has a workbook in it and a size to speak of."""
        for window in self.tool("xprop", "-root", "_NET_CLIENT_LIST").split("#")[-1].split(","):
            if not window.strip().startswith("0x"):
                continue
            try:
                properties = self.tool("xprop", "-id", window.strip(), "WM_CLASS", "WM_NAME")
            except Trouble:
                continue  # it has just gone
            if "libreoffice-calc" in properties and self.workbook.stem in properties:
                return window.strip()
        return None

    def start_witness(self):
        # The system's own Python has the interface to LibreOffice.
        script = self.folder / "witness.py"
        script.write_text(WITNESS % self.pipe)
        self.witness = subprocess.Popen(["/usr/bin/python3", str(script)], env=self.environment,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                                        start_new_session=True, **self.account)
        self.started.append(self.witness)

    def cell(self):
        self.witness.stdin.write("?\n")
        self.witness.stdin.flush()
        line = self.witness.stdout.readline()
        if not line:
            raise Trouble("Calc does not tell what its cell holds")
        return json.loads(line)

    def start_quorin(self):
        path = self.folder / "panel"
        self.environment["QX_TEST_SOCKET"] = str(path)
        begun = time.monotonic()
        self.process = self.start(self.quorin, "--show")
        wait_for("Quorin", path.exists)
        self.panel = Panel(path)
        wait_for("the panel", lambda: self.panel.ask("window")["visible"])
        print(f"The panel is up after {time.monotonic() - begun:.1f} s: "
              f"{self.panel.ask('window')}")

    def keys(self, *keys):
        self.tool("xdotool", "windowactivate", "--sync", int(self.window, 16))
        for key in keys:
            self.tool("xdotool", "key", key)

    def go_to_first_sheet(self, name):
        """To Calc's first sheet, which has this name. A key may come before its modifier right after a
        window came forward; one too many does nothing there."""
        def is_there():
            if self.cell()["sheet"] == name:
                return True
            self.keys("ctrl+Prior")
            return False
        wait_for(f"the sheet {name}", is_there)

    def stand_beside_calc(self):
        """True if the panel has come to stand at the right edge of Calc's window."""
        self.window = self.calc_window() or self.window
        told = dict(re.findall(r"(Absolute upper-left X|Width):\s+(-?\d+)",
                               self.tool("xwininfo", "-id", self.window)))
        extents = self.tool("xprop", "-id", self.window, "_NET_FRAME_EXTENTS").split("=")[-1]
        edge = (int(told["Absolute upper-left X"]) + int(told["Width"])
                + int(extents.split(",")[1]))
        return abs(self.panel.ask("window")["x"] - edge) <= 2

    def pixels(self):
        return self.tool("import", "-silent", "-window", "root", "-depth", "8", "rgb:-", text=False)

    def take_picture(self, name):
        """A picture of the screen with what the page has now: two frames of the page have begun
        since, and the screen has come to rest."""
        self.panel.eval("""window.__trialFrames = 0; requestAnimationFrame(() =>
            requestAnimationFrame(() => { window.__trialFrames = 2; })); 0""")
        wait_for("the page to be painted", lambda: self.panel.eval("window.__trialFrames") == 2)
        before = None
        for _ in range(50):
            now = self.pixels()
            if now == before:
                break
            before = now
            time.sleep(0.1)
        self.tool("import", "-silent", "-window", "root", self.output / name)

    def try_cell(self, number, *keys):
        before = self.cell()
        self.keys(*keys)

        def both():
            """Cell and panel, once the panel shows the cell that Calc is on."""
            held, shown = self.cell(), self.panel.shown()
            return (held, shown) if held != before and self.is_of(shown, held) else None

        try:
            held, shown = wait_for("the panel to show the cell", both, 30)
            while True:
                self.take_picture(f"cell-{number}.png")
                now = wait_for("the panel to show the cell", both, 30)
                if now == (held, shown):
                    break
                held, shown = now
        except Trouble as trouble:
            print(f"{trouble}; Calc is on {self.cell()}, the panel shows {self.panel.shown()}")
            return False
        address = f"{letters(held['column'])}{held['row']}"
        print(f"{held['sheet']}!{address}")
        print(f"  Calc holds       {held['formula'] or '(nothing)'}   {held['text']}")
        print(f"  the panel shows  {shown['formula'] or '(no formula)'}   {shown['value']}")
        return self.matches(held, shown)

    def step(self, key):
        """Presses the key in the panel, and gives what it tells once the sheet has followed."""
        before = self.foot()
        self.tool("xdotool", "key", key)
        wait_for("another row", lambda: self.foot()["step"] != before["step"], 30)
        rested = time.monotonic()
        now = self.foot()
        while time.monotonic() - rested < 2:
            time.sleep(0.1)
            if self.foot() != now:
                rested, now = time.monotonic(), self.foot()
        return now

    def foot(self):
        return self.panel.eval("""(() => { const shown = {};
            for (const name of ["step", "marked"]) {
              const one = document.querySelector(`[data-testid="${name}"]`);
              shown[name] = one ? one.textContent.trim() : "";
            }
            const row = document.querySelector(".row.active .rowText");
            shown.part = row ? row.textContent : "";
            return shown; })()""")

    def step_through(self, *keys):
        """Walks the tree with real keys; whether the sheet was as before when Escape gave it back."""
        before = self.cell()["shapes"]
        self.tool(self.quorin, "--show")
        wait_for("the keyboard", lambda: self.panel.ask("window")["key"])
        if not self.foot()["step"]:
            print("  no formula to step through")
            return True
        for number, key in enumerate(keys, 1):
            foot = self.step(key)
            print(f"  {foot['step']}: {foot['part']}   {foot['marked']}")
            self.take_picture(f"step-{number}.png")
        marked = self.cell()["shapes"]
        self.tool("xdotool", "key", "Escape")
        wait_for("the marks to go", lambda: not self.foot()["marked"], 30)
        wait_for("the keyboard to go back", lambda: not self.panel.ask("window")["key"], 30)
        after = self.cell()["shapes"]
        print(f"  marks of ours: {before} before, {marked} while stepping, {after} after Escape")
        return marked > before and after == before

    @staticmethod
    def is_of(shown, held):
        address = f"{letters(held['column'])}{held['row']}"
        return (shown["value"] is not None and shown["sheet"] == held["sheet"]
                and (shown["address"] or "").replace("$", "") == address)

    @staticmethod
    def matches(held, shown):
        """The formula letter by letter, but for how Calc's own notation writes it; the value."""
        def plain(formula):
            return re.sub(r"\s", "", formula.replace(";", ",").replace("$", "").replace("'", "")
                          ).replace(".", "!")
        is_formula = held["formula"].startswith("=")
        if is_formula and plain(shown["formula"] or "") != plain(held["formula"]):
            print("  the formulas differ")
            return False
        if not held["formula"]:
            same = shown["value"] in ("", "Empty")
        elif held["error"] or held["number"] is None:
            same = held["text"] in shown["value"]
        else:
            number = re.sub(r"[^0-9.eE+\-]", "", shown["value"].replace("\u2212", "-"))
            scale = 0.01 if "%" in shown["value"] else 1
            digits = len(number.partition(".")[2])
            same = bool(number) and abs(float(number) * scale - held["number"]) <= max(
                abs(held["number"]) * 1e-6, 0.51 * 10 ** -digits * scale)
        if not same:
            print("  the values differ")
        return same

    def run(self):
        self.output.mkdir(parents=True, exist_ok=True)
        self.start_calc()
        self.start_quorin()
        wait_for("the page", lambda: self.panel.shown()["state"] is not None)
        wait_for("the panel to stand beside Calc", self.stand_beside_calc)
        results = [self.try_cell(1, "ctrl+Home", "Right", "Right", "Right", "Down", "Down"),
                   self.try_cell(2, "Down", "Down"),
                   self.try_cell(3, *["ctrl+Next"] * 3, *["Down"] * 5, *["Right"] * 7)]
        results.append(self.step_through("Down", "Down", "Down"))
        log = self.folder / "state" / "Logs" / "Quorin" / "quorin.log"
        if log.exists():
            shutil.copy(log, self.output / "quorin.log")
        return all(results)

    def tell_what_was_said(self):
        """The last lines of every program's own output, and a picture of the screen."""
        for process in self.started:
            if process.poll() is not None:
                print(f"  ended with {process.returncode}: {process.args[0]}")
        for log in sorted(self.folder.glob("*.log")):
            for line in log.read_text(errors="replace").splitlines()[-5:]:
                print(f"  {log.stem}: {line}")
        if "DISPLAY" in self.environment:
            subprocess.run(["import", "-window", "root", str(self.output / "failed.png")],
                           env=self.environment, check=False)

    def pipes(self):
        """The files by which the offices are reached: by the trial, a second start and Quorin."""
        names = list(self.office_pipes)
        for entry in pathlib.Path("/proc").iterdir():
            try:
                if (self.office and entry.name.isdigit() and
                        os.getpgid(int(entry.name)) == self.office.pid):
                    names += self.quorins_pipes(entry)
            except (OSError, ProcessLookupError):
                pass  # it has just ended
        return [pathlib.Path(f"{self.start_of_pipes()}{name}") for name in names]

    def start_of_pipes(self):
        return f"/tmp/OSL_PIPE_{self.account.get('user', os.getuid())}_"

    def quorins_pipes(self, process):
        """The names of those that the process has opened for Quorin."""
        held = {os.readlink(one) for one in (process / "fd").iterdir()}
        start = self.start_of_pipes()
        lines = [line.split() for line in (process / "net" / "unix").read_text().splitlines()]
        return [words[7].removeprefix(start) for words in lines if len(words) > 7 and
                words[7].startswith(f"{start}quorin-") and f"socket:[{words[6]}]" in held]

    def end(self):
        pipes = self.pipes()
        for process in reversed(self.started):
            if process.poll() is None:
                try:
                    os.killpg(process.pid, 15)
                except ProcessLookupError:
                    pass
        end = time.monotonic() + 10
        for process in reversed(self.started):
            try:
                process.wait(max(0.1, end - time.monotonic()))
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, 9)
                process.wait()
            for stream in filter(None, (process.stdin, process.stdout)):
                with contextlib.suppress(BrokenPipeError):
                    stream.close()
        for pipe in pipes:
            pipe.unlink(missing_ok=True)
        shutil.rmtree(self.folder, ignore_errors=True)
        left = [str(each) for each in pathlib.Path("/tmp").glob(f"OSL_PIPE_*_{self.pipe}*")]
        if left:
            raise Trouble(f"left behind: {' '.join(left)}")


def main():
    if len(sys.argv) != 4:
        print(__doc__.strip(), file=sys.stderr)
        return 2
    trial = Trial(*sys.argv[1:])
    try:
        good = trial.run()
    except (Trouble, OSError) as trouble:
        print(f"The trial failed: {trouble}")
        trial.tell_what_was_said()
        good = False
    finally:
        trial.end()
    print(f"Screenshots are in {trial.output}/" if good else "The panel did not show it all.")
    return 0 if good else 1


if __name__ == "__main__":
    sys.exit(main())
