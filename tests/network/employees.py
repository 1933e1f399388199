"""What the company gives an employee: a certificate from its server, and the profile that goes with it."""
import json
import plistlib
import subprocess
import urllib.request
from pathlib import Path

from company import RADIUS, Company
from inside import end_with_parent
from processes import expect


class NetworkCompany(Company):
    """A company with a network. Several may stand side by side; each has an authority of its own."""

    def __init__(self, processes, build, folder):
        super().__init__(processes, build / "bin/halvane-server", folder, None, f"server-{folder.name}", preexec_fn=end_with_parent)
        self._folder = folder
        self._folder.mkdir()
        self._shipped = build / "share/halvane/brelton.mobileconfig"
        self.authority = self._folder / "authority.pem"
        self.key = self._data / "authority.pem"
        self.authenticator = None
        self._template = {}

    def start(self):
        super().start()
        self.authenticator = self.authenticator_of(RADIUS)
        self.fill_template(self._shipped, self._folder / "resources")
        self._template = plistlib.loads((self._folder / "resources" / self._shipped.name).read_bytes())

    def authenticator_of(self, host):
        file = self._folder / f"{host}.pem"
        self.equip_authenticator(file, self.authority, host)
        return file

    def certificate(self, employee):
        """(PKCS#12 bytes, their password), newly issued."""
        body = json.dumps({"username": employee, "password": self.PASSWORD}).encode()
        request = urllib.request.Request(f"{self.url}/papi/admin/create_ad_cert", body, {"Content-Type": "application/json"})
        with urllib.request.urlopen(request, timeout=10) as reply:
            answer = json.load(reply)
        expect(str(answer["code"]) == "200", f"the server issues a certificate: {answer['msg']}")
        with urllib.request.urlopen(answer["data"]["download_url"], timeout=10) as file:
            return file.read(), answer["data"]["ad_cert_password"]

    def expired_certificate(self, employee):
        """The same, but its time is over since yesterday."""
        password, base = "a-year-ago", self._folder / f"expired-{employee}"
        files = [f"{base}.{kind}" for kind in ("key", "csr", "crt", "p12")]
        openssl = lambda *words: subprocess.run(["openssl", *map(str, words)], check=True, capture_output=True, timeout=20)
        openssl("req", "-new", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:P-256", "-nodes", "-keyout", files[0], "-out", files[1], "-subj", f"/CN={employee}")
        openssl("x509", "-req", "-in", files[1], "-CA", self.authority, "-CAkey", self.key, "-days", -1, "-out", files[2])
        openssl("pkcs12", "-export", "-in", files[2], "-inkey", files[0], "-name", employee, "-keypbe", "AES-256-CBC", "-certpbe", "AES-256-CBC",
                "-macalg", "sha256", "-passout", f"pass:{password}", "-out", files[3])
        return Path(files[3]).read_bytes(), password

    def profile(self, certificate, password, employee):
        """As the client fills it."""
        profile = plistlib.loads(plistlib.dumps(self._template))
        profile["PayloadContent"][0] |= {"Password": password, "PayloadContent": certificate, "PayloadDisplayName": employee,
                                         "PayloadCertificateFileName": employee}
        return profile
