"""A display, a window manager, Calc and Quorin for tests of the whole program."""
import json
import os
import pathlib
import re
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parents[3]
sys.path.insert(0, str(ROOT / "tools" / "dev"))
from try_panel import Panel, Trial, Trouble, wait_for  # noqa: E402

# What GLib and all that is built on it write when they are used wrongly; and what they write
# where there is no session bus, which most of the tests do without.
COMPLAINT = re.compile(r"-(WARNING|CRITICAL|ERROR) \*\*(?!.*Unable to get (the )?session bus: )")


class Quorin:
    """One running Quorin, ended with the test. In the folders of another one that has ended, or
    in new ones."""

    program = None  # the one that is tested
    desk = None

    def __init__(self, *arguments, program=None, defaults=None, settings=None, wait=True,
                 after=None, **environment):
        self.folder = after.folder if after else (
            self.desk.folder / f"quorin-{time.monotonic_ns()}")
        self.environment = dict(self.desk.environment, QX_TEST_SOCKET=str(self.folder / "panel"))
        for name in ("DATA", "STATE"):
            self.environment[f"XDG_{name}_HOME"] = str(self.folder / name.lower())
        self.environment.update(environment)
        (self.folder / "state" / "Quorin").mkdir(parents=True, exist_ok=True)
        (self.folder / "panel").unlink(missing_ok=True)
        if defaults:
            (self.folder / "state" / "Quorin" / "defaults.json").write_text(json.dumps(defaults))
        if settings:
            (self.folder / "data" / "Quorin").mkdir(parents=True)
            (self.folder / "data" / "Quorin" / "config.json").write_text(json.dumps(settings))
        self.output = open(self.folder / "output", "ab")
        self.process = subprocess.Popen([str(program or self.program), *arguments],
                                        env=self.environment, stdin=subprocess.DEVNULL,
                                        stdout=self.output, stderr=self.output)
        self.panel = Panel(self.folder / "panel")
        try:
            wait_for("Quorin", self.is_up)
            if wait:
                wait_for("the page", lambda: self.panel.eval(
                    "document.readyState == 'complete' && document.body.childElementCount > 0"))
        except Exception:
            # Left running it would hold the keys of the tests that follow.
            self.process.kill()
            self.process.wait()
            self.end()
            raise

    def is_up(self):
        if self.process.poll() is not None:
            raise Trouble(f"Quorin ended with status {self.process.returncode}: "
                                    + (self.folder / "output").read_text(errors="replace"))
        return (self.folder / "panel").exists()

    def another(self, *arguments):
        """A second start in the same folders."""
        return subprocess.run([str(self.program), *arguments], env=self.environment, timeout=60,
                              capture_output=True, text=True, check=False)

    def window(self):
        return self.panel.ask("window")

    def log(self):
        path = self.folder / "state" / "Logs" / "Quorin" / "quorin.log"
        lines = path.read_text().splitlines() if path.exists() else []
        return [line.partition(" ")[2] for line in lines]

    def logs(self, text):
        wait_for(f"the log line {text}", lambda: any(text in line for line in self.log()))

    def is_shown(self):
        wait_for("the panel", lambda: self.window()["visible"])

    def is_hidden(self):
        wait_for("the panel to go", lambda: not self.window()["visible"])

    def web_processes(self):
        found = []
        for status in pathlib.Path("/proc").glob("[0-9]*/stat"):
            try:
                name, _, rest = status.read_text().partition("(")[2].rpartition(")")
            except OSError:
                continue
            if name.startswith("WebKitWebProces") and int(rest.split()[1]) == self.process.pid:
                found.append(int(status.parent.name))
        return found

    def end(self):
        if self.process.poll() is None:
            try:
                self.panel.ask("quit")
                self.process.wait(30)
            except (OSError, Trouble, subprocess.TimeoutExpired):
                self.process.kill()
        self.process.wait()
        self.output.close()
        said = [line for line in (self.folder / "output").read_text(errors="replace").splitlines()
                if COMPLAINT.search(line)]
        if said:
            raise AssertionError("Quorin's libraries complained:\n" + "\n".join(said))


class Desk(Trial):
    """The display, its window manager, Calc, and a window of another program."""

    def __init__(self, quorin):
        self.book = pathlib.Path(os.environ.get("TMPDIR", "/tmp")) / f"Panel-{os.getpid()}.xlsx"
        subprocess.run([sys.executable, ROOT / "samples" / "make-sample.py", self.book],
                       check=True)
        super().__init__(quorin, self.book, self.book.parent)
        self.start_calc()
        self.cell()
        self.other_window = None

    def go_to(self, *keys):
        self.keys("Escape", "ctrl+Home", *keys)

    def bring_other_forward(self):
        if self.other_window is None:
            before = self.clients()
            self.other = self.start("xev", "-event", "keyboard", "-geometry", "200x100+20+20")
            self.other_window = wait_for("another window",
                                         lambda: next(iter(self.clients() - before), None))
        self.bring_forward(self.other_window)

    def click_in_calc(self, x, y):
        self.tool("xdotool", "mousemove", "--window", int(self.window, 16), x, y, "click", 1)

    def bring_calc_forward(self):
        self.bring_forward(int(self.window, 16))

    def bring_forward(self, window):
        """Until it stays there: a window that has just opened may still come forward by itself."""
        def stays():
            self.tool("xdotool", "windowactivate", window)
            for _ in range(6):
                time.sleep(0.05)
                if self.active() != window:
                    return False
            return True
        wait_for("the window to come forward", stays)

    def clients(self):
        told = self.tool("xprop", "-root", "_NET_CLIENT_LIST").split("#")[-1].split(",")
        return {int(one, 16) for one in told if one.strip().startswith("0x")}

    def window_of(self, quorin):
        """The panel's."""
        for window in self.clients():
            if f"= {quorin.process.pid}\n" in self.tool("xprop", "-id", window, "_NET_WM_PID"):
                return window
        return None

    def active(self):
        told = self.tool("xprop", "-root", "_NET_ACTIVE_WINDOW").split("#")[-1].strip()
        return int(told, 16) if told.startswith("0x") else 0

    def end(self):
        super().end()
        self.book.unlink(missing_ok=True)
