#!/usr/bin/python3
"""The icon in the status bar, on desktops of several kinds: with a tray that comes, goes and returns, with
StatusNotifierItem that comes, goes and returns, with one that hangs, without a session bus, and with none at all.
"""
import re
import sys
import time
from pathlib import Path

from client import LOGIN_SIZE, Client, LoginWindow
from main_window import MainWindow
from processes import expect, output_of, stays, wait_for
from stage import options_of, perform, take

LONGEST = 150
MENU = "com.canonical.dbusmenu"
HERE = Path(__file__).resolve().parent


class StatusBar:
    """The desktop's side: an XEmbed tray, and a StatusNotifierItem host, each when asked for."""

    def __init__(self, processes, desktop):
        self._processes = processes
        self._desktop = desktop
        self._tray = None
        self._host = None

    def start_tray(self):
        self._tray = self._processes.start("trayer", ["trayer", "--edge", "top", "--align", "left", "--widthtype", "pixel", "--width", "100",
                                                      "--height", "24"], self._desktop.env)

    def end_tray(self):
        self._processes.end(self._tray)

    def start_host(self, *arguments):
        before = self._said().count("ready")
        self._host = self._processes.start("host", ["/usr/bin/python3", "-B", HERE / "status_notifier.py", *arguments], self._desktop.env)
        wait_for("a host of icons", lambda: self._said().count("ready") > before)

    def end_host(self):
        self._processes.end(self._host)

    def _said(self):
        return self._processes.log_text("host")

    def tray_icons(self):
        """Middles of the client's windows inside the tray."""
        tree = output_of("xwininfo", "-root", "-tree", env=self._desktop.env).decode(errors="replace")
        panel = tree.partition('"panel": ("panel" "trayer")')[2].partition('"Halvane"')[0]
        found = re.findall(r'\("halvane" "halvane"\)\s+(\d+)x(\d+)\+\d+\+\d+\s+\+(\d+)\+(\d+)', panel)
        return [(int(x) + int(width) // 2, int(y) + int(height) // 2) for width, height, x, y in found]

    def host_icons(self):
        """Addresses on the bus, (service, path), of the icons that are there now."""
        current = []
        for line in self._said().rpartition("ready")[2].splitlines():
            if line.startswith("+ "):
                current.append(line[2:])
            elif line.startswith("- "):
                current.remove(line[2:])
        return [(item.partition("/")[0], "/" + item.partition("/")[2]) for item in current]

    def choose(self, title):
        """From the menu of the one icon, as the host does it."""
        (service, _), = self.host_icons()
        layout = self._call(service, "GetLayout", "int32:0", "int32:-1", "array:string:")
        entries = re.findall(r'int32 (\d+)\s+array \[(.*?)\n\s+\]\s+array', layout, re.S)
        number = next((number for number, properties in entries if f'string "{title}"' in properties), None)
        expect(number, f"the menu has {title}: {layout}")
        self._call(service, "Event", f"int32:{number}", "string:clicked", "variant:int32:0", "uint32:0")

    def _call(self, service, method, *arguments):
        return output_of("dbus-send", "--session", "--print-reply", f"--dest={service}", "/MenuBar", f"{MENU}.{method}", *arguments,
                         env=self._desktop.env).decode()


class Story:
    def __init__(self, desktop, company, client, status_bar, pictures):
        self._desktop = desktop
        self._company = company
        self._client = client
        self._bar = status_bar
        self._pictures = pictures

    def steps(self):
        return [self.no_status_bar_at_all, self.tray_appears_later_and_returns, self.menu_of_the_tray, self.host_appears_later_and_returns,
                self.menu_of_the_host, self.host_before_the_client_beats_the_tray, self.without_a_session_bus, self.host_that_hangs]

    def photograph(self, name):
        self._desktop.photograph(self._pictures / f"{name}.png")

    def _main(self):
        return MainWindow(self._desktop, self._client)

    def _again(self):
        expect(self._client.quit() == 0, "the client ends with 0")
        self._client.start()
        return self._main()

    def _one_tray_icon(self):
        wait_for("one icon in the tray", lambda: len(self._bar.tray_icons()) == 1)

    def _one_host_icon(self):
        wait_for("one icon at the host", lambda: len(self._bar.host_icons()) == 1)

    def _close_reminder(self, main):
        wait_for("the keyboard", lambda: self._desktop.active() == main.window.identifier)
        self._desktop.key("Escape")
        wait_for("Escape closes it", lambda: not main.shows_reminder())

    def no_status_bar_at_all(self):
        self._client.start()
        login = LoginWindow(self._desktop, self._client.wait_for_window(LOGIN_SIZE))
        login.replace_user_name(self._company.user_name)
        login.replace_password(self._company.PASSWORD)
        self._desktop.key("Return")
        main = self._main()
        other = self._client.start_another("--uninstall")
        wait_for("the reminder", main.shows_reminder)
        wait_for("the other start ends", lambda: other.poll() == 0)
        self._close_reminder(main)
        return "the client goes on; halvane --uninstall leads to the reminder"

    def tray_appears_later_and_returns(self):
        self._bar.start_tray()
        self._one_tray_icon()
        self.photograph("tray")
        self._bar.end_tray()
        stays("the client runs on without it", self._client.is_running)
        self._bar.start_tray()
        self._one_tray_icon()
        stays("one icon, not two", lambda: len(self._bar.tray_icons()) == 1)
        return "the icon follows the tray: late, gone, back"

    def menu_of_the_tray(self):
        main = self._main()
        for button in (1, 3):
            (x, y), = self._bar.tray_icons()
            self._desktop.do("xdotool", "mousemove", x, y, "click", button)
            time.sleep(0.3)  # until the menu has the keyboard
            self.photograph(f"menu-{button}")
            self._desktop.key("Down", "Return")
            wait_for(f"the reminder by button {button}", main.shows_reminder)
            self._close_reminder(main)
        return 'either button opens the menu, "卸载" brings up the reminder'

    def host_appears_later_and_returns(self):
        self._bar.end_tray()
        self._again()
        stays("nothing to show it", lambda: not self._bar.tray_icons())
        self._bar.start_host()
        self._one_host_icon()
        self._bar.end_host()
        stays("the client runs on without it", self._client.is_running)
        self._bar.start_host()
        self._one_host_icon()
        return "the icon follows the host: late, gone, back"

    def menu_of_the_host(self):
        main = self._main()
        self._bar.choose("卸载")
        wait_for("the reminder", main.shows_reminder)
        self._bar.choose("卸载")
        stays("it stays", main.shows_reminder, seconds=0.5)
        self._close_reminder(main)
        self._client.quit()
        wait_for("the icon goes with the client", lambda: not self._bar.host_icons())
        self._client.start()
        self._main()
        self._one_host_icon()
        return '"卸载" brings up the reminder, twice changes nothing; the icon goes with the client'

    def host_before_the_client_beats_the_tray(self):
        self._bar.start_tray()
        self._again()
        self._one_host_icon()
        stays("the tray stays empty", lambda: not self._bar.tray_icons())
        self._bar.end_host()
        return "with both, the icon is at the host alone"

    def without_a_session_bus(self):
        self._client.quit()
        good = self._client.environment["DBUS_SESSION_BUS_ADDRESS"]
        for address in (f"unix:path={self._desktop.runtime}/nowhere", ""):
            self._client.environment["DBUS_SESSION_BUS_ADDRESS"] = address
            self._client.start()
            self._main()
            self._one_tray_icon()
            self._client.quit()
        self._client.environment["DBUS_SESSION_BUS_ADDRESS"] = good
        return "the icon is in the tray, whether the address leads nowhere or is empty"

    def host_that_hangs(self):
        self._bar.start_host("--hang")
        self._client.start()
        main = self._main()
        began = time.monotonic()
        for entry in ("设备", "功能", "安全"):
            main.select(entry)
        stays("the client runs", self._client.is_running, seconds=4)
        main.select("设备")
        took = time.monotonic() - began
        expect(took < 10, f"the window answers at once, not after {took:.1f} s")
        self._bar.end_host()
        expect(self._client.quit() == 0, "the client ends with 0")
        return "a host that never answers holds nothing up"


def main():
    options = options_of(__doc__)

    def play(processes, desktop, company, _folder):
        client = Client(processes, desktop, company, options.build)
        story = Story(desktop, company, client, StatusBar(processes, desktop), options.pictures)
        return take(story.steps(), story.photograph)

    return perform(options, LONGEST, play)


if __name__ == "__main__":
    sys.exit(main())
