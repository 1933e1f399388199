"""The part of the journey inside the main window: pages, tools, settings, and the way to a removal."""
from main_window import PANEL_SIZE, SETTINGS_SIZE, MainWindow
from processes import expect, stays, wait_for

WORKPLACE_ROW = (150, 117)  # in the settings window
AUTO_LOGIN = (258, 368)
APPLY, SURE = "/api/client/user/equipment/uninstall_apply", "/api/client/user/equipment/uninstall_sure"


class MainWindowSteps:
    def __init__(self, desktop, company, client, photograph):
        self._desktop = desktop
        self._company = company
        self._client = client
        self._photograph = photograph

    def steps(self):
        return [self.pages_by_pointer, self.menu_by_keyboard, self.cleaner_scans_for_show, self.workplace_is_sent_at_once,
                self.automatic_login_waits_for_the_end, self.about_and_updates, self.uninstall_reminder_from_outside,
                self.codes_are_the_servers_to_judge]

    def _main(self):
        return MainWindow(self._desktop, self._client)

    def pages_by_pointer(self):
        main = self._main()
        expect(main.selected() == ["安全"], f"the first page is selected, not {main.selected()}")
        for entry in ("设备", "网络", "服务", "功能", "安全"):
            main.select(entry)
            expect(main.selected() == [entry], f"{entry} alone is selected, not {main.selected()}")
        pictures = self._company.requests("/static/avatar/")
        expect([status for *_, status in pictures] == [200], f"the person's picture was fetched once: {pictures}")
        workplaces = self._company.requests("/api/client/chat/contact_list")
        expect(len(workplaces) == 1, f"the workplaces were asked once: {workplaces}")
        return "five entries, each selected alone; one request for the workplaces, one for the picture"

    def menu_by_keyboard(self):
        main = self._main()
        main.click(MainWindow.ENTRIES["安全"])
        self._desktop.key("Down", "Down")
        wait_for("网络 by the arrow keys", lambda: main.selected() == ["网络"])
        self._desktop.key("Home")
        wait_for("安全 by Home", lambda: main.selected() == ["安全"])
        return "arrow keys and Home walk through the menu"

    def cleaner_scans_for_show(self):
        main = self._main()
        main.open_tool("清理垃圾")
        main.click(MainWindow.INTRO_SCAN)
        before = main.broom()
        stays("the broom rests", lambda: main.broom() == before, seconds=0.4)
        main.click(MainWindow.SCAN)
        wait_for("the broom swings", lambda: main.broom() != before)
        self._photograph("scanning", main.window)
        main.click(MainWindow.BACK)
        main.select("安全")
        return "the broom rests, then swings"

    def workplace_is_sent_at_once(self):
        before = self._company.workplace()
        main = self._main()
        main.choose(MainWindow.SETTINGS)
        settings = self._client.wait_for_window(SETTINGS_SIZE)
        expect(settings.title == "设置", f'titled "设置", not "{settings.title}"')
        self._desktop.click(settings, *WORKPLACE_ROW)
        wait_for("another workplace on the server", lambda: self._company.workplace() != before)
        sent = self._company.requests("/api/client/user/work_address/")
        expect([status for *_, status in sent] == [200], f"one request: {sent}")
        self._photograph("settings", settings)
        return f"{before} became {self._company.workplace()} with one request"

    def automatic_login_waits_for_the_end(self):
        settings = self._client.wait_for_window(SETTINGS_SIZE)
        for _ in range(2):
            self._desktop.click(settings, *AUTO_LOGIN)
        wait_for("off and on in the log", lambda: self._client.log().splitlines()[-2:] == ["halvane: off", "halvane: on"])
        expect(self._client.preferences().get("HDCL_ISAUTOLOGIN") is True, "the preference on disk is as it was")
        self._desktop.key("Escape")
        wait_for("the settings close", lambda: len(self._client.windows()) == 1)
        return "switched off and on; Escape closes the window"

    def about_and_updates(self):
        main = self._main()
        main.choose(MainWindow.ABOUT)
        panel = self._client.wait_for_window(PANEL_SIZE)
        expect(panel.title == "关于我们", f'titled "关于我们", not "{panel.title}"')
        self._photograph("about", panel)
        self._desktop.key("Escape")
        wait_for("the panel closes", lambda: len(self._client.windows()) == 1)
        main.choose(MainWindow.UPDATE)
        wait_for("a word about updates", lambda: len(self._client.windows()) == 2)
        self._desktop.key("Return")
        wait_for("its end", lambda: len(self._client.windows()) == 1)
        return 'the panel "关于我们"; a check for updates says that there is no service'

    def uninstall_reminder_from_outside(self):
        main = self._main()
        other = self._client.start_another("--uninstall")
        wait_for("the reminder", main.shows_reminder)
        wait_for("the other start ends", lambda: other.poll() is not None)
        expect(other.returncode == 0, f"it ends with 0, not {other.returncode}")
        self._desktop.key("Return")
        wait_for("a tip for the empty code", lambda: main.tip_colour() == "bad")
        expect(not self._company.requests(SURE), "an empty code is not sent")
        main.click(MainWindow.REQUEST_CODE)
        wait_for("the tip that a code was sent", lambda: main.tip_colour() == "good")
        self._desktop.key("Escape")
        wait_for("Escape closes it", lambda: not main.shows_reminder())
        return "halvane --uninstall brings it up in the running client; a code was asked for"

    def codes_are_the_servers_to_judge(self):
        main = self._main()
        code = self._company.mailed_code()
        self._client.start_another("--uninstall")
        wait_for("the reminder", main.shows_reminder)
        wait_for("the tip of before", lambda: main.tip_colour() == "good")
        main.click(MainWindow.CODE_FIELD)
        wrong = "000000" if code != "000000" else "111111"
        self._desktop.type(wrong + "9")  # the seventh is cut
        main.click(MainWindow.UNINSTALL)
        wait_for("the server's refusal", lambda: main.tip_colour() == "bad")
        self._photograph("wrong-code", main.window)
        main.click(MainWindow.CODE_FIELD)
        self._desktop.key("ctrl+a")
        self._desktop.type(code)
        self._desktop.key("Return")
        wait_for("the reminder closes", lambda: not main.shows_reminder())
        expect(len(self._company.requests(SURE)) == 2, f"two codes were sent: {self._company.requests(SURE)}")
        expect(len(self._company.requests(APPLY)) == 1, "one code was asked for")
        stays("the client runs on", self._client.is_running)
        return "a wrong code is refused, the mailed one closes the reminder"
