#include "app/tree/tree_contact_files.h"

#include <map>
#include <ostream>

#include "app/base/printable.h"
#include "app/base/text_table.h"
#include "app/base/units.h"
#include "app/tree/tree_files.h"
#include "host/files/folder_walk.h"

namespace app {
namespace {

using FilesByName = std::map<std::string, const TreeContactFile*>;

// The file that an entry of the tree stands for: itself, or the encrypted one whose decrypted copy it is.
const TreeContactFile* fileOf(const std::string& entry, const FilesByName& files) {
    auto found = files.find(entry);
    if (found == files.end() && isDecryptedCopy(entry)) found = files.find(nameWithoutDecrypted(entry));
    return found != files.end() ? found->second : nullptr;
}

}  // namespace

const TreeContactFile* lastListedFile(const TreeSource& source, const std::vector<TreeContactFile>& files) {
    if (files.empty()) return nullptr;
    const TreeContactFile* last = &files.back();
    if (files.size() == 1) return last;
    FilesByName named;
    for (const TreeContactFile& file : files)
        named.emplace(file.name, &file);
    // The walk of an import, in its order: a folder that cannot be read has no contacts for either.
    tools::FolderWalk walk(source.root);
    static_cast<void>(walk.enter());
    while (walk.next()) {
        const bool isFolder = walk.status().kind == tools::FileKind::folder;
        if (isFolder && walk.depth() <= kDeepestFolder) static_cast<void>(walk.enter());
        const TreeContactFile* file = fileOf(walk.name(), named);
        if (file != nullptr) last = file;
    }
    return last;
}

void printContactFiles(std::ostream& out, const std::vector<TreeContactFile>& files, const TreeContactFile* chosen,
                       const char* mark) {
    if (files.size() < 2) return;
    out << "There are " << grouped(static_cast<long long>(files.size()))
        << " files of recent contacts. An import takes the contacts of only one of them, the last that the system "
           "lists:\n";
    TextTable table({Align::right, Align::left, Align::left});
    for (const TreeContactFile& file : files) {
        table.add(
            {grouped(static_cast<long long>(file.contacts.size())), &file == chosen ? mark : "", printable(file.name)});
    }
    table.print(out);
}

}  // namespace app
