"""Checks what the compiler prints for common mistakes in the source of an object.

Usage: check-errors.py COMPILER SOURCE_FOLDER

Each case changes one place of a correct source. The compiler must refuse it with a message that names the mistake,
in a few lines.
"""

import concurrent.futures
import os
import pathlib
import subprocess
import sys
import tempfile

MOST_LINES = 10

SOURCE = """#include <fathom/fathom.hpp>

namespace {
using namespace Orla;

struct Own { int number = 0; };

struct Twice final : VObject {
    using VObject::VObject;
    TypedSlot<double> a{this, "a", 0.0, describe("A number.")};
    VOutput<double> twice{this, "twice", 0.0, describe("Twice the number.")};
    bool update(VRequest& request, double) override
    {
        const auto& pool = request.valuePool();
        twice(pool) << 2 * a.value(pool);
        return true;
    }
};
const VObjectType<Twice> twiceType{"Twice"};
} // namespace
"""

LABEL = 'describe("A number.")'
WRITE = "twice(pool) << 2 * a.value(pool)"
UPDATE = "bool update(VRequest& request, double) override"

# The mistake, what the message contains, what is replaced, and what replaces it.
MISTAKES = [
    ("a class without a base", "derives from Orla::VObject",
     "final : VObject {\n    using VObject::VObject;", "final {"),
    ("no constructor", "using VObject::VObject;", "    using VObject::VObject;\n", ""),
    ("another constructor", "using VObject::VObject;", "using VObject::VObject;", 'Twice() : VObject{"", 0, {}} {}'),
    ("no update", "overrides bool update(Orla::VRequest&, double)", UPDATE, "bool run(VRequest& request, double)"),
    ("an update without number", "does not override", UPDATE, "bool update(VRequest& request) override"),
    ("a wrong initial value", "could not convert", '"a", 0.0', '"a", "zero"'),
    ("no object", "could not convert", 'a{this, "a"', 'a{"a"'),
    ("limits in the wrong order", "the limits must be two numbers in ascending order", LABEL, LABEL + ".from(2).to(1)"),
    ("soft limits in the wrong order", "the soft limits must be", LABEL, LABEL + ".softLimits(2, 1)"),
    ("a step of 0", "the step must be a positive number", LABEL, LABEL + ".step(0)"),
    ("a limit that is not a number", "not a constant expression", LABEL, LABEL + ".from(0.0 / 0.0)"),
    ("no sentence", "a description needs a sentence", LABEL, 'describe("")'),
    ("a kind of text for a number", "kinds of text describe texts", LABEL, LABEL + ".asFolder()"),
    ("limits and a kind of text", "limits and steps describe numbers, kinds of text describe texts",
     LABEL, LABEL + ".from(0).asFolder()"),
    ("a type of values without a text", "a type of values has a default constructor, copies, == and a VValueTrait",
     'VOutput<double> twice{this, "twice", 0.0', 'TypedSlot<Own> own{this, "own", Own{}, describe("Own.")};\n'
     '    VOutput<double> twice{this, "twice", 0.0'),
    ("an output of such a type", "a type of values has a default constructor, copies, == and a VValueTrait",
     'VOutput<double> twice{this, "twice", 0.0', 'VOutput<Own> own{this, "own", Own{}, describe("Own.")};\n'
     '    VOutput<double> twice{this, "twice", 0.0'),
    ("the registration of such a type", "a type of values has a default constructor, copies, == and a VValueTrait",
     "const VObjectType", "const VValueType<Own> ownType;\nconst VObjectType"),
    ("a write without a pool", "an output is written in a pool", WRITE, "twice << 2 * a.value(pool)"),
    ("an assignment without a pool", "an output is written in a pool", WRITE, "twice <<= 2 * a.value(pool)"),
    ("a write of another type", "an output accepts values that convert", WRITE, 'twice(pool) << std::string("x")'),
    ("an assignment of another type", "an output accepts values that convert", WRITE,
     'twice(pool) <<= std::string("x")'),
    ("an input instead of its value", "no match for ‘operator*’", WRITE, "twice(pool) << 2 * a"),
    ("an input in a pool instead of its value", "no match for ‘operator*’", WRITE, "twice(pool) << 2 * a(pool)"),
    ("a value without a pool", "no matching function for call to", WRITE, "twice(pool) << 2 * a.value()"),
]

# The compiler also reports, in three lines, that nothing is overridden.
MORE_LINES = {"a class without a base": 12, "an update without number": 11}


def check(command: list[str], folder: pathlib.Path, case: tuple[str, str, str, str]) -> str:
    mistake, message, correct, wrong = case
    assert SOURCE.count(correct) == 1, mistake
    file = folder / (mistake.replace(" ", "-") + ".cpp")
    file.write_text(SOURCE.replace(correct, wrong), encoding="utf-8")
    done = subprocess.run([*command, str(file)], capture_output=True, text=True, encoding="utf-8")
    lines = done.stderr.count("\n")
    most = MORE_LINES.get(mistake, MOST_LINES)
    if done.returncode == 0:
        return f"{mistake}: the compiler accepted it"
    if message not in done.stderr or lines > most:
        return f"{mistake}: expected {message!r} in at most {most} lines, found {lines}:\n{done.stderr}"
    return ""


def main() -> int:
    compiler, top = sys.argv[1], pathlib.Path(sys.argv[2])
    os.environ["LC_ALL"] = "C.UTF-8"
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        options = [compiler, "-std=c++20", "-Wall"]
        # Precompiles the header that all cases include. It takes the place of the case in the lines about
        # inclusion, so their number stays the same.
        (folder / "fathom").mkdir()
        header = folder / "header.hpp"
        header.write_text("#include <fathom/fathom.hpp>\n", encoding="utf-8")
        precompiled = folder / "fathom" / "fathom.hpp.gch"
        subprocess.run([*options, f"-I{top}", "-x", "c++-header", str(header), "-o", str(precompiled)], check=True)
        command = [*options, "-fsyntax-only", f"-I{folder}", f"-I{top}"]
        (folder / "correct.cpp").write_text(SOURCE, encoding="utf-8")
        subprocess.run([*command, str(folder / "correct.cpp")], check=True)
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            faults = [fault for fault in pool.map(lambda case: check(command, folder, case), MISTAKES) if fault]
    print("\n".join(faults) or f"{len(MISTAKES)} mistakes are reported in a few lines")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
