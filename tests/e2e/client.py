"""The client of the journey: started as a user's desktop would start it, seen only from outside."""
import os
import plistlib
import stat
import time
from pathlib import Path

from processes import expect, output_of, wait_for

LOGIN_SIZE = (330, 400)
MAIN_SIZE = (960, 640)


class LoginWindow:
    """The login window as a person finds their way in it: by place and colour."""
    USER_NAME, PASSWORD, BUTTON, AUTO_LOGIN = (165, 166), (165, 222), (165, 300), (42, 348)
    ORANGE, GREY = (0xC8, 0x4B, 0x0A), (0x8A, 0x91, 0x9B)

    def __init__(self, desktop, window):
        self._desktop = desktop
        self.window = window

    def replace_user_name(self, text):
        self._desktop.click(self.window, *self.USER_NAME)
        self._desktop.key("ctrl+a")
        self._desktop.type(text)

    def replace_password(self, text):
        self._desktop.click(self.window, *self.PASSWORD)
        self._desktop.key("ctrl+a")
        self._desktop.type(text)

    def append_to_password(self, text):
        self._desktop.click(self.window, *self.PASSWORD)
        self._desktop.key("End")
        self._desktop.type(text)

    def click_button(self):
        self._desktop.click(self.window, *self.BUTTON)

    def click_auto_login(self):
        self._desktop.click(self.window, *self.AUTO_LOGIN)

    def auto_login_is_on(self):
        return self._desktop.look(self.window).count(34, 340, 16, 16, lambda *colour: colour == self.ORANGE) > 100

    def button_colour(self):
        """Left of the button's title."""
        return self._desktop.look(self.window).at(50, 300)

    def shows_busy(self):
        return self.button_colour() == self.GREY

    def shows_message(self):
        """Whether there is text in the colour of errors between the fields and the button."""
        return self._desktop.look(self.window).count(32, 246, 266, 28, lambda r, g, b: r > 170 and g < 110 and b < 110) > 20

    def password_is_filled(self):
        """Typed dots are darker than any placeholder."""
        return self._desktop.look(self.window).count(70, 206, 120, 32, lambda r, g, b: max(r, g, b) < 80) > 20


class Client:
    def __init__(self, processes, desktop, company, build):
        self._processes = processes
        self._desktop = desktop
        self._company = company
        self.program = Path(build, "bin/halvane")
        self.tools = Path(build, "libexec/halvane")
        self.environment = {**desktop.env, "HALVANE_TOOL_ROOT": str(self.tools)}
        self.process = None
        self.started_at = 0.0

    def start(self):
        self.started_at = time.monotonic()
        self.process = self.start_another()

    def start_another(self, *arguments):
        return self._processes.start("client", [self.program, "--server", self._company.url, *arguments], self.environment)

    def age(self):
        return time.monotonic() - self.started_at

    def is_running(self):
        return self.process.poll() is None

    def quit(self):
        return self._processes.end(self.process)

    def windows(self):
        return self._desktop.windows(self.process.pid)

    def wait_for_window(self, size, seconds=15.0):
        def window():
            expect(self.is_running(), f"the client ended with {self.process.poll()}")
            return self._desktop.window(self.process.pid, size)

        return wait_for(f"a window of {size[0]}×{size[1]}", window, seconds)

    def log(self):
        return self._processes.log_text("client")

    def security(self, *arguments):
        return output_of(self.tools / "usr/bin/security", *arguments, env=self.environment).decode(errors="replace")

    def preferences(self):
        files = list((self._desktop.config / "halvane").glob("*.plist"))
        expect(len(files) == 1, f"one property list of preferences, not {files}")
        return plistlib.loads(files[0].read_bytes())

    def session_file(self):
        return self._desktop.data / "halvane/Documents/LoginFile" / f"{self._company.job_number()}.plist"

    def profiles(self):
        return list((self._desktop.runtime / "halvane/XMMBConfWeb").glob("*.mobileconfig"))

    def identity_files(self):
        return list((self._desktop.data / "halvane/identities").glob("*.p12"))

    def open_to_others(self):
        """Files of the client that somebody else could read."""
        rooms = [self._desktop.data, self._desktop.cache / "halvane", self._desktop.config / "halvane", self._desktop.runtime / "halvane"]
        return [path for room in rooms for path in room.rglob("*") if path.is_file() and mode_of(path) & 0o077]

    def certificate_database(self):
        found = [path.parent for path in self._desktop.home.rglob("cert9.db")]
        expect(len(found) == 1, f"one NSS database, not {found}")
        return found[0]


def mode_of(path):
    return stat.S_IMODE(os.stat(path).st_mode)


def texts_in(value):
    """Every text of a property list, however deep."""
    if isinstance(value, dict):
        return [text for each in value.values() for text in texts_in(each)]
    if isinstance(value, list):
        return [text for each in value for text in texts_in(each)]
    return [value] if isinstance(value, str) else []
