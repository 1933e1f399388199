#!/usr/bin/python3
"""The lab for somebody outside of it: lab_service.py FOLDER. A word a line in, a word a line out."""
import sys
from pathlib import Path

sys.path.append(str(Path(__file__).resolve().parent.parent / "e2e"))

import inside
from lab import Lab
from processes import Processes
from switch import reachable, reachable_by_cheating


def main():
    inside.end_with_parent()
    inside.enter()
    inside.end_in_order()
    folder = Path(sys.argv[1])
    processes = Processes(folder / "logs")
    try:
        lab = Lab(processes, folder)
        lab.start()
        lab.switch.authenticate_with(folder / "radius.pem", folder / "authority.pem")
        answers = {
            "reachable": lambda: reachable(0.5), "cheat": reachable_by_cheating, "forget": lab.switch.forget_stations,
            "connection": lambda: " ".join(lab.nmcli("-t", "-f", "NAME,DEVICE,STATE", "connection", "show", "--active").split("\n")[:1])}
        print("ready", flush=True)
        for line in sys.stdin:
            print(answers[line.strip()](), flush=True)
    finally:
        processes.end_all()


if __name__ == "__main__":
    main()
