#!/usr/bin/env python3
"""Makes tables, page and plots of the raw figures that compare.py left."""
import argparse
import json
import math
from pathlib import Path
from statistics import median

# A ratio: the work, what stands over what, what a prototype of the straightforward design was measured at (of two: at
# 100k and at 1M messages), and how far we want to get at most, below and from a million messages on.
AT_EACH_SIZE = [
    ("export / floor", "export {} project", "export {} floor", ("8.1", "12.4"), (1.5, 2.1)),
    ("export / `sqlite3 -json` dump", "export {} project", "export {} shell", ("4.4", "4.8"), (0.85, 0.85)),
    ("export in files of 1000 / floor", "export {} project2", "export {} floor2", ("8", "12"), (1.5, 2.1)),
    ("import / floor", "import {} project", "import {} floor", ("2.5", "3.5"), (1.4, 1.4)),
    ("second import / floor's first", "import {} again", "import {} floor", ("2.3", "3.4"), (1.2, 1.2)),
]
KEYED = [
    ("export of encrypted / of plain databases", "keyed {} export-keyed", "keyed {} export", "1.4", (1.4, 1.4)),
    ("import into encrypted / into plain databases", "keyed {} import-keyed", "keyed {} import", "1.3", (1.3, 1.3)),
]
PEERS = [
    ("`sqlite3 -json` dump of every table / export floor", "export {} shell", "export {} floor"),
    ("Python, same package / export floor", "export {} python", "export {} floor"),
    ("`vacuum into` / export floor", "export {} vacuum", "export {} floor"),
    ("`cp` of the database / export floor", "export {} copy", "export {} floor"),
    ("`sqlite3` shell, json_each(readfile()) / import floor", "import {} shell", "import {} floor"),
    ("Python, same rows / import floor", "import {} python", "import {} floor"),
]
DISK = [
    ("new", "per new conversation of 50 messages", 4),
    ("existing", "per existing conversation, 50 new messages", 4),
    ("repeated", "per existing conversation, nothing new", None),
]
# What the first part takes less the others.
TREE_IMPORT = [
    ("`cp -r` of the encrypted files", "copy"),
    ("walk and decryption", "walk"),
    ("reading and parsing the decrypted files", "read"),
    ("the rest of the import: inserting", "import", "walk", "read"),
    ("plain insert of the same rows (`insert ... select`, encrypted database)", "insert"),
    ("the whole import", "import"),
]


def short(value: float) -> str:
    """Two or three significant digits."""
    return f"{value:.0f}" if abs(value) >= 100 else f"{value:.1f}" if abs(value) >= 10 else f"{value:.2f}"


def duration(seconds: float) -> str:
    return f"{seconds:.2f} s" if seconds >= 1 else f"{seconds * 1000:.1f} ms"


def size_name(messages: int) -> str:
    for unit, name in ((1000000, "M"), (1000, "k")):
        if messages % unit == 0:
            return f"{messages // unit}{name}"
    return str(messages)


def row(work: str, here: str, sides: str, figure: float, reach: float | None, naive: str = "", fastest: str = "",
        limit: str = "at most {}") -> str:
    mark = "" if reach is None else "reached" if figure <= reach else "**not reached**"
    limit = "" if reach is None else limit.format(short(reach))
    return "| " + " | ".join([work, naive, limit, here, fastest, sides, mark]) + " |\n"


