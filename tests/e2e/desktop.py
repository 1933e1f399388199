"""A desktop of one's own: virtual display, window manager, session bus, Secret Service, home directory."""
import os
import re
import subprocess
from dataclasses import dataclass
from pathlib import Path

from processes import Failed, expect, output_of, wait_for

HERE = Path(__file__).resolve().parent
BUS_CONFIGURATION = """<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig><type>session</type><listen>unix:path={socket}</listen><auth>EXTERNAL</auth>
<policy context="default"><allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/></policy>
</busconfig>
"""


@dataclass(frozen=True)
class Window:
    """A window on the screen; place and size are of its content."""
    identifier: int
    pid: int
    x: int
    y: int
    width: int
    height: int
    title: str

    @property
    def size(self):
        return self.width, self.height


class Picture:
    """The pixels of a window at one moment."""

    def __init__(self, ppm):
        header = re.match(rb"P6\s+(\d+)\s+(\d+)\s+255\s", ppm)
        if not header:
            raise Failed("the picture is no PPM")
        self.width, self.height = int(header[1]), int(header[2])
        self._pixels = ppm[header.end():]

    def at(self, x, y):
        start = 3 * (y * self.width + x)
        return tuple(self._pixels[start:start + 3])

    def count(self, left, top, width, height, matches):
        """How many pixels of the area `matches(red, green, blue)` holds for."""
        return sum(matches(*self.at(x, y)) for y in range(top, top + height) for x in range(left, left + width))


