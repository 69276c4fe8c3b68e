#!/usr/bin/env python3
"""Tests of the checks beside it: each is shown a small project with a mistake and one without."""
import json
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

from tool_version import is_other

HERE = pathlib.Path(__file__).parent
TIDY = shutil.which("clang-tidy-14") or "clang-tidy"


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
        self.check("host/A.cpp", "#include <com/sun/star/uno/Any.h>", "in host")
        self.check("host/calc/cells/A.cpp", "#include <com/sun/star/uno/Any.h>", None)
        self.check("host/calc/grammar/A.cpp", "#include <com/sun/star/uno/Any.h>",
                   "in host/calc/grammar")

    def test_no_room_includes_one_above_it(self):
        self.check("host/calc/cells/A.h", '#include "host/calc/workbook/B.h"', None)
        self.check("host/calc/cells/A.h", '#include "host/calc/evaluation/B.h"',
                   "may not include host/calc/evaluation")
        self.check("host/calc/cells/A.h", '#include "host/calc/B.h"', "may not include host/calc ")
        self.check("host/A.h", '#include "host/model/B.h"', "may not include host/model")
        self.check("script/values/A.h", '#include "script/run/B.h"', "may not include script/run")

    def test_the_document_has_a_row_for_each_folder(self):
        folders = subprocess.run(
            [sys.executable, "-B", "-c", "import include_rules; print(*include_rules.ALLOWED)"],
            cwd=HERE, capture_output=True, text=True, check=True).stdout.split()
        whole = "x\n| folder |\n" + "".join(f"| `{name}` | y |\n" for name in folders) + "\n"

        def told(text):
            return run("include_rules.py", {"docs/architecture.md": text})
        self.assertEqual(told(whole)[0], 0)
        self.assertIn("no row for kit/marks", told(whole.replace("| `kit/marks` | y |\n", ""))[1])
        self.assertIn("there is no kit/none",
                      told(whole.replace("| folder |", "| folder |\n| `kit/none` | y |"))[1])

    def test_platform_conditionals_stay_in_their_folders(self):
        self.check("kit/value/A.h", "#ifdef __APPLE__", "platform conditional")
        self.check("app/macos/A.h", "#ifdef __APPLE__", None)


class DocPaths(unittest.TestCase):
    def check(self, line, expected):
        status, text = run("doc_paths.py", {"README.md": line + "\n", "docs/a.md": "",
                                            "kit/marks/Store.h": ""})
        self.assertEqual(status, 1 if expected else 0, text)
        if expected:
            self.assertIn(expected, text)

    def test_what_is_there_passes(self):
        self.check("`kit/marks`, `kit/marks/Store.h`, `kit/marks/Store`, `kit/*/*.h`, `kit/`", None)
        self.check("`qx.bridge`, `and/or`, [a](docs/a.md#part), [b](https://example.org/b)", None)

    def test_what_is_not_there_fails(self):
        self.check("see `kit/marks/Stores.h`", "there is no kit/marks/Stores.h")
        self.check("see `kit/*/*.cpp`", "there is no kit/*/*.cpp")
        self.check("see [this](docs/b.md)", "leads nowhere: docs/b.md")


class StdIncludes(unittest.TestCase):
    AHEAD = {"cmake/QuorinTargets.cmake": "set(QUORIN_HEADERS\n  <map> <string>)"}

    def check(self, files, expected):
        status, text = run("std_includes.py", {**self.AHEAD, **files})
        self.assertEqual(status, 1 if expected else 0, text)
        if expected:
            self.assertIn(expected, text)

    def test_a_header_of_its_own_or_of_the_projects_passes(self):
        self.check({"kit/A.h": "#include <map>\nstd::map<int, int> a();\n",
                    "kit/B.cpp": '#include "kit/A.h"\nvoid b(std::map<int, int> c) { a().swap(c); }\n'},
                   None)

    def test_a_missing_header_fails(self):
        self.check({"host/A.cpp": '#include "host/A.h"\n#include <map>\nstd::string a();\n',
                    "host/A.h": "#include <vector>\n"},
                   "host/A.cpp: no <string> for std::string")

    def test_words_in_texts_and_comments_are_no_names(self):
        self.check({"kit/A.cpp": 'const char* a = "std::map";  // std::map\n'}, None)

    def test_a_header_read_ahead_without_names_fails(self):
        self.check({"cmake/QuorinTargets.cmake": "set(QUORIN_HEADERS <regex>)", "kit/A.cpp": ""},
                   "<regex> is read ahead")

    def test_a_project_without_sources_fails(self):
        self.check({}, "nothing to check")


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


