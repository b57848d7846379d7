// The folders and databases of an account, below the account's own folder.
#pragma once

namespace chattransfer {

// Attachments. Packages carry the first three kinds, trees all four.
inline constexpr const char* kAudioFolder = "/audio/";
inline constexpr const char* kFileFolder = "/file/";
inline constexpr const char* kImageFolder = "/image/";
inline constexpr const char* kVideoFolder = "/video/";

inline constexpr const char* kMainDatabase = "/db/imsg.db";
inline constexpr const char* kBackDatabase = "/db/backimsg.db";
inline constexpr const char* kPluginDatabase = "/db/plugin/kab.db";

}  // namespace chattransfer
