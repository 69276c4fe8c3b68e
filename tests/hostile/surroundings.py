"""What the tests of hostile workbooks stand on: a server that must hear nothing, the record of what
every program reaches for, an office, and what of ours may cost."""
import json
import os
import pathlib
import re
import select
import socket
import subprocess
import threading
import time

HERE = pathlib.Path(__file__).resolve().parent
PATIENCE = 60  # seconds for an office to come up, or to answer, on a machine with much else to do


class Trouble(Exception):
    pass


class Listener:
    """A server on the loopback interface that notes who asks it, and answers nothing of use."""

    def __init__(self):
        self.heard = []
        self.socket = socket.create_server(("127.0.0.1", 0))
        self.packets = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.packets.bind(self.socket.getsockname())
        self.address = "127.0.0.1:%d" % self.socket.getsockname()[1]
        self.ended = socket.socketpair()
        self.thread = threading.Thread(target=self.listen)
        self.thread.start()

    def listen(self):
        while True:
            ready, _, _ = select.select([self.socket, self.packets, self.ended[1]], [], [])
            if self.ended[1] in ready:
                return
            if self.packets in ready:
                self.heard.append(repr(self.packets.recv(200)))
            if self.socket in ready:
                connection, _ = self.socket.accept()
                with connection:
                    connection.settimeout(2)
                    try:
                        self.heard.append(connection.recv(200).decode(errors="replace")
                                          .partition("\r")[0])
                        connection.sendall(b"HTTP/1.0 200 OK\r\nContent-Length: 4\r\n\r\nhere")
                    except OSError as failure:
                        self.heard.append(f"a connection: {failure}")

    def take(self):
        heard, self.heard = self.heard, []
        return heard

    def end(self):
        self.ended[0].send(b".")
        self.thread.join()
        for one in (self.socket, self.packets, *self.ended):
            one.close()


class Reaches:
    """The record that Reaches.cpp keeps, read on from where it was read last."""

    LIBRARIES = ("/usr/", "/lib", "/etc/", "/proc/", "/sys/", "/dev/", "/opt/", "/run/", "/bin/",
                 "/var/cache/fontconfig/", "/var/lib/")
    OF_THE_OFFICE = ("/SGENPRT", "/tmp", "/var/tmp")  # what it looks for when it thinks of printing
    SOCKETS = re.compile(r"/tmp/OSL_PIPE_|@?/tmp/\.X11-unix/|/(var/)?run/nscd/|/tmp/\.ICE-unix/")

    def __init__(self, record, ours, bait, programs="."):
        """`ours`: the folders in which everything may be read and written; `bait` lies in one of
        them and is nobody's. `programs`: which are looked at."""
        self.programs = re.compile(programs)
        self.record, self.ours, self.bait = record, [str(one) for one in ours], str(bait)
        self.record.write_text("")
        self.at, self.known = 0, set()

    def take(self):
        """Lines of process, program, call and object since the last time, each once."""
        with open(self.record, "rb") as record:
            record.seek(self.at)
            text = record.read()
            self.at = record.tell()
        lines = (line.split("\t", 3) for line in text.decode(errors="replace").splitlines())
        return sorted({(program, call, what) for _, program, call, what in
                       (line for line in lines if len(line) == 4)
                       if self.programs.match(program)})

    def learn(self):
        """What was read and run since the last time is what ordinary workbooks need."""
        self.known |= {one for one in self.take() if one[1] in ("read", "run", "local")}

    def forbidden(self, may_run=()):
        """Those since the last time that nothing but a workbook can have asked for."""
        return [" ".join(one) for one in self.take()
                if one not in self.known and not self.is_allowed(*one[1:], may_run)]

    def is_allowed(self, call, what, may_run):
        if call in ("connect", "send", "look up"):
            return False
        if call == "local":
            return bool(self.SOCKETS.match(what)) or self.is_ours(what)
        if call == "run":
            return pathlib.PurePath(what).name in may_run
        path = os.path.normpath(what)
        if self.is_ours(path):
            return True
        if call == "read" and ((path + "/").startswith(self.LIBRARIES) or path in self.OF_THE_OFFICE):
            return True
        return path == "/dev/null"

    def is_ours(self, path):
        if path == self.bait or path.startswith(self.bait + "/"):
            return False
        return any(path == one or path.startswith(one + "/") for one in self.ours)


