#!/usr/bin/env python3
"""The reference describes the headers that are installed, and no others: check_reference.py DOXYFILE INSTALLED."""

import re
import sys
from pathlib import Path


def main():
    text = Path(sys.argv[1]).read_text(encoding="utf-8").replace("\\\n", " ")
    described = set(re.search(r"^INPUT +=(.*)$", text, re.M)[1].split())
    include = Path(sys.argv[2]) / "include"
    installed = {str(header.relative_to(include)) for header in include.rglob("*.h")}
    print(f"described, but not installed: {sorted(described - installed)}")
    print(f"installed, but not described: {sorted(installed - described)}")
    sys.exit(0 if described == installed and installed else 1)


if __name__ == "__main__":
    main()
