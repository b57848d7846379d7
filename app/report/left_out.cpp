#include "app/report/left_out.h"

#include <ostream>
#include <string_view>

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

bool isAttachment(const TransferReport::Skipped& skipped) {
    constexpr std::string_view kBegin = "the attachment";
    return skipped.reason.compare(0, kBegin.size(), kBegin) == 0;
}

std::string firstReasonBesideAttachments(const TransferReport& report) {
    for (const TransferReport::Skipped& skipped : report.skipped) {
        if (!isAttachment(skipped)) return skipped.what + ": " + skipped.reason;
    }
    return "";
}

}  // namespace app
