#!/usr/bin/env python3
"""Random sessions of the window at random moments, for a sanitizer build of vantrel-session.

Each session loads a sample data set, chooses an algorithm, initializes, starts and stops runs, verifies,
switches online training and closes the window, with pauses of random length between the clicks, so that
clicks meet runs at their start, in their iterations and at their end. A session is judged by its end alone:
it must end by itself with exit code 0 or 3 (a wait that timed out) and no sanitizer report; what it prints
depends on the clock and is not compared. With --start-init the issue's pattern runs instead: quick
Start / Initialization cycles in one session.

    python3 tools/session-stress.py RUNNER [--sessions N] [--seed S] [--jobs J] [--start-init CYCLES]

Prints one line per failing session (its script is kept in --keep, default a folder under /tmp), and a
summary: sessions run, failures, time. Exits 1 when any session failed.
"""
import argparse
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time
from concurrent.futures import ThreadPoolExecutor

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
DATA = os.path.join(ROOT, "data")
SESSION_SECONDS = 300  # far beyond what a session of this tool needs
SANITIZER_MARKS = ("ERROR: AddressSanitizer", "ERROR: LeakSanitizer", "runtime error:",
                   "WARNING: ThreadSanitizer")

# Data sets with their parameter files: (data, Data Set Information answer, parameter file).
DATA_SETS = [
    ("sin1d.txt", "click 1044 ok", "sin1d_3units.ini"),
    ("twomoons.txt", "click 1043 ok", "twomoons_4units.ini"),
    ("surface2d.txt", "click 1044 ok", None),
]


def data(name):
    return os.path.join(DATA, name)


class SessionWriter:
    """One random session: the answers to the prompts a click may raise are queued before the click."""

    def __init__(self, rng):
        self.rng = rng
        self.lines = []
        self.data_set = None
        self.algorithm = 0

    def emit(self, *lines):
        self.lines.extend(lines)

    def pause(self):
        # Mostly short: the moments around a run's start and end are where the threads meet.
        pause = self.rng.choice([0, 0, 1, 2, 5, 10, 30, 100, 300])
        if pause:
            self.emit(f"sleep {pause}")

    def load(self):
        self.data_set = self.rng.choice(DATA_SETS)
        name, info, _ = self.data_set
        self.emit(f"file {data(name)}", f"dialog 129 {info}", "click 1009")

    def select(self):
        self.algorithm = self.rng.randrange(5)
        self.emit(f"select 1014 {self.algorithm}")

    def initialize(self):
        rng = self.rng
        if self.algorithm == 2:
            self.emit(f"dialog 1038 set 1097 {rng.randrange(0, 12)} ok")
        elif self.data_set and self.data_set[2] and rng.random() < 0.3:
            self.emit(f"file {data(self.data_set[2])}", "dialog 130 click 1070 ok")
        else:
            units = rng.randrange(0, 12)
            center = rng.choice([1088, 1089, 1090])
            self.emit(f"dialog 130 click 1071 set 1096 {units} click {center} "
                      f"set 1103 {rng.choice(['0.001', '0.01', '0.00001'])} ok")
        self.emit("click 1064")

    def settings(self):
        rng = self.rng
        iterations = rng.choice([0, 1, 5, 20, 200, 2000, 100000000])
        self.emit(f"set 1019 {iterations}", f"set 1047 {rng.choice([1, 2, 3, 30])}")
        if rng.random() < 0.3:
            self.emit("click 1055")
        if rng.random() < 0.2:
            self.emit(f"click {rng.choice([1061, 1062])}")

    def verify(self):
        rng = self.rng
        radio = rng.choice([1056, 1057, 1058, 1059])
        self.emit(f"click {radio}")
        if radio == 1057:
            self.emit(f"file {data(rng.choice(DATA_SETS)[0])}")
        elif radio == 1059:
            self.emit(f"dialog 138 set 1105 -1 set 1106 1 set 1107 {rng.randrange(1, 300)} ok")
        elif radio == 1058:
            self.emit("dialog 139 set 1108 -1 set 1109 1 set 1110 20 set 1111 -1 set 1112 1 set 1113 20 ok")
        self.emit("click 1038")

    def race(self):
        # A run of one iteration, and Start clicked again about when it ends: a Stop, or a long run if the
        # window has not yet taken in the first run's end; then Initialization at once.
        self.emit("set 1019 1", "click 1010", "set 1019 100000", "click 1010")
        self.initialize()

    def online(self):
        self.emit(f"dialog 140 set 1117 {self.rng.randrange(1, 4)} ok", "click 1048")

    def session(self):
        rng = self.rng
        self.load()
        self.select()
        self.initialize()
        actions = [self.load, self.select, self.initialize, self.settings, self.verify, self.online, self.race,
                   lambda: self.emit("click 1010"), lambda: self.emit("click 1010"),
                   lambda: self.emit("click 1010"), lambda: self.emit("click 1039")]
        for _ in range(rng.randrange(4, 16)):
            rng.choice(actions)()
            self.pause()
        self.emit("close")
        return "\n".join(self.lines) + "\n"


