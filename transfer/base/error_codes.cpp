#include "transfer/error_codes.h"

namespace chattransfer {

const char* meaningOf(unsigned int code) {
    switch (code) {
        case kSuccess:
            return "success";
        case kPackageExists:
            return "there is a package already, and it is never overwritten";
        case kDatabaseFailed:
            return "a database could not be opened or written";
        case kNoTables:
            return "the database lacks the tables of an account";
        case kNotJson:
            return "a package file is not JSON";
        case kMissing:
            return "a package, or a file of it, is missing";
        case kJsonFailed:
            return "the JSON of a message file could not be built";
        case kWrongVersion:
            return "the version in the package is not the expected one";
        default:
            return "an unknown result";
    }
}

}  // namespace chattransfer
