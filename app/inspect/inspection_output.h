// Parts of what `inspect` prints that packages and trees share: rows of the table of totals, members of the JSON.
#pragma once

#include <iosfwd>
#include <map>
#include <string>

#include "app/attachments/attachment_files.h"
#include "app/inspect/history_summary.h"
#include "app/report/summary.h"
#include "host/json.h"

namespace app {

/// How many files say which version.
using FileVersions = std::map<std::string, int>;

void addTotals(Summary& table, const FileVersions& versions, const HistorySummary& history);
void addTotals(Summary& table, const AttachmentCounts& counts);

/// One line for each conversation.
void printConversations(const HistorySummary& history, std::ostream& out);

/// As "versions".
void addVersions(JSON_Object* object, const FileVersions& versions);

/// Messages, days and types.
void addMessages(JSON_Object* object, const HistorySummary& history);

/// As "conversations".
void addConversations(JSON_Object* object, const HistorySummary& history);

/// What a package or tree has of the attachments, as "attachments".
void addAttachments(JSON_Object* object, const AttachmentCounts& counts);

}  // namespace app
