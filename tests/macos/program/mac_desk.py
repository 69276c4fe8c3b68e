"""A Mac for tests of the macOS program: a display for its pages, the program with folders of its own,
and what a user does and sees. Part of mac_program_test.py."""
import json
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[3]
sys.path.insert(0, str(ROOT / "tools" / "dev"))
from try_panel import Panel, Trouble, wait_for  # noqa: E402,F401

# What Carbon calls the keys and their modifiers.
OPTION_SHIFT, CONTROL_OPTION = 2048 + 512, 4096 + 2048
A, S, D, LEFT, RIGHT = 0, 1, 2, 123, 124

# The mark of a condition that is ours.
OURS = '="QXZ"="QXZ"'


class Desk:
    """The display, without a window manager, and the folder of everything."""

    def __init__(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="quorin-mac-"))
        self.environment = dict(os.environ, NO_AT_BRIDGE="1", GSETTINGS_BACKEND="memory",
                                DBUS_SESSION_BUS_ADDRESS="disabled:", GDK_BACKEND="x11",
                                LC_ALL="C.UTF-8", TZ="UTC",
                                XDG_RUNTIME_DIR=str(self.folder), XDG_CACHE_HOME=str(self.folder))
        self.environment.pop("WAYLAND_DISPLAY", None)
        read, write = os.pipe()
        self.display = subprocess.Popen(
            ["Xvfb", "-displayfd", str(write), "-screen", "0", "1440x900x24", "-nolisten", "tcp",
             "-noreset"], pass_fds=(write,), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL, start_new_session=True)
        os.close(write)
        with os.fdopen(read) as told:
            number = told.readline().strip()
        if not number:
            raise Trouble("Xvfb did not start")
        self.environment["DISPLAY"] = f":{number}"

    def end(self):
        self.display.terminate()
        self.display.wait()
        shutil.rmtree(self.folder, ignore_errors=True)


