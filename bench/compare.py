#!/usr/bin/env python3
"""Runs floor, project and peers in turns, checks that they do the same work, and leaves what each run cost as JSON.
report.py makes tables, page and plots of it; docs/performance.md explains the figures."""
import argparse
import json
import os
import platform
import shutil
import signal
import subprocess
import sys
import tempfile
from dataclasses import asdict, replace
from pathlib import Path

import stages
from workshop import QUICK, Settings, Workshop

GIBIBYTE = 1 << 30


def value_of(path: str, key: str) -> str:
    """The value of the first line "key : value" or "key=value" of a file."""
    lines = [line for line in Path(path).read_text().splitlines() if line.startswith(key)]
    return lines[0][len(key):].strip(' \t:="') if lines else ""


def memory(key: str) -> int:
    return int(value_of("/proc/meminfo", key).split()[0]) * 1024


def output_of(*words) -> str:
    return subprocess.run(words, stdout=subprocess.PIPE, check=True, text=True).stdout.strip()


def describe_machine(shop: Workshop) -> dict[str, str]:
    """What the figures were measured on: nothing that names the machine or its owner."""
    compiler, sqlite = output_of(shop.programs / "transfer-bench").splitlines()
    return {
        "Processor": f"{value_of('/proc/cpuinfo', 'model name')}, {os.cpu_count()} hardware threads",
        "Memory": f"{round(memory('MemTotal') / GIBIBYTE)} GiB",
        "System": f"{value_of('/etc/os-release', 'PRETTY_NAME')}, Linux {'.'.join(platform.release().split('.')[:2])}",
        "File system of the work folder": output_of("stat", "-f", "-c", "%T", shop.folder),
        "Compiler": compiler,
        "SQLite of floor and project": sqlite,
        "`sqlite3` program": output_of(shop.shell, "--version").split()[0] if shop.shell else "none",
        "Python": f"Python {platform.python_version()}",
    }


def default_work_folder(quick: bool) -> str:
    """A file system in memory where there is room: on a disk, what a file costs depends on what was deleted there a
    minute ago, and that would be most of a small figure. The syncs that a disk would see are counted on their own."""
    needed, shared = (1 if quick else 8) * GIBIBYTE, "/dev/shm"
    fits = os.path.isdir(shared) and shutil.disk_usage(shared).free >= needed and memory("MemAvailable") >= 1.5 * needed
    return shared if fits else tempfile.gettempdir()


def parse() -> argparse.Namespace:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("programs", type=Path, help="folder of the measured programs")
    parser.add_argument("results", type=Path, help="file that gets the raw figures")
    parser.add_argument("--quick", action="store_true", help="small sizes and three rounds: under two minutes")
    parser.add_argument("--rounds", type=int, help="interleaved rounds (5, quick 3)")
    parser.add_argument("--sizes", help="messages of the accounts, rising (1000,10000); tables speak of the last two")
    parser.add_argument("--only", default=",".join(stages.ALL), help="some of the stages %(default)s")
    parser.add_argument("--keep", action="store_true", help="take what --only leaves out from the run before")
    parser.add_argument("--work", help="folder for accounts and packages (in memory where there is room)")
    return parser.parse_args()


def compare(arguments: argparse.Namespace, work: Path) -> None:
    settings = QUICK if arguments.quick else Settings()
    settings = replace(settings, rounds=arguments.rounds or settings.rounds)
    if arguments.sizes:
        settings.sizes = [int(size) for size in arguments.sizes.split(",")]
    costs = json.loads(arguments.results.read_text())["costs"] if arguments.keep else {}
    shop = Workshop(work / "shop", arguments.programs.resolve(), settings, costs)
    shop.fresh()
    results = {"settings": asdict(settings), "machine": describe_machine(shop), "costs": shop.costs}
    arguments.results.parent.mkdir(parents=True, exist_ok=True)
    for name in arguments.only.split(","):
        stages.ALL[name](shop)
        shop.fresh()
        # After each stage, so that a run that is stopped has not been for nothing.
        arguments.results.write_text(json.dumps(results, indent=1))


def main() -> None:
    arguments = parse()
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("interrupted"))  # so that the folder goes: it may be large
    with tempfile.TemporaryDirectory(prefix="chat-transfer-bench-",
                                     dir=arguments.work or default_work_folder(arguments.quick)) as work:
        compare(arguments, Path(work))


if __name__ == "__main__":
    main()
