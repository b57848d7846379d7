"""The proof that two contenders did the same work."""
import filecmp
import sqlite3
from contextlib import closing
from itertools import zip_longest
from pathlib import Path


def require(same: bool, what: str) -> None:
    if not same:
        raise AssertionError(f"not the same work: {what}")


def require_same_count(expected: int, actual: int, of: str) -> None:
    require(expected == actual > 0, f"{actual} {of} instead of {expected}")


def files_in(folder: Path, ending: str = "") -> set[Path]:
    return {path.relative_to(folder) for path in folder.rglob("*" + ending) if path.is_file()}


def require_same_files(expected: Path, actual: Path) -> None:
    files = files_in(expected)
    require(files == files_in(actual), f"the names of the files in {actual}")
    for file in files:
        require(filecmp.cmp(expected / file, actual / file, shallow=False), f"the bytes of {actual / file}")


def database_of(account: Path) -> Path:
    return account / "db" / "imsg.db"


def opened(account: Path):
    return closing(sqlite3.connect(database_of(account)))


def tables_in(db: sqlite3.Connection, pattern: str = "im_msg_*") -> list[str]:
    query = f"select name from sqlite_master where type='table' and name glob '{pattern}'"
    return [name for (name,) in db.execute(query)]


def count_messages(account: Path) -> int:
    with opened(account) as db:
        return sum(db.execute(f"select count(*) from {table}").fetchone()[0] for table in tables_in(db))


def require_same_rows(expected: Path, actual: Path, *, schema: bool = True) -> None:
    """The same rows in the same order in every table and, unless told otherwise, the same text of the schema."""
    with opened(expected) as left, opened(actual) as right:
        queries = [f"select type, name{', sql' if schema else ''} from sqlite_master"]
        for query in queries + [f"select rowid, * from {table}" for table in tables_in(left, "*")]:
            for one, other in zip_longest(left.execute(query), right.execute(query)):
                # Types count as well: to Python, 1 is 1.0.
                require(one == other and [*map(type, one)] == [*map(type, other)], f"{query} in {actual}")
