#include "app/report/left_out.h"

#include <ostream>

#include "app/base/printable.h"
#include "app/base/units.h"

namespace app {

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

std::string firstReasonBesideAttachments(const TransferReport& report) {
    for (const TransferReport::Skipped& skipped : report.skipped) {
        if (!chattransfer::isAttachment(skipped.kind)) return skipped.what + ": " + skipped.reason;
    }
    return "";
}

}  // namespace app
