"""What is measured. Each stage makes its accounts, races its contenders, checks that they did the same work, and leaves
its costs under the names that report.py looks up."""
import shutil
import sys
from pathlib import Path
from typing import Callable

import peer
from same import (count_messages, database_of, files_in, opened, require_same_count, require_same_files,
                  require_same_rows, tables_in)
from workshop import Command, Workshop, remove

Prepare = Callable[[], Command]
COUNTED_MESSAGES = 50


def export_by(shop: Workshop, name: str, account: Path, *more: str, by: str = "transfer-bench export") -> Prepare:
    return lambda: shop.own(*by.split(), account, shop.fresh(f"out-{name}"), *more)


def import_by(shop: Workshop, name: str, package: Path, *more: str, by: str = "transfer-bench import") -> Prepare:
    return lambda: shop.own(*by.split(), shop.fresh_account(f"into-{name}"), package, *more)


def copy_of(source: Path, target: Path) -> Prepare:
    """The system's copy: a floor, and what the contenders behind it work on."""
    return lambda: remove(target) or Command(["cp", "-r", source, target])


# --- Exports and imports of all sizes: floor and project, and at the two largest sizes the peers ---

def run_peer(operation: str, account: Path, folder: Path) -> Command:
    return Command([sys.executable, peer.__file__, operation, account, folder])


def run_shell(shop: Workshop, account: Path, script: str, *options: str) -> Command:
    shop.at("script.sql").write_text(script)
    return Command([shop.shell, *options, database_of(account)], shop.at("script.sql"), shop.at("printed"))


def conversations(account: Path) -> list[str]:
    with opened(account) as db:
        return tables_in(db)


def vacuum(shop: Workshop, account: Path) -> Command:
    remove(shop.at("vacuumed.db"))
    return run_shell(shop, account, f"vacuum into '{shop.at('vacuumed.db')}'")


STAGE_FILE = """with day(text, year, mon, day) as materialized (
  select text, text->>'$.msgs[0].date.year', text->>'$.msgs[0].date.month', text->>'$.msgs[0].date.day'
  from (select readfile('{path}') as text))
insert into staged({columns}) select {values} from day, json_each(day.text, '$.msgs[0].msgs');
"""
INSERT_STAGED = """begin immediate;
{create};
insert or ignore into {table}({columns}) select {columns} from staged where targetID = {target} order by rowid;
commit;
"""


def shell_import(package: Path, account: Path) -> str:
    """A script for the engine's shell: one staged table for all messages, then one insert per conversation."""
    folder = package / peer.FOLDER
    columns = peer.INSERT_COLUMNS
    values = ", ".join([*peer.CONSTANTS.values(), "year", "mon", "day", *(f"value->>'{key}'" for key in peer.IMPORTED)])
    script = f"create temp table staged({columns});\n"
    for number in range(len(files_in(folder, ".mg")) - 1):
        script += STAGE_FILE.format(path=folder / f"msg_{number}.mg", columns=columns, values=values)
    script += "create index staged_target on staged(targetID);\n"
    for table in conversations(account):
        script += INSERT_STAGED.format(create=peer.CREATE_MESSAGES.format(table), table=table, columns=columns,
                                       target=table.removeprefix("im_msg_"))
    values = ", ".join(f"value->>'{key}'" for key in peer.CONTACT_KEYS)
    return (f"{script}{peer.CREATE_CONTACTS};\ninsert or ignore into im_reContact({', '.join(peer.CONTACT_KEYS)}) "
            f"select {values} from json_each(readfile('{folder / 'recontact.mg'}'), '$.recontact');")


def race_exports(shop: Workshop, messages: int, account: Path, peers: bool) -> None:
    contenders = {"floor": export_by(shop, "floor", account, by="floor-export days"),
                  "project": export_by(shop, "project", account),
                  "floor2": export_by(shop, "floor2", account, by="floor-export packed"),
                  "project2": export_by(shop, "project2", account, by="transfer-bench export2")}
    if peers and shop.shell:
        dump = "".join(f"select * from {table};\n" for table in ["im_reContact", *conversations(account)])
        contenders["shell"] = lambda: run_shell(shop, account, dump, "-json")
        contenders["vacuum"] = lambda: vacuum(shop, account)
    if peers:
        contenders["copy"] = copy_of(database_of(account), shop.at("copied.db"))
        contenders["python"] = lambda: run_peer("export", account, shop.fresh("out-python"))

    def check() -> None:
        for floor, other in (("floor", "project"), ("floor2", "project2"), ("floor", "python")):
            if other in contenders:
                require_same_files(shop.at(f"out-{floor}"), shop.at(f"out-{other}"))

    shop.race(f"export {messages}", contenders, check, shop.settings.rounds_for(messages))


