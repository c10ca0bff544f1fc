#!/usr/bin/env python3
"""Writes libs/utils/src/zovLowerCaseTable.inc, the simple lower-case mapping of Unicode.

    scripts/makeLowerCaseTable.py            writes the table
    scripts/makeLowerCaseTable.py --check    fails when the table is not what would be written

The mapping is read from UnicodeData.txt, where the Debian package unicode-data puts it.
"""

import pathlib
import re
import sys

DATA = pathlib.Path("/usr/share/unicode/UnicodeData.txt")
BLOCKS = pathlib.Path("/usr/share/unicode/Blocks.txt")
TARGET = pathlib.Path(__file__).resolve().parent.parent / "libs/utils/src/zovLowerCaseTable.inc"
BLOCK_BITS = 6


def read_mapping():
    """The lower case of each code point that has one."""
    mapping = {}
    for line in DATA.read_text(encoding="ascii").splitlines():
        fields = line.split(";")
        if fields[13]:
            mapping[int(fields[0], 16)] = int(fields[13], 16)
    return mapping


def check_mapping(mapping):
    """What the table's layout and the callers rest on."""
    for upper, lower in mapping.items():
        assert upper >> 16 == lower >> 16, f"U+{upper:04X} leaves its plane, so its number of units would change"
        assert not 0xD800 <= lower < 0xE000, f"U+{upper:04X} becomes a surrogate"
        assert mapping.get(lower, lower) == lower, f"U+{upper:04X} is not in lower case after one step"


def make_stages(mapping):
    """The block number of each run of code points, and the distinct blocks of offsets modulo 2^16."""
    size = 1 << BLOCK_BITS
    stages, blocks, known = [], [], {}
    for first in range(0, max(mapping) + 1, size):
        block = tuple((mapping.get(code, code) - code) & 0xFFFF for code in range(first, first + size))
        if block not in known:
            known[block] = len(blocks)
            blocks.append(block)
        stages.append(known[block])
    assert len(blocks) <= 256
    return stages, blocks


def rows(values, form, per_row):
    for start in range(0, len(values), per_row):
        yield "    " + ", ".join(form % value for value in values[start : start + per_row]) + ","


def make_text():
    mapping = read_mapping()
    check_mapping(mapping)
    stages, blocks = make_stages(mapping)
    version = re.match(r"# Blocks-([0-9.]+)\.txt", BLOCKS.read_text(encoding="utf-8")).group(1)
    lines = [
        f"// Simple lower-case mappings of Unicode {version}, {len(mapping)} of them.",
        "// Written by scripts/makeLowerCaseTable.py; edit that instead.",
        "",
        f"constexpr unsigned lowerBlockBits = {BLOCK_BITS};",
        f"constexpr std::uint8_t lowerBlockOf[{len(stages)}] = {{",
        *rows(stages, "%d", 24),
        "};",
        f"constexpr std::uint16_t lowerOffsets[{len(blocks)}][{1 << BLOCK_BITS}] = {{",
    ]
    for block in blocks:
        lines += ["    {", *("    " + row for row in rows(block, "0x%04X", 12)), "    },"]
    return "\n".join([*lines, "};", ""])


def main():
    text = make_text()
    if "--check" in sys.argv[1:]:
        if not TARGET.exists() or TARGET.read_text(encoding="ascii") != text:
            sys.exit(f"{TARGET} is out of date: run scripts/makeLowerCaseTable.py")
        return
    TARGET.write_text(text, encoding="ascii")


if __name__ == "__main__":
    main()
