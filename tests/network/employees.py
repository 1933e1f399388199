"""What the company gives an employee: a certificate from its server, and the profile that goes with it."""
import json
import plistlib
import re
import subprocess
import urllib.request
from pathlib import Path

from inside import end_with_parent
from processes import expect, output_of, wait_for

PASSWORD = "orchard-7-lantern"
RADIUS = "radius.example.com"


class NetworkCompany:
    """A company's server and authority. Several may stand side by side; each has an authority of its own."""

    def __init__(self, processes, build, folder):
        self._processes = processes
        self._program = build / "bin/halvane-server"
        self._folder = Path(folder)
        self._folder.mkdir()
        self._data = self._folder / "data"
        self._url = ""
        output_of(self._program, "seed", "--data", self._data, "--password", PASSWORD)
        self.authority = self._folder / "authority.pem"
        self.authority.write_bytes(output_of(self._program, "ca", "show", "--data", self._data))
        self.key = self._data / "authority.pem"
        self.authenticator = self.authenticator_of(RADIUS)
        template = self._folder / "brelton.mobileconfig"
        output_of(self._program, "profile", build / "share/halvane/brelton.mobileconfig", "--out", template, "--data", self._data)
        self.template = plistlib.loads(template.read_bytes())

    def authenticator_of(self, host):
        file = self._folder / f"{host}.pem"
        output_of(self._program, "radius-cert", host, "--out", file, "--data", self._data)
        return file

    def start(self):
        name = f"server-{self._folder.name}"
        server = self._processes.start(name, [self._program, "serve", "--data", self._data], None, preexec_fn=end_with_parent)

        def address():
            expect(server.poll() is None, "the server ended")
            return re.search(r"(?m)^halvane-server: (http\S+)$", self._processes.log_text(name))

        self._url = wait_for("the server's address", address)[1]

    def certificate(self, employee):
        """(PKCS#12 bytes, their password), newly issued."""
        body = json.dumps({"username": employee, "password": PASSWORD}).encode()
        request = urllib.request.Request(f"{self._url}/papi/admin/create_ad_cert", body, {"Content-Type": "application/json"})
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
        profile = plistlib.loads(plistlib.dumps(self.template))
        profile["PayloadContent"][0] |= {"Password": password, "PayloadContent": certificate, "PayloadDisplayName": employee,
                                         "PayloadCertificateFileName": employee}
        return profile
