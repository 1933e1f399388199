"""The administrator's rights, asked for and refused: polkit, pkexec and an agent that dismisses."""
import shutil
import subprocess
from pathlib import Path

from computer import PROFILE
from inside import end_with_parent
from join_steps import EMPLOYEE
from processes import expect, wait_for

FORBIDDEN = 77
RULE = """polkit.addRule(function(action, subject) {{
    if (action.id == "com.halvane.profiles" || action.id == "org.freedesktop.policykit.exec") return polkit.Result.{};
}});
"""


class AdministratorSteps:
    def __init__(self, lab, joins, build, installed, folder):
        self._lab = lab
        self._joins = joins
        self._chen = joins.chen
        self._installed = installed
        # The place where this was checked out may be closed to employees.
        self._probe, self._agent = (shutil.copy(program, folder) for program in (
            build / "bin/halvane_privileged_probe", Path(__file__).with_name("polkit_agent.py")))

    def steps(self):
        return [self.granted, self.removal_by_the_administrator, self.forbidden_by_the_policy, self.dismissed, self.refused_by_the_policy, self.nobody_to_ask,
                self.cannot_be_executed, self.script, self.without_polkit]

    def _policy(self, answer):
        self._lab.set_rules(RULE.format(answer))

    def _ask(self, *words, agent=False):
        """What the probe printed, in lines, and what the agent did."""
        probe = self._chen.user.start(self._probe, self._installed, *words, environment=self._lab.environment, stdin_pipe=True,
                                      stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True, preexec_fn=end_with_parent)
        asked = ""
        helper = None
        if agent:
            helper = self._chen.user.start("/usr/bin/python3", "-B", self._agent, str(probe.pid),
                                           environment=self._lab.environment, stdout=subprocess.PIPE, text=True, preexec_fn=end_with_parent)
            expect(helper.stdout.readline().strip() == "ready", "the agent is there")
        out, err = probe.communicate("go\n", timeout=30)
        if helper:
            helper.terminate()
            asked = helper.communicate(timeout=10)[0]
        return out.splitlines(), err.strip(), asked.strip()

    def _until(self, what, holds, *words, agent=False):
        """polkit takes a moment to read new rules."""
        return wait_for(what, lambda: (lambda seen: seen if holds(seen) else None)(self._ask(*words, agent=agent)), 10.0)

    def granted(self):
        self._policy("YES")
        out, _, _ = self._until("a granted run", lambda seen: "status 0" in seen[0], "task", "/usr/bin/id", "-u")
        expect("exit 0" in out and "output 0" in out, f"it ran as the administrator: {out}")
        out, _, _ = self._ask("task", "/bin/sh", "-c", "pwd; exit 126")
        expect("status 0" in out and "exit 126" in out and f"output {self._chen.user.home}" in out, f"its own exit code and directory: {out}")
        return "status 0; the program's own exit code, output and directory"

    def removal_by_the_administrator(self):
        self._lab.set_rules(self._lab.RULES)
        wait_for("what people may do", lambda: self._chen.switch("on").returncode == 0)
        self._chen.provision(self._joins.company, EMPLOYEE)
        self._joins.li.provision(self._joins.company, "li.wen")
        self._policy("YES")
        path = self._chen.user.home / "profile.mobileconfig"
        out, err, _ = self._until("the removal", lambda seen: "exit 0" in seen[0], "task", "/usr/bin/profiles", "remove", "-path", str(path))
        expect(f"output removed {PROFILE}" in out, f"it is removed: {out} {err}")
        expect(not (self._chen.user.data / "halvane/profiles" / PROFILE).exists(), "with the person's files")
        expect(len(self._lab.connections()) == 2, f"and nobody else's: {self._lab.connections()}")
        expect((self._joins.li.user.data / "halvane/profiles" / PROFILE).exists(), "nor their files")
        self._lab.set_rules(self._lab.RULES)
        wait_for("what people may do", lambda: self._joins.li.switch("on").returncode == 0)
        self._joins.li.remove()
        return "the calling person's profile and files, nobody else's"

    def forbidden_by_the_policy(self):
        """A person who may not change the network, such as one who works from afar."""
        self._lab.set_rules("")
        path = self._chen.user.home / "profile.mobileconfig"
        done = wait_for("a refusal", lambda: (lambda seen: seen if seen.returncode else None)(self._chen.run("usr/bin/profiles", "install", "-path", path)))
        expect(done.returncode == FORBIDDEN, f"forbidden, not {done.returncode}: {done.stderr}")
        switched = self._chen.switch("off")
        expect(switched.returncode == FORBIDDEN, f"forbidden, not {switched.returncode}: {switched.stderr}")
        expect(not self._lab.kept_files(), f"nothing is half made: {self._lab.kept_files()}")
        expect(not (self._chen.user.data / "halvane/profiles" / PROFILE).exists(), "nor are the person's files")
        return f"{done.stderr.strip().rpartition(': ')[2]} ({done.returncode})"

    def dismissed(self):
        self._policy("AUTH_ADMIN")
        out, err, asked = self._until("a question", lambda seen: seen[2], "task", "/usr/bin/profiles", "remove", "-path", "/x", agent=True)
        expect(out == ["status -60006"], f"dismissed: {out}")
        expect("com.halvane.profiles" in asked and "network profile" in asked, f"the question is ours: {asked}")
        return f"{out[0]}; asked: {asked.removeprefix('asked ')}; on standard error: {err}"

    def refused_by_the_policy(self):
        self._policy("NO")
        out, err, asked = self._until("a refusal", lambda seen: "status -60005" in seen[0] and not seen[2], "task", "/usr/bin/profiles", "remove", agent=True)
        expect(not asked, "nobody was asked")
        return f"{out[-1]}; {out[0]} {err}"

    def nobody_to_ask(self):
        self._policy("AUTH_ADMIN")
        out, err, _ = self._until("nobody to ask", lambda seen: "log: polkit" not in seen[0][0], "task", "/bin/true")
        expect(out == ["status -60005"], f"refused: {out}")
        return f"{out[0]}; on standard error: {err.splitlines()[-1] if err else ''}"

    def cannot_be_executed(self):
        out, _, asked = self._ask("task", "/usr/sbin/networksetup-not-there", agent=True)
        expect(out == ["status -60031"] and not asked, f"nothing to execute, nobody asked: {out} {asked}")
        return out[0]

    def script(self):
        out, _, _ = self._until("a question", lambda seen: seen[2], "script", "id -u", agent=True)
        expect("error The administrator password is required to do this." in out, f"cancelled: {out}")
        self._policy("YES")
        granted, _, _ = self._until("a granted script", lambda seen: "success 1" in seen[0], "script", "id -u")
        expect("output 0" in granted, f"it ran as the administrator: {granted}")
        return "cancelled: The administrator password is required to do this.; granted: ran as the administrator"

    def without_polkit(self):
        self._lab.end_polkit()
        out, _, _ = self._ask("task", "/bin/true")
        expect("status -70001" in out, f"no polkit: {out}")
        return f"{out[-1]}; {out[0]}"
