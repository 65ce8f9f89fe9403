"""Helpers shared by the benchmark scripts: engine processes and medians."""
import os
import statistics
import subprocess
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
KORVEL = os.path.join(ROOT, "build", "release", "korvel")
DATA = os.path.join(ROOT, "..", "shared", "data")


def find_peer(name):
    for folder in ("/usr/games", "/usr/bin", "/usr/local/bin"):
        path = os.path.join(folder, name)
        if os.access(path, os.X_OK):
            return path
    return None


class Engine:
    def __init__(self, argv, cwd=None):
        self.p = subprocess.Popen(argv, stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                                  stderr=subprocess.DEVNULL, text=True, bufsize=1, cwd=cwd)

    def send(self, line):
        self.p.stdin.write(line + "\n")
        self.p.stdin.flush()

    def wait_for(self, prefix):
        lines = []
        while True:
            line = self.p.stdout.readline()
            if not line:
                raise RuntimeError("engine ended before " + prefix)
            line = line.rstrip("\n")
            lines.append(line)
            if line.startswith(prefix):
                return line, lines

    def close(self):
        try:
            self.send("quit")
            self.p.wait(timeout=10)
        except Exception:
            self.p.kill()


def timed(fn):
    start = time.monotonic()
    result = fn()
    return time.monotonic() - start, result


def median(values):
    return statistics.median(values)