def start_init_session(cycles):
    """Quick Start / Initialization cycles. A run of one iteration ends about when the next click comes: that
    click stops it, or starts a long run if the window has not yet taken in the first run's end; Initialization
    follows at once, and must find itself disabled under a run."""
    lines = [f"file {data('sin1d.txt')}", "dialog 129 click 1044 ok", "click 1009",
             "dialog 130 set 1096 3 ok", "click 1064"]
    for _ in range(cycles):
        lines += ["set 1019 1", "dialog 130 ok", "click 1010", "set 1019 100000", "click 1010", "click 1064",
                  "set 1019 1", "click 1010", "wait 60"]
    lines.append("close")
    return "\n".join(lines) + "\n"


def run_one(runner, script, keep, number):
    work = tempfile.mkdtemp(prefix="vantrel-stress-")
    try:
        path = os.path.join(work, "stress.session")
        with open(path, "w", encoding="ascii") as out:
            out.write(script)
        env = dict(os.environ, QT_QPA_PLATFORM="offscreen")
        try:
            done = subprocess.run([runner, "--dir", work, path], capture_output=True, text=True,
                                  timeout=SESSION_SECONDS, env=env, check=False)
            code, err = done.returncode, done.stderr
        except subprocess.TimeoutExpired as expired:
            code, err = "timeout", (expired.stderr or b"").decode(errors="replace")
        reported = any(mark in err for mark in SANITIZER_MARKS)
        if code in (0, 3) and not reported:
            return None
        kept = os.path.join(keep, f"session_{number}.session")
        shutil.copy(path, kept)
        with open(kept + ".stderr", "w", encoding="utf-8") as out:
            out.write(err)
        first = next((line for line in err.splitlines() if any(m in line for m in SANITIZER_MARKS)), "")
        return f"session {number}: exit {code}{'; ' + first if first else ''} (script {kept})"
    finally:
        shutil.rmtree(work, ignore_errors=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("runner", help="path of vantrel-session, built with a sanitizer")
    parser.add_argument("--sessions", type=int, default=100)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--jobs", type=int, default=2)
    parser.add_argument("--start-init", type=int, default=0, metavar="CYCLES",
                        help="run one session of this many Start / Initialization cycles instead")
    parser.add_argument("--keep", default=None, help="folder for the scripts of failing sessions")
    args = parser.parse_args()
    keep = args.keep or tempfile.mkdtemp(prefix="vantrel-stress-failed-")
    os.makedirs(keep, exist_ok=True)

    if args.start_init:
        scripts = [start_init_session(args.start_init)]
    else:
        scripts = [SessionWriter(random.Random(args.seed * 1000003 + k)).session() for k in range(args.sessions)]
    started = time.monotonic()
    with ThreadPoolExecutor(max_workers=max(1, args.jobs)) as pool:
        results = pool.map(lambda item: run_one(args.runner, item[1], keep, item[0]), enumerate(scripts))
        failures = [line for line in results if line]
    for line in failures:
        print(line)
    if not failures and not args.keep:
        os.rmdir(keep)
    print(f"sessions: {len(scripts)}, failed: {len(failures)}, time: {time.monotonic() - started:.0f} s")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
