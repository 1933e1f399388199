"""What goes wrong around a join: silence, no cable, a service that hangs or is killed in the middle."""
import os
import signal
import time

from computer import PROFILE, REFUSED
from join_steps import EMPLOYEE, WIRED
from processes import expect, wait_for
from switch import CABLE

NO_DEVICE, NO_SERVICE, TIMED_OUT = 45, 69, 75


class TroubleSteps:
    def __init__(self, lab, joins):
        self._lab = lab
        self._joins = joins
        self._chen = joins.chen

    def steps(self):
        return [self.silent_authenticator, self.cable_pulled_out, self.service_that_hangs, self.installation_that_is_killed]

    def silent_authenticator(self):
        self._chen.provision(self._joins.company, EMPLOYEE)
        self._joins.root.provision(self._joins.company, EMPLOYEE)
        self._lab.switch.silence()
        code, said, took = self._chen.join()
        expect(code == REFUSED and "nobody answered" in said, f"not let in, not {code}: {said}")
        code, said, heard = self._joins.root.join()
        expect(code == TIMED_OUT and "does not answer" in said, f"no answer in time, not {code}: {said}")
        expect(max(took, heard) < 20, f"both end within 20 s, not {took:.1f} and {heard:.1f}")
        self._joins.root.remove()
        self._joins.back_to_the_company()
        return f"given up after {took:.1f} s; the administrator is told that nobody answers; then {self._joins.joins(self._chen)}"

    def cable_pulled_out(self):
        # After a refusal NetworkManager waits for somebody's word; a new profile has no past.
        self._chen.provision(self._joins.company, EMPLOYEE)
        self._joins.joins(self._chen)
        self._lab.switch.unplug()
        code, said, took = self._chen.join()
        expect(code == NO_DEVICE and "cable" in said, f"no device, not {code}: {said}")
        self._lab.wait_for_cable("unavailable")
        self._lab.switch.forget_stations()
        expect(not self._joins.is_in(), "nothing goes through without a cable")
        self._lab.switch.plug_in()
        wait_for("NetworkManager joins by itself", self._joins.is_in, 15.0)
        return f"told in {took:.1f} s; plugged in again it is joined without anybody's word"

    def service_that_hangs(self):
        os.kill(self._lab.manager.pid, signal.SIGSTOP)
        try:
            began = time.monotonic()
            code, said, _ = self._chen.join()
            took = time.monotonic() - began
        finally:
            os.kill(self._lab.manager.pid, signal.SIGCONT)
        expect(code == NO_SERVICE and took < 20, f"it ends within 20 s with {NO_SERVICE}, not {code} after {took:.1f}: {said}")
        return f"{code} after {took:.1f} s"

    def installation_that_is_killed(self):
        """Whatever the moment, the next installation makes it whole and a removal takes all of it."""
        path = self._chen.user.home / "profile.mobileconfig"
        for delay in (0.02, 0.04, 0.06, 0.08, 0.1, 0.13, 0.16):
            process = self._chen.user.start(self._chen.tools / "usr/bin/profiles", "install", "-path", path, environment=self._lab.environment)
            time.sleep(delay)
            process.kill()
            process.wait()
        done = self._chen.run("usr/bin/profiles", "install", "-path", path)
        expect(done.returncode == 0, f"it is installed: {done.stderr}")
        expect(len(self._lab.connections()) == 2 and WIRED in self._lab.connections(), f"once: {self._lab.connections()}")
        joined = self._joins.joins(self._chen)
        self._chen.remove()
        expect(not self._lab.kept_files(), f"nothing is left of {PROFILE} on {CABLE}: {self._lab.kept_files()}")
        return f"killed at seven moments, then installed once and {joined}"