class ToolVersion(unittest.TestCase):
    """What another version of a tool says is no fault of the sources."""

    def check(self, script, version):
        with tempfile.TemporaryDirectory() as folder:
            tool = pathlib.Path(folder) / "tool"
            tool.write_text(f"#!/bin/sh\n[ \"$1\" = --version ] && echo '{version}' && exit\nexit 1\n")
            tool.chmod(0o755)
            (pathlib.Path(folder) / "kit").mkdir()
            (pathlib.Path(folder) / "kit/A.cpp").write_text("int a;\n")
            result = subprocess.run([sys.executable, HERE / script, folder, *(
                [folder] if script == "tidy.py" else []), tool], capture_output=True, text=True,
                check=False)
        return result.returncode, result.stdout

    def test_the_format_is_checked_with_one_version_only(self):
        self.assertEqual(self.check("format.py", "Debian clang-format version 14.0.6")[0], 1)
        status, text = self.check("format.py", "Ubuntu clang-format version 19.1.1 (1ubuntu1)")
        self.assertEqual(status, 77)
        self.assertIn("checked with version 14 on Debian 12 only; this is version 19.", text)

    def test_so_is_what_clang_tidy_says(self):
        self.assertEqual(self.check("tidy.py", "Debian LLVM version 19.1.7")[0], 77)