class Tables:
    """Rows whose costs were not measured are left out."""

    def __init__(self, results: dict):
        self.costs, self.settings, self.machine = results["costs"], results["settings"], results["machine"]
        self.sizes = self.settings["sizes"][-2:]

    def has(self, *names: str) -> bool:
        return all(self.costs.get(name) for name in names)

    def cost(self, name: str, member: str = "cpu") -> float:
        return median(round_[member] for round_ in self.costs[name])

    def fastest(self, name: str) -> float:
        return min(round_["cpu"] for round_ in self.costs[name])

    def ratio(self, work: str, over: str, under: str, naive: str = "", reach: float | None = None) -> str:
        if not self.has(over, under):
            return ""
        above, below = self.cost(over), self.cost(under)
        return row(work, short(above / below), f"{duration(above)} / {duration(below)}", above / below, reach, naive,
                   short(self.fastest(over) / self.fastest(under)))

    def at_size(self, messages: int, work: str, over: str, under: str, naive="", reach=(None, None)) -> str:
        if not isinstance(naive, str):
            naive = dict(zip((100000, 1000000), naive)).get(messages, "")
        return self.ratio(f"{work}, {size_name(messages)}", over.format(messages), under.format(messages), naive,
                          reach[messages >= 1000000])

    def growth(self, work: str, name: str, sizes: list[int], naive: str, memory_reach: float | None = None) -> str:
        """The power of the size with which CPU grows; or how much memory a further message takes."""
        smaller, larger = sizes[0], sizes[-1]
        if smaller == larger or not self.has(name.format(smaller), name.format(larger)):
            return ""
        work = f"{work}, {size_name(smaller)} to {size_name(larger)}"
        member = "peak" if memory_reach else "cpu"
        low, high = (self.cost(name.format(size), member) for size in (smaller, larger))
        if memory_reach:
            each = (high - low) / (larger - smaller)
            sides = f"{low / 2**20:.1f} MiB to {high / 2**20:.1f} MiB"
            return row(work, f"{each:.0f} B", sides, each, memory_reach, naive)
        power = math.log(high / low) / math.log(larger / smaller)
        return row(work, f"{power:.2f}", f"{duration(low)} to {duration(high)}", power, 1.07, naive)

    def derivations(self, work: str, operation: str, reach: float) -> str:
        """How many times opening an encrypted database costs what a plain one does not, within one operation."""
        if not self.has("keyed-small open"):
            return ""
        extra, one = (self.cost(f"keyed-small {name}-keyed") - self.cost(f"keyed-small {name}")
                      for name in (operation, "open"))
        return row(work, short(extra / one), f"{duration(extra)} / {duration(one)}", round(extra / one), reach)

    def ratios(self) -> str:
        settings = self.settings
        text = "".join(self.at_size(messages, *ratio) for messages in self.sizes for ratio in AT_EACH_SIZE)
        text += self.growth("growth exponent of export", "export {} project", self.sizes, "1.04")
        text += self.growth("growth exponent of import", "import {} project", self.sizes, "1.22")
        text += self.growth("growth exponent, all messages of one day", "one-day {}", settings["one_day_sizes"], "1.97")
        text += self.ratio(f"import of {settings['many_conversations']} conversations of 50 / floor", "many project",
                           "many floor", "1.38", 0.65)
        text += self.growth("peak memory per further message, export", "export {} project", self.sizes, "515 B", 540)
        text += self.growth("peak memory per further message, import", "import {} project", self.sizes, "500 B", 530)
        text += "".join(self.at_size(messages, *ratio) for messages in self.sizes for ratio in KEYED)
        text += self.derivations("key derivations in an export (two databases)", "export", 2)
        text += self.derivations("key derivations in an import (one database)", "import", 1)
        text += self.ratio(f"tree walk with decryption of {settings['tree_files']} files / `cp -r`", "walk project",
                           "walk copy", "about 100", 3)
        text += self.ratio("messages of a tree / of a package", "tree-messages tree", "tree-messages package", "", 1.1)
        return text + self.ratio(f"export of {settings['attachments']} attachments / `cp -r`", "attachments project",
                                 "attachments copy", "", 1.3)

    def disk(self) -> str:
        text = ""
        for kind, work, reach in DISK:
            for writes in self.costs.get(f"disk {kind}", []):
                text += row(work, f"{short(writes['syncs'])} syncs", f"{short(writes['bytes'] / 1024)} KiB written",
                            writes["syncs"], reach, limit=f"at most {reach} syncs")
        return text

    def tree_import(self) -> str:
        def part(member: str, first: str, *others: str) -> str:
            least = sum(self.cost(f"tree-import {name}", member) for name in others)
            return duration(self.cost(f"tree-import {first}", member) - least)

        return "".join(row(work, f"{part('cpu', *parts)} CPU", f"{part('wall', *parts)} wall", 0, None)
                       for work, *parts in TREE_IMPORT if self.has("tree-import import"))

    def markdown(self) -> str:
        rounds, files = self.settings["rounds"], self.settings["tree_files"]
        small = rounds * self.settings["times_for_small"]
        machine = {**self.machine, "Rounds": f"medians of {rounds} (small accounts: {small}), interleaved"}
        text = "| | |\n|---|---|\n" + "".join(f"| {name} | {value} |\n" for name, value in machine.items())
        peers = "".join(self.at_size(messages, *peer) for messages in self.sizes for peer in PEERS)
        tree_import = f"Import of {files} encrypted files, {files * self.settings['tree_messages_per_file']} messages"
        for title, rows in (("Ratios", self.ratios()), ("Syncs and bytes of an import", self.disk()),
                            (tree_import, self.tree_import()), ("Peers", peers)):
            head = "| work | naive | reach | here | fastest | both sides | |\n|---|---|---|---|---|---|---|\n"
            text += f"\n### {title}\n\n{head}{rows}" if rows else ""
        return text

    def plot(self, member: str, unit: int, title: str, label: str, target: Path) -> None:
        import matplotlib.figure  # here, so that the tables need nothing but Python

        # Texts stay texts, and the same figures give the same file.
        matplotlib.rcParams.update({"svg.fonttype": "none", "svg.hashsalt": "chat-transfer"})
        figure = matplotlib.figure.Figure(figsize=(7.2, 4.4), layout="constrained")
        axes = figure.subplots()
        for operation, colour in (("export", "#1b6ca8"), ("import", "#b8352c")):
            for contender, line, name in (("project", "o-", operation), ("floor", "o--", f"{operation}, floor")):
                points = [(size, self.cost(run, member) / unit) for size in self.settings["sizes"]
                          if self.has(run := f"{operation} {size} {contender}")]
                axes.plot(*(zip(*points) if points else ([], [])), line, color=colour, markersize=4, label=name)
        axes.set(title=title, xlabel="messages", ylabel=label, xscale="log", yscale="log")
        axes.grid(color="#cccccc")
        axes.legend()
        figure.savefig(target, metadata={"Date": None})


def write_page(page: Path, tables: str) -> None:
    """Puts the tables between the two headings of the page that they stand between."""
    before, rest = page.read_text().split("## Results\n")
    after = rest.split("## Growth\n")[1]
    page.write_text(f"{before}## Results\n\n{tables}\n## Growth\n{after}")


def main() -> None:
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("results", type=Path, help="the raw figures; table and plots go beside them")
    parser.add_argument("--docs", type=Path, help="folder whose performance.md gets the tables, and the plots")
    parser.add_argument("--no-plots", action="store_true", help="tables only")
    arguments = parser.parse_args()
    tables = Tables(json.loads(arguments.results.read_text()))
    text = tables.markdown()
    print(text, end="")
    arguments.results.with_name("bench-table.md").write_text(text)
    folder = arguments.docs or arguments.results.parent
    if not arguments.no_plots:
        tables.plot("cpu", 1, "CPU time of the whole process", "seconds", folder / "performance-time.svg")
        tables.plot("peak", 2**20, "Peak memory of the process", "MiB", folder / "performance-memory.svg")
    if arguments.docs:
        write_page(arguments.docs / "performance.md", text)


if __name__ == "__main__":
    main()
