"""Removing and purging, and what must be gone then, and what must not."""
from debian_root import DebianRoot
from installation import EMPLOYEE_ID, ENTRY
from processes import expect

CONNECTIONS = "etc/NetworkManager/system-connections"
OURS = """[connection]
id=test_dot1x
uuid=5d1a7a0c-52b8-4c55-a1f0-6d5d4c2c1a11
type=802-3-ethernet
permissions=user:chen:;

[802-1x]
private-key-password=not-for-others

[user]
com.halvane.network=test_dot1x
com.halvane.profile=com.example.halvane.network
"""
OTHERS = OURS.partition("[user]")[0] + "[proxy]\ncom.halvane.profile=in another place\n"
ENABLED = "etc/systemd/system/multi-user.target.wants/halvane-server.service"
OTHER_CERTIFICATE = "somebody else's"


class PurgeSteps:
    """`before`: the root's files before anything of ours came."""

    def __init__(self, root: DebianRoot, client, before):
        self._root = root
        self._client = client
        self._before = before
        self._others_key = root / "root/keys/of-the-administrator.p12"

    def steps(self):
        return [self.keys_of_others_stand_beside, self.removed, self.purged_without_a_trace, self.purged_without_a_key]

    def keys_of_others_stand_beside(self):
        for name, text in (("ours", OURS), ("others", OTHERS)):
            file = self._root / CONNECTIONS / f"{name}.nmconnection"
            file.write_text(text, encoding="utf-8")
            file.chmod(0o600)
        (self._root / "tmp/noise").write_bytes(bytes(range(64)))
        self._client.certutil("-S", "-n", f"{self._client.name} #2", "-s", "CN=nobody we know", "-x", "-t", "u,u,u", "-z", "/tmp/noise")
        (self._root / ENABLED).parent.mkdir(parents=True, exist_ok=True)
        (self._root / ENABLED).symlink_to("/lib/systemd/system/halvane-server.service")
        self._client.certutil("-S", "-n", OTHER_CERTIFICATE, "-s", "CN=somebody else", "-x", "-t", "u,u,u", "-z", "/tmp/noise")
        # Somebody whose directory of identities leads to the administrator's.
        self._root.run("useradd", "--create-home", "--uid", EMPLOYEE_ID + 1, "mallory")
        self._others_key.parent.mkdir(mode=0o700)
        self._others_key.write_text("a key", encoding="utf-8")
        data = self._root / "home/mallory/.local/share/halvane"
        data.mkdir(parents=True)
        (data / "identities").symlink_to("/root/keys")
        (data / "profiles").symlink_to("/root/keys")
        self._root.run("chown", "-R", "-h", "mallory:mallory", "/home/mallory/.local")
        return "a NetworkManager connection of ours and one of others, a certificate of another maker, a trap"

    def removed(self):
        self._root.run("apt-get", "-q", "-y", "remove", "halvane", "halvane-server", seconds=90)
        brought = self._root.files() - self._before
        left = {path for path in brought if not path.startswith(("var/lib/", "root/", CONNECTIONS))}
        wanted = {f"etc/xdg/autostart/{ENTRY}", "etc/default/halvane-server", ENABLED}
        left = {path for path in left if not (self._root / path).is_dir()}
        expect(left == wanted, f"configuration files are left and nothing else, not {sorted(left)}")
        for kept in ("var/lib/halvane/machine-serial", "var/lib/private/halvane-server/authority.pem"):
            expect((self._root / kept).exists(), f"{kept} is left")
        expect(self._client.identity_files(), "the user's identity is left")
        return f"left: {', '.join(sorted(wanted))}, what was recorded, the company, the user's keys"

    def purged_without_a_trace(self):
        said = self._root.run("apt-get", "-q", "-y", "purge", "halvane", "halvane-server", seconds=150)
        complaints = [line for line in said.splitlines() if line.startswith("halvane:") or "warning" in line.lower()]
        expect(not complaints, f"purging has nothing to complain of: {complaints}")
        left = {path for path in self._root.files() - self._before if not path.startswith(("root/keys", CONNECTIONS))}
        expect(not left, f"nothing of ours is left, not {sorted(left)}")
        lost = self._before - self._root.files()
        expect(not lost, f"nothing of others is gone, not {sorted(lost)}")
        known = self._root.run("dpkg-query", "--show", "--showformat=${Package} ${db:Status-Status}\n")
        expect("halvane" not in known, "dpkg knows the packages no more")
        dangling = [link.name for link in (self._root / "etc/alternatives").iterdir() if link.is_symlink() and not self._leads_somewhere(link)]
        expect(not dangling, f"alternatives lead somewhere: {dangling}")
        return "no file, no directory, no entry of dpkg's"

    def _leads_somewhere(self, link):
        return (self._root / str(link.readlink()).lstrip("/")).exists()

    def purged_without_a_key(self):
        expect(not self._client.identity_files() and not (self._client.home / ".local/share/halvane/profiles").exists(), "the identity files are gone")
        listed = self._client.certutil("-L")
        keys = self._client.certutil("-K")
        expect(OTHER_CERTIFICATE in listed and OTHER_CERTIFICATE in keys, f"the other certificate has its key: {listed}{keys}")
        expect(f"{self._client.name} #2" in listed, f"so has the one that only has our name: {listed}")
        left = [path for room in (self._client.home, self._root / "run/user", self._root / "tmp") for path in room.rglob("*")
                if path.suffix in (".pfx", ".p12", ".mobileconfig")]
        expect(not left, f"nor is anything left of what was downloaded: {left}")
        expect(listed.count(self._client.name) == 1 and keys.count("< ") == 2, f"ours has not: {listed}{keys}")
        kept = {file.name for file in (self._root / CONNECTIONS).iterdir()}
        expect(kept == {"others.nmconnection"}, f"the other connection alone is kept, not {kept}")
        expect(self._others_key.exists(), "nobody's links are followed with the administrator's rights")
        return "identity file, certificate, key and connection are gone; those of others stay"
