"""What the desktop was given to show: a notification service on the journey's session bus."""
import re

from processes import output_of, wait_for

NAME = "org.freedesktop.Notifications"


class Notifications:
    def __init__(self, processes, desktop):
        self._processes = processes
        self._desktop = desktop

    def start(self):
        self._processes.start("notifications", ["/usr/bin/python3", "-B", "-m", "dbusmock", "--template", "notification_daemon"], self._desktop.env)
        question = ("dbus-send", "--session", "--print-reply", "--dest=org.freedesktop.DBus", "/", "org.freedesktop.DBus.NameHasOwner", f"string:{NAME}")
        wait_for("a notification service", lambda: b"true" in output_of(*question, env=self._desktop.env))

    def shown(self):
        """The summaries, in their order."""
        # The service's line for a call: time, method, arguments; text in quotation marks.
        line = re.compile(r'^[\d.]+ Notify "Halvane" \d+ "com\.halvane\.Halvane" "([^"]+)" "[^"]+" ', re.M)
        return line.findall(self._processes.log_text("notifications"))
