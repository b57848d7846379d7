// What stands in a folder, to show that an operation left it alone.
#pragma once

#include <string>
#include <vector>

namespace test {

/// One line for each file, folder and link below `folder`: relative name, kind, permissions, and bytes or target.
/// Nothing at or below the `except`ed relative names is listed.
std::string snapshotOf(const std::string& folder, const std::vector<std::string>& except = {});

/// Expects that no file below `folder` holds `bytes`; links are not followed.
void expectNowhereIn(const std::string& folder, const std::string& bytes);

}  // namespace test
