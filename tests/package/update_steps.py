"""An update as a person goes through it: from the installed packages to the next version, through the company's feed."""
import contextlib
import fcntl
import os
import shutil
import signal
import subprocess
from pathlib import Path

from client import MAIN_SIZE
from debian_root import run
from inside import program
from installation import EMPLOYEE, SERVICE_ID
from main_window import PANEL_SIZE, MainWindow
from processes import descendants, expect, output_of, stays, wait_for
from update_window import UpdateWindow

RULE = """polkit.addRule(function(action, subject) {{
    if (action.id == "com.halvane.install-update" && subject.user == "{user}") return polkit.Result.{answer};
}});
"""
NOTES = "· 更新窗口：说明、进度、取消\n· 电脑被锁定或标记为丢失时发出通知\n· 更多修正"
UPDATES = "var/lib/halvane/updates"
RULES = "etc/polkit-1/rules.d/10-update.rules"
SLATE, ORANGE = (0x5F, 0x67, 0x72), (0xC8, 0x4B, 0x0A)


def killed(process_name):
    """The process of that name below us, by its id."""
    for pid in descendants(os.getpid()):
        with contextlib.suppress(OSError):
            if Path(f"/proc/{pid}/comm").read_text(encoding="utf-8").strip() == process_name:
                os.kill(pid, signal.SIGKILL)
                return True
    return False


