#!/usr/bin/python3
"""A whole journey through Halvane, as a person takes it: typing and clicking from outside.

Starts a virtual display, a window manager, a session bus, a Secret Service, the company server and the
client, all of them private, and looks only at what can be seen from outside: windows and their pixels, the
server's log and database, files, the certificate store, processes. One line a step; exit code 1 when one fails.
"""
import plistlib
import sys
import time
from pathlib import Path

from client import LOGIN_SIZE, MAIN_SIZE, Client, LoginWindow, mode_of, texts_in
from company_network import CompanyNetwork, what_is_missing
from main_window_steps import MainWindowSteps
from notifications import Notifications
from processes import descendants, expect, output_of, stays, wait_for
from stage import options_of, perform, take
from tool_root import ToolRoot
from watch_steps import WatchSteps

LONGEST = 260


class Journey:
    def __init__(self, processes, desktop, company, client, tools, network, notifications, options):
        self._processes = processes
        self._desktop = desktop
        self._company = company
        self._client = client
        self._pictures = options.pictures
        self._taken = 0
        self._main_window = MainWindowSteps(desktop, company, client, self.photograph)
        self._tools = tools
        self._network = network
        self._watch = WatchSteps(desktop, company, client, tools, network, notifications, self.photograph)

    def steps(self):
        return [self.first_start, self.wrong_password, self.second_tries_send_nothing, self.quits_on_request, self.fields_are_prefilled,
                self.right_password, self.certificate_is_in_the_store, self.profile_is_written, self.company_network_is_joined, self.session_is_kept,
                *self._main_window.steps(), *self._watch.page(), self.nothing_secret_leaks, self.next_start_asks_nobody, self.closing_puts_it_behind,
                self.second_start_raises_the_first, *self._watch.steps(), self.leaves_by_keyboard, self.leaves_by_the_desktop_entry]

    def photograph(self, name, window=None):
        self._taken += 1
        self._desktop.photograph(self._pictures / f"{self._taken:02}-{name}.png", window)

    def _login_window(self):
        return LoginWindow(self._desktop, self._client.wait_for_window(LOGIN_SIZE))

    def first_start(self):
        self._client.start()
        window = self._client.wait_for_window(LOGIN_SIZE)
        took = self._client.age()
        expect(window.title == "Halvane", f'the login window is titled "Halvane", not "{window.title}"')
        login = LoginWindow(self._desktop, window)
        wait_for("the orange button", lambda: login.button_colour() == LoginWindow.ORANGE)
        expect(len(self._client.windows()) == 1, "there is only the login window")
        expect(not self._company.requests(), f"nothing was sent yet, not {self._company.requests()}")
        expect(login.auto_login_is_on(), "automatic login is on at the very first start")
        self.photograph("login")
        return f'login window "Halvane", 330×400, after {took:.1f} s; nothing sent'

    def wrong_password(self):
        login = self._login_window()
        login.replace_user_name(self._company.user_name)
        login.replace_password(self._company.PASSWORD[:-1])
        login.click_button()
        wait_for("a login request", self._company.logins)
        wait_for("the server's message in the window", login.shows_message)
        expect(login.shows_busy(), f"the button stays grey, not {login.button_colour()}")
        expect(self._company.sessions() == 0, "the server opened no session")
        self.photograph("wrong-password", login.window)
        return "one login request, no session, the server's message in red, the button grey"

    def second_tries_send_nothing(self):
        login = self._login_window()
        login.click_button()
        self._desktop.click(login.window, *LoginWindow.PASSWORD)
        self._desktop.key("Return")
        stays("still one login request", lambda: len(self._company.logins()) == 1, seconds=1.5)
        expect(login.shows_busy() and login.shows_message(), "the view stays as it was")
        return "a second click and Enter: still one login request"

    def quits_on_request(self):
        code = self._client.quit()
        expect(code == 0, f"SIGTERM ends it with 0, not {code}")
        return "SIGTERM: exit code 0"

    def fields_are_prefilled(self):
        self._client.start()
        login = self._login_window()
        wait_for("the password's dots", login.password_is_filled, 5.0)
        expect(login.button_colour() == LoginWindow.ORANGE, "the button is ready again")
        expect(len(self._company.logins()) == 1, "no login request of its own")
        self.photograph("prefilled", login.window)
        # A user name is stored but nobody has signed in yet: the switch shows the preference, which is not set.
        expect(not login.auto_login_is_on(), "automatic login is off until it is chosen")
        login.click_auto_login()
        wait_for("automatic login on", login.auto_login_is_on)
        expect(self._client.preferences().get("HDCL_ISAUTOLOGIN") is True, "the preference is written at once")
        return "the rejected user name and password stand in the fields; automatic login switched on"

    def right_password(self):
        """Only the missing last letter is typed: the sign-in works when both fields were prefilled truly."""
        login = self._login_window()
        login.append_to_password(self._company.PASSWORD[-1])
        self._desktop.key("Return")
        clicked = time.monotonic()
        main = self._client.wait_for_window(MAIN_SIZE)
        took = time.monotonic() - clicked
        expect(main.title == "Halvane", f'the main window is titled "Halvane", not "{main.title}"')
        wait_for("the login window goes", lambda: len(self._client.windows()) == 1)
        wait_for("a profile", self._client.profiles, 15.0)
        wait_for("the tools to end", lambda: not descendants(self._client.process.pid), 25.0)
        expect([status for *_, status in self._company.logins()] == [200, 200], "one more login request")
        expect(self._company.sessions() == 1, "the server opened one session")
        wait_for("the user on the page", lambda: self._dark_pixels(main) > 50)
        self.photograph("signed-in", main)
        self.photograph("screen")
        return f"the last letter and Enter: main window 960×640 after {took:.1f} s, login window hidden, one session on the server"

    def _dark_pixels(self, window):
        return self._desktop.look(window).count(0, 0, *MAIN_SIZE, lambda r, g, b: max(r, g, b) < 90)

    def certificate_is_in_the_store(self):
        name = self._company.USER
        listing = self._client.security("find-identity")
        expect(name in listing, f"find-identity shows {name}: {listing}")
        database = self._client.certificate_database()
        shown = output_of("certutil", "-L", "-d", f"sql:{database}", env=self._desktop.env).decode()
        trust = [line.split()[-1] for line in shown.splitlines() if line.startswith(name + " ")]
        expect(trust and trust[0].startswith("u"), f"certutil shows {name} with its key: {shown}")
        files = self._client.identity_files()
        expect(len(files) == 1, f"one identity file, not {files}")
        expect(mode_of(files[0]) == 0o600, f"the identity file is 0600, not {mode_of(files[0]):o}")
        asked = [path for _, path, status in self._company.requests() if status == 200 and "ad_cert" in path]
        expect(asked, "the server was asked for the certificate")
        return f"{name} with its key in {database.relative_to(self._desktop.home)}, {files[0].name} is 0600"

    def profile_is_written(self):
        files = self._client.profiles()
        expect(len(files) == 1, f"one profile, not {files}")
        payload = plistlib.loads(files[0].read_bytes())["PayloadContent"][0]
        expect(payload["PayloadContent"] == self._company.certificate(), "the profile carries the bytes that the server issued")
        names = (payload["PayloadDisplayName"], payload["PayloadCertificateFileName"])
        expect(names == (self._company.USER,) * 2, f"the profile carries the user's name, not {names}")
        expect(files[0].stem == payload["PayloadIdentifier"], "the file is named by the payload's identifier")
        expect(mode_of(files[0]) == 0o600, f"the profile is 0600, not {mode_of(files[0]):o}")
        return f"{files[0].name} with {len(payload['PayloadContent'])} bytes of certificate and the name {self._company.USER}"

    def company_network_is_joined(self):
        asked = self._tools.calls(0)
        expect("networksetup -setairportnetwork en0 test_dot1x" in asked, f"the network was to be joined: {asked}")
        if not self._network:
            return f"asked for; not joined here: {what_is_missing()}"
        self._network.wait_until_joined()
        connection = self._network.connection()
        note = self._processes.start("joined", ["xmessage", "-geometry", "+40+700", f"NetworkManager: {connection}; traffic through the port"], self._desktop.env)
        wait_for("the note", lambda: any("xmessage" in window.title for window in self._desktop.windows()))
        self.photograph("joined")
        self._processes.end(note)
        return f"{connection}: traffic goes through the port that the company's authenticator opened"

    def session_is_kept(self):
        file = self._client.session_file()
        expect(file.exists(), f"the session file {file.name}")
        expect(mode_of(file) == 0o600, f"the session file is 0600, not {mode_of(file):o}")
        expect(self._company.user_name in texts_in(plistlib.loads(file.read_bytes())), "the session file holds the user")
        preferences = self._client.preferences()
        expect(preferences.get("HDCL_ISAUTOLOGIN") is True, f"automatic login is on: {preferences}")
        expect(preferences.get("puid"), f"the last user is kept: {preferences}")
        return f"{file.name} is 0600; preferences: puid {preferences['puid']}, HDCL_ISAUTOLOGIN on"

    def nothing_secret_leaks(self):
        profile = plistlib.loads(self._client.profiles()[0].read_bytes())["PayloadContent"][0]
        session = plistlib.loads(self._client.session_file().read_bytes())
        # A token is the only text of the session that is long and has no meaning.
        tokens = [text for text in texts_in(session) if len(text) >= 24 and "@" not in text and "/" not in text and " " not in text]
        expect(tokens, "the session has a token")
        secrets = {"password": self._company.PASSWORD[:-1], "certificate password": profile["Password"], "token": tokens[0]}
        log = self._client.log()
        expect("<redacted>" in log, "the log has lines whose secrets are covered")
        calls = self._tools.calls(0)
        tools = sorted({call.partition(" ")[0] for call in calls})
        expect({"security", "profiles"} <= set(tools), f"the tools that get the password were called, not {tools}")
        for what, secret in secrets.items():
            expect(secret not in log, f"the {what} stands in the client's log")
            expect(not [call for call in calls if secret in call], f"the {what} stood in an argument list")
        expect(not self._client.open_to_others(), f"files that others can read: {self._client.open_to_others()}")
        return f"password, certificate password and token in no log line and in no argument list of {', '.join(tools)}"

    def next_start_asks_nobody(self):
        code = self._client.quit()
        expect(code == 0, f"SIGTERM ends it with 0, not {code}")
        before = len(self._company.logins())
        self._client.start()
        main = self._client.wait_for_window(MAIN_SIZE)
        took = self._client.age()
        wait_for("the login window goes", lambda: len(self._client.windows()) == 1)
        wait_for("the user on the page", lambda: self._dark_pixels(main) > 50)
        stays("no login request", lambda: len(self._company.logins()) == before)
        self.photograph("signed-in-again")
        return f"main window after {took:.2f} s, no login request"

    def closing_puts_it_behind(self):
        self._processes.start("note", ["xmessage", "-geometry", "+300+300", "another window"], self._desktop.env)
        other = wait_for("another window", lambda: next((w for w in self._desktop.windows() if "xmessage" in w.title), None))
        main = self._client.wait_for_window(MAIN_SIZE)
        self._desktop.activate(main)
        self._desktop.close(main)
        wait_for("the main window below the other one", lambda: self._desktop.stacking() == [main.identifier, other.identifier])
        stays("the client runs on", self._client.is_running)
        expect(self._client.windows() == [main], f"the same window, not {self._client.windows()}")
        self.photograph("closed-is-behind")
        return "close button: still running, its window below the other"

    def second_start_raises_the_first(self):
        main = self._client.wait_for_window(MAIN_SIZE)
        second = self._client.start_another()
        wait_for("the second start ends", lambda: second.poll() is not None)
        expect(second.returncode == 0, f"the second start ends with 0, not {second.returncode}")
        wait_for("the first one's window on top", lambda: self._desktop.stacking()[-1] == main.identifier)
        expect(self._client.windows() == [main] and self._client.is_running(), "the first one is as it was")
        self.photograph("raised")
        return "a second start ends with 0 and raises the first"

    def leaves_by_keyboard(self):
        main = self._client.wait_for_window(MAIN_SIZE)
        self._desktop.activate(main)
        wait_for("the keyboard", lambda: self._desktop.active() == main.identifier)
        self._desktop.key("ctrl+q")
        wait_for("the client ends", lambda: not self._client.is_running())
        expect(self._client.process.returncode == 0, f"Ctrl+Q ends it with 0, not {self._client.process.returncode}")
        return "Ctrl+Q: exit code 0"


    def leaves_by_the_desktop_entry(self):
        alone = self._client.start_another("--quit")
        wait_for("a wish to nobody ends", lambda: alone.poll() is not None)
        expect(alone.returncode == 0 and not self._desktop.windows(alone.pid), f"without a window and with 0, not {alone.returncode}")
        self._client.start()
        self._client.wait_for_window(MAIN_SIZE)
        other = self._client.start_another("--quit")
        wait_for("both end", lambda: other.poll() is not None and not self._client.is_running())
        codes = (other.returncode, self._client.process.returncode)
        expect(codes == (0, 0), f"both end with 0, not {codes}")
        return "halvane --quit: both exit codes 0"


def main():
    options = options_of(__doc__)

    def play(processes, desktop, company, folder):
        network = None if what_is_missing() else CompanyNetwork(processes, company, folder)
        if network:
            network.start(desktop.env)
            desktop.use_system_bus(network.bus)
        client = Client(processes, desktop, company, options.build)
        tools = ToolRoot(folder, client.tools)
        resources = Path(folder, "resources")
        company.fill_template(options.build / "share/halvane/brelton.mobileconfig", resources)
        client.environment |= {"HALVANE_TOOL_ROOT": str(tools.path), "HALVANE_RESOURCES": str(resources)}
        notifications = Notifications(processes, desktop)
        notifications.start()
        journey = Journey(processes, desktop, company, client, tools, network, notifications, options)
        return take(journey.steps(), journey.photograph)

    return perform(options, LONGEST, play)


if __name__ == "__main__":
    sys.exit(main())
