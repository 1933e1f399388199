#!/usr/bin/python3
"""The life of the packages: made from this tree, installed in a Debian 12 of the test's own, used, removed, purged.

Building the packages and fetching what they depend on needs the machine and its network. Everything else stands in namespaces
of its own, with loopback only. One line a step; exit code 1 when one fails.
"""
import argparse
import json
import os
import shutil
import stat
import subprocess
import sys
import time
from pathlib import Path

HERE = Path(__file__).resolve().parent
sys.path += [str(HERE.parent / "e2e"), str(HERE.parent / "network")]

import inside
from builder import Builder, Packages, make_signing_key
from client import LOGIN_SIZE, MAIN_SIZE, LoginWindow
from debian_root import DebianRoot, run
from desktop import Desktop
from installation import CLIENT, EMPLOYEE, ENTRY, PORT, InstalledClient, InstalledCompany, start_buses, started_at_login
from processes import Failed, Processes, descendants, end_after, expect, output_of, wait_for
from purge_steps import CONNECTIONS, PurgeSteps
from stage import take
from update_steps import UpdateSteps

VERSIONS = ("1.0.0", "1.0.1")
SERVER = f"http://127.0.0.1:{PORT}"
LONGEST = 400  # inside
SERIAL, UUID = "HV-PACKAGE-17", "4c4c4544-0042-3510-8052-b4c04f4d3132"
ROOM = Path("/run/halvane-package")
SHEET = ("panel-current", "panel-newer", "update-none", "update-offer", "update-downloading", "update-ready", "update-installing", "update-installed",
         "update-refused", "update-no-space", "update-interrupted", "update-not-allowed")


