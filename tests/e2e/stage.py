"""What every walk through the client needs: a desktop, a company, and steps that are taken until one fails."""
import argparse
import contextlib
import shutil
import subprocess
import tempfile
import time
from pathlib import Path

from company import Company
from desktop import Desktop
from processes import Failed, Processes, end_after


def options_of(description, add_more=lambda parser: None):
    parser = argparse.ArgumentParser(description=description, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", type=Path, required=True, help="build directory with bin/, libexec/ and share/")
    parser.add_argument("--pictures", type=Path, required=True, help="directory for the pictures, emptied first")
    add_more(parser)
    options = parser.parse_args()
    options.build, options.pictures = options.build.resolve(), options.pictures.resolve()
    shutil.rmtree(options.pictures, ignore_errors=True)
    options.pictures.mkdir(parents=True)
    return options


def take(steps, photograph):
    """Runs the steps in their order and stops at the first that fails."""
    for number, step in enumerate(steps, 1):
        name = step.__name__.replace("_", " ")
        began = time.monotonic()
        try:
            seen = step()
            print(f"✓ {number:2} {name} ({time.monotonic() - began:.1f} s): {seen}", flush=True)
        except Exception as problem:  # whatever it is, the other side of it is a failed step
            print(f"✗ {number:2} {name}: {problem or type(problem).__name__}", flush=True)
            with contextlib.suppress(Exception):
                photograph("failed")
            return False
    return True


def perform(options, longest, play, **desktop_options):
    """`play(processes, desktop, company, folder)` tells whether all went well. The exit code."""
    began = time.monotonic()
    end_after(longest)
    processes = Processes(options.pictures / "logs")
    good = False
    with tempfile.TemporaryDirectory(prefix="halvane-stage-", ignore_cleanup_errors=True) as folder:
        try:
            desktop = Desktop(processes, folder, **desktop_options)
            desktop.start()
            company = Company(processes, options.build / "bin/halvane-server", folder, desktop.env)
            company.start()
            good = play(processes, desktop, company, folder)
        except (Failed, OSError, subprocess.CalledProcessError) as problem:
            print(f"✗ {problem}")
        finally:
            processes.end_all()
    if not good:
        for name, lines in processes.tails():
            print(f"--- {name}", *lines, sep="\n")
    print(f"it took {time.monotonic() - began:.0f} s; pictures and logs: {options.pictures}")
    return 0 if good else 1
