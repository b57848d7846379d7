// `chat-transfer inspect` for a package.
#pragma once

#include <string>

#include "app/places/package_place.h"
#include "app/report/run_report.h"

namespace app {

/// Prints what the package of the user holds, as tables or as JSON.
void inspectPackage(const PackagePlace& place, const std::string& user, bool json, RunReport& run);

}  // namespace app
