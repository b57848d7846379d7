// Made-up accounts for the benchmarks: the same arguments give the same bytes on every machine.
#pragma once

#include <string>

namespace bench {

struct AccountPlan {
    int conversations = 0;
    int messages = 0;                ///< per conversation
    int days = 365;                  ///< the messages of each conversation are spread evenly over them
    int attachmentsPerHundred = 10;  ///< how many of a hundred messages name voice, image or file attachments
    int attachmentBytes = 0;  ///< size of the real files; 0 makes none. With files, all attachments are of type file
    int firstMessage = 0;     ///< messages before this number are left out: a later part of the same history
    bool keyed = false;       ///< encrypted databases
};

/// Makes the folder `root` with the databases and attachment folders of an account. Ids have 16 digits, below 2^53.
/// Returns the mean length of a message body in bytes.
double makeAccount(const AccountPlan& plan, const std::string& root);

/// The same without messages: empty database files, as an import finds them in a fresh account.
void makeEmptyAccount(const std::string& root);

}  // namespace bench
