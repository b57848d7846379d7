#include "app/report/left_out.h"

#include <ostream>

#include "app/base/printable.h"
#include "app/base/units.h"

namespace app {
namespace {

// Names of attachments, tables and records may look like paths, and are none of this system.
bool isNamedByPath(chattransfer::Omission kind) {
    using chattransfer::OmittedThing;
    const OmittedThing thing = chattransfer::thingOf(kind);
    return thing == OmittedThing::messageFile || thing == OmittedThing::contactFile ||
           thing == OmittedThing::treeFile || thing == OmittedThing::folder || thing == OmittedThing::package;
}

}  // namespace

void printLeftOut(const TransferReport& report, std::ostream& out) {
    if (report.skippedCount == 0) return;
    out << "Left out:\n";
    long long named = 0;
    for (const TransferReport::Skipped& skipped : report.skipped) {
        if (named++ == kNamedAtMost) break;
        out << "  " << shortened(skipped.what, 200) << ": " << printable(skipped.reason) << '\n';
    }
    if (report.skippedCount > kNamedAtMost)
        out << "  ... and " << grouped(report.skippedCount - kNamedAtMost) << " more\n";
}

TransferReport asGiven(TransferReport report, const GivenFolder& folder) {
    for (TransferReport::Skipped& skipped : report.skipped) {
        if (isNamedByPath(skipped.kind)) skipped.what = folder.nameOf(skipped.what);
    }
    return report;
}

std::string firstReasonBesideAttachments(const TransferReport& report) {
    for (const TransferReport::Skipped& skipped : report.skipped) {
        if (!chattransfer::isAttachment(skipped.kind)) return skipped.what + ": " + skipped.reason;
    }
    return "";
}

}  // namespace app
