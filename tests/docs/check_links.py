#!/usr/bin/env python3
"""Looks where the links between pages lead: check_links.py SOURCE PAGE..."""

import sys
from pathlib import Path

from markdown import read_page
from not_run import NOT_RUN


def check_link(source, page, target):
    if target.startswith(("https://", "http://")):
        return None
    path, _, anchor = target.partition("#")
    file = (page.path.parent / path).resolve() if path else page.path
    if not file.exists() or not file.is_relative_to(source):
        return f"there is no {path}"
    if anchor and anchor not in read_page(file).anchors():
        return f"{file.name} has no heading for #{anchor}"
    return None


def main():
    source = Path(sys.argv[1]).resolve()
    pages = sys.argv[2:]
    faults = [f"{page}: in the table of not_run.py, but not tested" for page, _, _ in NOT_RUN if page not in pages]
    count = 0
    for name in pages:
        page = read_page(source / name)
        for line, target in page.links():
            count += 1
            if fault := check_link(source, page, target):
                faults.append(f"{name}:{line}: {fault}")
    print("\n".join([*faults, f"{count} links on {len(pages)} pages"]))
    sys.exit(1 if faults or count == 0 else 0)


if __name__ == "__main__":
    main()
