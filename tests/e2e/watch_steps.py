"""The part of the journey about this computer: its page, and what happens when it is marked as locked or lost."""
from client import LOGIN_SIZE, LoginWindow
from main_window import MainWindow
from processes import expect, stays, wait_for

STATUS = "/api/client/user/equipment_status"
POLL = 30.0
LATE = 3.0  # the server, the tools, and a look twenty times a second
LOCKED, LOST = "这台电脑已被锁定", "这台电脑已被标记为丢失"


class WatchSteps:
    def __init__(self, desktop, company, client, tools, network, notifications, photograph):
        self._desktop = desktop
        self._company = company
        self._client = client
        self._tools = tools
        self._network = network  # absent where there can be none
        self._notifications = notifications
        self._photograph = photograph

    def page(self):
        return [self.page_of_the_computer]

    def steps(self):
        return [self.lock_takes_the_certificate, self.loss_signs_out, self.next_sign_in_brings_the_certificate_back]

    def page_of_the_computer(self):
        main = MainWindow(self._desktop, self._client)
        main.select("设备")
        wait_for("the first figures", lambda: main.cpu_line() > 20)
        seen = main.cpu_line_picture()
        wait_for("the line moves on", lambda: main.cpu_line_picture() != seen)
        expect(main.ring_of_the_disk() > 20, "the disk's ring shows a part")
        self._photograph("device", main.window)
        main.select("安全")
        return "the line moves on every second, the disk's ring is filled in part"

    def _installed(self):
        return self._company.USER in self._client.security("find-identity")

    def lock_takes_the_certificate(self):
        main = MainWindow(self._desktop, self._client)
        expect(self._installed(), "the certificate is there")
        marked = self._tools.now()
        self._company.mark("lock")
        expected = [f"security delete-certificate -c {self._company.USER}", "networksetup -setnetworkserviceenabled Wi-Fi off",
                    "networksetup -setnetworkserviceenabled Wi-Fi on"]
        wait_for("the certificate deleted, Wi-Fi off, Wi-Fi on", lambda: self._tools.calls(marked) == expected, POLL + LATE)
        took = self._tools.now() - marked
        locked_out = ""
        if self._network:
            self._network.expect_locked_out()
            locked_out = "; nothing goes through the port any more"
        self._company.mark("unlock")
        wait_for("the certificate is gone", lambda: not self._installed())
        expect(not self._client.identity_files(), "its file is gone too")
        expect(self._client.session_file().exists() and self._client.windows() == [main.window], "the person stays signed in")
        wait_for("the desktop tells of the lock", lambda: self._notifications.shown() == [LOCKED])
        return f"{took:.1f} s after the mark: certificate gone, then Wi-Fi off and on{locked_out}; notification “{LOCKED}”"

    def loss_signs_out(self):
        main = MainWindow(self._desktop, self._client)
        marked = self._tools.now()
        self._company.mark("lost")
        login = self._client.wait_for_window(LOGIN_SIZE, POLL + LATE)
        took = self._tools.now() - marked
        wait_for("the main window goes", lambda: self._client.windows() == [login])
        wait_for("the session's file goes", lambda: not self._client.session_file().exists())
        expect(self._tools.calls(marked) == [], f"nothing else is touched, not {self._tools.calls(marked)}")
        expect(main.window not in self._client.windows(), "the main window is hidden")
        self._photograph("lost")
        wait_for("the desktop tells of the loss", lambda: self._notifications.shown() == [LOCKED, LOST])
        stays("one notification for each", lambda: self._notifications.shown() == [LOCKED, LOST])
        self._company.mark("found")
        return f"{took:.1f} s after the mark: login window shown, session file gone; notification “{LOST}”"

    def next_sign_in_brings_the_certificate_back(self):
        login = LoginWindow(self._desktop, self._client.wait_for_window(LOGIN_SIZE))
        login.replace_password(self._company.PASSWORD)
        self._desktop.key("Return")
        MainWindow(self._desktop, self._client)
        wait_for("the certificate", self._installed, 20.0)
        joined = ""
        if self._network:
            self._network.wait_until_joined()
            joined = ", joined again"
        asked = [status for *_, status in self._company.requests(STATUS)]
        expect(asked and set(asked) == {200}, f"every question was answered: {asked}")
        return f"signed in again in the same client{joined}; {len(asked)} questions to the server in all"
