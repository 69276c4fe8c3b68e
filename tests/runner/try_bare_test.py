#!/usr/bin/env python3
"""That tools/dev/try_bare.sh leaves nothing, however it ends, with a debootstrap that makes no system.

usage: try_bare_test.py QUORIN_FOLDER

The real trial needs the network and most of an hour, and is run by hand. Skipped (77) where this user
may not make namespaces.
"""
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time
import unittest

TOOL = pathlib.Path(sys.argv.pop(1)).resolve() / "tools/dev/try_bare.sh"

# Mounts something where the system would be, and leaves a process behind; its arguments are
# --variant, --include, the suite and the folder.
DEBOOTSTRAP = """#!/bin/sh
mkdir -p "$4"
mount -t tmpfs none "$4"
echo mounted >"$4/file"
setsid sh -c 'while :; do sleep 0.1; touch "%(folder)s/alive"; done' &
echo "$2 $3" >>%(folder)s/made
%(end)s
"""


class Trial(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="quorin-bare-test-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        (self.folder / "tmp").mkdir()
        self.mounts = pathlib.Path("/proc/self/mounts").read_text()

    def start(self, end, *words):
        (self.folder / "bin").mkdir()
        program = self.folder / "bin/debootstrap"
        program.write_text(DEBOOTSTRAP % {"folder": self.folder, "end": end})
        program.chmod(0o755)
        return subprocess.Popen(
            [TOOL, *words], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
            env={**os.environ, "TMPDIR": str(self.folder / "tmp"),
                 "PATH": f"{self.folder}/bin:{os.environ['PATH']}"})

    def assert_nothing_left(self):
        self.assertEqual(list((self.folder / "tmp").iterdir()), [])
        self.assertEqual(pathlib.Path("/proc/self/mounts").read_text(), self.mounts)
        alive = self.folder / "alive"
        alive.unlink(missing_ok=True)
        time.sleep(0.5)
        self.assertFalse(alive.exists(), "a process of it goes on")

    def test_refuses_what_it_does_not_know(self):
        for words in (["sid"], ["--as", "nobody", "trixie"], [], ["trixie", "--ccache", "/none"]):
            with self.subTest(words):
                run = subprocess.run([TOOL, *words], capture_output=True, text=True, check=False)
                self.assertEqual(run.returncode, 2)
                self.assertIn("--help", run.stderr)

    def test_leaves_nothing_when_a_step_fails(self):
        trial = self.start("exit 3", "trixie")
        said, _ = trial.communicate(timeout=60)
        self.assertEqual(trial.returncode, 1, said)
        # As a user and as root, each in a system of its own.
        self.assertEqual((self.folder / "made").read_text(),
                         "--include=git,sudo trixie\n--include=git trixie\n")
        self.assert_nothing_left()

    def test_leaves_nothing_when_it_is_ended(self):
        trial = self.start("sleep 1000", "bookworm", "--as", "root")
        until = time.monotonic() + 60
        while not (self.folder / "alive").exists() and time.monotonic() < until:
            time.sleep(0.05)
        self.assertTrue((self.folder / "alive").exists())
        trial.send_signal(signal.SIGTERM)
        trial.communicate(timeout=60)
        self.assertEqual(trial.returncode, 143)
        self.assert_nothing_left()


if __name__ == "__main__":
    if os.getuid() != 0 or subprocess.run(
            ["unshare", "--mount", "--pid", "--ipc", "--fork", "true"],
            capture_output=True, check=False).returncode:
        print("needs the right to make namespaces")
        sys.exit(77)
    unittest.main()
