// What the account maker, the floor and the project's side agree on.
#pragma once

namespace bench {

inline constexpr const char* kUser = "2000000000000001";
inline constexpr long long kUserId = 2000000000000001;
inline constexpr const char* kVersion = "1.0";
inline constexpr const char* kKeyText = "a key text of the benchmarks";

/// Exports select everything from this day on; the accounts begin later. The floor names it in SQL, as the project
/// does.
inline constexpr int kSinceYear = 2000;
inline constexpr int kSinceMonth = 1;
inline constexpr int kSinceDay = 1;
inline constexpr const char* kWhereSince =
    " where (year_ > 2000) or (year_ = 2000 and mon > 1) or (year_ = 2000 and mon = 1 and day_ >= 1)";

/// Where a package keeps its message files, below the folder that an export is given.
inline constexpr const char* kMessageFolder = "/qelmsg_0/messages_0/2000000000000001/";
inline constexpr const char* kAttachmentFolder = "/qelmsg_0/qelimfiles_0/2000000000000001/";

}  // namespace bench
