#!/usr/bin/env python3
"""Tests of tools/dev/mutate.py: which mistakes it makes, and whether it sees a test notice."""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[1] / "tools/dev"))
import mutate
from mutations import changes


def made(name, text):
    return [f"{each.line} {each.rule}: {each.old} -> {each.new}" for each in changes(name, text)]


class Mistakes(unittest.TestCase):
    def test_those_in_cpp(self):
        self.assertEqual(made("A.cpp", 'if (a < 20 && !done) names.push_back("x");\n'), [
            '1 condition: a < 20 && !done -> !(a < 20 && !done)',
            '1 comparison: < -> <=',
            '1 number: 20 -> 21',
            '1 operator: && -> ||',
            '1 text: "x" -> "x~"',
            '1 statement left out: names.push_back("x"); -> ;'])

    def test_times_are_ten_times_as_long(self):
        self.assertEqual(made("A.cpp", "wait(500ms);\nreturn std::chrono::seconds(2);"), [
            "1 time: 500ms -> 5000ms", "2 time: 2 -> 20"])

    def test_octal_numbers_stay_octal(self):
        self.assertEqual(made("A.cpp", "mode | 0400"), ["1 number: 0400 -> 0401"])

    def test_no_mistake_in_what_is_not_run(self):
        for text in ("// if (a < 2)\n", "/* 1 + 2 */", '#include "a"\n', "std::vector<int> all;\n",
                     "int count_;\n", "const Rect& rect();\n"):
            self.assertEqual(made("A.cpp", text), [], text)

    def test_those_in_handlers(self):
        text = ("with timeout of 3 seconds -- 3 < 4\n"
                "\t\tif n is not -1728 then error msg number n\n")
        self.assertEqual(made("a.applescript", text), [
            "2 words: is not -> is", "1 time: 3 -> 30", "2 number: 1728 -> 1729",
            "2 condition: n is not -1728 -> not (n is not -1728)",
            "2 statement left out: \t\tif n is not -1728 then error msg number n -> "])

    def test_a_change_is_made_where_it_was_found(self):
        text = "return a + b + 1;"
        self.assertEqual([each.made_in(text) for each in changes("A.cpp", text)],
                         ["return a - b + 1;", "return a + b - 1;", "return a + b + 2;"])

    def test_the_same_seed_chooses_the_same_of_every_folder(self):
        found = {"value": changes("kit/value/A.cpp", "return " + "1 + " * 90 + "1;"),
                 "marks": changes("kit/marks/A.cpp", "return 1;")}
        chosen = mutate.sampled(found, 20, 7)
        self.assertEqual(chosen, mutate.sampled(found, 20, 7))
        self.assertNotEqual(chosen, mutate.sampled(found, 20, 8))
        self.assertEqual(len(chosen), 21)
        self.assertIn("kit/marks/A.cpp", [each.path for each in chosen])


class Programs(unittest.TestCase):
    def failure(self, lines):
        with tempfile.TemporaryDirectory() as folder:
            program = pathlib.Path(folder) / "some_test"
            program.write_text("#!/bin/sh\n" + lines)
            program.chmod(0o755)
            return mutate.failure_of(program, pathlib.Path(folder))

    def test_no_failure(self):
        self.assertEqual(self.failure("echo '[       OK ] A.B (0 ms)'"), "")

    def test_the_failed_test_is_named(self):
        self.assertEqual(self.failure("echo '[  FAILED  ] A.B (3 ms)'; exit 1"), "some_test A.B")

    def test_so_is_the_one_that_ran_when_the_program_died(self):
        self.assertEqual(self.failure("echo '[ RUN      ] A.C'; kill -SEGV $$"),
                         "some_test A.C (died)")

    def test_and_the_one_that_never_ended(self):
        before, mutate.LONGEST = mutate.LONGEST, 0.3
        try:
            self.assertEqual(self.failure("echo '[ RUN      ] A.D'; sleep 60"),
                             "some_test A.D (stuck)")
        finally:
            mutate.LONGEST = before


COMPILER = sys.argv.pop() if len(sys.argv) > 1 and not sys.argv[-1].startswith("-") else "c++"
SUM = "int sum(int a, int b) {\n  int unused = 3;\n  (void)unused;\n  return a + b;\n}\n"
TEST = """int puts(const char*);
int sum(int, int);
int main() {
  if (sum(2, 3) == 5) return 0;
  puts("[  FAILED  ] Sum.Adds (0 ms)");
  return 1;
}
"""


class Trials(unittest.TestCase):
    """A project of one function, one library and one test."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        root = pathlib.Path(folder.name).resolve()
        build = root / "build/dev"
        build.mkdir(parents=True)
        commands = {}
        for name, text in (("kit/value/Sum.cpp", SUM), ("Test.cpp", 'extern "C" ' + TEST)):
            file = root / name
            file.parent.mkdir(parents=True, exist_ok=True)
            file.write_text(text)
            commands[file] = f"{COMPILER} -o {file.stem}.o -c {file}"
            subprocess.run(commands[file], shell=True, cwd=build, check=True)
        subprocess.run(["ar", "rcs", "libsum.a", "Sum.o"], cwd=build, check=True)
        (build / "compile_commands.json").write_text(json.dumps([
            {"file": str(file), "command": "launcher " + line} for file, line in commands.items()]))
        (build / "build.ninja").write_text(
            f"rule link\n  command = : && {COMPILER} Test.o -o $out libsum.a && :\n"
            "build value_test: link Test.o libsum.a\n")
        for name, value in (("ROOT", root), ("PROGRAMS", {"value": ["value_test"]})):
            before = getattr(mutate, name)
            self.addCleanup(setattr, mutate, name, before)
            setattr(mutate, name, value)
        self.build = mutate.Build(build, root)

    def outcome(self, old, new):
        return mutate.outcome_of(self.build, mutate.only_change("kit/value/Sum.cpp", old, new))

    def test_of_nothing_tell_what_fails_all_the_same(self):
        self.assertEqual(mutate.failing_unchanged(self.build, ["value_test"]), [])
        (self.build.folder / "Test.o").unlink()
        wrong = mutate.ROOT / "Wrong.cpp"
        wrong.write_text('extern "C" ' + TEST.replace("== 5", "== 6"))
        subprocess.run([COMPILER, "-o", self.build.folder / "Test.o", "-c", wrong], check=True)
        self.assertEqual(mutate.failing_unchanged(self.build, ["value_test"]),
                         ["value_test Sum.Adds"])

    def test_tell_what_is_noticed_and_what_is_not(self):
        self.assertEqual(self.outcome("a + b", "a - b"),
                         mutate.Outcome("killed", "value_test Sum.Adds"))
        self.assertEqual(self.outcome("3", "4"), mutate.Outcome("survived"))
        self.assertEqual(self.outcome("a + b", "a + c"), mutate.Outcome("refused"))
        self.assertEqual((mutate.ROOT / "kit/value/Sum.cpp").read_text(), SUM)


if __name__ == "__main__":
    unittest.main()
