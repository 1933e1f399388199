#!/usr/bin/python3
"""Pictures of every window, page and panel of the client, and a sheet of all of them.

Runs the client beside the company server on a virtual desktop, as the journey does, and goes through it with
the pointer. --scale 2 shows everything at 200 %.
"""
import subprocess
import sys
import time
from pathlib import Path

from client import LOGIN_SIZE, Client, LoginWindow
from main_window import PANEL_SIZE, SETTINGS_SIZE, MainWindow
from processes import wait_for
from stage import options_of, perform

LONGEST = 180
SETTLING = 0.4  # seconds until fades and pointers have come to rest


class Gallery:
    def __init__(self, processes, desktop, client, company, folder):
        self._processes = processes
        self._desktop = desktop
        self._client = client
        self._company = company
        self._folder = folder
        self._pictures = []

    def _take(self, name, window):
        time.sleep(SETTLING)
        self._pictures.append(self._folder / f"{len(self._pictures) + 1:02}-{name}.png")
        self._desktop.photograph(self._pictures[-1], window)

    def walk(self):
        self._client.start()
        login = LoginWindow(self._desktop, self._client.wait_for_window(LOGIN_SIZE))
        self._take("login", login.window)
        login.replace_user_name(self._company.user_name)
        login.replace_password(self._company.PASSWORD)
        self._desktop.key("Return")
        main = MainWindow(self._desktop, self._client)
        self._pages(main)
        self._tools(main)
        self._panels(main)
        self._maximised(main)
        self._client.quit()

    def _pages(self, main):
        for name, entry in (("security", "安全"), ("device", "设备"), ("network", "网络"), ("services", "服务"), ("functions", "功能")):
            if entry not in main.selected():
                main.select(entry)
            self._desktop.point(main.window, *(MainWindow.TOOLS["远程协助"] if entry == "功能" else (940, 20)))
            if entry == "设备":
                self._work()
            self._take(name, main.window)

    def _work(self):
        """Something for the line to show: a processor at work for a while, then at rest."""
        for busy, rest in ((3, 4), (1, 6), (4, 5)):
            load = self._processes.start("load", ["sh", "-c", "while :; do :; done"], self._desktop.env)
            time.sleep(busy)
            self._processes.end(load)
            time.sleep(rest)

    def _tools(self, main):
        main.open_tool("清理垃圾")
        self._take("cleaner-introduction", main.window)
        main.click(MainWindow.INTRO_SCAN)
        self._take("cleaner", main.window)
        main.click(MainWindow.SCAN)
        main.click((500, 324))
        self._take("cleaner-scanning", main.window)
        main.click(MainWindow.BACK)
        main.open_tool("软件管理")
        self._desktop.point(main.window, 500, 204)
        self._take("software", main.window)
        main.click(MainWindow.BACK)
        main.open_tool("远程协助")
        self._take("remote", main.window)
        main.click(MainWindow.BACK)
        main.select("安全")

    def _panels(self, main):
        main.open_menu()
        self._desktop.point(main.window, *MainWindow.UPDATE)
        self._take("menu", main.window)
        self._desktop.key("Escape")
        main.choose(MainWindow.ABOUT)
        panel = self._client.wait_for_window(PANEL_SIZE)
        self._take("about", panel)
        self._desktop.key("Escape")
        main.choose(MainWindow.SETTINGS)
        settings = self._client.wait_for_window(SETTINGS_SIZE)
        self._take("settings", settings)
        self._desktop.key("Escape")
        main.choose(MainWindow.UPDATE)
        alert = wait_for("the alert", lambda: next((w for w in self._client.windows() if w.width == 330 and w.height < 300), None))
        self._take("alert", alert)
        self._desktop.key("Return")
        self._client.start_another("--uninstall")
        wait_for("the uninstall reminder", main.shows_reminder)
        main.click(MainWindow.REQUEST_CODE)
        wait_for("the tip", lambda: main.tip_colour() == "good")
        main.click(MainWindow.CODE_FIELD)
        self._desktop.type("48")
        self._take("uninstall", main.window)
        self._desktop.key("Escape")

    def _maximised(self, main):
        main.select("设备")
        self._desktop.do("wmctrl", "-i", "-r", hex(main.window.identifier), "-b", "add,maximized_vert,maximized_horz")
        time.sleep(SETTLING)
        self._take("maximised", main.window)

    def sheet(self, file, names):
        """The windows side by side on grey; when none is named, all but the one as large as the screen."""
        chosen = [picture for picture in self._pictures if picture.stem[3:] in names or not names and "maximised" not in picture.stem]
        subprocess.run(["montage", *chosen, "-background", "#D9DCE0", "-gravity", "north", "-geometry", "+16+16",
                        "-tile", "4x" if len(chosen) > 8 else "2x", "-define", "png:compression-level=9", f"png24:{file}"], check=True)


def add_options(parser):
    parser.add_argument("--sheet", type=Path, help="file for all of them together")
    parser.add_argument("--only", nargs="*", default=[], help="what the sheet shows, such as menu uninstall")
    parser.add_argument("--scale", type=int, default=1)


def main():
    options = options_of(__doc__, add_options)

    def play(processes, desktop, company, _folder):
        gallery = Gallery(processes, desktop, Client(processes, desktop, company, options.build), company, options.pictures)
        gallery.walk()
        if options.sheet:
            gallery.sheet(options.sheet, options.only)
        return True

    return perform(options, LONGEST, play, scale=options.scale, size=(1920, 1080))


if __name__ == "__main__":
    sys.exit(main())
