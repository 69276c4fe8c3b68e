#!/usr/bin/env python3
"""What documents say of the settings and of the programs' options, against the code and the programs.

usage: documents_test.py SOURCES QUORIN QUORINCTL
"""
import pathlib
import re
import subprocess
import sys
import unittest

QUORINCTL = pathlib.Path(sys.argv.pop()).resolve()
QUORIN = pathlib.Path(sys.argv.pop()).resolve()
SOURCES = pathlib.Path(sys.argv.pop()).resolve()

FIELD = re.compile(r"^  std::[\w:<>]+ (\w+)(?: = (\{[^}]*\}|[^;]*))?;", re.M)
OPTION = re.compile(r"(?<![\w-])--[a-z][a-z-]*")


def text(path):
    return (SOURCES / path).read_text(encoding="utf-8")


def fields():
    """Each key of config.json with its default, as the record declares them."""
    header = text("kit/support/QXConfig.h")
    record = header.split("struct QXConfig {")[1].split("bool operator==")[0]
    return {name: default for name, default in FIELD.findall(record)}


def options(page):
    return set(OPTION.findall(page.replace("\\-", "-")))


def helps(program, *commands):
    told = set()
    for words in [(), *[(command,) for command in commands]]:
        run = subprocess.run([program, *words, "--help"], capture_output=True, text=True, check=True)
        # The page's examples of what desktops can bind are no options of their own.
        told |= set(OPTION.findall(run.stdout))
    return told


class Documents(unittest.TestCase):
    def test_list_every_setting_with_its_default(self):
        declared = fields()
        self.assertIn("pollMs", declared)
        self.assertIn("lastLaunchedAt", declared)
        rows = re.findall(r"^\| `(\w+)` \| ([^|]+) \| ([^|]+) \|", text("docs/settings.md"), re.M)
        self.assertEqual([name for name, _, _ in rows], list(declared))
        for name, unit, default in rows:
            with self.subTest(name):
                self.assertTrue(unit.strip())
                said = re.match(r"\[[^]]*\]|\w+", default.strip()).group()
                real = declared[name].replace("{", "[").replace("}", "]") or "none"
                self.assertEqual(said, real)

    def test_say_what_counts_as_too_often(self):
        least = re.search(r"shortestPollMs = (\d+)", text("kit/support/QXConfig.h")).group(1)
        self.assertIn(f"less than {least} counts as", text("docs/settings.md"))

    def test_the_encoder_writes_the_same_keys(self):
        written = set(re.findall(r'\{"(\w+)",', text("kit/support/QXConfigCoding.cpp")
                                 .split("QXConfig::encode")[1]))
        self.assertEqual(written | {"lastLaunchedAt", "welcomedAt"}, set(fields()))

    def test_manual_pages_list_the_options_that_there_are(self):
        self.assertEqual(options(text("packaging/man/quorin.1")), helps(QUORIN))
        self.assertEqual(options(text("packaging/man/quorinctl.1")),
                         helps(QUORINCTL, "audit", "lint"))

    def test_name_only_files_that_there_are(self):
        for page in [SOURCES / "README.md", *sorted((SOURCES / "docs").glob("*.md"))]:
            for target in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", page.read_text("utf-8")):
                with self.subTest(f"{page.name}: {target}"):
                    self.assertTrue((page.parent / target).exists())


if __name__ == "__main__":
    unittest.main()