class PackageTest:
    """`packages`: one for each version, the older first; `key`: the private half of the update feed's, PEM."""

    def __init__(self, processes, packages, key, options):
        self._processes = processes
        self._packages = packages
        self._key = key
        self._pictures = options.pictures
        self._taken = 0
        self._root = DebianRoot(ROOM / "root")
        self._root.unpack(options.base)
        self._root.give_firmware(SERIAL, UUID)
        for others in (CONNECTIONS, "var/lib/private"):  # NetworkManager's and systemd's
            (self._root / others).mkdir(parents=True)
        self._desktop = Desktop(processes, ROOM)
        self._desktop.start_display()
        start_buses(processes, self._root)
        self._before = self._root.files()
        self._company = self._client = self._purge = None

    def steps(self):
        return [self.installed, self.nothing_was_started, self.machine_is_recorded, self.tells_its_version, self.server_serves,
                self.starts_from_the_menu, self.signs_in, self.certificate_is_stored, self.quits, self.starts_at_login, self.login_start_is_overridden,
                *self.updates(), self.keys_of_others, self.removed, self.purged, self.no_key_is_left]

    def updates(self):
        """From the older packages to the newer, through the company's feed, before anything is removed."""
        return UpdateSteps(self._root, self._desktop, self._packages, lambda: (self._company, self._client), self.photograph).steps()

    def photograph(self, name, window=None):
        self._taken += 1
        self._desktop.photograph(self._pictures / f"{self._taken:02}-{name}.png", window)

    def sheet(self, file):
        """What a person sees of an update, on one picture."""
        chosen = [path for name in SHEET for path in self._pictures.glob(f"??-{name}.png")]
        self._desktop.do("montage", *chosen, "-background", "#D9DCE0", "-gravity", "north", "-tile", "4x", "-geometry", "+16+16", file)

    def installed(self):
        older = self._packages[0]
        self._root.run("dpkg", "--install", *[self._root.bring(package) for package in older.both], seconds=90)
        known = self._root.run("dpkg-query", "--show", "--showformat=${Package} ${Version} ${db:Status-Status}\n", "halvane", "halvane-server")
        expect(known.splitlines() == [f"{name} {older.version} installed" for name in ("halvane", "halvane-server")], f"both are installed: {known}")
        self._root.run("apt-get", "check")
        self._company = InstalledCompany(self._processes, self._root)
        self._client = InstalledClient(self._processes, self._desktop, self._company, self._root)
        self._purge = PurgeSteps(self._root, self._client, self._before)
        brought = [path for path in self._root.files() - self._before if (self._root / path).is_file()]
        strange = [path for path in brought if not path.startswith(("usr/", "etc/", "lib/systemd/", "var/lib/halvane/", "var/lib/systemd/deb-systemd-helper-"))]
        expect(not strange and not any(path.endswith((".h", ".a", ".cmake")) for path in brought), f"nothing lies elsewhere: {strange}")
        return f"version {older.version}, {len(brought)} files"

    def nothing_was_started(self):
        ours = [name for pid in descendants(os.getpid()) if (name := program_of(pid)).startswith("halvane")]
        expect(not ours, f"no program of ours runs, not {ours}")
        enabled = [path for path in self._root.files() if path.endswith(".wants/halvane-server.service")]
        expect(not enabled, f"the server is not enabled: {enabled}")
        return "the server neither runs nor is it enabled"

    def machine_is_recorded(self):
        for name, text in (("machine-serial", SERIAL), ("machine-uuid", UUID)):
            file = self._root / "var/lib/halvane" / name
            expect(file.read_text(encoding="utf-8").strip() == text, f"{name} is {text}, not {file.read_text(encoding='utf-8')}")
            expect(stat.S_IMODE(file.stat().st_mode) == 0o644, f"everybody reads {name}")
        return f"{SERIAL}, {UUID}"

    def tells_its_version(self):
        said = [self._root.run(f"/usr/bin/{program}", "--version").strip() for program in ("halvane", "halvane-server")]
        expect(all(self._packages[0].version in each for each in said), f"the version of the package, not {said}")
        return "; ".join(said)

    def server_serves(self):
        self._company.sign_updates_with(self._key)
        self._company.start()
        expect(self._company.url == SERVER, f"the server is {SERVER}, not {self._company.url}")
        return f"seeded, {self._company.url}"

    def starts_from_the_menu(self):
        self._client.start()
        window = self._client.wait_for_window(LOGIN_SIZE, 30.0)
        login = LoginWindow(self._desktop, window)
        wait_for("the orange button", lambda: login.button_colour() == LoginWindow.ORANGE)
        self.photograph("login")
        return f"login window after {self._client.age():.1f} s"

    def signs_in(self):
        login = LoginWindow(self._desktop, self._client.wait_for_window(LOGIN_SIZE))
        login.replace_user_name(self._company.user_name)
        login.replace_password(self._company.PASSWORD)
        login.click_button()
        main = self._client.wait_for_window(MAIN_SIZE, 30.0)
        wait_for("the login window goes", lambda: len(self._client.windows()) == 1)
        self.photograph("main", main)
        serials = wait_for("the computer at the server", lambda: self._company.ask("SELECT sn FROM computers"))
        expect(serials == [(SERIAL,)], f"the serial number that was recorded, not {serials}")
        return f"main window; the server knows the computer as {SERIAL}"

    def certificate_is_stored(self):
        wait_for("an identity file", self._client.identity_files, 20.0)
        wait_for("the certificate", lambda: self._client.name in self._client.security("find-identity"), 20.0)
        expect(self._client.name in self._client.certutil("-L"), "the certificate stands in the user's database")
        key = self._root / "var/lib/private/halvane-server/authority.pem"
        expect(stat.S_IMODE(key.stat().st_mode) == 0o600, "the authority's key is its owner's alone")
        return "identity file, certificate and key"

    def quits(self):
        asked = self._client.start_another("--quit")
        wait_for("both end", lambda: asked.poll() is not None and not self._client.is_running())
        codes = (asked.returncode, self._client.process.returncode)
        expect(codes == (0, 0), f"both end with 0, not {codes}")
        return "halvane --quit: both exit codes 0"

    def starts_at_login(self):
        units = started_at_login(self._root, self._client.home)
        expect(len(units) == 1 and CLIENT in next(iter(units.values())), f"a session starts the client: {units}")
        self._client.process = self._client.start_another(entry=f"etc/xdg/autostart/{ENTRY}")
        self._client.wait_for_window(MAIN_SIZE, 30.0)
        expect(self._client.quit() == 0, "SIGTERM ends it with 0")
        return f"{next(iter(units))}, straight to the main window"

    def login_start_is_overridden(self):
        own = self._client.home / ".config/autostart" / ENTRY
        own.parent.mkdir(parents=True, exist_ok=True)
        own.write_text("[Desktop Entry]\nHidden=true\n", encoding="utf-8")
        units = started_at_login(self._root, self._client.home)
        expect(not units, f"nothing is started: {list(units)}")
        return "a hidden entry of the user's: nothing is started"

    def keys_of_others(self):
        return self._purge.keys_of_others_stand_beside()

    def removed(self):
        self._processes.end_all()
        return self._purge.removed()

    def purged(self):
        return self._purge.purged_without_a_trace()

    def no_key_is_left(self):
        return self._purge.purged_without_a_key()


