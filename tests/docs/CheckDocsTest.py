"""Runs scripts/check-docs on small pages: it accepts a valid page and reports each of
several mistakes with its place. The argument is the script."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

CHECK = sys.argv.pop(1)

# Replaces the program: prints its arguments, and fails for "fail".
TARN = """#!/bin/sh
echo "$@"
test "$1" != fail
"""


class CheckDocsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.tree = Path(folder.name)
        for part in ("docs", "examples/quakes/data", "tests/fathom"):
            (self.tree / part).mkdir(parents=True)
        (self.tree / "examples/quakes/quakes.toml").write_text("format = 1\n")
        (self.tree / "tests/fathom/TimeTest.cpp").write_text("TEST_F(Time, wrapsAround)\n")
        (self.tree / "docs/other.md").write_text("# Other\n\n## What `else` there is\n")
        (self.tree / "docs/broken.svg").write_text("<svg><path></svg>\n")
        self.page = self.tree / "docs/page.md"
        self.tarn = self.tree / "tarn"
        self.tarn.write_text(TARN)
        self.tarn.chmod(0o755)
        self.shown = self.tree / "shown"

    def check(self, *arguments):
        done = subprocess.run([sys.executable, CHECK, *map(str, arguments)], capture_output=True, text=True)
        return done.returncode, done.stdout + done.stderr

    def blocks(self, text):
        self.page.write_text(text)
        return self.check("blocks", self.page)

    def run_page(self, text):
        self.page.write_text(text)
        return self.check("run", self.shown, self.tarn, self.tree, self.page)

    def test_acceptsBlocksThatAreTestedOrMarked(self):
        text = (
            "# Page\n\n<!-- file: A.cpp -->\n```cpp\n#include \"A.hpp\"\n```\n\n<!-- fragment -->\n```cpp\nint b\n```\n"
            "```toml\nformat = 1\n```\n```sh\n./run\ntarn run a.toml\nTARN_LIBRARIES=lib tarn types\n```\n"
            "<!-- output -->\n```\none\n```\n<!-- file: A.hpp\nint a;\n-->\n"
            "<!-- file: CMakeLists.txt -->\n```cmake\nadd_library(a A.cpp)\n```\n"
            "[here](#page), [there](other.md#what-else-there-is), [far](https://example.org)\n"
            "It wraps. <!-- test: Time.wrapsAround -->\n"
        )
        self.assertEqual(self.blocks(text), (0, ""))

    def test_refusesBlocksThatNoTestCovers(self):
        for text, line, message in (
            ("```cpp\nint a;\n```\n", 2, "C++ that no test builds"),
            ("\n```c++\nint a;\n```\n", 3, "C++ that no test builds"),
            ("<!-- file: A.cpp -->\nText between them.\n```cpp\nint a;\n```\n", 4, "C++ that no test builds"),
            ("- A list:\n\n  ```cpp\n  int a;\n  ```\n", 4, "C++ that no test builds"),
            ("```toml\nname = 1\n```\n", 2, "TOML that no test loads"),
            ("```sh\ncd data && tarn check a.toml\n```\n", 2, "not at the start of the line"),
            ("```sh\n/opt/bin/tarn types\n```\n", 2, "not at the start of the line"),
            ("<!-- fragmnt -->\n```sh\n./run\n```\n", 3, "unknown or incomplete mark"),
            ("<!-- file: -->\n```toml\nformat = 1\n```\n", 3, "unknown or incomplete mark"),
            ("See\n[there](nowhere.md).\n", 2, "there is no nowhere.md"),
            ('<img src="nowhere.png" alt="">\n', 1, "there is no nowhere.png"),
            ("![A drawing](broken.svg)\n", 1, "broken.svg is not a valid drawing"),
            ("See [there](other.md#nothing).\n", 1, "other.md has no heading for #nothing"),
        ):
            with self.subTest(text):
                status, messages = self.blocks(text)
                self.assertEqual(status, 1)
                self.assertIn(f"page.md:{line}: ", messages)
                self.assertIn(message, messages)
        for text, message in (
            ("<!-- file: A.cpp -->\n```cpp\nint a;\n```\n", "its CMakeLists.txt does not list A.cpp"),
            ("<!-- file: A.hpp -->\n```cpp\nint a;\n```\n", "nothing includes A.hpp"),
            ("<!-- output -->\n```\none\n```\n```sh\ntarn one\n```\n", "no command before this output"),
        ):
            with self.subTest(text):
                status, messages = self.blocks(text)
                self.assertEqual(status, 1)
                self.assertIn(message, messages)
        self.assertIn("no test Time.stops", self.blocks("It stops. <!-- test: Time.stops -->\n")[1])
        self.assertNotEqual(self.blocks("```cpp\nint a;\n")[0], 0)
        self.assertNotEqual(self.blocks("<!-- file: A.cpp\nint a;\n")[0], 0)

    def test_joinsTheShownAndTheHiddenPartsOfAFile(self):
        self.page.write_text(
            "<!-- file: A.cpp\nclass A {\n-->\n\n1. A member:\n   <!-- file: A.cpp -->\n   ```cpp\n   int a;\n   ```\n"
            "<!-- file: A.cpp\n};\n-->\n"
        )
        self.assertEqual(self.check("extract", self.shown, self.page), (0, ""))
        self.assertEqual(
            (self.shown / "page/A.cpp").read_text(),
            f'#line 2 "{self.page}"\nclass A {{\n#line 8 "{self.page}"\nint a;\n#line 11 "{self.page}"\n}};\n',
        )
        self.page.write_text("```sh\ntarn types\n```\n")
        self.assertEqual(self.check("extract", self.shown, self.page), (0, f"run {self.page}\n"))
        self.page.write_text("<!-- file: CMakeLists.txt -->\n```cmake\nproject(a)\n```\n")
        self.assertEqual(self.check("extract", self.shown, self.page), (0, "build page\n"))

    def test_comparesTheOutputOfCommands(self):
        commands = "```sh\n./run\ntarn one\nNAME=x tarn two \\\n    three\n```\n\n<!-- output -->\n"
        for output in ("one\ntwo three", "...", "...\ntwo three", "one\n...", "one\n...\ntwo three"):
            with self.subTest(output):
                self.assertEqual(self.run_page(f"{commands}```\n{output}\n```\n"), (0, ""))
        for output in ("one", "two three", "one\ntwo\nthree", "...\none", "on.\ntwo three"):
            with self.subTest(output):
                status, messages = self.run_page(f"{commands}```\n{output}\n```\n")
                self.assertEqual(status, 1)
                self.assertIn("page.md:10: the commands print instead:\none\ntwo three", messages)

    def test_refusesCommandsWithAnUnexpectedStatus(self):
        self.assertEqual(self.run_page("```sh\ntarn fail\n```\n")[0], 1)
        self.assertEqual(self.run_page("<!-- status: 1 -->\n```sh\ntarn fail\n```\n"), (0, ""))
        self.assertEqual(self.run_page("<!-- status: 1 -->\n```sh\ntarn types\n```\n")[0], 1)
        self.assertEqual(self.run_page("```sh\nbuild/missing\n```\n")[0], 1)
        self.assertEqual(self.run_page("Nothing to run.\n")[0], 1)

    def test_loadsEveryNetwork(self):
        self.tarn.write_text('#!/bin/sh\ngrep -q "^format = 1" "$2" || exit 2\n')
        self.assertEqual(self.run_page("```toml\nformat = 1\n```\n"), (0, ""))
        self.assertEqual(self.run_page("<!-- file: a.toml -->\n```toml\nname = 1\n```\n")[0], 1)


if __name__ == "__main__":
    unittest.main()
