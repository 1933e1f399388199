"""The project's files as the house rules look at them."""
import os
import re
from dataclasses import dataclass
from functools import cached_property
from pathlib import Path

TEXT_SUFFIXES = {".h", ".cpp", ".in", ".py", ".txt", ".cmake", ".md", ".json", ".qrc", ".sh", ".mobileconfig", ".desktop", ".policy", ""}
SKIPPED = re.compile(r"^(build.*|\.git|__pycache__|\.cache|\.vscode|\.idea)$")
INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]', re.M)
# Comments and literals, in one pass so that neither is mistaken inside the other.
LITERALS = re.compile(
    r"""(?P<raw>(?<![A-Za-z0-9_])(?:u8|[uUL])?R"(?P<mark>[^\s()\\]{0,16})\(.*?\)(?P=mark)")"""
    r"""|(?P<comment>//[^\n]*|/\*.*?\*/)"""
    r"""|(?P<text>"(?:\\.|[^"\\\n])*")|(?P<char>(?<![0-9A-Fa-f])'(?:\\.|[^'\\\n])+')""",
    re.S)


def _blank(match):
    newlines = "\n" * match.group(0).count("\n")
    if match.lastgroup == "comment":
        return newlines
    return '""' + newlines


@dataclass(frozen=True)
class Include:
    line: int
    path: str
    system: bool


@dataclass(frozen=True)
class SourceFile:
    """One file; `path` is relative to the root, with slashes."""
    path: str
    text: str

    @property
    def name(self):
        return self.path.rsplit("/", 1)[-1]

    @property
    def stem(self):
        return self.name.rsplit(".", 1)[0]

    @property
    def suffix(self):
        return Path(self.name).suffix

    @cached_property
    def code(self):
        """The text without comments and literals; lines keep their numbers."""
        return LITERALS.sub(_blank, self.text)

    @cached_property
    def includes(self):
        without_comments = re.sub(r"/\*.*?\*/", lambda m: "\n" * m.group(0).count("\n"), self.text, flags=re.S)
        return [Include(without_comments.count("\n", 0, m.start(2)) + 1, m.group(2), m.group(1) == "<")
                for m in INCLUDE.finditer(without_comments)]


class SourceTree:
    def __init__(self, root):
        self.root = Path(root)
        self.files = {}
        self.unreadable = []
        for folder, folders, names in os.walk(self.root):
            folders[:] = sorted(f for f in folders if not SKIPPED.match(f))
            for name in sorted(names):
                self._read(Path(folder, name))

    def _read(self, path):
        if path.suffix not in TEXT_SUFFIXES or path.is_symlink():
            return
        relative = path.relative_to(self.root).as_posix()
        if SKIPPED.match(relative):
            return
        try:
            self.files[relative] = SourceFile(relative, path.read_text(encoding="utf-8"))
        except UnicodeDecodeError:
            if path.suffix in {".h", ".cpp", ".py"}:
                self.unreadable.append(relative)

    def with_suffix(self, *suffixes, under=""):
        return [f for f in self.files.values() if f.suffix in suffixes and f.path.startswith(under)]

    def cpp(self, *rooms):
        return [f for f in self.with_suffix(".h", ".cpp") if f.path.startswith(tuple(r + "/" for r in rooms))]
