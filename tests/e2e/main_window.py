"""The main window as a person finds their way in it: by place and colour."""
from client import MAIN_SIZE
from processes import wait_for

PANEL_SIZE = (400, 300)
SETTINGS_SIZE = (300, 400)
ALERT_SIZE = (330, 160)


class MainWindow:
    HEAD = (100, 46)
    ENTRIES = {"安全": (100, 110), "设备": (100, 158), "网络": (100, 206), "服务": (100, 254), "功能": (100, 302)}
    TOOLS = {"清理垃圾": (342, 212), "远程协助": (574, 212), "软件管理": (806, 212)}
    BACK = (265, 44)
    INTRO_SCAN = (574, 501)
    SCAN = (828, 132)
    UPDATE, ABOUT, SETTINGS = (120, 212), (120, 252), (120, 292)
    CODE_FIELD, REQUEST_CODE, UNINSTALL = (440, 309), (600, 309), (612, 401)
    INK, SOFT, OK, ERR = (0xB8, 0x43, 0x08), (0xFF, 0xF1, 0xE6), (0x1B, 0x7F, 0x4D), (0xC9, 0x28, 0x1E)
    RING = (0xDC, 0x5A, 0x0C)

    def __init__(self, desktop, client):
        self._desktop = desktop
        self._client = client
        self.window = client.wait_for_window(MAIN_SIZE)

    def click(self, place):
        self._desktop.click(self.window, *place)

    def look(self):
        return self._desktop.look(self.window)

    def _count(self, left, top, width, height, colour):
        scale = self._desktop.scale
        return self.look().count(left * scale, top * scale, width * scale, height * scale, lambda *seen: seen == colour)

    def select(self, entry):
        """Clicks an entry of the menu and waits until it is the selected one."""
        self.click(self.ENTRIES[entry])
        _, y = self.ENTRIES[entry]
        wait_for(f"{entry} selected", lambda: self._count(16, y - 20, 30, 40, self.SOFT) > 100)

    def selected(self):
        return [entry for entry, (_, y) in self.ENTRIES.items() if self._count(16, y - 20, 30, 40, self.SOFT) > 100]

    def open_tool(self, title):
        self.select("功能")
        self.click(self.TOOLS[title])

    def open_menu(self):
        self.click(self.HEAD)

    def choose(self, row):
        self.open_menu()
        wait_for("the pop-over", lambda: self._count(24, 186, 240, 120, (0xFF, 0xFF, 0xFF)) > 5000)
        self._desktop.press(self.window, *row)

    def tip_colour(self):
        """Of the uninstall reminder: "good", "bad" or nothing."""
        if self._count(338, 334, 300, 30, self.OK) > 10:
            return "good"
        return "bad" if self._count(338, 334, 300, 30, self.ERR) > 10 else ""

    def cpu_line(self):
        """How much of the chart's red there is where the line runs."""
        scale = self._desktop.scale
        return self.look().count(280 * scale, 480 * scale, 620 * scale, 110 * scale, lambda r, g, b: r > 180 and g < 120 and b < 120)

    def cpu_line_picture(self):
        picture, scale = self.look(), self._desktop.scale
        return [picture.at(x * scale, y * scale) for y in range(482, 584) for x in range(288, 896)]

    def ring_of_the_disk(self):
        return self._count(327, 243, 154, 154, self.RING)

    def broom(self):
        """The pixels of the animation's middle lines."""
        picture, scale = self.look(), self._desktop.scale
        return [picture.at(x * scale, y * scale) for x in range(240, 336, 2) for y in range(100, 170, 4)]

    def shows_reminder(self):
        """The scrim darkens the menu's ground."""
        return max(self.look().at(4 * self._desktop.scale, 400 * self._desktop.scale)) < 200