class UpdateSteps:
    """`scene`: what there is only once the packages are installed, asked for by each step: company and client."""

    def __init__(self, root, desktop, packages, scene, photograph):
        self._root = root
        self._desktop = desktop
        self._older, self._newer = packages
        self._scene = scene
        self._photograph = photograph

    def steps(self):
        return [self.feed_has_nothing_newer, self.panel_and_check_say_so, self.offered_at_the_start, self.panel_tells_of_it,
                self.download_can_be_cancelled, self.altered_package_is_refused, self.nobody_is_allowed, self.full_disk_leaves_nothing,
                self.killed_in_the_middle, self.installs_and_begins_anew, self.administrators_program_refuses, self.goes_on_without_the_client]

    @property
    def _company(self):
        return self._scene()[0]

    @property
    def _client(self):
        return self._scene()[1]

    @property
    def _update(self):
        return UpdateWindow(self._desktop, self._client)

    def _feed(self, *words):
        """As the administrator does."""
        return self._root.run("/usr/bin/halvane-server", "feed", *words, "--data", "/var/lib/halvane-server")

    def _publish(self, package, *more):
        self._feed("add", self._root.bring(package), *more)

    def _start(self):
        self._client.start()
        self._client.wait_for_window(MAIN_SIZE, 30.0)

    def _main(self):
        window = self._client.wait_for_window(MAIN_SIZE)
        self._desktop.activate(window)
        return MainWindow(self._desktop, self._client)

    def _panel(self, colour, picture):
        self._main().choose(MainWindow.ABOUT)
        panel = self._client.wait_for_window(PANEL_SIZE)
        wait_for("the panel's button", lambda: self._desktop.look(panel).at(125, 164) == colour)
        self._photograph(picture, panel)
        return panel

    def _logged(self, line):
        wait_for(f'"{line}" in the log', lambda: f"halvane: {line}\n" in self._client.log())

    def _installed(self):
        return self._root.run("dpkg-query", "--show", "--showformat=${Version} ${db:Status-Status}", "halvane")

    def _allow(self, answer):
        (self._root / RULES).write_text(RULE.format(user=EMPLOYEE, answer=answer), encoding="utf-8")
        # polkitd notices by itself, a moment later, and says when it has.
        asked = ("pkcheck", "--action-id", "com.halvane.install-update", "--process", self._client.process.pid)
        code = {"YES": 0, "NO": 1}[answer]
        wait_for(f"polkit says {answer}", lambda: self._runs(asked) == code)

    def _runs(self, words):
        return subprocess.run(self._root.command(*words), capture_output=True, check=False, timeout=30).returncode

    def feed_has_nothing_newer(self):
        key = self._root / "var/lib/private/halvane-server/update-key.pem"
        expect(key.stat().st_uid == SERVICE_ID and key.stat().st_mode & 0o077 == 0, "the signing key is the service's alone")
        self._publish(self._older.client)
        self._start()
        wait_for("a look at the feed", lambda: self._company.requests("/update/appcast.xml"))
        stays("nothing is offered", lambda: len(self._client.windows()) == 1, seconds=1.5)
        return "the version that is installed is no update"

    def panel_and_check_say_so(self):
        self._panel(SLATE, "panel-current")
        self._logged("已经是最新版本")
        self._desktop.key("Escape")
        wait_for("the panel closes", lambda: len(self._client.windows()) == 1)
        self._main().choose(MainWindow.UPDATE)
        self._update.wait_for("good")
        self._photograph("update-none", self._update.window)
        self._update.primary()
        self._update.wait_for("")
        expect(self._client.quit() == 0, "it ends with 0")
        return "slate button, 已经是最新版本 in the log; the check says so in its window"

    def offered_at_the_start(self):
        notes = self._root / "tmp/notes"
        notes.write_text(NOTES, encoding="utf-8")
        self._publish(self._newer.client, "--notes", "/tmp/notes")
        self._start()
        self._update.wait_for("offer")
        self._photograph("update-offer", self._update.window)
        self._photograph("update-offer-on-the-screen")
        main = self._client.wait_for_window(MAIN_SIZE)
        expect(self._desktop.active() == main.identifier, "the keyboard is the main window's")
        expect(not self._company.requests(f"/update/{self._newer.client.name}"), "nothing was fetched")
        self._desktop.activate(self._update.window)
        self._desktop.key("Escape")
        self._update.wait_for("")
        return f"{self._newer.version} with its notes; put off by Escape, nothing fetched"

    def panel_tells_of_it(self):
        panel = self._panel(ORANGE, "panel-newer")
        self._logged(f"发现新版本{self._newer.version}")
        expect(f"发现新版本V{self._newer.version}" not in self._client.log(), "the line has no V")
        self._desktop.press(panel, 200, 164)
        self._update.wait_for("offer")
        expect(not self._desktop.window(self._client.process.pid, PANEL_SIZE), "the panel is closed")
        return "orange button; a press closes the panel and brings the offer"

    def download_can_be_cancelled(self):
        tc = program("tc")
        run(tc, "qdisc", "add", "dev", "lo", "root", "tbf", "rate", "2mbit", "burst", "200k", "latency", "2s")
        try:
            self._update.primary()
            line = lambda picture: picture.count(112, 104, 300, 20, lambda *seen: seen == ORANGE)
            wait_for("a part of the line", lambda: line(self._desktop.look(self._update.window)) > 400)
            self._photograph("update-downloading", self._update.window)
            self._update.secondary()
            self._update.wait_for("")
        finally:
            run(tc, "qdisc", "del", "dev", "lo", "root")
        kept = lambda: [path.name for path in (self._client.home / ".cache/halvane/updates").rglob("*") if path.is_file()]
        wait_for("nothing is kept of it", lambda: not kept())
        expect(self._client.is_running(), "the client goes on")
        return "half of it was there, nothing is kept"

    def _offer(self):
        self._main().choose(MainWindow.UPDATE)
        self._update.wait_for("offer")

    def _again(self):
        """From a refusal to the package that waits to be installed."""
        self._update.primary()
        self._update.wait_for("offer")
        self._update.primary()
        self._update.wait_for("good")

    def altered_package_is_refused(self):
        file = self._root / "var/lib/private/halvane-server/updates" / self._newer.client.name
        good = file.read_bytes()
        altered = bytearray(good)
        altered[len(good) // 2] ^= 1
        with open(file, "r+b") as stored:
            stored.write(altered)
        self._offer()
        self._update.primary()
        self._update.wait_for("bad")
        self._photograph("update-refused", self._update.window)
        expect("it is not signed with the company's key" in self._client.log(), "the log says why")
        with open(file, "r+b") as stored:
            stored.write(good)
        self._again()
        self._photograph("update-ready", self._update.window)
        return "one bit is enough; tried again, it waits to be installed"

    def nobody_is_allowed(self):
        self._allow("NO")
        self._update.primary()
        self._update.wait_for("bad", 30.0)
        self._photograph("update-not-allowed", self._update.window)
        expect(self._installed() == f"{self._older.version} installed", "nothing was installed")
        return "refused by the policy, nothing installed"

    def full_disk_leaves_nothing(self):
        self._allow("YES")
        (self._root / UPDATES).mkdir(mode=0o700)
        run("mount", "-t", "tmpfs", "-o", "size=256k,mode=700", "small", self._root / UPDATES)
        try:
            self._again()
            self._update.primary()
            self._update.wait_for("bad", 30.0)
            expect("No space left on device" in self._client.log(), "the log says why")
            expect(not list((self._root / UPDATES).glob("*.deb")), "no part of the copy is left")
        finally:
            run("umount", self._root / UPDATES)
        self._photograph("update-no-space", self._update.window)
        return "256 KiB for the administrator's copy: refused, nothing left"

    @contextlib.contextmanager
    def _package_manager_is_kept_waiting(self):
        """As by another installation."""
        with open(self._root / "var/lib/dpkg/lock-frontend", "a", encoding="utf-8") as lock:
            fcntl.lockf(lock, fcntl.LOCK_EX)
            yield

    def _await_package_manager(self):
        log = self._root / UPDATES / "apt.log"
        wait_for("apt-get waits", lambda: log.exists() and b"Waiting for cache lock" in log.read_bytes(), 30.0)

    def killed_in_the_middle(self):
        self._again()
        with self._package_manager_is_kept_waiting():
            self._update.primary()
            self._await_package_manager()
            self._photograph("update-installing", self._update.window)
            self._main().select("设备")  # the client is not blocked by it
            expect(killed("install-update") and killed("apt-get"), "both are killed")
            self._update.wait_for("bad", 30.0)
        self._photograph("update-interrupted", self._update.window)
        expect(self._installed() == f"{self._older.version} installed", "nothing was installed")
        return "while it waited for the package manager; the client goes on, and could be used meanwhile"

    def installs_and_begins_anew(self):
        self._again()
        pid = self._client.process.pid
        self._update.primary()
        wait_for("the installation", lambda: "is installed\n" in self._client.log(), 90.0)
        self._update.wait_for("good")
        self._photograph("update-installed", self._update.window)
        expect(self._installed() == f"{self._newer.version} installed", f"the newer one is installed, not {self._installed()}")
        expect(not list((self._root / UPDATES).glob("*.deb")), "the copy is gone")
        self._update.primary()
        wait_for("the new program", lambda: not os.readlink(f"/proc/{pid}/exe").endswith("(deleted)"), 20.0)
        self._client.wait_for_window(MAIN_SIZE, 30.0)
        expect(self._newer.version in self._root.run("/usr/bin/halvane", "--version"), "it tells the newer version")
        self._panel(SLATE, "panel-after-the-update")
        self._desktop.key("Escape")
        stays("nothing is offered", lambda: not self._update.window)
        return f"{self._newer.version} runs in the place of {self._older.version}, signed in"

    def administrators_program_refuses(self):
        """Whoever gets so far that it runs for them."""
        codes = {}
        for name, package, expected in (("lower", self._older.client, 23), ("equal", self._newer.client, 23), ("other", self._newer.server, 21)):
            place = self._root.bring(package)
            signature = self._feed("sign", place).strip()
            with open(self._root / place.lstrip("/"), "rb") as bytes_of_it:
                done = subprocess.run(self._root.command("/usr/libexec/halvane/install-update", signature), stdin=bytes_of_it, capture_output=True,
                                      check=False, timeout=60)
            codes[name] = done.stdout.decode().strip()
            expect(done.returncode == expected, f"{name}: exit code {expected}, not {done.returncode}: {codes[name]}")
        alone = subprocess.run(self._root.command("/usr/libexec/halvane/install-update", "x", user=SERVICE_ID), stdin=subprocess.DEVNULL,
                               capture_output=True, check=False, timeout=20)
        expect(alone.returncode == 77, f"only the administrator: {alone}")
        return "; ".join(codes.values())

    def goes_on_without_the_client(self):
        """The person has said yes; that the client is gone changes nothing."""
        expect(self._client.quit() == 0, "it ends with 0")
        tree = self._root / "tmp/next"
        output_of("dpkg-deb", "--raw-extract", self._newer.client, tree)
        control = tree / "DEBIAN/control"
        control.write_text(control.read_text(encoding="utf-8").replace(f"Version: {self._newer.version}", "Version: 1.0.2"), encoding="utf-8")
        file = self._root / "tmp/next.deb"
        output_of("dpkg-deb", "--root-owner-group", "-Zgzip", "--build", tree, file)
        shutil.rmtree(tree)
        self._feed("add", "/tmp/next.deb")
        self._start()
        self._update.wait_for("offer")
        self._update.primary()
        self._update.wait_for("good")
        self._allow("YES")
        with self._package_manager_is_kept_waiting():
            self._update.primary()
            self._await_package_manager()
            self._client.process.kill()
            self._client.process.wait(10)
        wait_for("the installation", lambda: self._installed() == "1.0.2 installed", 60.0)
        (self._root / RULES).unlink()
        return "the client was killed while it waited; 1.0.2 is installed all the same"
