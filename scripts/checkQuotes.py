#!/usr/bin/env python3
"""Fails when a C++ block in the README or the guide is not a piece of the source that it says it quotes.

A quote is a block that follows a line "<!-- quoted from examples/firstModel.cpp -->"; indentation does not count. The
examples are compiled and run by the tests, so that what readers copy is known to work.
"""
import pathlib
import re
import sys

root = pathlib.Path(__file__).resolve().parent.parent
quote = re.compile(r"<!-- quoted from (\S+) -->\n```cpp\n(.*?)```", re.S)
block = re.compile(r"```cpp\n")


def unindented(code: str) -> str:
    return "".join(line.strip() + "\n" for line in code.splitlines())


def main() -> int:
    problems = []
    count = 0
    for page in [root / "README.md", *sorted((root / "docs").rglob("*.md"))]:
        text = page.read_text(encoding="utf-8")
        quotes = quote.findall(text)
        count += len(quotes)
        if len(quotes) != len(block.findall(text)):
            problems.append(f"{page.relative_to(root)}: a C++ block does not say what it quotes")
        problems += [
            f"{page.relative_to(root)}: not in {source}:\n{code}"
            for source, code in quotes
            if unindented(code) not in unindented((root / source).read_text(encoding="utf-8"))
        ]
    print("\n".join(problems) or f"OK: {count} quotes")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