def race_imports(shop: Workshop, messages: int, account: Path, package: Path, peers: bool) -> None:
    imported = shop.fresh_account("imported")
    shop.measure(shop.own("floor-import", "import", imported, package))

    def again() -> Command:
        remove(shop.at("into-again"))
        return shop.own("transfer-bench", "import", shutil.copytree(imported, shop.at("into-again")), package)

    contenders = {"floor": import_by(shop, "floor", package, by="floor-import import"),
                  "project": import_by(shop, "project", package),
                  "again": again}
    if peers and shop.shell:
        script = shell_import(package, account)
        contenders["shell"] = lambda: run_shell(shop, shop.fresh_account("into-shell"), script)
    if peers:
        contenders["python"] = lambda: run_peer("import", shop.fresh_account("into-python"), package)

    def check() -> None:
        for name in contenders:
            require_same_rows(shop.at("into-floor"), shop.at(f"into-{name}"), schema=name not in ("shell", "python"))

    shop.race(f"import {messages}", contenders, check, shop.settings.rounds_for(messages))


def sizes(shop: Workshop) -> None:
    for messages in shop.settings.sizes:
        peers = messages in shop.settings.sizes[-2:]
        account = shop.sized_account("account", messages)
        race_exports(shop, messages, account, peers)
        race_imports(shop, messages, account, shop.at("out-floor"), peers)
        shop.fresh()


# --- Accounts of odd shapes ---

