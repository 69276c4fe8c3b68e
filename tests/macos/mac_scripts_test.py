#!/usr/bin/env python3
"""What the scripts for a Mac do, step by step, with stand-ins for the Mac's programs that write down
their arguments. Usage: mac_scripts_test.py PROJECT"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

PROJECT = pathlib.Path(sys.argv.pop(1)).resolve()

# Name of the stand-in: what it does after it has written down its arguments.
STAND_INS = {
    "brew": "", "codesign": "", "open": "", "seq": "echo 1 2 3", "sleep": "",
    "cmake": "", "ctest": "echo '1/1 Test: one ... Passed'",
    "xcode-select": "",
    "xcrun": 'case "$*" in *show-sdk-version) echo "${SDK:-14.5}" ;; esac',
    "pkill": "test -n \"${RUNS:-}\"",
    "pgrep": 'test -n "${RUNS:-}" && test ! -e "$FOLDER/asked" && touch "$FOLDER/asked"',
    "ditto": "touch \"${@: -1}\"", "spctl": "",
}


class MacScripts(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp())
        self.addCleanup(shutil.rmtree, self.folder)
        self.project = self.folder / "project"
        (self.project / "web").mkdir(parents=True)
        shutil.copytree(PROJECT / "tools/dev", self.project / "tools/dev")
        shutil.copytree(PROJECT / "app/macos", self.project / "app/macos")
        self.program(self.project / "web/build.sh", 'echo "web/build.sh" >>"$FOLDER/said"')
        programs = self.folder / "programs"
        programs.mkdir()
        for name, action in STAND_INS.items():
            self.program(programs / name, f'echo "{name} $*" >>"$FOLDER/said"\n{action}')

    def program(self, path, text):
        path.write_text(f"#!/bin/bash\n{text}\n")
        path.chmod(0o755)

    def run_script(self, name, *arguments, cwd=None, **environment):
        path = f"{self.folder / 'programs'}:{os.environ['PATH']}"
        return subprocess.run([self.project / "tools/dev" / name, *arguments], cwd=cwd or self.folder,
                              capture_output=True, text=True, check=False,
                              env={**os.environ, "PATH": path, "FOLDER": str(self.folder),
                                   **environment})

    def said(self):
        text = (self.folder / "said").read_text()
        return text.replace(str(self.project), "PROJECT").splitlines()

    def test_run_builds_signs_and_opens(self):
        done = self.run_script("run_mac.sh")
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        app = "PROJECT/build/mac/app/macos/Quorin.app"
        self.assertEqual([line for line in self.said() if not line.startswith("brew list")], [
            "xcode-select -p",
            "xcrun --sdk macosx --show-sdk-version",
            "web/build.sh",
            "cmake -S . -B build/mac -G Ninja -DCMAKE_BUILD_TYPE=Release -DQUORIN_CALC=OFF "
            "-DQUORIN_TESTS=OFF",
            "cmake --build build/mac -- --quiet Quorin",
            f"pkill -TERM -f ^{app}/Contents/MacOS/Quorin",
            "codesign --force --sign - --entitlements PROJECT/app/macos/Quorin.entitlements " + app,
            f"codesign --verify --strict {app}",
            f"open {app}",
        ])

    def test_run_waits_for_the_one_that_runs(self):
        self.assertEqual(self.run_script("run_mac.sh", RUNS="yes").returncode, 0)
        said = [line.split(" ")[0] for line in self.said()]
        ending = said.index("pkill")
        self.assertEqual(said[ending:ending + 5], ["pkill", "seq", "pgrep", "sleep", "pgrep"])
        self.assertEqual(said[-1], "open")

    def test_run_takes_a_workbook_from_where_it_is_called(self):
        books = self.folder / "books"
        books.mkdir()
        (books / "a b.xlsx").touch()
        self.assertEqual(self.run_script("run_mac.sh", "a b.xlsx", cwd=books).returncode, 0)
        self.assertIn(f"open -b com.microsoft.Excel {books}/a b.xlsx", self.said())
        self.assertEqual(self.run_script("run_mac.sh", "other.xlsx", cwd=books).returncode, 2)

    def test_an_older_sdk_is_named(self):
        done = self.run_script("run_mac.sh", SDK="13.3")
        self.assertEqual(done.returncode, 1)
        self.assertIn("needs the SDK of macOS 14 or newer and this is 13.3", done.stderr)
        self.assertNotIn("cmake", " ".join(self.said()))

    def test_self_test_waits_for_its_own_copy(self):
        self.assertEqual(self.run_script("run_mac.sh", "--self-test").returncode, 0)
        self.assertEqual(self.said()[-1],
                         "open -W -n PROJECT/build/mac/app/macos/Quorin.app --args --self-test")

    def test_tests_are_built_and_run(self):
        done = self.run_script("test_mac.sh")
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)
        self.assertEqual(self.said()[-3:], [
            "cmake -S . -B build/mac-test -G Ninja -DCMAKE_BUILD_TYPE=Debug -DQUORIN_CALC=OFF "
            "-DQUORIN_EXCEL=OFF",
            "cmake --build build/mac-test -- --quiet",
            "ctest --test-dir build/mac-test --output-on-failure --no-tests=error -L ^(unit|ui)$ "
            "--output-junit PROJECT/build/mac-test/results/ctest.xml",
        ])

    def test_an_identity_signs_what_lies_inside_first(self):
        app = self.project / "Quorin.app"
        sparkle = app / "Contents/Frameworks/Sparkle.framework"
        (sparkle / "Versions/B/Updater.app").mkdir(parents=True)
        self.assertEqual(self.run_script("sign_mac.sh", app, "Developer ID Application: X")
                         .returncode, 0)
        signing = "codesign --force --options runtime --timestamp --sign Developer ID Application: X "
        self.assertEqual(self.said(), [
            signing + "PROJECT/Quorin.app/Contents/Frameworks/Sparkle.framework/Versions/B/Updater.app",
            signing + "PROJECT/Quorin.app/Contents/Frameworks/Sparkle.framework",
            signing + "--entitlements PROJECT/app/macos/Quorin.entitlements PROJECT/Quorin.app",
            "codesign --verify --strict PROJECT/Quorin.app",
        ])


if __name__ == "__main__":
    unittest.main()
