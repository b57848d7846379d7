// Files and folders of a tree, for hosts that import it step by step.
#include "host/tools.h"
#include "transfer/dbTrans.h"
#include "transfer/tree/tree_walk.h"

int dbTrans::getfiles(std::string dir, std::vector<std::string>& files, std::string ext) {
    chattransfer::listTreeFiles(dir, {ext, dbKey}, files, report);
    return 1;
}

int dbTrans::getsubdirs(std::string dir, std::vector<std::string>& dirs) {
    chattransfer::listSubfolders(dir, dirs, report);
    return 1;
}

long long dbTrans::getTargetIDFromePath(std::string& path) {
    return chattransfer::conversationOfPath(path);
}

bool dbTrans::unixdel_dir(char* path) {
    return tools::del_dir(path) == 0;
}
