"""A peer for the comparison: the same export and import as anyone would write them with Python's own sqlite3 and json.

    peer.py export ACCOUNT TO
    peer.py import ACCOUNT FROM
"""
import json
import os
import sqlite3
import sys

USER = "2000000000000001"
VERSION = "1.0"
FOLDER = f"qelmsg_0/messages_0/{USER}"

CREATE_MESSAGES = (
    "create table {} (toUserID BIGINT, fromeUserID BIGINT, body VARCHAR(8000), msgType INTEGER, msgID BIGINT PRIMARY KEY,"
    " lastMsgID BIGINT, time_ BIGINT, burnAfterReading INTEGER, status INTEGER, targetID BIGINT,"
    " msgProperties VARCHAR(1024), year_ INTEGER, mon INTEGER, day_ INTEGER, limitRange VARCHAR(256),"
    " formate VARCHAR(256), activeType INTEGER, relatedMsgID BIGINT, localID BIGINT, relatedUsers VARCHAR(4096),"
    " sourceID VARCHAR(32), unReadState VARCHAR(128), securityLevel INTEGER)"
)
CREATE_CONTACTS = (
    "create table im_reContact (targetID BIGINT PRIMARY KEY, lastMsgid BIGINT, time BIGINT, type TINYINT, top TINYINT,"
    " wherefrom VARCHAR(256), msgType TINYINT, activeType INTEGER, lastMsg VARCHAR(8000), msgProp VARCHAR(1024),"
    " name VARCHAR(128), sendUserID BIGINT, securityLevel INTEGER)"
)
INSERT_MESSAGE = (
    "insert or ignore into {}(toUserID,fromeUserID,body,msgType,msgID,lastMsgID,time_,burnAfterReading,status,targetID,"
    "msgProperties,year_,mon,day_,limitRange,formate,activeType,relatedMsgID,localID,relatedUsers,sourceID)"
    " values(?,?,?,?,?,?,?,0,4,?,?,?,?,?,'',?,?,?,0,'',?)"
)
CONTACT_KEYS = (
    "targetID", "lastMsgid", "time", "type", "top", "wherefrom", "msgType", "activeType", "lastMsg", "msgProp", "name",
    "securityLevel",
)


def ids(joined):
    return [int(part) for part in joined.split(";") if part]


def message_object(row):
    return {
        "sendUserID": row[1], "receTargetID": row[0], "sendTime": row[6], "message": row[2], "messageType": row[3],
        "messageID": row[4], "format": row[15], "lastMessageID": row[5], "msgProperties": row[10],
        "activeType": row[16], "relatedMsgID": row[17], "securityLevel": row[22], "sourceID": row[20],
        "senderSessionID": row[9], "#limitRange": ids(row[14]), "#relatedUsers": ids(row[19]),
    }


def select_days(db):
    days = {}
    overflow = {}
    tables = [name for (name,) in db.execute("select name from sqlite_master where type='table'")]
    for table in tables:
        if not table.startswith("im_msg_"):
            continue
        for row in db.execute(f"select * from {table} where year_ >= 2000"):
            day = f"{row[11]}:{row[12]}:{row[13]}"
            number = overflow.get(day, 0)
            key = f"{day}_{number}" if number else day
            if len(days.get(key, ())) == 250:
                overflow[day] = number + 1
                key = f"{day}_{number + 1}"
            days.setdefault(key, []).append(message_object(row))
    return days


def write_json(path, value):
    text = json.dumps(value, ensure_ascii=False, separators=(",", ":")).replace("/", "\\/")
    with open(path, "w", encoding="utf-8", newline="") as file:
        file.write(text)


def export(account, to):
    db = sqlite3.connect(f"{account}/db/imsg.db")
    folder = f"{to}/{FOLDER}"
    os.makedirs(folder)
    os.makedirs(f"{to}/qelmsg_0/qelimfiles_0/{USER}")
    columns = ",".join(CONTACT_KEYS)
    contacts = [dict(zip(CONTACT_KEYS, row)) for row in db.execute(f"select {columns} from im_reContact")]
    days = select_days(db)
    for number, key in enumerate(sorted(days)):
        year, month, day = (int(part) for part in key.split("_")[0].split(":"))
        date = {"year": year, "month": month, "day": day}
        write_json(f"{folder}/msg_{number}.mg", {"version": VERSION, "msgs": [{"msgs": days[key], "date": date}]})
    write_json(f"{folder}/recontact.mg", {"version": VERSION, "recontact": contacts})


def message_row(message, date):
    return (
        message["receTargetID"], message["sendUserID"], message["message"], message["messageType"],
        message["messageID"], message["lastMessageID"], message["sendTime"], message["senderSessionID"],
        message["msgProperties"], date["year"], date["month"], date["day"], message["format"], message["activeType"],
        message["relatedMsgID"], message["sourceID"],
    )


def read_messages(folder):
    conversations = {}
    number = 0
    while os.path.exists(f"{folder}/msg_{number}.mg"):
        with open(f"{folder}/msg_{number}.mg", encoding="utf-8") as file:
            for day in json.load(file)["msgs"]:
                for message in day["msgs"]:
                    rows = conversations.setdefault(message["senderSessionID"], [])
                    rows.append(message_row(message, day["date"]))
        number += 1
    return conversations


def import_package(account, source):
    folder = f"{source}/{FOLDER}"
    conversations = read_messages(folder)
    with open(f"{folder}/recontact.mg", encoding="utf-8") as file:
        contacts = json.load(file)["recontact"]
    db = sqlite3.connect(f"{account}/db/imsg.db", isolation_level=None)
    for conversation in sorted(conversations):
        table = f"im_msg_{conversation}"
        db.execute("begin immediate")
        db.execute(CREATE_MESSAGES.format(table))
        db.executemany(INSERT_MESSAGE.format(table), conversations[conversation])
        db.execute("commit")
    db.execute(CREATE_CONTACTS)
    db.execute("begin immediate")
    places = ",".join("?" * len(CONTACT_KEYS))
    rows = ([contact[key] for key in CONTACT_KEYS] for contact in contacts)
    db.executemany(f"insert into im_reContact({','.join(CONTACT_KEYS)}) values({places})", rows)
    db.execute("commit")


if __name__ == "__main__":
    operations = {"export": export, "import": import_package}
    if len(sys.argv) != 4 or sys.argv[1] not in operations:
        sys.exit(__doc__)
    operations[sys.argv[1]](sys.argv[2], sys.argv[3])