class Desktop:
    """`scale`: device pixels to a pixel of the client's; `size` of the screen; places and sizes are the client's."""

    SERIAL = "HV0417A92K"

    def __init__(self, processes, folder, scale=1, size=(1280, 800)):
        self._processes = processes
        self._size = size
        self.scale = scale
        self.home = Path(folder, "home")
        self.runtime = Path(folder, "runtime")
        self.config, self.data, self.cache = self.home / ".config", self.home / ".local/share", self.home / ".cache"
        for directory in (self.home, self.runtime):
            directory.mkdir(mode=0o700, parents=True)
        self.env = {
            "PATH": "/usr/local/bin:/usr/bin:/bin", "HOME": str(self.home), "LC_ALL": "C.UTF-8", "USER": "journey",
            "XDG_RUNTIME_DIR": str(self.runtime), "XDG_CONFIG_HOME": str(self.config), "XDG_DATA_HOME": str(self.data),
            "XDG_CACHE_HOME": str(self.cache), "XDG_CURRENT_DESKTOP": "journey",
            # Nothing of the journey shall go to the machine's own bus or network services.
            "DBUS_SYSTEM_BUS_ADDRESS": f"unix:path={self.runtime}/system-bus",
            "LSAN_OPTIONS": f"suppressions={HERE / 'leaks.supp'}:print_suppressions=0",
        }
        if scale != 1:
            self.env["QT_SCALE_FACTOR"] = str(scale)
        self.env.update({name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")})

    def start(self):
        self.start_display()
        self._start_bus("system-bus")
        self._start_hostnamed()
        self._start_bus("bus")
        self.env["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={self.runtime}/bus"
        self._start_secret_service()

    def start_display(self):
        reader, writer = os.pipe()
        display = self._processes.start(
            "xvfb", ["Xvfb", "-displayfd", writer, "-screen", "0", "x".join(str(number * self.scale) for number in self._size) + "x24", "-nolisten", "tcp", "-noreset"], self.env, pass_fds=(writer,))
        os.close(writer)
        with os.fdopen(reader) as numbers:
            number = numbers.readline().strip()  # ends with the server, if that fails
        expect(number and display.poll() is None, "Xvfb does not start")
        self.env["DISPLAY"] = f":{number}"
        self._processes.start("openbox", ["openbox", "--sm-disable"], self.env)
        wait_for("a window manager", lambda: b"not found" not in self._root("_NET_SUPPORTING_WM_CHECK"))

    def _start_bus(self, name):
        socket = self.runtime / name
        configuration = self.runtime / f"{name}.conf"
        configuration.write_text(BUS_CONFIGURATION.format(socket=socket), encoding="utf-8")
        self._processes.start(name, ["dbus-daemon", f"--config-file={configuration}", "--nofork"], self.env)
        wait_for(f"the {name}", socket.exists)

    def _start_hostnamed(self):
        """Virtual machines have no serial number, and without one no computer can be marked."""
        before = self._processes.log_text("hostnamed").count("ready")
        self._processes.start("hostnamed", ["/usr/bin/python3", "-B", HERE / "hostnamed.py", self.SERIAL], self.env)
        wait_for("a hostnamed", lambda: self._processes.log_text("hostnamed").count("ready") > before)

    def use_system_bus(self, address):
        """Another one than our own, on which there is more."""
        self.env["DBUS_SYSTEM_BUS_ADDRESS"] = address
        self._start_hostnamed()

    def _start_secret_service(self):
        keyring = self._processes.start("keyring", ["gnome-keyring-daemon", "--foreground", "--unlock", "--components=secrets"], self.env,
                                        stdin=subprocess.PIPE)
        keyring.stdin.write(b"the journey's keyring")
        keyring.stdin.close()
        question = ("dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/", "org.freedesktop.DBus.NameHasOwner",
                    "string:org.freedesktop.secrets")
        wait_for("a Secret Service", lambda: b"true" in output_of(*question, env=self.env))

    def _root(self, name):
        return output_of("xprop", "-root", name, env=self.env)

    def windows(self, pid=None):
        """The windows on the screen, of one process or of all."""
        found = []
        for line in output_of("wmctrl", "-l", "-p", "-G", env=self.env).decode(errors="replace").splitlines():
            fields = line.split(None, 8)
            if len(fields) >= 8 and pid in (None, int(fields[2])):
                numbers = [int(fields[2]), *(int(field) // self.scale for field in fields[3:7])]
                found.append(Window(int(fields[0], 16), *numbers, fields[8] if len(fields) > 8 else ""))
        return found

    def window(self, pid, size):
        return next((window for window in self.windows(pid) if window.size == size), None)

    def stacking(self):
        """Identifiers of the windows, the lowest first."""
        return [int(each, 16) for each in re.findall(r"0x[0-9a-f]+", self._root("_NET_CLIENT_LIST_STACKING").decode())]

    def active(self):
        return int((re.findall(r"0x[0-9a-f]+", self._root("_NET_ACTIVE_WINDOW").decode()) or ["0"])[0], 16)

    def do(self, *command):
        output_of(*[str(part) for part in command], env=self.env)

    def point(self, window, x, y):
        self.do("xdotool", "mousemove", "--window", window.identifier, x * self.scale, y * self.scale)

    def press(self, window, x, y):
        """A click after which another window may have the keyboard."""
        self.point(window, x, y)
        self.do("xdotool", "click", 1)

    def click(self, window, x, y):
        self.press(window, x, y)
        wait_for("the window takes the keyboard", lambda: self.active() == window.identifier)

    def type(self, text):
        self.do("xdotool", "type", "--delay", 8, text)

    def key(self, *keys):
        self.do("xdotool", "key", "--delay", 8, *keys)

    def activate(self, window):
        self.do("wmctrl", "-i", "-a", hex(window.identifier))
        wait_for("the window is on top", lambda: self.stacking()[-1] == window.identifier)

    def close(self, window):
        self.do("wmctrl", "-i", "-c", hex(window.identifier))

    def look(self, window):
        return Picture(output_of("import", "-silent", "-window", hex(window.identifier), "-depth", "8", "ppm:-", env=self.env))

    def photograph(self, file, window=None):
        self.do("import", "-silent", "-window", hex(window.identifier) if window else "root", file)