def one_day(shop: Workshop) -> None:
    """Exports of accounts whose messages are all of one day."""
    sizes = shop.settings.one_day_sizes
    contenders = {str(size): export_by(shop, str(size), shop.sized_account(f"account-{size}", size, "--days", 1))
                  for size in sizes}

    def check() -> None:
        for size in sizes:
            files = len(files_in(shop.at(f"out-{size}"), ".mg"))
            require_same_count(size // 250 + 1, files, "files, one of them the list of contacts")

    shop.race("one-day", contenders, check)


def many(shop: Workshop) -> None:
    """Import of many small conversations."""
    package = shop.package_of(shop.account("account", shop.settings.many_conversations, COUNTED_MESSAGES))
    contenders = {"floor": import_by(shop, "floor", package, by="floor-import import"),
                  "project": import_by(shop, "project", package)}
    shop.race("many", contenders, lambda: require_same_rows(shop.at("into-floor"), shop.at("into-project")))


def attachments(shop: Workshop) -> None:
    """The export of attachments against a copy of their files."""
    account = shop.account("account", 10, shop.settings.attachments // 10, "--attachment-every", 1,
                           "--file-bytes", shop.settings.file_bytes)
    contenders = {"copy": copy_of(account / "file", shop.at("copied")), "project": export_by(shop, "project", account)}
    shop.race("attachments", contenders, lambda: require_same_count(
        len(files_in(shop.at("copied"))), len(files_in(shop.at("out-project"), ".pdf")), "attachments"))


# --- Encrypted databases against plain ones ---

def race_keyed(shop: Workshop, prefix: str, conversations: int, messages: int) -> None:
    plain = shop.account("plain", conversations, messages)
    keyed = shop.account("keyed", conversations, messages, "--keyed")
    package = shop.package_of(plain)
    contenders = {"export": export_by(shop, "export", plain),
                  "export-keyed": export_by(shop, "export-keyed", keyed, "keyed"),
                  "import": import_by(shop, "import", package),
                  "import-keyed": import_by(shop, "import-keyed", package, "keyed"),
                  "open": lambda: shop.own("transfer-bench", "open", plain),
                  "open-keyed": lambda: shop.own("transfer-bench", "open", keyed, "keyed")}
    shop.race(prefix, contenders, lambda: require_same_files(shop.at("out-export"), shop.at("out-export-keyed")))


def keyed(shop: Workshop) -> None:
    for messages in shop.settings.sizes[-2:]:
        race_keyed(shop, f"keyed {messages}", messages // 1000, 1000)
        shop.fresh()
    # So small that the key derivations are nearly all that differs.
    race_keyed(shop, "keyed-small", 1, 10)


# --- Trees ---

def message_tree(shop: Workshop, messages: int, *more) -> Path:
    """The messages of sized_account() as a tree. Its files are not encrypted yet."""
    tree = shop.fresh("tree")
    shop.make("tree", tree, messages // 1000, 1000, *more)
    return tree


def race_walk(shop: Workshop) -> None:
    """The tree's walk with decryption against a copy of its files, which is the tree that the walk then uses up."""
    tree, copied = shop.fresh("tree"), shop.at("copied")
    for number in range(shop.settings.tree_files):
        file = tree / "qelbackup" / peer.USER / str(1000 + number // 100) / f"{number}.mg"
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(bytes([ord("a") + number % 26]) * shop.settings.file_bytes)
    shop.measure(shop.own("bench-data", "encrypt", tree))
    contenders = {"copy": copy_of(tree, copied),
                  "project": lambda: shop.own("transfer-bench", "walk", shop.fresh_account("walked"), copied)}
    shop.race("walk", contenders, lambda: require_same_count(
        shop.settings.tree_files, len(files_in(copied, ".mg.decrypt")), "decrypted files"))


def race_tree_messages(shop: Workshop) -> None:
    """The messages of a tree against the same messages of a package."""
    messages = shop.settings.sizes[-2:][0]
    package = shop.package_of(shop.sized_account("account", messages))
    tree = message_tree(shop, messages)
    for file in files_in(tree, ".mg"):
        (tree / file).rename(tree / f"{file}.decrypt")
    contenders = {"package": import_by(shop, "package", package),
                  "tree": import_by(shop, "tree", tree, by="transfer-bench import-tree")}
    shop.race("tree-messages", contenders, lambda: require_same_count(
        count_messages(shop.at("into-package")), count_messages(shop.at("into-tree")), "messages of the tree"))


def tree(shop: Workshop) -> None:
    race_walk(shop)
    shop.fresh()
    race_tree_messages(shop)


def tree_import(shop: Workshop) -> None:
    """A whole import of a tree of encrypted files, its parts one by one, and what copy and insert alone cost."""
    messages = shop.settings.tree_files * shop.settings.tree_messages_per_file
    account = shop.sized_account("account", messages)
    tree, copied = message_tree(shop, messages, "--per-file", shop.settings.tree_messages_per_file), shop.at("copied")
    shop.measure(shop.own("bench-data", "encrypt", tree))

    def on_copy(operation: str, *more, **streams) -> Command:
        return shop.own("transfer-bench", operation, shop.fresh_account("into-tree"), copied, *more, **streams)

    def whole() -> Command:
        # As for the walk alone: nothing is decrypted yet.
        remove(copied)
        shutil.copytree(tree, copied)
        return on_copy("import-tree", "keyed", stdout=shop.at("imported"))

    contenders = {"copy": copy_of(tree, copied),
                  "walk": lambda: on_copy("walk"),
                  "read": lambda: on_copy("read-tree"),
                  "insert": lambda: shop.own("floor-import", "insert", shop.fresh_account("into-floor"), account,
                                             stdout=shop.at("inserted")),
                  "import": whole}
    shop.race("tree-import", contenders, lambda: require_same_count(
        int(shop.at("inserted").read_text()), int(shop.at("imported").read_text()), "messages of the tree"))


# --- What an import asks of the disk per conversation of 50 messages ---

def import_thrice(shop: Workshop, conversations: int) -> dict[str, list[int]]:
    """Syncs and bytes of the older half of a history into an empty account, of the newer one, and of that once more."""
    halves = [shop.package_of(shop.account("half", conversations, 2 * COUNTED_MESSAGES, "--first", first, "--last",
                                           first + COUNTED_MESSAGES), f"package-{first}")
              for first in (0, COUNTED_MESSAGES)]
    account, counts = shop.fresh_account("into"), {}
    for kind, package in (("new", halves[0]), ("existing", halves[1]), ("repeated", halves[1])):
        shop.measure(shop.own("counted-bench", "import", account, package, stdout=shop.at("counted")))
        counts[kind] = [int(count) for count in shop.at("counted").read_text().split()]
    return counts


def disk(shop: Workshop) -> None:
    few, more = 20, 60
    smaller, larger = import_thrice(shop, few), import_thrice(shop, more)
    for kind, counts in larger.items():
        syncs, size = ((high - low) / (more - few) for low, high in zip(smaller[kind], counts))
        shop.costs[f"disk {kind}"] = [{"syncs": syncs, "bytes": size}]


ALL = {"disk": disk, "sizes": sizes, "one-day": one_day, "many": many, "keyed": keyed, "tree": tree,
       "tree-import": tree_import, "attachments": attachments}