class Mac:
    """One running Quorin beside an Excel with a workbook. In the home of another one that has ended,
    or in a new one."""

    program = None
    desk = None

    def __init__(self, after=None, settings=None, first=(), excel=True, wait=True, **environment):
        self.home = after.home if after else self.desk.folder / f"home-{time.monotonic_ns()}"
        (self.home / "Desktop").mkdir(parents=True, exist_ok=True)
        (self.home / "tmp").mkdir(exist_ok=True)
        socket, self.end_file = self.home / "hands", self.home / "end"
        for old in (socket, self.end_file):
            old.unlink(missing_ok=True)
        if settings:
            self.support.mkdir(parents=True)
            (self.support / "config.json").write_text(json.dumps(settings))
        self.environment = dict(self.desk.environment, HOME=str(self.home),
                                TMPDIR=str(self.home / "tmp"), QX_HANDS=str(socket),
                                QX_HANDS_END=str(self.end_file),
                                QX_HANDS_FIRST=json.dumps([
                                    *([["startExcel", None], ["front", "Excel"]] if excel else []),
                                    *first]),
                                **environment)
        before = self.launches()
        self.output = open(self.home / "output", "ab")
        self.process = subprocess.Popen([str(self.program)], env=self.environment,
                                        stdin=subprocess.DEVNULL, stdout=self.output,
                                        stderr=self.output)
        self.panel = Panel(socket)
        wait_for("Quorin", lambda: socket.exists() or self.process.poll() is not None)
        if wait:
            self.logs("RESTORE", before + 1)
            self.shows_page()
        if wait and excel:
            self.do("front", "Excel")
            self.is_shown()

    @property
    def support(self):
        return self.home / "Library" / "Application Support" / "Quorin"

    def do(self, word, value=None):
        return self.panel.ask(word if value is None else f"{word} {json.dumps(value)}")

    def launches(self):
        return sum("RESTORE" in line for line in self.log())

    def shows_page(self):
        wait_for("the page", lambda: self.panel.eval(
            "document.readyState == 'complete' && document.body.childElementCount > 0"))

    def log(self):
        path = self.home / "Library" / "Logs" / "Quorin" / "quorin.log"
        lines = path.read_text().splitlines() if path.exists() else []
        return [line.partition(" ")[2] for line in lines]

    def logs(self, text, times=1):
        def logged():
            if self.process.poll() is not None:
                raise Trouble(f"Quorin ended with {self.process.returncode}: {self.said()}")
            return sum(text in line for line in self.log()) >= times
        wait_for(f"the log line {text}", logged)

    def said(self):
        return (self.home / "output").read_text(errors="replace")

    def another(self):
        """A second start in the same home, at its end."""
        end = self.home / "second-end"
        run = subprocess.run([str(self.program)], timeout=60, check=False,
                             env=dict(self.environment, QX_HANDS=str(self.home / "second"),
                                      QX_HANDS_END=str(end)))
        (self.home / "second").unlink()
        return run.returncode, json.loads(end.read_text())

    def page_processes(self):
        """Those of the page's own, which the engine has started."""
        engine, found = self.do("engine"), []
        for status in pathlib.Path("/proc").glob("[0-9]*/stat"):
            try:
                name, _, rest = status.read_text().partition("(")[2].rpartition(")")
            except OSError:
                continue
            if name.startswith("WebKitWebProces") and int(rest.split()[1]) == engine:
                found.append(int(status.parent.name))
        return found

    def window(self):
        return self.do("window")

    def is_shown(self):
        wait_for("the panel", lambda: self.window()["visible"])

    def is_hidden(self):
        wait_for("the panel to go", lambda: not self.window()["visible"])

    def text(self, testid):
        """What stands in the first element of that name."""
        return self.panel.eval(
            f"document.querySelector('[data-testid=\"{testid}\"]')?.innerText ?? null")

    def says(self, testid, text):
        wait_for(f"{testid} to say {text}", lambda: text in (self.text(testid) or ""), 30)

    def rows(self):
        """The rows of the list in front, each as its text."""
        return self.panel.eval("[...document.querySelectorAll('[role=treeitem]')]"
                               ".map((row) => row.innerText.replace(/\\s+/g, ' ').trim())")

    def click(self, testid):
        """With the pointer, in the middle of the element."""
        at = wait_for(testid, lambda: self.panel.eval(
            f"""(() => {{ const one = document.querySelector('[data-testid="{testid}"]');
            if (!one) return null;
            one.scrollIntoView({{block: "nearest"}});
            const box = one.getBoundingClientRect();
            const at = [box.x + box.width / 2, box.y + box.height / 2];
            return one.contains(document.elementFromPoint(...at)) ? at : null; }})()"""))
        self.do("click", at)

    def take_keys(self):
        """The user clicks into the list in front, which has the keys from then on."""
        self.click("row")
        wait_for("the keyboard", lambda: self.window()["key"])
        wait_for("the page to have it", lambda: self.panel.eval(
            "document.hasFocus() && document.activeElement.dataset.keys !== undefined"))

    def key(self, *names):
        for name in names:
            self.do("key", name)

    def marks(self):
        """Where Quorin's own conditions are."""
        return [cells for cells, formula in self.do("conditions") if formula == OURS]

    def choose(self, title):
        wait_for(f"the item {title}",
                 lambda: any(item[0] == title and item[1] for item in self.do("menu")))
        if not self.do("choose", title):
            raise Trouble(f"{title} cannot be chosen")

    def alert(self):
        return wait_for("an alert", lambda: self.do("alert"))

    def press(self, title):
        shown = self.alert()
        if not self.do("press", title):
            raise Trouble(f"no button {title} in {shown}")

    def quit(self, patience=30):
        """By the menu; what is left at the end."""
        self.choose("Quit Quorin")
        return self.ended(patience)

    def ended(self, patience=30):
        if self.process.wait(patience) != 0:
            raise Trouble(f"Quorin ended with {self.process.returncode}: {self.said()}")
        return json.loads(self.end_file.read_text())

    def kill(self):
        self.process.send_signal(signal.SIGKILL)
        self.process.wait()

    def end(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        self.output.close()
