#!/usr/bin/env python3
"""Fails when a source below tests/, fuzz/ or examples/ is named by no CMakeLists.txt, so that it would never run."""
import pathlib
import sys

root = pathlib.Path(__file__).resolve().parent.parent


def main() -> int:
    lists = ""
    for folder in ("tests", "fuzz", "examples", "benchmarks"):
        for path in (root / folder).rglob("CMakeLists.txt"):
            lists += path.read_text(encoding="utf-8")
    unlisted = [
        str(path.relative_to(root))
        for folder in ("tests", "fuzz", "examples", "benchmarks")
        for path in sorted((root / folder).rglob("*.cpp"))
        if path.name not in lists and path.stem not in lists
    ]
    print("\n".join(f"{name}: in no CMakeLists.txt" for name in unlisted) or "OK: every source is listed")
    return 1 if unlisted else 0


if __name__ == "__main__":
    sys.exit(main())
