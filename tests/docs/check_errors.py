#!/usr/bin/env python3
"""Looks for every error number and every message of the sources in the troubleshooting page: check_errors.py SOURCE."""

import re
import sys
from pathlib import Path

PAGE = "docs/troubleshooting.md"
ENUMERATIONS = ["tarvix/common/Error.h", "tarvix/common/ErrorNumbers.h", "pellumo/errPellumo.h"]
MESSAGES = ["tarvix/**/*.cpp", "pellumo/DeviceURL.cpp", "pellumo/usb/*.cpp", "pellumo/mpsse/*.cpp",
            "pellumo/emulation/EmulatedTransport.cpp", "pellumo/simulation/*.cpp", "tools/tarvix/*.cpp"]
NO_MESSAGES = {"LINScript.cpp": "names of tokens", "CommandLine.cpp": "help",
               "FrameFailure.cpp": "advice, printed after a message"}


def enumerators(text):
    """`errX::member` and its number, for every error that can be raised."""
    for name, body in re.findall(r"enum class (err\w+) : std::int32_t \{(.*?)\};", text, re.S):
        number = 0
        for member, value in re.findall(r"^\s*(\w+)(?: = (?:static_cast<std::int32_t>\()?(\w+)\)?)?,?\s*(?:///|$)",
                                        body, re.M):
            number = int(value, 0) if value else number + 1
            if not member.startswith("_"):
                yield f"`{name}::{member}` " + (str(number) if number < 100 else f"0x{number:08X}")


def messages(text):
    """The texts of two words and more, as patterns: what stands for a value matches any word."""
    text = re.sub(r"^\s*//.*$", "", text, flags=re.M)
    text = re.sub(r'"\s*\n\s*"', "", text)
    for literal in re.findall(r'"((?:[^"\\\n]|\\.)*)"', text):
        words = literal.replace('\\"', '"').strip(" .,;)").split()
        if len(words) >= 2 and any(re.fullmatch("[a-z]{3,}", word) for word in words):
            yield re.sub(r"%\d", r"\\S+", re.escape(" ".join(words)))


def main():
    source = Path(sys.argv[1])
    page = " ".join((source / PAGE).read_text(encoding="utf-8").split())
    numbers = [each for name in ENUMERATIONS for each in enumerators((source / name).read_text(encoding="utf-8"))]
    texts = {pattern: file.name for glob in MESSAGES for file in source.glob(glob) if file.name not in NO_MESSAGES
             for pattern in messages(file.read_text(encoding="utf-8"))}
    missing = [each for each in numbers if each not in page]
    missing += [f"{file}: {pattern}" for pattern, file in texts.items() if not re.search(pattern, page)]
    print("\n".join([*(f"{PAGE} lacks {each}" for each in missing), f"{len(numbers)} numbers, {len(texts)} texts"]))
    sys.exit(1 if missing or len(numbers) < 30 or len(texts) < 60 else 0)


if __name__ == "__main__":
    main()
