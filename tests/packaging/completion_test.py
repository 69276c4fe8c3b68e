#!/usr/bin/env python3
"""What bash completes of quorinctl's command line, against what the program says of itself.

usage: completion_test.py QUORINCTL COMPLETION
"""
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest

COMPLETION = pathlib.Path(sys.argv.pop()).resolve()
PROGRAM = pathlib.Path(sys.argv.pop()).resolve()


def completed(*words, folder="/"):
    """What the last of the words may become."""
    script = (f'source "{COMPLETION}"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); '
              '_quorinctl "$1" "${@: -1}" "${@: -2:1}" 2>/dev/null; '
              'for each in "${COMPREPLY[@]}"; do printf "%s\\n" "$each"; done')
    run = subprocess.run(["bash", "-c", script, "bash", "quorinctl", *words], cwd=folder,
                         capture_output=True, text=True, check=True)
    return set(run.stdout.splitlines())


def told(*command):
    return subprocess.run([PROGRAM, *command, "--help"], capture_output=True, text=True,
                          check=True).stdout


def options_of(*command):
    return set(re.findall(r"(?<![\w-])--[a-z][a-z-]*", told(*command)))


class Completion(unittest.TestCase):
    def test_offers_every_option(self):
        own = options_of() - {"--format"}
        self.assertIn("--workbook", own)
        self.assertEqual(completed("--"), own)
        for command in ("audit", "lint"):
            listed = set(re.findall(r"^ +(--[a-z-]+)", told(command).replace("-h,", ""), re.M))
            self.assertIn("--help", listed)
            self.assertEqual(completed(command, "--"), listed)

    def test_offers_the_commands(self):
        commands = re.findall(r"^  (\w[\w-]*) ", told().split("Subcommands:")[1], re.M)
        self.assertEqual({each for each in completed("") if not each.startswith("-")},
                         set(commands))

    def test_offers_the_words_that_an_option_takes(self):
        for option in ("--format", "--fail-on"):
            words = re.search(option + r" [^{]*{([^}]*)}", told("audit")).group(1).split(",")
            self.assertEqual(completed("audit", option, ""), set(words))
        self.assertEqual(completed("audit", "--top", ""), set())

    def test_offers_workbooks_and_folders(self):
        with tempfile.TemporaryDirectory(prefix="quorin-completion-") as name:
            folder = pathlib.Path(name)
            for file in ("a b.xlsx", "B.XLSM", "c.txt", "d.ods", "e.applescript"):
                (folder / file).touch()
            (folder / "models").mkdir()
            workbooks = {"a b.xlsx", "B.XLSM", "d.ods", "models"}
            self.assertEqual(completed("audit", "", folder=folder), workbooks)
            self.assertEqual(completed("audit", "x.ods", "a", folder=folder), {"a b.xlsx"})
            self.assertEqual(completed("--workbook", "", folder=folder), workbooks)
            self.assertEqual(completed("lint", "", folder=folder), {"e.applescript", "models"})
            self.assertEqual(completed("--data", "", folder=folder), {"models"})
            self.assertIn("c.txt", completed("audit", "--review", "", folder=folder))


if __name__ == "__main__":
    unittest.main(verbosity=2)
