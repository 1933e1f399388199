"""The company's network beside the journey, where this machine can have one: it stands in namespaces of its own, and the
client reaches the NetworkManager in there by its system bus."""
import functools
import os
import subprocess
import sys
from pathlib import Path

from processes import expect, wait_for

LAB = Path(__file__).resolve().parent.parent / "network"
sys.path.append(str(LAB))

import inside


@functools.cache
def what_is_missing():
    return "it needs root" if os.geteuid() else inside.what_is_missing()


class CompanyNetwork:
    def __init__(self, processes, company, folder):
        self._processes = processes
        self._company = company
        self._folder = Path(folder, "lab")
        self._lab = None
        self.bus = f"unix:path={self._folder}/bus"

    def start(self, environment):
        self._folder.mkdir(mode=0o755)
        self._company.equip_authenticator(self._folder / "radius.pem", self._folder / "authority.pem")
        self._lab = self._processes.start("lab", [sys.executable, "-B", LAB / "lab_service.py", self._folder], environment,
                                          stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True)
        expect(self._lab.stdout.readline().strip() == "ready", "the company's network is there")

    def _ask(self, word):
        self._lab.stdin.write(word + "\n")
        self._lab.stdin.flush()
        return self._lab.stdout.readline().strip()

    def connection(self):
        """Name, device and state of the connection in use."""
        return self._ask("connection")

    def wait_until_joined(self):
        wait_for("traffic through the port", lambda: self._ask("reachable") == "True", 20.0)

    def expect_locked_out(self):
        """Once the switch has noticed that the computer left: here it is told."""
        self._ask("forget")
        expect(self._ask("reachable") == "False" and self._ask("cheat") == "False", "nothing goes through the port")