@unittest.skipIf(is_other(TIDY), "another version of clang-tidy")
class Tidy(unittest.TestCase):
    """Two files of one target that share a header, built by ninja as the project is."""

    RULES = """rule cc
  command = c++ -MD -MF $out.d -c $in -o $out
  depfile = $out.d
  deps = gcc
"""
    USES_MOVED = "#include <utility>\nstruct S { S(); S(S&&); int n; };\n" \
                 "inline int taken(S s) { S t = std::move(s); return s.n; }\n"

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name).resolve()
        (self.root / "kit").mkdir()
        (self.root / "build").mkdir()
        (self.root / ".clang-tidy").write_text((HERE.parent.parent / ".clang-tidy").read_text())
        (self.root / "kit/A.h").write_text("")
        commands, rules = [], self.RULES
        for name in "AB":
            file, made = f"{self.root}/kit/{name}.cpp", f"kit/CMakeFiles/kit.dir/{name}.o"
            rules += f"build {made}: cc {file}\n"
            commands.append({"directory": f"{self.root}/build", "file": file,
                             "command": f"c++ -o {made} -c {file}"})
        (self.root / "build/build.ninja").write_text(rules)
        (self.root / "build/compile_commands.json").write_text(json.dumps(commands))

    def check(self, first, second, *folders):
        for name, text in (("A", first), ("B", second)):
            (self.root / f"kit/{name}.cpp").write_text(text)
        subprocess.run(["ninja", "-C", str(self.root / "build")], check=True, capture_output=True)
        result = subprocess.run([sys.executable, str(HERE / "tidy.py"), str(self.root),
                                 str(self.root / "build"), TIDY, *folders],
                                capture_output=True, text=True, check=False)
        return result.returncode, result.stdout + result.stderr

    def test_what_another_compiler_read_ahead_is_left_out(self):
        (self.root / "build/ahead.h").write_text("")
        (self.root / "build/ahead.h.gch").write_text("another compiler's")
        commands = self.root / "build/compile_commands.json"
        ahead = f"c++ -Winvalid-pch -include {self.root}/build/ahead.h -o"
        commands.write_text(commands.read_text().replace("c++ -o", ahead))
        status, text = self.check("int a();\n", "int b();\n")
        self.assertEqual(status, 0, text)

    def test_files_that_the_build_compiles_as_one_are_told_apart(self):
        commands = self.root / "build/compile_commands.json"
        unit, made = self.root / "build/Unity/unity_0_cxx.cxx", "Unity/unity_0_cxx.cxx.o"
        unit.parent.mkdir()
        unit.write_text("".join(f'/* */\n\n#include "{self.root}/kit/{name}.cpp"\n' for name in "AB"))
        (self.root / "build/build.ninja").write_text(f"{self.RULES}build {made}: cc {unit}\n")
        commands.write_text(json.dumps([{"directory": f"{self.root}/build", "file": str(unit),
                                         "command": f"c++ -o {made} -c {unit}"}]))
        self.assertEqual(self.check("int a();\n", "int b();\n"), (0, "2 files checked\n"))
        status, text = self.check("int a();\n", self.USES_MOVED)
        self.assertEqual(status, 1)
        self.assertIn("kit/B.cpp:3:", text)

    def test_files_without_a_mistake_pass_though_private_names_clash(self):
        private = "namespace { int a() { return 1; } }\nint %s() { return a(); }\n"
        status, text = self.check(private % "b", private % "c")
        self.assertEqual((status, text), (0, "2 files checked\n"))

    def test_a_clash_that_no_private_name_foretells_is_none_either(self):
        private = "static int a() { return 1; }\nint %s() { return a(); }\n"
        status, text = self.check(private % "b", private % "c")
        self.assertEqual((status, text), (0, "2 files checked\n"))

    def test_a_mistake_beside_such_a_clash_is_found(self):
        private = "static int a() { return 1; }\nint b() { return a(); }\n"
        for sources in ((private, private + self.USES_MOVED), (private + self.USES_MOVED, private)):
            status, text = self.check(*sources)
            self.assertEqual(status, 1)
            self.assertIn("bugprone-use-after-move", text)

    def test_only_what_changed_is_checked_again(self):
        self.check("int a;\n", "int b;\n")
        stamps = set((self.root / "build/tidy").iterdir())
        self.assertEqual(len(stamps), 2)
        self.check("int a;\n", "int c;\n")
        self.assertEqual(len(set((self.root / "build/tidy").iterdir()) - stamps), 1)

    def test_parts_are_checked_by_themselves_and_what_is_in_none_of_them(self):
        sources = "int a;\n", self.USES_MOVED
        self.assertEqual(self.check(*sources, "kit/A.cpp"), (0, "1 files checked\n"))
        self.assertEqual(self.check(*sources, "host", "kit/B.cpp")[0], 1)
        self.assertEqual(self.check(*sources, "-kit/B.cpp", "-host"), (0, "1 files checked\n"))
        self.assertEqual(self.check(*sources, "-kit/A.cpp")[0], 1)
        self.assertEqual(self.check(*sources, "-kit"), (1, "found nothing to check\n"))

    def test_a_mistake_in_the_second_file_of_a_unit_is_found(self):
        status, text = self.check("int a;\n", self.USES_MOVED)
        self.assertEqual(status, 1)
        self.assertIn("kit/B.cpp:3:", text)
        self.assertIn("bugprone-use-after-move", text)

    def test_a_mistake_that_comes_into_a_header_is_found(self):
        sources = '#include "A.h"\nint a;\n', "int b;\n"
        self.assertEqual(self.check(*sources)[0], 0)
        (self.root / "kit/A.h").write_text(self.USES_MOVED)
        status, text = self.check(*sources)
        self.assertEqual(status, 1)
        self.assertIn("kit/A.h:3:", text)


if __name__ == "__main__":
    unittest.main()
