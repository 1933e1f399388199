"""The update window as a person finds their way in it: by size, place and colour."""
import time

from processes import wait_for

SIZE = (440, 340)


class UpdateWindow:
    ORANGE, HOVERED, OK, ERR = (0xC8, 0x4B, 0x0A), (0xB5, 0x43, 0x0A), (0x1B, 0x7F, 0x4D), (0xC9, 0x28, 0x1E)

    def __init__(self, desktop, client):
        self._desktop = desktop
        self._client = client

    @property
    def window(self):
        return next((each for each in self._client.windows() if each.size == SIZE), None)

    def state(self):
        """"offer", "good", "bad", "busy", or nothing while there is no window."""
        window = self.window
        if not window:
            return ""
        picture = self._desktop.look(window)
        colours = [self._count(picture, (112, 28, 300, 32), colour) for colour in (self.OK, self.ERR)]
        if colours[0] > 20:
            return "good"
        if colours[1] > 20:
            return "bad"
        return "offer" if sum(self._count(picture, (300, 276, 112, 40), colour) for colour in (self.ORANGE, self.HOVERED)) > 500 else "busy"

    @staticmethod
    def _count(picture, area, wanted):
        return picture.count(*area, lambda *seen: seen == wanted)

    def wait_for(self, state, seconds=20.0):
        return wait_for(f"the update window says {state or 'no more'}", lambda: self.state() == state, seconds)

    def primary(self):
        self._press(356)

    def secondary(self):
        self._press(232)

    def _press(self, x):
        time.sleep(0.6)  # longer than a double click: what comes sooner is taken for a press that was meant for the scene before
        self._desktop.press(self.window, x, 296)
