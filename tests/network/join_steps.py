"""Who is let in and who is not."""
from pathlib import Path

from computer import NETWORK, REFUSED, Computer
from inside import program
from processes import ChildWatch, expect
from switch import CABLE, reachable, reachable_by_cheating
from users import User

WIRED = f"{NETWORK} (wired)"
EMPLOYEE = "chen.xiao"


class JoinSteps:
    def __init__(self, lab, company, rogue, tools, folder):
        self.lab = lab
        self.company = company
        self.rogue = rogue
        self._password = ""
        self.root, self.chen, self.li = (Computer(lab, User(name, folder), tools) for name in ("root", "chen", "li"))

    def steps(self):
        return [self.the_port_is_closed_to_everybody, self.the_administrator_joins, self.the_connection_is_as_it_should_be,
                self.an_employee_joins, self.secrets_stay_secret, self.lock_takes_the_network_away, self.next_sign_in_brings_it_back,
                self.certificate_of_another_company_is_refused, self.expired_certificate_is_refused, self.rogue_network_gets_nothing,
                self.authenticator_of_another_name_gets_nothing, self.two_people_have_a_network_each, self.removal_leaves_nothing]

    def is_in(self):
        return reachable()

    def expect_out(self, why):
        expect(not reachable() and not reachable_by_cheating(), f"nothing goes through the port {why}")

    def back_to_the_company(self):
        self.lab.switch.authenticate_with(self.company.authenticator, self.company.authority)

    def joins(self, computer):
        code, said, took = computer.join()
        expect(code == 0, f"{computer.user.name} joins: {code}, {said}")
        expect(self.is_in() and self.lab.switch.knows_station(), "traffic goes through the port")
        return f"joined in {took:.1f} s"

    def is_refused(self, computer, *words):
        self.lab.switch.forget_stations()
        code, said, took = computer.join()
        expect(code == REFUSED, f"it is refused, not {code}: {said}")
        expect(not words or any(word in said for word in words), f"it says why: {said}")
        self.expect_out("after a refusal")
        return f"refused in {took:.1f} s ({said.splitlines()[-1].partition(': ')[2]})"

    def network_manager_is_refused(self):
        """NetworkManager itself, not only our program."""
        self.lab.switch.forget_stations()
        done = self.root.user.run(program("nmcli"), "connection", "up", WIRED, environment=self.lab.environment)
        expect(done.returncode != 0, "NetworkManager cannot join either")
        self.expect_out("for NetworkManager")

    def the_port_is_closed_to_everybody(self):
        self.back_to_the_company()
        self.expect_out("before anybody has joined")
        return "no traffic, not even with an address of one's own"

    def the_administrator_joins(self):
        self.root.provision(self.company, EMPLOYEE)
        return self.joins(self.root)

    def the_connection_is_as_it_should_be(self):
        kept = dict(line.split(":", 1) for line in self.lab.nmcli("-t", "connection", "show", WIRED).splitlines() if ":" in line)
        data = self.root.user.data / "halvane"
        expected = {
            "connection.permissions": "user:root", "connection.auth-retries": "1", "802-1x.eap": "tls", "802-1x.identity": EMPLOYEE,
            "802-1x.ca-cert": f"{data}/profiles/com.example.halvane.network/authorities.pem", "802-1x.ca-path": "",
            "802-1x.system-ca-certs": "no", "802-1x.domain-suffix-match": "radius.example.com",
            "802-1x.private-key": f"{data}/identities/{EMPLOYEE}.p12", "802-1x.client-cert": f"{data}/identities/{EMPLOYEE}.p12"}
        seen = {key: kept.get(key, "(absent)").replace("\\:", ":") for key in expected}
        expect(seen == expected, f"{seen} is {expected}")
        for line in expected.items():
            print("   ", *line)
        self.root.remove()
        self.root.delete_certificate(EMPLOYEE)
        self.lab.switch.forget_stations()
        return "key and authority by path, the authenticator's name bound, nobody else's"

    def an_employee_joins(self):
        with ChildWatch(1) as watch:
            self._password = self.chen.provision(self.company, EMPLOYEE)
            took = self.joins(self.chen)
        seen = {Path(path).name for path, _ in watch.seen}
        # The others may have ended between two looks.
        expect("networksetup" in seen, f"the longest of the programs was seen at work: {seen}")
        expect(not [line for _, line in watch.seen if self._password in line], "the password stands in no argument list")
        return took + ", no password in any argument list"

    def secrets_stay_secret(self):
        """While the profile is installed: the password only where NetworkManager and the person keep it, the key only in its file."""
        kept = self.lab.kept_files()
        expect(kept and all(path.suffix == ".nmconnection" for path in kept), f"no key or certificate of NetworkManager's own: {kept}")
        wide = [path for place in (*kept, *self.chen.user.home.rglob("*")) if (path := Path(place)).is_file() and path.stat().st_mode & 0o177]
        expect(not wide, f"nothing is wider than 0600: {wide}")
        self.expect_no_trace(self._password, self.lab.logs())
        holders = [path for path in self.lab.rooms() if path.is_file() and self._password.encode() in path.read_bytes()]
        expect(holders and all(path in kept for path in holders), f"the password stands in the connections alone: {holders}")
        return f"{len(kept)} connections, 0600; no password in {len(self.lab.logs())} logs"

    @staticmethod
    def expect_no_trace(secret, files):
        told = [path for path in files if secret.encode() in path.read_bytes()]
        expect(not told, f"the password stands in {told}")

    def lock_takes_the_network_away(self):
        self.chen.delete_certificate(EMPLOYEE)
        expect(self.chen.switch("off").returncode == 0, "the service is off")
        self.lab.switch.forget_stations()
        self.expect_out("while the service is off")
        on = self.chen.switch("on")
        expect(on.returncode == 0 and "certificate" in on.stderr, f"the service is on and says what is missing: {on.stderr}")
        self.network_manager_is_refused()
        return self.is_refused(self.chen, "not in the certificate store")

    def next_sign_in_brings_it_back(self):
        self.chen.provision(self.company, EMPLOYEE)
        expect(len(self.lab.connections()) == 2, f"replaced, not doubled: {self.lab.connections()}")
        took = self.joins(self.chen)
        expect(self.chen.switch("off").returncode == 0, "the service is off")
        self.lab.switch.forget_stations()
        self.expect_out("while the service is off")
        expect(self.chen.switch("on").returncode == 0 and self.is_in(), "with the certificate the service comes back by itself")
        return took + ", again after off and on"

    def certificate_of_another_company_is_refused(self):
        self.chen.delete_certificate(EMPLOYEE)
        self.chen.provision(self.company, EMPLOYEE, self.rogue.certificate(EMPLOYEE))
        refused = self.is_refused(self.chen)
        self.network_manager_is_refused()
        return refused

    def expired_certificate_is_refused(self):
        self.chen.delete_certificate(EMPLOYEE)
        self.chen.provision(self.company, EMPLOYEE, self.company.expired_certificate(EMPLOYEE))
        refused = self.is_refused(self.chen, "expired on")
        self.network_manager_is_refused()
        self.chen.delete_certificate(EMPLOYEE)
        self.chen.provision(self.company, EMPLOYEE)
        return refused + "; " + self.joins(self.chen) + " with a new one"

    def rogue_network_gets_nothing(self):
        self.lab.switch.authenticate_with(self.rogue.authenticator, self.company.authority)
        refused = self.is_refused(self.chen)
        self.network_manager_is_refused()
        self.chen.remove()
        self.root.provision(self.company, EMPLOYEE)
        heard = self.is_refused(self.root, "unable to get local issuer certificate")
        return f"{refused}; the administrator: {heard}"

    def authenticator_of_another_name_gets_nothing(self):
        self.lab.switch.authenticate_with(self.company.authenticator_of("radius.example.org"), self.company.authority)
        heard = self.is_refused(self.root, "Domain")
        self.root.remove()
        self.back_to_the_company()
        return heard

    def two_people_have_a_network_each(self):
        self.chen.provision(self.company, EMPLOYEE)
        self.li.provision(self.company, "li.wen")
        expect(sorted(self.lab.connections()) == sorted([NETWORK, WIRED] * 2), f"two for each: {self.lab.connections()}")
        took = self.joins(self.li)
        expect(self.chen.switch("off").returncode == 0 and self.is_in(), "one person's switch leaves the other's cable alone")
        self.chen.remove()
        expect(self.is_in() and len(self.lab.connections()) == 2, "one person's removal leaves the other's profile alone")
        self.li.remove()
        self.lab.switch.forget_stations()
        return took

    def removal_leaves_nothing(self):
        self.expect_out("after the removal")
        expect(not self.lab.connections() and not self.lab.kept_files(), f"NetworkManager kept {self.lab.kept_files()}")
        self.expect_no_trace(self._password, [path for path in self.lab.rooms() if path.is_file()])
        for computer in (self.root, self.chen, self.li):
            rest = [path for path in (computer.user.data / "halvane/profiles").rglob("*") if path.name != ".lock"]
            expect(not rest, f"{computer.user.name} keeps {rest}")
            wide = [path for path in computer.user.data.rglob("*") if path.is_file() and path.stat().st_mode & 0o077]
            expect(not wide, f"files that others can read: {wide}")
        expect(Path("/run/NetworkManager").exists(), "the rooms are the lab's")
        left = [path for path in Path("/run/NetworkManager").rglob("*.nmconnection") if path.stem not in ("lo", CABLE)]
        expect(not left, f"NetworkManager kept {left}")
        return "no connection, no file of NetworkManager's, nothing that others can read"
