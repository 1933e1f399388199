"""One person's use of the computer: the tools as the client starts them, and what they leave behind."""
import plistlib
import time
from pathlib import Path

from processes import expect

NETWORK = "test_dot1x"
PROFILE = "com.example.halvane.network"
REFUSED = 76


class Computer:
    def __init__(self, lab, user, tools):
        self._lab = lab
        self.user = user
        self.tools = Path(tools)

    def run(self, tool, *arguments, environment=None):
        return self.user.run(self.tools / tool, *arguments, environment={**self._lab.environment, **(environment or {})})

    def keep(self, name, content):
        """A file of the person's own."""
        path = self.user.home / name
        path.write_bytes(content)
        path.chmod(0o600)
        self.user.own(path)
        return path

    def import_certificate(self, certificate, password):
        file = self.keep("download.p12", certificate)
        done = self.run("usr/bin/security", "import", file, "-k", "login.keychain", "-P", "env:HALVANE_CERT_PASSWORD",
                        environment={"HALVANE_CERT_PASSWORD": password})
        expect(done.returncode == 0, f"the certificate is imported: {done.stderr}")

    def install(self, profile):
        return self.run("usr/bin/profiles", "install", "-path", self.keep("profile.mobileconfig", plistlib.dumps(profile)))

    def provision(self, company, employee, certificate=None):
        """All that a sign-in does."""
        certificate, password = certificate or company.certificate(employee)
        self.import_certificate(certificate, password)
        done = self.install(company.profile(certificate, password, employee))
        expect(done.returncode == 0, f"the profile is installed: {done.stderr}")
        return password

    def join(self):
        """(exit code, what it said, seconds)."""
        began = time.monotonic()
        done = self.run("usr/sbin/networksetup", "-setairportnetwork", "en0", NETWORK)
        return done.returncode, done.stderr.strip(), time.monotonic() - began

    def delete_certificate(self, name):
        expect(self.run("usr/bin/security", "delete-certificate", "-c", name).returncode == 0, "the certificate is deleted")

    def switch(self, state):
        return self.run("usr/sbin/networksetup", "-setnetworkserviceenabled", "Wi-Fi", state)

    def remove(self):
        done = self.run("usr/bin/profiles", "remove", "-identifier", PROFILE)
        expect(done.returncode == 0, f"the profile is removed: {done.stderr}")
