// The attachment names in the body of a voice, image or file message.
#pragma once

#include <string>

namespace chattransfer {

// Message types that carry attachments in a package.
inline constexpr int kVoiceMessage = 3;
inline constexpr int kImageMessage = 5;
inline constexpr int kFileMessage = 6;

[[nodiscard]] inline bool carriesAttachments(int msgType) {
    return msgType == kVoiceMessage || msgType == kImageMessage || msgType == kFileMessage;
}

/// What a body names.
struct AttachmentBody {
    /// The body is a JSON object of a type that carries attachments; else nothing below is set.
    bool recognised = false;
    /// Both keys of the type are there as texts.
    bool complete = false;
    std::string mediaUrl;
    std::string thumbUrl;  ///< images
    std::string fileName;  ///< voice and files

    /// Voice and files: the folder of mediaUrl (all of it when it has no "/"), "/" and fileName.
    [[nodiscard]] std::string packagePath() const;
};

[[nodiscard]] AttachmentBody readAttachmentBody(const std::string& body, int msgType);

/// The text before the last "/"; all of it when there is none.
[[nodiscard]] std::string folderOf(const std::string& path);

}  // namespace chattransfer
