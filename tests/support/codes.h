// The codes of the operations as hosts compare them: written out once more, so that a number that changes is noticed.
#pragma once

namespace test {

inline constexpr unsigned kPackageExists = 0xff00001e;
inline constexpr unsigned kDatabaseFailed = 0xff00001f;
inline constexpr unsigned kNoTables = 0xff000020;
inline constexpr unsigned kNotJson = 0xff000021;
inline constexpr unsigned kMissing = 0xff000022;
inline constexpr unsigned kJsonFailed = 0xff000023;
inline constexpr unsigned kWrongVersion = 0xff000024;

}  // namespace test
