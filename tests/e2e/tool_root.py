"""A tool root of the journey's own: the real tools; those that are given secrets or are looked for note what they are asked to do."""
import shlex
import time
from pathlib import Path

NOTED = ("usr/bin/security", "usr/bin/profiles", "usr/sbin/networksetup")


class ToolRoot:
    def __init__(self, folder, real):
        self.path = Path(folder, "tools")
        self._record = Path(folder, "tools.txt")
        for tool in Path(real).rglob("*"):
            if tool.is_file():
                own = self.path / tool.relative_to(real)
                own.parent.mkdir(parents=True, exist_ok=True)
                own.symlink_to(tool)
        for tool in NOTED:
            (self.path / tool).unlink()
            self._write(tool, f"exec {shlex.quote(str(Path(real, tool)))} \"$@\"\n")

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
