#!/usr/bin/python3
"""The rules of the house, read from the files themselves.

    check_house.py [--root DIR] [RULE...]     without a rule: all of them

One line for each fault, exit code 1 when there is one.
"""
import argparse
import sys
from pathlib import Path

import file_rules
import include_rules
from source_tree import SourceTree

CHECKS = {**include_rules.CHECKS, **file_rules.CHECKS}


def main(arguments=None):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--root", type=Path, default=Path(__file__).resolve().parents[2])
    parser.add_argument("rules", nargs="*", metavar="RULE", help=", ".join(CHECKS))
    options = parser.parse_args(arguments)
    unknown = [rule for rule in options.rules if rule not in CHECKS]
    if unknown:
        parser.error(f"there is no rule {', '.join(unknown)}")

    tree = SourceTree(options.root)
    if not tree.cpp("src"):
        parser.error(f"no sources below {options.root}/src")
    faults = [f"{rule}: {fault}" for rule in options.rules or CHECKS for fault in CHECKS[rule](tree)]
    for fault in faults:
        print(fault)
    print(f"{len(tree.files)} files, {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
