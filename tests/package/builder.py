"""The packages of the tree as it stands, made with the compiler flags of a development build, so that the compiler cache answers."""
import base64
import os
import subprocess
from dataclasses import dataclass
from pathlib import Path

FLAGS = ("-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0 -g1", "-DCMAKE_INSTALL_PREFIX=/usr", "-DHALVANE_TESTS=OFF",
         "-DHALVANE_BENCH=OFF", "-DCPACK_DEBIAN_COMPRESSION_TYPE=gzip")
# The compiler cache tells languages apart, and tests have another than builds.
ENVIRONMENT = {name: value for name, value in os.environ.items() if name != "LC_ALL"}


@dataclass(frozen=True)
class Packages:
    version: str
    client: Path
    server: Path

    @property
    def both(self):
        return self.client, self.server


class Builder:
    """Builds in `folder`, which is kept from run to run, and lays packages into FOLDER/packages/VERSION. The folder stands as deep below
    the sources as build/dev does: the compiler cache knows files by the way to them."""

    def __init__(self, source, folder):
        self._source = Path(source)
        self._folder = Path(folder)
        self._log = self._folder / "build.log"
        self._folder.mkdir(parents=True, exist_ok=True)
        self._log.unlink(missing_ok=True)

    def build(self, version, **variables):
        """`variables`: what else CMake is told. Programs of an earlier version in the same tree are built anew, no more."""
        told = [f"-D{name}={value}" for name, value in {"HALVANE_VERSION": version, **variables}.items()]
        self._run("cmake", "-G", "Ninja", "-S", self._source, "-B", self._folder, *FLAGS, *told)
        self._run("ninja", "-C", self._folder)
        place = self._folder / "packages" / version
        if place.exists():
            for old in place.glob("*deb"):
                old.unlink()
        self._run("cpack", "--config", self._folder / "CPackConfig.cmake", "-B", place, "-D", "CPACK_DEBIAN_DEBUGINFO_PACKAGE=OFF", "-D",
                  "CPACK_STRIP_FILES=ON")
        return Packages(version, *(self._only(place, f"{name}_{version}_*.deb") for name in ("halvane", "halvane-server")))

    def _run(self, *command):
        with open(self._log, "ab") as log:
            done = subprocess.run([str(part) for part in command], stdin=subprocess.DEVNULL, stdout=log, stderr=log, check=False,
                                  timeout=1500, env=ENVIRONMENT)
        if done.returncode != 0:
            tail = self._log.read_text(encoding="utf-8", errors="replace").splitlines()[-30:]
            raise OSError("\n".join([f"{command[0]} ended with {done.returncode}:", *tail]))

    @staticmethod
    def _only(place, pattern):
        found = list(place.glob(pattern))
        if len(found) != 1:
            raise OSError(f"one package {pattern} in {place}, not {found}")
        return found[0]


def make_signing_key(file):
    """A key for the update feed, PEM, for its owner alone; returns the public half as the client is told it."""
    file.parent.mkdir(parents=True, exist_ok=True)
    with open(os.open(file, os.O_WRONLY | os.O_CREAT | os.O_TRUNC, 0o600), "wb") as key:
        subprocess.run(["openssl", "genpkey", "-algorithm", "ed25519"], stdout=key, check=True, timeout=20)
    public = subprocess.run(["openssl", "pkey", "-in", str(file), "-pubout", "-outform", "DER"], capture_output=True, check=True, timeout=20)
    return base64.b64encode(public.stdout[-32:]).decode()
