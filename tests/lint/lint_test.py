#!/usr/bin/env python3
"""Tests of the checks beside it: each is shown a small project with a mistake and one without."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).parent


def run(script, files):
    """The exit status and output of a check over a project that holds just these files."""
    with tempfile.TemporaryDirectory() as folder:
        for name, text in files.items():
            path = pathlib.Path(folder) / name
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(text)
        result = subprocess.run([sys.executable, str(HERE / script), folder], capture_output=True,
                                text=True, check=False)
        return result.returncode, result.stdout + result.stderr


class IncludeRules(unittest.TestCase):
    def check(self, name, line, expected):
        status, text = run("include_rules.py", {name: line + "\n"})
        self.assertEqual(status, 1 if expected else 0, text)
        if expected:
            self.assertIn(expected, text)

    def test_an_edge_of_the_table_passes(self):
        self.check("kit/excel/A.h", '#include "kit/value/B.h"', None)
        self.check("kit/bridge/A.h", '#include "kit/marks/B.h"', None)
        self.check("host/calc/A.cpp", "#include <com/sun/star/uno/Any.h>", None)

    def test_an_edge_outside_the_table_fails(self):
        self.check("kit/value/A.h", '#include "kit/support/B.h"', "may not include kit/support")
        self.check("kit/bridge/A.h", '#include "app/shell/B.h"', "may not include app/shell")
        self.check("kit/excel/A.h", '#include "script/B.h"', "may not include script")
        self.check("script/A.h", '#include "host/B.h"', "may not include host")

    def test_uno_stays_in_its_folder(self):
        self.check("host/A.cpp", "#include <com/sun/star/uno/Any.h>", "outside host/calc")

    def test_platform_conditionals_stay_in_their_folders(self):
        self.check("kit/value/A.h", "#ifdef __APPLE__", "platform conditional")
        self.check("app/macos/A.h", "#ifdef __APPLE__", None)


class SourcesListed(unittest.TestCase):
    def test_a_listed_source_passes(self):
        status, text = run("sources_listed.py", {
            "kit/CMakeLists.txt": "add_library(a value/A.cpp)", "kit/value/A.cpp": ""})
        self.assertEqual(status, 0, text)

    def test_an_unlisted_test_fails(self):
        status, text = run("sources_listed.py", {
            "tests/CMakeLists.txt": "add_executable(a ATest.cpp)",
            "tests/ATest.cpp": "", "tests/kit/BTest.cpp": ""})
        self.assertEqual(status, 1)
        self.assertIn("tests/kit/BTest.cpp", text)
        self.assertNotIn("tests/ATest.cpp:", text)

    def test_a_project_without_sources_fails(self):
        self.assertEqual(run("sources_listed.py", {"kit/CMakeLists.txt": ""})[0], 1)


if __name__ == "__main__":
    unittest.main()
