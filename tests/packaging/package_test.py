#!/usr/bin/env python3
"""Packs Quorin, installs the package in a root of its own, runs it there and removes it again.

usage: package_test.py BUILD_FOLDER
"""
import configparser
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree

BUILD = pathlib.Path(sys.argv.pop(1)).resolve()
FILES = {
    "usr/bin/quorin",
    "usr/bin/quorinctl",
    "usr/libexec/quorin/quorin-marks-keeper",
    "usr/share/applications/quorin.desktop",
    "usr/share/bash-completion/completions/quorinctl",
    "usr/share/icons/hicolor/scalable/apps/quorin.svg",
    "usr/share/icons/hicolor/symbolic/apps/quorin-symbolic.svg",
    "usr/share/man/man1/quorin.1.gz",
    "usr/share/man/man1/quorinctl.1.gz",
    "usr/share/quorin/audit.js",
    "usr/share/quorin/web/index.html",
}


def output_of(*command, **options):
    run = subprocess.run([str(word) for word in command], capture_output=True, text=True,
                         check=False, **options)
    if run.returncode:
        raise AssertionError(f"{' '.join(map(str, command))}: {run.stdout}{run.stderr}")
    return run.stdout


def files_in(folder):
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if not path.is_dir()}


class Package(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory(prefix="quorin-package-")
        cls.addClassCleanup(cls.folder.cleanup)
        made = pathlib.Path(cls.folder.name) / "made"
        output_of("cpack", "--config", BUILD / "CPackConfig.cmake", "-G", "DEB", "-B", made)
        cls.package, = made.glob("*.deb")

    def setUp(self):
        folder = tempfile.TemporaryDirectory(dir=self.folder.name)
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name) / "root"
        (self.root / "var/lib/dpkg/updates").mkdir(parents=True)
        (self.root / "var/lib/dpkg/info").mkdir()
        (self.root / "var/lib/dpkg/status").touch()

    def dpkg(self, *words):
        # What the package depends on is on this machine, not in the empty root.
        output_of("dpkg", f"--root={self.root}", "--force-depends", "--force-not-root",
                  "--force-bad-path", "--log=/dev/null", *words)

    def test_names_what_it_needs(self):
        needs = output_of("dpkg-deb", "-f", self.package, "Depends")
        for name in ("libreoffice-calc", "libwebkit2gtk-4.1-0", "libgtk-3-0", "libc6", "libsodium23",
                     "librsvg2-common"):
            self.assertIn(name, needs)

    def test_brings_its_files_and_takes_them_away(self):
        self.dpkg("-i", self.package)
        self.assertEqual({f"usr/{name}" for name in files_in(self.root / "usr")}, FILES)
        self.dpkg("-P", "quorin")
        self.assertFalse((self.root / "usr").exists())

    def test_runs_where_it_is_installed(self):
        self.dpkg("-i", self.package)
        programs = self.root / "usr/bin"
        home = self.root / "home"
        home.mkdir()
        environment = {"PATH": os.environ["PATH"], "HOME": str(home), "TMPDIR": str(home)}
        version = output_of(programs / "quorin", "--version", env=environment).strip()
        self.assertEqual(version, output_of("dpkg-deb", "-f", self.package, "Version").strip())
        workbook = home / "Two.csv"
        workbook.write_text("1,2\n")
        answer = output_of(programs / "quorinctl", "--workbook", workbook, env=environment,
                           input='{"id":7,"verb":"readCell","args":[]}\n')
        self.assertIn('"id":7,"ok":true', answer)
        audit = output_of(programs / "quorinctl", "audit", workbook, env=environment)
        self.assertIn("Two.csv: 0 findings", audit)

    def test_lets_nobody_look_into_the_panel(self):
        self.dpkg("-i", self.package)
        self.assertNotIn(b"QX_TEST_SOCKET", (self.root / "usr/bin/quorin").read_bytes())
        inspected = (BUILD / "app/linux/quorin_inspected").read_bytes()
        self.assertIn(b"QX_TEST_SOCKET", inspected, "the test would see it")

    def test_describes_itself_to_the_desktop(self):
        self.dpkg("-i", self.package)
        share = self.root / "usr/share"
        entry = configparser.ConfigParser(interpolation=None, strict=True)
        entry.optionxform = str
        entry.read(share / "applications/quorin.desktop")
        group = entry["Desktop Entry"]
        program = group["Exec"].split()[0]
        self.assertTrue(os.access(self.root / "usr/bin" / program, os.X_OK))
        self.assertEqual(group["TryExec"], program)
        self.assertTrue((share / f"icons/hicolor/scalable/apps/{group['Icon']}.svg").exists())
        for icon in (share / "icons").rglob("*.svg"):
            self.assertTrue(xml.etree.ElementTree.parse(icon).getroot().tag.endswith("}svg"))

    def test_explains_every_option(self):
        for program in ("quorin", "quorinctl"):
            page = output_of("gzip", "-dc", BUILD / "man" / f"{program}.1.gz").replace("\\-", "-")
            options = {word for line in output_of(self.program(program), "--help").splitlines()
                       for word in line.strip().split(" ")[0].split(",") if word.startswith("--")}
            self.assertTrue(options - {"--help"})
            for option in options - {"--help"}:
                self.assertIn(option, page, program)

    @staticmethod
    def program(name):
        return BUILD / ("app/linux" if name == "quorin" else "tools") / name


if __name__ == "__main__":
    unittest.main()
