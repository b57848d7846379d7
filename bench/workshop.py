"""The folders, programs and settings that all stages share, and the race: contenders take turns, round by round, so
that whatever else the machine does falls on all of them."""
import json
import shutil
import subprocess
import sys
from dataclasses import dataclass, field
from pathlib import Path
from typing import Callable


@dataclass
class Settings:
    rounds: int = 5
    times_for_small: int = 3  # runs of a few tenths of a second are disturbed most, and more of them cost little
    sizes: list[int] = field(default_factory=lambda: [1000, 3000, 10000, 30000, 100000, 1000000])
    one_day_sizes: list[int] = field(default_factory=lambda: [50000, 100000, 200000])
    many_conversations: int = 20000
    tree_files: int = 20000
    attachments: int = 10000
    tree_messages_per_file: int = 10
    file_bytes: int = 20480

    def rounds_for(self, messages: int) -> int:
        return self.rounds * (self.times_for_small if messages <= 100000 else 1)


QUICK = Settings(3, 1, [1000, 10000, 50000], [10000, 50000], 1000, 500, 500)


@dataclass
class Command:
    words: list
    stdin: Path | str = "/dev/null"
    stdout: Path | str = "/dev/null"


class Workshop:
    def __init__(self, folder: Path, programs: Path, settings: Settings, costs: dict):
        self.folder = folder
        self.programs = programs
        self.settings = settings
        self.costs = costs  # "export 100000 floor": what each round used
        self.shell = shutil.which("sqlite3")  # its rows are left out where there is none

    def at(self, name: str) -> Path:
        return self.folder / name

    def fresh(self, name: str = ".") -> Path:
        """An empty folder, whatever was there before."""
        remove(self.at(name))
        self.at(name).mkdir(parents=True)
        return self.at(name)

    def fresh_account(self, name: str) -> Path:
        """Empty database files, as an import finds them in a fresh account."""
        account = self.fresh(name)
        for folder in ("db/plugin", "audio", "image", "file", "video"):
            (account / folder).mkdir(parents=True)
        for database in ("imsg.db", "backimsg.db", "plugin/kab.db"):
            (account / "db" / database).touch()
        return account

    def own(self, program: str, *arguments, stdout: Path | str = "/dev/null") -> Command:
        return Command([self.programs / program, *arguments], stdout=stdout)

    def make(self, what: str, folder: Path, conversations: int, messages: int, *more) -> None:
        sizes = ["--conversations", conversations, "--messages", messages]
        self.measure(self.own("bench-data", what, folder, *sizes, *more))

    def account(self, name: str, conversations: int, messages: int, *more) -> Path:
        """An account with so many messages in each conversation."""
        account = self.fresh_account(name)
        self.make("account", account, conversations, messages, *more)
        return account

    def sized_account(self, name: str, messages: int, *more) -> Path:
        return self.account(name, messages // 1000, 1000, *more)

    def package_of(self, account: Path, name: str = "package") -> Path:
        package = self.fresh(name)
        self.measure(self.own("floor-export", "days", account, package))
        return package

    def measure(self, command: Command) -> dict[str, float]:
        """What the command uses from its start to its end. A small program starts it: the system counts the memory of
        whoever starts a process as the process's own, and an interpreter's is more than a small transfer's."""
        figures = self.at("measured")
        words = [str(word) for word in (self.programs / "bench-measure", figures, *command.words)]
        with open(command.stdin, "rb") as source, open(command.stdout, "wb") as target:
            subprocess.run(words, stdin=source, stdout=target, check=True)
        return json.loads(figures.read_text())

    def race(self, prefix: str, contenders: dict[str, Callable[[], Command]], check: Callable[[], None],
             rounds: int = 0) -> None:
        """Each contender is made ready outside the measured span. After the first round `check` compares what they
        left behind, so that nobody is measured at doing less."""
        print(prefix, end="", file=sys.stderr, flush=True)
        costs = {name: [] for name in contenders}
        for turn in range(rounds or self.settings.rounds):
            print(".", end="", file=sys.stderr, flush=True)
            for name, prepare in contenders.items():
                costs[name].append(self.measure(prepare()))
            if turn == 0:
                check()
        self.costs.update({f"{prefix} {name}": rounds_ for name, rounds_ in costs.items()})
        print(file=sys.stderr)


def remove(path: Path) -> None:
    if path.is_dir():
        shutil.rmtree(path)
    else:
        path.unlink(missing_ok=True)