def program_of(pid):
    try:
        return Path(os.readlink(f"/proc/{pid}/exe")).name
    except OSError:
        return ""  # it has just ended


def prepare(options):
    """Packages and base, as values for the program's second half."""
    began = time.monotonic()
    key = options.folder / "feed-key.pem"
    told = {"HALVANE_SERVER_BASE_URL": SERVER, "HALVANE_SSO_BASE_URL": SERVER, "HALVANE_UPDATE_FEED_URL": f"{SERVER}/update/appcast.xml",
            "HALVANE_UPDATE_PUBLIC_KEY": make_signing_key(key)}
    builder = Builder(options.source, options.folder)
    packages = [builder.build(version, **told) for version in VERSIONS]
    print(f"✓ packages {' and '.join(VERSIONS)} ({time.monotonic() - began:.0f} s)", flush=True)
    began = time.monotonic()
    base, made = DebianRoot.make_base(options.folder, packages[0].both)
    print(f"✓ Debian 12 {'made' if made else 'from the archive'} ({time.monotonic() - began:.0f} s): {base.stat().st_size >> 20} MiB", flush=True)
    return {"packages": [[each.version, str(each.client), str(each.server)] for each in packages], "base": str(base), "key": str(key)}


def perform(options, prepared):
    """Inside."""
    began = time.monotonic()
    run("mount", "-t", "tmpfs", "-o", "mode=755", "halvane-run", "/run")
    run(inside.program("ip"), "link", "set", "lo", "up")
    ROOM.mkdir()
    shutil.rmtree(options.pictures, ignore_errors=True)
    processes = Processes(options.pictures / "logs")
    options.base = Path(prepared["base"])
    packages = [Packages(version, Path(client), Path(server)) for version, client, server in prepared["packages"]]
    good = False
    try:
        test = PackageTest(processes, packages, Path(prepared["key"]), options)
        good = take(test.steps(), test.photograph)
        if good and options.sheet:
            test.sheet(options.sheet)
    except (Failed, OSError, subprocess.SubprocessError) as problem:
        print(f"✗ {problem}")
    finally:
        processes.end_all()
        if not good:
            for name, lines in processes.tails(25):
                print(f"--- {name}", *lines, sep="\n")
    print(f"it took {time.monotonic() - began:.0f} s; pictures and logs: {options.pictures}")
    return 0 if good else 1


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--source", type=Path, required=True, help="the tree that the packages are made of")
    parser.add_argument("--folder", type=Path, required=True, help="directory for builds and the Debian base, kept from run to run")
    parser.add_argument("--pictures", type=Path, required=True, help="directory for the pictures, emptied first")
    parser.add_argument("--sheet", type=Path, help="file for the pictures of the update together")
    options = parser.parse_args()
    options.sheet = options.sheet and options.sheet.resolve()
    options.source, options.folder, options.pictures = options.source.resolve(), options.folder.resolve(), options.pictures.resolve()
    hand_over = options.folder / "prepared.json"
    if not os.environ.get(inside.MARK):
        if os.geteuid() != 0:
            print("no test of the packages: it needs root")
            return 1
        try:
            prepared = prepare(options)
        except (Failed, OSError, subprocess.SubprocessError) as problem:
            print(f"✗ {problem}")
            return 1
        hand_over.write_text(json.dumps(prepared), encoding="utf-8")
    inside.end_with_parent()
    inside.enter("--pid", "--fork", "--kill-child", "--mount-proc")
    inside.end_in_order()
    end_after(LONGEST)
    return perform(options, json.loads(hand_over.read_text(encoding="utf-8")))


if __name__ == "__main__":
    sys.exit(main())