# Parts of what the workbooks' cells hold, and of their formulas.
CONTENTS = re.compile(r"the secret of|127\.0\.0\.1|xxxxxxxx|\b(LEN|SUM|IF|ABS|REPT|COMBIN|WEBSERVICE|"
                      r"HYPERLINK|FILTERXML|MUNIT)\(", re.IGNORECASE)


def told_by_log(folder):
    """Lines of the logs below the folder that tell of contents of cells."""
    logs = list(folder.rglob("quorin.log"))
    lines = [line for log in logs for line in log.read_text(errors="replace").splitlines()]
    if not lines:
        return ["there is no log"]
    return [f"the log tells contents: {line}" for line in lines if CONTENTS.search(line)]


def open_to_others(folder):
    """Folders of Quorin's below that one into which somebody else may look."""
    own = {path.parent for name in ("quorin.log", "lock") for path in folder.rglob(name)
           if path.parent.name == "Quorin"}
    found = [f"{one} is open to others" for one in sorted(own) if one.stat().st_mode & 0o077]
    return found if len(own) == 2 else [f"the folders of log and data are {sorted(own)}"]


class Lines:
    """A process that answers one line of JSON with one line of JSON."""

    def __init__(self, command, environment):
        self.process = subprocess.Popen([str(word) for word in command], env=environment,
                                        stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.rest = b""

    def ask(self, request, patience):
        self.process.stdin.write(json.dumps(request).encode() + b"\n")
        self.process.stdin.flush()
        return self.line(patience)

    def line(self, patience):
        """None when none comes in time; an error when the process is gone."""
        end = time.monotonic() + patience
        while b"\n" not in self.rest:
            ready, _, _ = select.select([self.process.stdout], [], [], max(0, end - time.monotonic()))
            if not ready:
                return None
            piece = os.read(self.process.stdout.fileno(), 1 << 20)
            if not piece:
                raise Trouble(f"{self.process.args[0]} ended with {self.process.wait()}")
            self.rest += piece
        line, _, self.rest = self.rest.partition(b"\n")
        return json.loads(line)

    def end(self, patience=PATIENCE):
        self.process.stdin.close()
        try:
            self.process.wait(patience)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
        self.process.stdout.close()


def processes():
    """Every process of this machine: its parent and its name."""
    found = {}
    for folder in pathlib.Path("/proc").glob("[0-9]*"):
        try:
            name, _, rest = (folder / "stat").read_text().partition("(")[2].rpartition(")")
            found[int(folder.name)] = (int(rest.split()[1]), name)
        except OSError:
            pass
    return found


def children_of(root):
    """The process and all that came of it."""
    known, found = processes(), {root}
    while more := {one for one, (parent, _) in known.items() if parent in found} - found:
        found |= more
    return found


def forget_peak(process):
    """Counts the most memory of a process anew."""
    try:
        pathlib.Path(f"/proc/{process}/clear_refs").write_text("5")
    except OSError:
        pass


def peak(process):
    """The most memory that the process had, in MB; 0 when it has ended."""
    try:
        status = pathlib.Path(f"/proc/{process}/status").read_text()
    except OSError:
        return 0
    found = re.search(r"VmHWM:\s+(\d+) kB", status)
    return int(found.group(1)) / 1024 if found else 0


def memory(some):
    """What these processes have now, in MB, what they share counted once."""
    total = 0
    for process in some:
        try:
            text = pathlib.Path(f"/proc/{process}/smaps_rollup").read_text()
        except OSError:
            continue
        total += int(re.search(r"\nPss:\s+(\d+) kB", text).group(1))
    return total / 1024
