#!/usr/bin/env python3
"""Fails when docs/behaviour.md lists a promise that no test cites, or a test cites one that is not listed.

A promise is a line "- **CF-07** ..."; a test cites it in a comment "behaviour: CF-07, CF-08". Oddities in the sources
("KEEP CF-07: why") must be listed as well.
"""
import pathlib
import re
import sys

root = pathlib.Path(__file__).resolve().parent.parent
promise = re.compile(r"^- \*\*([A-Z]{2}-\d{2,3})\*\*", re.M)
identifier = re.compile(r"[A-Z]{2}-\d{2,3}")


def cited(pattern: str, folders: list[str]) -> dict[str, str]:
    places: dict[str, str] = {}
    for folder in folders:
        for path in sorted((root / folder).rglob("*")):
            if path.suffix not in {".cpp", ".h", ".txt", ".sh", ".py", ".cmake"} or not path.is_file():
                continue
            for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
                found = re.search(pattern, line)
                for name in identifier.findall(found.group(1)) if found else []:
                    places.setdefault(name, f"{path.relative_to(root)}:{number}")
    return places


def main() -> int:
    listed = promise.findall((root / "docs/behaviour.md").read_text(encoding="utf-8"))
    tests = cited(r"behaviour: (.*)", ["tests", "examples", "fuzz"])
    keeps = cited(r"KEEP ([A-Z]{2}-\d{2,3})", ["libs"])
    problems = [f"{name}: listed twice" for name in sorted({n for n in listed if listed.count(n) > 1})]
    problems += [f"{name}: no test cites it" for name in sorted(set(listed) - set(tests))]
    problems += [f"{name}: not listed, cited at {tests[name]}" for name in sorted(set(tests) - set(listed))]
    problems += [f"{name}: not listed, kept at {keeps[name]}" for name in sorted(set(keeps) - set(listed))]
    print("\n".join(problems) or f"OK: {len(listed)} promises, each cited by a test")
    return 1 if problems or not listed else 0


if __name__ == "__main__":
    sys.exit(main())
