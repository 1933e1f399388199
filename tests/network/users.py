"""People of the lab, who exist nowhere else: an administrator and two employees with homes of their own."""
import os
import pwd
import subprocess
from pathlib import Path

FIRST_ID = 4242


class User:
    def __init__(self, name, folder):
        account = pwd.getpwnam(name)
        self.name, self.uid, self.gid = name, account.pw_uid, account.pw_gid
        self.home = Path(folder, "homes", name)
        self.data = self.home / ".local/share"
        self.data.mkdir(parents=True, mode=0o700, exist_ok=True)
        for path in (self.home, self.home / ".local", self.data):
            self.own(path)
            path.chmod(0o700)
        self.environment = {"HOME": str(self.home), "USER": name, "LOGNAME": name, "PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C.UTF-8"}

    def run(self, *command, environment=None, seconds=30):
        return subprocess.run([str(part) for part in command], env={**self.environment, **(environment or {})}, capture_output=True,
                              text=True, timeout=seconds, check=False, cwd=self.home, stdin=subprocess.DEVNULL, **self._rights())

    def start(self, *command, environment=None, stdin_pipe=False, **options):
        return subprocess.Popen([str(part) for part in command], env={**self.environment, **(environment or {})}, cwd=self.home,
                                stdin=subprocess.PIPE if stdin_pipe else subprocess.DEVNULL, **self._rights(), **options)

    def own(self, path):
        os.chown(path, self.uid, self.gid)

    def _rights(self):
        return {"user": self.uid, "group": self.gid, "extra_groups": []} if self.uid != os.getuid() else {}


def add_to_this_namespace(folder, names):
    """Lays lists of users over the system's that have these as well; only who is in our mount namespace sees them."""
    for kind in ("passwd", "group"):
        own = Path(folder, kind)
        lines = Path("/etc", kind).read_text(encoding="utf-8")
        for number, name in enumerate(names, FIRST_ID):
            home = Path(folder, "homes", name)
            lines += f"{name}:x:{number}:{number}::{home}:/bin/sh\n" if kind == "passwd" else f"{name}:x:{number}:\n"
        own.write_text(lines, encoding="utf-8")
        subprocess.run(["mount", "--bind", own, f"/etc/{kind}"], check=True)


def give_sessions(uids):
    """What the login service would say: each of them sits at the computer."""
    for room in ("seats", "sessions", "machines"):
        Path("/run/systemd", room).mkdir(parents=True)
    folder = Path("/run/systemd/users")
    folder.mkdir(parents=True)
    for uid in uids:
        (folder / str(uid)).write_text("STATE=active\nSESSIONS=1\nACTIVE_SESSIONS=1\nONLINE_SESSIONS=1\n", encoding="utf-8")
