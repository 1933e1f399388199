"""Child processes that never outlive the journey, and waits that end."""
import os
import signal
import subprocess
import threading
import time
from pathlib import Path


class Failed(Exception):
    """What was expected and what was seen instead."""


def expect(holds, what):
    if not holds:
        raise Failed(what)


def wait_for(what, probe, seconds=10.0):
    """The first true answer of `probe`; a failure that names `what` after `seconds`."""
    deadline = time.monotonic() + seconds
    while True:
        if answer := probe():
            return answer
        if time.monotonic() > deadline:
            raise Failed(f"not within {seconds:g} s: {what}")
        time.sleep(0.05)


def stays(what, probe, seconds=1.0):
    """`probe` holds now and for the next `seconds`: the only way to see that nothing happens."""
    deadline = time.monotonic() + seconds
    while time.monotonic() < deadline:
        expect(probe(), what)
        time.sleep(0.05)


def output_of(*command, env=None, seconds=20):
    done = subprocess.run(command, env=env, capture_output=True, timeout=seconds, check=False)
    expect(done.returncode == 0, f"{command[0]} ended with {done.returncode}: {done.stderr.decode(errors='replace').strip()}")
    return done.stdout


class Processes:
    """Everything that was started, ended in the opposite order and each by its own id."""

    def __init__(self, logs):
        self.logs = Path(logs)
        self.logs.mkdir(parents=True, exist_ok=True)
        self._started = []

    def start(self, name, command, env, **options):
        """Starts `command` with its output in NAME.log, which grows over several starts."""
        with open(self.log(name), "ab") as log:
            options = {"stdin": subprocess.DEVNULL, "stdout": log, "stderr": log, **options}
            process = subprocess.Popen([str(part) for part in command], env=env, **options)
        self._started.append(process)
        return process

    def log(self, name):
        return self.logs / f"{name}.log"

    def log_text(self, name):
        return self.log(name).read_text(encoding="utf-8", errors="replace") if self.log(name).exists() else ""

    def end(self, process, seconds=5.0):
        """Asks politely first. The exit code; negative for a signal's."""
        if process.poll() is None:
            process.terminate()
            try:
                process.wait(seconds)
            except subprocess.TimeoutExpired:
                process.kill()
        return process.wait(seconds)

    def end_all(self):
        for process in reversed(self._started):
            self.end(process)

    def tails(self, lines=15):
        for log in sorted(self.logs.glob("*.log")):
            yield log.name, log.read_text(encoding="utf-8", errors="replace").splitlines()[-lines:]


class ChildWatch:
    """Looks again and again at which children a process has, and keeps every program and argument list it saw.

    What lives for less than some tens of milliseconds may be missed."""

    def __init__(self, pid):
        self.seen = set()  # (path of the program, its arguments as one text)
        self._pid = pid
        self._stop = threading.Event()
        self._thread = threading.Thread(target=self._watch, daemon=True)

    def __enter__(self):
        self._thread.start()
        return self

    def __exit__(self, *_):
        self._stop.set()
        self._thread.join(5)

    def _watch(self):
        while not self._stop.wait(0.02):
            for pid in descendants(self._pid):
                try:
                    program = os.readlink(f"/proc/{pid}/exe")
                    arguments = Path(f"/proc/{pid}/cmdline").read_bytes()
                except OSError:
                    continue  # it has just ended
                self.seen.add((program, arguments.replace(b"\0", b" ").decode(errors="replace").strip()))


def descendants(pid):
    """The children of `pid` and theirs, zombies included."""
    children = {}
    for entry in os.listdir("/proc"):
        if entry.isdigit():
            try:
                status = Path(f"/proc/{entry}/stat").read_text(encoding="utf-8", errors="replace")
            except OSError:
                continue  # it has just ended
            children.setdefault(int(status.rpartition(")")[2].split()[1]), []).append(int(entry))
    found, unseen = [], [pid]
    while unseen:
        own = children.get(unseen.pop(), [])
        found += own
        unseen += own
    return found


def end_after(seconds):
    """The whole journey is bounded, whatever hangs: the alarm becomes an ordinary failure."""

    def alarm(*_):
        raise Failed(f"the journey took longer than {seconds} s")

    signal.signal(signal.SIGALRM, alarm)
    signal.alarm(seconds)
