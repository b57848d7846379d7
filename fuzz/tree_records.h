// Note and room files: what is taken reaches the plugin database, and a second import doubles nothing.
#pragma once

#include <string>

#include "fuzz/property.h"
#include "fuzz/sandbox.h"

namespace fuzz {

/// A sandbox whose plugin database can be emptied: making one anew for each input would take most of the time.
class TreeSandbox : public Sandbox {
public:
    TreeSandbox() {
        makeDatabase("db/plugin/kab.db");
        dbTrans transfer;
        enter(transfer);
        transfer.wtAllToDBNJ();
    }

    void emptyDatabase() const {
        imsdk::dbUtils db;
        db.open((account() + "/db/plugin/kab.db").c_str(), nullptr);
        require(db.excuteNonQuery("delete from im_note") != 0, "the notes can be removed");
        require(db.excuteNonQuery("delete from im_room") != 0, "the rooms can be removed");
    }
};

/// Reads `text` as the tree's file `name` by read(transfer) and writes what came of it into an empty plugin database,
/// twice.
template <class Read>
void requireWrittenOnce(const TreeSandbox& sandbox, const std::string& name, const std::string& text, Read read) {
    Sandbox::write(sandbox.tree() + name + ".decrypt", text);
    sandbox.emptyDatabase();
    dbTrans transfer;
    sandbox.enter(transfer);
    read(transfer);
    require(transfer.wtAllToDBNJ() == 0, "the plugin database takes what was read");
    transfer.report = {};
    require(transfer.wtAllToDBNJ() == 0, "and takes it again");
    require(transfer.report.notesInserted == 0 && transfer.report.roomsInserted == 0,
            "a second import doubles nothing");
    sandbox.requireUntouched(sandbox.account() + "/file");
}

}  // namespace fuzz
