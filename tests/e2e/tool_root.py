"""A tool root of the journey's own: the real tools, and a note of what two of them were asked to do."""
import shlex
import time
from pathlib import Path

SECURITY, NETWORKSETUP = "usr/bin/security", "usr/sbin/networksetup"


class ToolRoot:
    """`networksetup` comes with the network identity; until then its calls are noted and nothing else."""

    def __init__(self, folder, real):
        self.path = Path(folder, "tools")
        self._record = Path(folder, "tools.txt")
        for tool in Path(real).rglob("*"):
            if tool.is_file():
                own = self.path / tool.relative_to(real)
                own.parent.mkdir(parents=True, exist_ok=True)
                own.symlink_to(tool)
        (self.path / SECURITY).unlink()
        self._write(SECURITY, f"exec {shlex.quote(str(Path(real, SECURITY)))} \"$@\"\n")
        self._write(NETWORKSETUP, "")

    def _write(self, tool, then):
        """The note first: its place in the order counts."""
        note = f'printf \'%s\\n\' "$(date +%s.%N) {Path(tool).name} $*" >>{shlex.quote(str(self._record))}\n'
        script = self.path / tool
        script.write_text(f"#!/bin/sh\n{note}{then}", encoding="utf-8")
        script.chmod(0o755)

    def calls(self, since):
        """What was asked after the time `since`, in order."""
        if not self._record.exists():
            return []
        lines = (line.partition(" ") for line in self._record.read_text(encoding="utf-8").splitlines())
        return [call for at, _, call in lines if float(at) > since]

    @staticmethod
    def now():
        return time.time()
