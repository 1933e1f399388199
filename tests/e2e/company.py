"""The company's side of the journey: its server, the server's access log and its database."""
import re
import sqlite3
from pathlib import Path

from processes import expect, output_of, wait_for

LOGIN = "/api/client/login"
RADIUS = "radius.example.com"


class Company:
    USER = "chen.xiao"
    PASSWORD = "orchard-7-lantern"

    def __init__(self, processes, program, folder, env, name="server", port=0, **options):
        """`name` is that of the server's logs, port 0 any free one, `options` are for its process."""
        self._processes = processes
        self._name = name
        self._port = port
        self._options = options
        self._program = program
        self._data = Path(folder, "company")
        self._access_log = processes.logs / f"{name}-access.log"
        self._env = env
        self.url = ""
        self.user_name = ""

    def start(self):
        seeded = output_of(self._program, "seed", "--data", self._data, "--password", self.PASSWORD, env=self._env).decode()
        addresses = re.findall(rf"(?m)^({re.escape(self.USER)}@\S+)", seeded)
        expect(addresses, f"the small company has no {self.USER}: {seeded}")
        self.user_name = addresses[0]
        server = self._processes.start(
            self._name, [self._program, "serve", "--port", self._port, "--data", self._data, "--access-log", self._access_log], self._env,
            **self._options)

        def address():
            expect(server.poll() is None, "the server ended")
            return re.search(r"(?m)^halvane-server: (http\S+)$", self._processes.log_text(self._name))

        self.url = wait_for("the server's address", address)[1]

    def fill_template(self, template, directory):
        """Resources of a client that knows this company's authority."""
        Path(directory).mkdir()
        output_of(self._program, "profile", template, "--out", Path(directory, template.name), "--data", self._data, env=self._env)

    def equip_authenticator(self, certificate, authority, host=RADIUS):
        output_of(self._program, "radius-cert", host, "--out", certificate, "--data", self._data, env=self._env)
        authority.write_bytes(output_of(self._program, "ca", "show", "--data", self._data, env=self._env))

    @property
    def domain(self):
        return self.user_name.partition("@")[2]

    def requests(self, path=""):
        """Lines of the access log: (method, path, status)."""
        if not self._access_log.exists():
            return []
        lines = (line.split() for line in self._access_log.read_text(encoding="utf-8").splitlines())
        return [(fields[1], fields[2], int(fields[3])) for fields in lines if len(fields) > 3 and fields[2].startswith(path)]

    def logins(self):
        return self.requests(LOGIN)

    def ask(self, query, *values):
        with sqlite3.connect(f"file:{self._data}/company.sqlite?mode=ro", uri=True, timeout=5) as database:
            return database.execute(query, values).fetchall()

    def job_number(self):
        return self.ask("SELECT job_number FROM users WHERE short_name = ?", self.USER)[0][0]

    def user_id(self):
        return str(self.ask("SELECT id FROM users WHERE short_name = ?", self.USER)[0][0])

    def certificate(self):
        """The PKCS#12 file as the server issued it; None when it has issued none."""
        rows = self.ask("SELECT pkcs12 FROM certificates WHERE user_id = ?", self.user_id())
        return rows[0][0] if rows else None

    def workplace(self):
        return self.ask("SELECT work_address FROM users WHERE short_name = ?", self.USER)[0][0]

    def mailed_code(self):
        """The security code of the newest mail."""
        mail = output_of(self._program, "mail", "show", "--data", self._data, env=self._env).decode()
        code = re.search(r"安全码：(\S+)", mail)
        expect(code, f"the mail has a code: {mail}")
        return code[1]

    def mark(self, verb):
        """lock, unlock, lost or found: the computer that signed in."""
        (serial,), = self.ask("SELECT sn FROM computers")
        output_of(self._program, "computer", verb, serial, "--data", self._data, env=self._env)

    def sessions(self):
        return self.ask("SELECT count(*) FROM sessions WHERE user_id = ?", self.user_id())[0][0]
