"""A Debian 12 of the test's own: a directory to chroot into, whose base is made once and kept as an archive."""
import hashlib
import os
import re
import shutil
import subprocess
import tempfile
from pathlib import Path

from processes import expect

MIRROR, SUITE = "http://deb.debian.org/debian", "bookworm"
# What the packages recommend and the test needs: the bus, polkit, certutil, letters for the pictures.
MORE = ("dbus", "polkitd", "pkexec", "libnss3-tools", "fonts-wqy-microhei")
NO_SERVICES = "#!/bin/sh\nexit 101\n"
PATHS = {"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C.UTF-8", "DEBIAN_FRONTEND": "noninteractive"}


def run(*command, seconds=60, **options):
    done = subprocess.run([str(part) for part in command], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                          check=False, timeout=seconds, **options)
    text = done.stdout.decode(errors="replace")
    expect(done.returncode == 0, f"{' '.join(map(str, command[:6]))} ended with {done.returncode}:\n" + "\n".join(text.splitlines()[-20:]))
    return text


def mirror_of_this_machine():
    """Where this machine itself gets its Debian from."""
    for file in [Path("/etc/apt/sources.list"), *sorted(Path("/etc/apt/sources.list.d").glob("*"))]:
        text = file.read_text(encoding="utf-8") if file.is_file() else ""
        for address in re.findall(r"(?m)^(?:deb |URIs:)\s*(?:\[[^]]*\]\s*)?(https?://\S+/debian)/?(?:\s|$)", text):
            return address
    return MIRROR


class DebianRoot:
    """`place` is mounted by `unpack`, in a mount namespace of our own, and has the same name inside: a path below it means
    the same to programs on both sides."""

    def __init__(self, place):
        self.place = Path(place)

    @staticmethod
    def make_base(folder, packages):
        """An archive of a minimal Debian with all that `packages` depend on, in FOLDER. Needs the network, unless there is one."""
        needs = sorted({need.strip() for package in packages for need in run("dpkg-deb", "-f", package, "Depends").strip().split(",")} | set(MORE))
        key = hashlib.sha256("\n".join([mirror_of_this_machine(), SUITE, *needs]).encode()).hexdigest()[:16]
        base = Path(folder, f"base-{key}.tar")
        if base.exists():
            return base, False
        for old in base.parent.glob("base-*.tar"):
            old.unlink()
        with tempfile.TemporaryDirectory(prefix="halvane-root-") as place:
            run("debootstrap", "--variant=minbase", SUITE, place, mirror_of_this_machine(), seconds=400)
            policy = Path(place, "usr/sbin/policy-rc.d")
            policy.write_text(NO_SERVICES, encoding="utf-8")
            policy.chmod(0o755)
            run("chroot", place, "apt-get", "-q", "-y", "--no-install-recommends", "satisfy", ", ".join(needs), seconds=400, env=PATHS)
            run("chroot", place, "apt-get", "clean", env=PATHS)
            unfinished = base.with_suffix(".unfinished")
            run("tar", "--create", "--file", unfinished, "--xattrs", "--directory", place, "--exclude=./var/lib/apt/lists/*", ".", seconds=120)
            unfinished.rename(base)
        return base, True

    def unpack(self, base):
        self.place.mkdir(parents=True)
        run("mount", "-t", "tmpfs", "-o", "mode=755,size=4g", "halvane-root", self.place)
        run("tar", "--extract", "--file", base, "--xattrs", "--directory", self.place, seconds=120)
        self.place.chmod(0o755)  # which the archive's own was not
        run("mount", "-t", "proc", "proc", self / "proc")
        run("mount", "-t", "tmpfs", "-o", "mode=755", "dev", self / "dev")
        for device in ("null", "zero", "full", "random", "urandom", "tty"):
            (self / "dev" / device).touch()
            run("mount", "--bind", f"/dev/{device}", self / "dev" / device)
        (self / "dev/shm").mkdir(mode=0o1777)
        (self / "dev/shm").chmod(0o1777)
        for name, target in (("fd", "/proc/self/fd"), ("stdin", "fd/0"), ("stdout", "fd/1"), ("stderr", "fd/2")):
            (self / "dev" / name).symlink_to(target)
        inside = self / self.place.relative_to("/")
        inside.parent.mkdir(parents=True, exist_ok=True)
        inside.symlink_to("/")

    def __truediv__(self, path):
        return self.place / path

    def give_firmware(self, serial, uuid):
        """As the kernel has it: root alone reads these."""
        run("mount", "-t", "tmpfs", "-o", "mode=755", "sys", self / "sys")
        folder = self / "sys/class/dmi/id"
        folder.mkdir(parents=True)
        for name, text in (("product_serial", serial), ("product_uuid", uuid)):
            (folder / name).write_text(f"{text}\n", encoding="utf-8")
            (folder / name).chmod(0o400)

    def command(self, *words, user=None, env=None):
        """For `Processes.start` or `run`: `words` inside, as the user with that number."""
        who = [f"--userspec={user}:{user}", "--groups="] if user else []
        told = {"PATH": PATHS["PATH"], "LC_ALL": "C.UTF-8", **(env or {})}
        return ["chroot", *who, str(self.place), "/usr/bin/env", "-i", *[f"{name}={value}" for name, value in told.items()], *map(str, words)]

    def run(self, *words, user=None, env=None, seconds=60):
        return run(*self.command(*words, user=user, env={"DEBIAN_FRONTEND": "noninteractive", **(env or {})}), seconds=seconds)

    def bring(self, file):
        return "/tmp/" + shutil.copy(file, self / "tmp" / Path(file).name).name

    def files(self):
        """Every path that an installation could have brought."""
        left_out = {self / name for name in ("proc", "sys", "dev", "run", "tmp", "home", "var/lib/dpkg", "var/lib/apt", "var/cache", "var/log")}
        found = set()
        for folder, folders, files in os.walk(self.place):
            folders[:] = [name for name in folders if Path(folder, name) not in left_out]
            found |= {str(Path(folder, name).relative_to(self.place)) for name in folders + files}
        return found
