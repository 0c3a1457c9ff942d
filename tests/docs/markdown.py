"""What stands in a page: code blocks, links, headings and error tables."""

import re
from dataclasses import dataclass, field
from pathlib import Path

FENCE = re.compile(r"^```(?P<language>\S*)[ ]*(?P<file>\S*)$")


@dataclass
class Block:
    language: str
    file: str  # the name that it is saved under; "" without one
    line: int  # of the opening fence
    text: str
    output: str | None = None  # of a program: what the page says that it prints

    @property
    def first_line(self):
        return self.text.split("\n", 1)[0]


@dataclass
class Page:
    path: Path
    blocks: list[Block] = field(default_factory=list)
    prose: list[tuple[int, str]] = field(default_factory=list)  # line number, text; everything outside of the blocks
    faults: list[str] = field(default_factory=list)

    def links(self):
        """Line and target of every link and picture."""
        for number, line in self.prose:
            for target in re.findall(r"\]\(([^)\s]+)\)", re.sub(r"`[^`]*`", "", line)):
                yield number, target

    def anchors(self):
        """The names of the headings, as the customary renderers make them."""
        for _, line in self.prose:
            if heading := re.match(r"#+ (.*)", line):
                yield re.sub(r"[^\w\- ]", "", heading[1].lower()).replace(" ", "-")

    def error_rows(self):
        """Line, number, text and script of each row of a table of script errors."""
        for number, line in self.prose:
            if row := re.fullmatch(r"\| (0x[0-9A-F]{8}|\d+) \| (.+?) \| `(.+)` \|", line):
                yield number, *row.groups()


def read_page(path):
    page = Page(path)
    opened = None
    lines = []
    for number, line in enumerate(path.read_text(encoding="utf-8").splitlines(), 1):
        if opened:
            if line == "```":
                opened.text = "".join(f"{each}\n" for each in lines)
                add_block(page, opened)
                opened = None
            else:
                lines.append(line)
        elif fence := FENCE.match(line):
            opened = Block(fence["language"], fence["file"], number, "")
            lines = []
        else:
            if re.match(r"\s+```|    \S|~~~", line) and not line.lstrip().startswith("|"):
                page.faults.append(f"{number}: write code between ``` at the margin, so that it is tested")
            page.prose.append((number, line))
    if opened:
        page.faults.append(f"{opened.line}: this block is never closed")
    return page


def add_block(page, block):
    """A text right after a program is what the program prints."""
    last = page.blocks[-1] if page.blocks else None
    if block.language == "text" and last and last.language in ("cpp", "python") and last.output is None:
        last.output = block.text
    else:
        page.blocks.append(block)
