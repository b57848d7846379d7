"""A peer for the comparison: the same export and import as anyone would write them with Python's own sqlite3 and json.

    peer.py export ACCOUNT TO
    peer.py import ACCOUNT FROM
"""
import json
import os
import sqlite3
import sys

USER = "2000000000000001"
FOLDER = f"qelmsg_0/messages_0/{USER}"

CREATE_MESSAGES = (
    "create table {} (toUserID BIGINT, fromeUserID BIGINT, body VARCHAR(8000), msgType INTEGER,"
    " msgID BIGINT PRIMARY KEY, lastMsgID BIGINT, time_ BIGINT, burnAfterReading INTEGER, status INTEGER,"
    " targetID BIGINT, msgProperties VARCHAR(1024), year_ INTEGER, mon INTEGER, day_ INTEGER, limitRange VARCHAR(256),"
    " formate VARCHAR(256), activeType INTEGER, relatedMsgID BIGINT, localID BIGINT, relatedUsers VARCHAR(4096),"
    " sourceID VARCHAR(32), unReadState VARCHAR(128), securityLevel INTEGER)")
CREATE_CONTACTS = (
    "create table im_reContact (targetID BIGINT PRIMARY KEY, lastMsgid BIGINT, time BIGINT, type TINYINT, top TINYINT,"
    " wherefrom VARCHAR(256), msgType TINYINT, activeType INTEGER, lastMsg VARCHAR(8000), msgProp VARCHAR(1024),"
    " name VARCHAR(128), sendUserID BIGINT, securityLevel INTEGER)")
# The keys of a message that both directions carry, in the order of the package, and their columns.
MESSAGE_KEYS = {
    "sendUserID": "fromeUserID", "receTargetID": "toUserID", "sendTime": "time_", "message": "body",
    "messageType": "msgType", "messageID": "msgID", "format": "formate", "lastMessageID": "lastMsgID",
    "msgProperties": "msgProperties", "activeType": "activeType", "relatedMsgID": "relatedMsgID",
    "securityLevel": "ifnull(securityLevel, 0)", "sourceID": "sourceID", "senderSessionID": "targetID"}
IMPORTED = {key: column for key, column in MESSAGE_KEYS.items() if key != "securityLevel"}
# What an import sets.
CONSTANTS = {"burnAfterReading": "0", "status": "4", "limitRange": "''", "localID": "0", "relatedUsers": "''"}
DATE = ("year_", "mon", "day_")
INSERT_COLUMNS = ", ".join([*CONSTANTS, *DATE, *IMPORTED.values()])
CONTACT_KEYS = ("targetID", "lastMsgid", "time", "type", "top", "wherefrom", "msgType", "activeType", "lastMsg",
                "msgProp", "name", "securityLevel")


def ids(joined):
    return [int(part) for part in joined.split(";") if part]


def select_days(db):
    days, overflow = {}, {}
    columns = ", ".join([*DATE, "limitRange", "relatedUsers", *MESSAGE_KEYS.values()])
    tables = db.execute("select name from sqlite_master where type='table' and name glob 'im_msg_*'").fetchall()
    for (table,) in tables:
        rows = db.execute(f"select {columns} from {table} where year_ >= 2000")
        for year, month, day, limits, related, *values in rows:
            date = f"{year}:{month}:{day}"
            if len(days.get((date, overflow.get(date, "")), ())) == 250:
                overflow[date] = f"_{int(overflow.get(date, '_0')[1:]) + 1}"
            message = dict(zip(MESSAGE_KEYS, values))
            message.update({"#limitRange": ids(limits), "#relatedUsers": ids(related)})
            days.setdefault((date, overflow.get(date, "")), []).append(message)
    return days


def write_json(path, value):
    with open(path, "w", encoding="utf-8", newline="") as file:
        file.write(json.dumps(value, ensure_ascii=False, separators=(",", ":")).replace("/", "\\/"))


def export(account, to):
    db = sqlite3.connect(f"{account}/db/imsg.db")
    folder = f"{to}/{FOLDER}"
    os.makedirs(folder)
    os.makedirs(f"{to}/qelmsg_0/qelimfiles_0/{USER}")
    rows = db.execute(f"select {','.join(CONTACT_KEYS)} from im_reContact")
    contacts = [dict(zip(CONTACT_KEYS, row)) for row in rows]
    days = select_days(db)
    for number, (date, ending) in enumerate(sorted(days, key="".join)):
        day = {"msgs": days[date, ending], "date": dict(zip(("year", "month", "day"), map(int, date.split(":"))))}
        write_json(f"{folder}/msg_{number}.mg", {"version": "1.0", "msgs": [day]})
    write_json(f"{folder}/recontact.mg", {"version": "1.0", "recontact": contacts})


def read_messages(folder):
    conversations = {}
    for number in range(len(os.listdir(folder)) - 1):
        with open(f"{folder}/msg_{number}.mg", encoding="utf-8") as file:
            for day in json.load(file)["msgs"]:
                for message in day["msgs"]:
                    row = (*day["date"].values(), *(message[key] for key in IMPORTED))
                    conversations.setdefault(message["senderSessionID"], []).append(row)
    return conversations


def import_package(account, source):
    conversations = read_messages(f"{source}/{FOLDER}")
    with open(f"{source}/{FOLDER}/recontact.mg", encoding="utf-8") as file:
        contacts = [[contact[key] for key in CONTACT_KEYS] for contact in json.load(file)["recontact"]]
    db = sqlite3.connect(f"{account}/db/imsg.db", isolation_level=None)
    values = ", ".join([*CONSTANTS.values(), *"?" * (len(DATE) + len(IMPORTED))])
    for conversation in sorted(conversations):
        table = f"im_msg_{conversation}"
        db.execute("begin immediate")
        db.execute(CREATE_MESSAGES.format(table))
        db.executemany(f"insert or ignore into {table}({INSERT_COLUMNS}) values({values})", conversations[conversation])
        db.execute("commit")
    db.execute(CREATE_CONTACTS)
    db.execute("begin immediate")
    places = ",".join("?" * len(CONTACT_KEYS))
    db.executemany(f"insert into im_reContact({','.join(CONTACT_KEYS)}) values({places})", contacts)
    db.execute("commit")


if __name__ == "__main__":
    {"export": export, "import": import_package}[sys.argv[1]](*sys.argv[2:])
