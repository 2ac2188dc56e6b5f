#!/usr/bin/python3
"""costs.py: measures what each optimisation saves, and rewrites costs.md. Takes some fifteen minutes.

Builds the committed program, then once more with each of the patches below, which remove one optimisation each. Counts
instructions and cache misses (valgrind) of a conversion to SAS: of a document of 10,000 variables, and of one without
variables, to measure the start of the program. A patch is a list of files, texts that occur there once, and their
replacements; it must not change the output."""

import hashlib
import os
import re
import subprocess
import sys
import tempfile
from datetime import date
from pathlib import Path

from exporters import ROOT, model
from support import document

RECODINGS = "model/recodings.cpp"
TAKE = """    variable.x = decodeNumbers(document, node, u"x");
    variable.y = decodeNumbers(document, node, u"y");
"""
ALTERNATIVES = {
    "search in units": [
        ("xml/xml_parser.cpp", "    while (at < end) {\n", "    return std::find(at, end, c);\n    while (at < end) {\n")],
    "attributes by tokens": [
        ("xml/xml_parser.cpp", "name.isNull() && readUsualAttribute(p)", "false && readUsualAttribute(p)")],
    "one Base64 table": [
        ("xml/base64.cpp", """        const std::uint32_t group = places[0][units & 0xFF] | places[1][units >> 16 & 0xFF] |
                                    places[2][units >> 32 & 0xFF] | places[3][units >> 48 & 0xFF];
""", """        const std::uint32_t a = classes[units & 0xFF], b = classes[units >> 16 & 0xFF];
        const std::uint32_t c = classes[units >> 32 & 0xFF], d = classes[units >> 48 & 0xFF];
        if ((a | b | c | d) >= padding) return;
        const std::uint32_t group =
            a << 2 | b >> 4 | (b & 15) << 12 | c >> 2 << 8 | (c & 3) << 22 | d << 16;
""")],
    "arrays in a second pass": [
        (RECODINGS, TAKE, ""),
        (RECODINGS, "    return variables;\n}\n\nNumericRecoding", "    for (Variable &variable : variables.list) {\n"
         "        const XmlNode &node = variable.node;\n" + TAKE + "    }\n    return variables;\n}\n\nNumericRecoding")],
    "arrays beside their text": [
        ("xml/xml_node.cpp", "std::align(alignof(double), needed, place, room)",
         "document->allocate(needed, alignof(double))")],
    "names as strings": [
        (RECODINGS, "#include <algorithm>\n", "#include <algorithm>\n#include <deque>\n"),
        (RECODINGS, "        variable.cleanField = makeCleanField(variable, replaced);\n",
         "        static std::deque<QString> strings;\n"
         "        variable.cleanField = strings.emplace_back(cleanName(variable.field, replaced));\n"),
        (RECODINGS, "= makeRecodingName(variable);",
         '= strings.emplace_back(QStringLiteral("R%1_%2").arg(index).arg(variable.cleanField).left(31));')],
    "fields without missing codes": [
        (RECODINGS, "            if (!isListed) {\n                dictionary.indexes.erase(name);\n            } else if",
         "            if"),
        (RECODINGS, "insert_or_assign(name, dictionary.lists.size() - 1)",
         "insert_or_assign(name, isListed ? dictionary.lists.size() - 1 : 0)")],
    "numbers by to_chars": [
        ("model/decimal_digits.cpp", "if (digits < 2 || digits > mostDigits) return 0;", "return 0;")],
    "numbers by a loop": [
        ("model/text_buffer.cpp", "constexpr qsizetype block = 32;", "const qsizetype block = number.size;"),
        ("model/text_buffer.cpp", "    static_assert(block <= std::size(NumberText().characters));\n", "")],
    "no link-time optimisation": [
        ("cmake/ScorewrightTargets.cmake", "OPTIMIZATION_RELEASE ${has_ipo}", "OPTIMIZATION_RELEASE OFF")],
    "C++ library last": [
        ("CMakeLists.txt", "LINKER:--push-state,--no-as-needed -lstdc++ LINKER:--pop-state", "")],
    "leaving through main": [
        ("CMakeLists.txt", "SCOREWRIGHT_LEAVES_AT_ONCE=$<CONFIG:Release>", "SCOREWRIGHT_LEAVES_AT_ONCE=0")],
}
HEAD = """# What the optimisations save

A conversion of {count:,} variables to SAS takes {large[0]:,} instructions, {large[1]:,} misses of a 2 MB cache and
{memory:.1f} MB of peak memory; one of no variables takes {small[0]:,} instructions. The table shows the increase without
each optimisation. Valgrind counted instructions and misses; peaks vary by 0.5 % between runs.
`benchmarks/costs.py` writes this page.

Measured on {day} with {compiler}.

| Without the optimisation | Instructions | Cache misses | Peak memory | Instructions to start |
| --- | ---: | ---: | ---: | ---: |
"""
PEAK = """import resource, subprocess, sys
subprocess.run(sys.argv[1:], stdout=subprocess.DEVNULL, check=True)
print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss * 1024)"""
CACHE = ["--cache-sim=yes", "--LL=2097152,16,64"]
COUNT = 10_000


