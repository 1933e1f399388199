#!/usr/bin/python3
"""The company's network for real: an authenticator, a switch whose port it opens, and the programs that join.

Everything stands in network namespaces of its own and is looked at from outside: by traffic through the port, the
authenticator's and NetworkManager's own words, files and processes. One line a step; exit code 1 when one fails.
"""
import argparse
import shutil
import sys
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parent.parent / "e2e"))

import inside
from administrator_steps import AdministratorSteps
from employees import NetworkCompany
from join_steps import JoinSteps
from lab import Lab
from processes import Processes, end_after
from stage import take
from trouble_steps import TroubleSteps

LONGEST = 270


def perform(options):
    shutil.rmtree(options.logs, ignore_errors=True)
    processes = Processes(options.logs)
    good = False
    try:
        folder = Path("/run/lab")
        lab = Lab(processes, folder)
        lab.install(options.build, options.tools_prefix)
        lab.start()
        company, rogue = (NetworkCompany(processes, options.build, folder / name) for name in ("company", "rogue"))
        company.start()
        rogue.start()
        joins = JoinSteps(lab, company, rogue, options.tools_prefix, folder)
        trouble = TroubleSteps(lab, joins)
        administrator = AdministratorSteps(lab, joins, options.build, options.tools_prefix, folder)
        steps = [*joins.steps(), *trouble.steps(), *administrator.steps()]
        good = take([step for step in steps if not options.only or step.__name__ in options.only], lambda name: None)
    finally:
        processes.end_all()
        if not good:
            for name, lines in processes.tails(25):
                print(f"--- {name}", *lines, sep="\n")
    return 0 if good else 1


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", type=Path, required=True, help="build directory with bin/, libexec/ and share/")
    parser.add_argument("--tools-prefix", type=Path, required=True, help="where the tools are when they are installed")
    parser.add_argument("--logs", type=Path, required=True, help="directory for the logs, emptied first")
    parser.add_argument("--only", nargs="+", default=[], help="these steps alone, by name; those that they build on included")
    options = parser.parse_args()
    options.build = options.build.resolve()
    if missing := inside.what_is_missing():
        print(f"no 802.1X test: {missing}")
        return 1
    inside.end_with_parent()
    inside.enter()
    inside.end_in_order()
    end_after(LONGEST)
    return perform(options)


if __name__ == "__main__":
    sys.exit(main())
