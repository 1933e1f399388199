#!/usr/bin/python3
"""Installs the request layer into an empty prefix and builds and runs a program of somebody else's with it.

    foreign_test.py --build DIR [--sanitize address|thread]
"""
import argparse
import http.server
import shutil
import subprocess
import sys
import tempfile
import threading
from pathlib import Path

DEADLINE = 110  # seconds for each step


def run(*command):
    done = subprocess.run([str(part) for part in command], capture_output=True, text=True, timeout=DEADLINE, check=False)
    if done.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))} ended with {done.returncode}\n{done.stdout}{done.stderr}")
    return done


class Who(http.server.BaseHTTPRequestHandler):
    """Answers GET /api/who, and remembers who asked."""
    agents = []

    def do_GET(self):
        self.agents.append((self.path, self.headers["User-Agent"], self.headers["Accept-Language"]))
        body = b'{"name": "chen.xiao"}'
        self.send_response(200)
        self.send_header("Content-Type", "application/json")
        self.send_header("Content-Length", str(len(body)))
        self.end_headers()
        self.wfile.write(body)

    def log_message(self, *arguments):
        pass


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", type=Path, required=True)
    parser.add_argument("--sanitize", default="")
    options = parser.parse_args()
    with tempfile.TemporaryDirectory() as place:
        prefix, program = Path(place, "prefix"), Path(place, "program")
        run("cmake", "--install", options.build, "--component", "request", "--prefix", prefix)
        shutil.copytree(Path(__file__).parent, program / "source")
        flags = {"address": "-fsanitize=address,undefined", "thread": "-fsanitize=thread"}.get(options.sanitize, "")
        run("cmake", "-G", "Ninja", "-S", program / "source", "-B", program / "build", f"-DCMAKE_PREFIX_PATH={prefix}",
            f"-DCMAKE_CXX_FLAGS={flags}")
        run("cmake", "--build", program / "build")
        with http.server.ThreadingHTTPServer(("127.0.0.1", 0), Who) as server:
            threading.Thread(target=server.serve_forever, daemon=True).start()
            done = run(program / "build/foreign", f"http://127.0.0.1:{server.server_port}/api")
            server.shutdown()
        libraries = run("ldd", program / "build/foreign").stdout
    said = {f"chen.xiao, {network}\n" for network in ("reachable", "not reachable")}  # which, depends on the machine
    if done.stdout not in said or done.stderr or Who.agents != [("/api/who", "foreign/1.0", "de-DE;q=1, en;q=0.9")]:
        sys.exit(f"the program says {done.stdout!r} {done.stderr!r}, the server saw {Who.agents}")
    if "libQt" in libraries or "halvane" in libraries:
        sys.exit("it loads more than it needs:\n" + libraries)


if __name__ == "__main__":
    main()