def write_documents(folder):
    fields = "".join(f'<DataField name="months_on_book_{k}"/>' for k in range(1, COUNT + 1))
    texts = {"large": model(COUNT).replace("</DataDictionary>", fields + "</DataDictionary>"), "small": document([], [], 0)}
    for name, text in texts.items():
        (folder / name).write_bytes(text.encode("utf-16"))


def build(source):
    for command in [["cmake", "-S", source, "-B", source / "build", "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Release"],
                    ["cmake", "--build", source / "build", "--target", "scorewright"]]:
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL)
    return source / "build" / "scorewright"


def measure(program, folder):
    """Returns instructions, cache misses and peak memory of the large document and instructions of the small one, and a
    hash of both outputs."""
    counts, written = [], hashlib.sha256()
    for name in ["large", "small"]:
        tool = ["valgrind", "--tool=callgrind", "--callgrind-out-file=/dev/null", *CACHE]
        counted = subprocess.run([*tool, program, "-a", name, "out"], cwd=folder, capture_output=True, text=True, check=True)
        events = [int(count) for count in re.search(r"Collected : ([\d ]+)", counted.stderr)[1].split()]
        counts.append((events[0], sum(events[-3:])))
        written.update((folder / "out").read_bytes())
    # A process inherits the peak of its parent, so a small parent starts it.
    peak = subprocess.run([sys.executable, "-c", PEAK, program, "-a", "large", "out"], cwd=folder, capture_output=True,
                          check=True)
    return [*counts[0], int(peak.stdout), counts[1][0]], written.digest()


def main():
    with tempfile.TemporaryDirectory() as name:
        folder, source = Path(name), Path(name) / "source"
        subprocess.run(["git", "clone", "--quiet", ROOT, source], check=True)
        write_documents(folder)
        usual, text = measure(build(source), folder)
        rows = ""
        for alternative, patch in ALTERNATIVES.items():
            kept = {file: (source / file).read_text() for file, _, _ in patch}
            for file, old, new in patch:
                before = (source / file).read_text()
                assert before.count(old) == 1, f"{alternative}: the patch does not match exactly once in {file}"
                (source / file).write_text(before.replace(old, new))
            figures, changed = measure(build(source), folder)
            assert changed == text, f"{alternative} changes the output"
            shares = " | ".join(f"{round(100 * (figure / least - 1), 1) + 0.0:+.1f} %" for figure, least in zip(figures, usual))
            rows += f"| {alternative} | {shares} |\n"
            print(alternative, shares, flush=True)
            for file, before in kept.items():
                (source / file).write_text(before)
        compiler = subprocess.check_output([os.environ.get("CXX", "c++"), "--version"], text=True).splitlines()[0]
        head = HEAD.format(large=usual[:2], memory=usual[2] / 1e6, small=usual[3:], count=COUNT, day=date.today(),
                           compiler=compiler)
        (ROOT / "benchmarks" / "costs.md").write_text(head + rows)


if __name__ == "__main__":
    main()
