#!/usr/bin/env python3
"""What tools/dev/packages.sh installs on systems that have other packages, with an apt that is none.

usage: packages_test.py QUORIN_FOLDER
"""
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

QUORIN = pathlib.Path(sys.argv.pop(1)).resolve()

# The files beside them say what is installed, what is offered, and what is only once the lists of
# packages have been fetched; "asked" is what apt-get was told to do.
PROGRAMS = {
    "dpkg-query": 'grep -qx -- "$3" installed && echo "install ok installed"',
    "apt-cache": 'grep -qx -- "$2" offered && echo "$2 | 1.0 | somewhere"',
    "apt-get": 'echo "$@" >>asked; if [ "$1" = update ]; then cat new >>offered; fi',
    "clang": "echo 19.1.7",
    "sudo": '"$@"',
}


class Packages(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory(prefix="quorin-packages-")
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        for name, body in PROGRAMS.items():
            program = self.folder / name
            program.write_text(f"#!/bin/sh\ncd {self.folder}\n{body}\n")
            program.chmod(0o755)
        for name in ("installed", "offered", "new", "asked"):
            (self.folder / name).touch()

    def have(self, **lists):
        for name, packages in lists.items():
            (self.folder / name).write_text("".join(f"{one}\n" for one in packages))

    def run_in_shell(self, line):
        """What it printed and what apt-get was asked for."""
        run = subprocess.run(
            ["bash", "-c", f"set -euo pipefail; . {QUORIN}/tools/dev/packages.sh; {line}"],
            env={**os.environ, "PATH": f"{self.folder}:{os.environ['PATH']}"},
            capture_output=True, text=True, check=False)
        self.assertEqual(run.returncode, 0, run.stderr)
        return run.stdout, (self.folder / "asked").read_text().splitlines()

    def test_installs_what_is_missing_and_nothing_else(self):
        self.have(installed=["one", "three"], offered=["two", "four"])
        _, asked = self.run_in_shell("install_packages one two three four")
        self.assertEqual(asked, ["update -qq", "install -y -qq --no-install-recommends two four"])

    def test_asks_nothing_of_apt_where_all_is_there(self):
        self.have(installed=["one"])
        self.assertEqual(self.run_in_shell("install_packages one; install_where_there it one"),
                         ("", []))

    def test_says_what_goes_without_a_package_that_the_system_lacks(self):
        self.have(offered=["one"])
        said, asked = self.run_in_shell("install_where_there 'the icon' one two")
        self.assertEqual(said, "This system has no package two: the icon is left out, all else "
                               "works without it.\n")
        self.assertEqual(asked, ["update -qq"])

    def test_installs_the_first_of_several_that_the_system_has(self):
        self.have(installed=["three"], offered=["two"])
        said, asked = self.run_in_shell("install_one_where_there it one two three")
        self.assertEqual(asked, ["update -qq", "install -y -qq --no-install-recommends two"])
        self.assertNotIn("left out", said)

    def test_says_what_goes_without_any_of_several(self):
        said, asked = self.run_in_shell("install_one_where_there 'the icon' one two")
        self.assertEqual(said, "This system has no package one: the icon is left out, all else "
                               "works without it.\n")
        self.assertNotIn("install", " ".join(asked))

    def test_takes_no_package_for_lacking_before_there_are_lists(self):
        self.have(new=["one", "two"])
        _, asked = self.run_in_shell("install_where_there it one two; install_packages three")
        self.assertEqual(asked, ["update -qq", "install -y -qq --no-install-recommends one two",
                                 "install -y -qq --no-install-recommends three"])

    def test_installs_the_fuzzing_library_of_the_clang_that_there_is(self):
        self.have(installed=["clang", "llvm"])
        _, asked = self.run_in_shell("install_fuzz_packages")
        self.assertEqual(asked[-1], "install -y -qq --no-install-recommends libclang-rt-19-dev")


if __name__ == "__main__":
    unittest.main()
