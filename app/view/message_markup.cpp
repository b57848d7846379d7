#include "app/view/message_markup.h"

#include <string>
#include <vector>

#include "app/view/clock.h"
#include "app/view/conversation_text.h"
#include "app/view/shown_text.h"

namespace app::view {
namespace {

// Pages of conversations lie two folders below the copies' parent.
Markup& addMediaPath(Markup& page, const std::string& name) {
    return page.tag("../../media/").text(name);
}

void addTime(Markup& page, const Message& message, std::size_t number) {
    const auto clock = clockOf(message.time);
    page.tag(R"(<a class="time" href="#m)").number(static_cast<long long>(number)).tag(R"(">)");
    if (clock) {
        page.tag(R"(<time datetime=")").text(clockText(*clock)).tag(R"(">)").text(clockText(*clock)).tag("</time>");
    } else {
        page.tag("no time");
    }
    page.tag("</a>");
}

std::string nameOfFile(const NamedFile& file) {
    constexpr std::size_t kLongestName = 255;
    return shortLine(file.shownName, kLongestName);
}

void addMissing(Markup& page, const NamedFile& file) {
    page.tag(R"(<p class="missing">Not in this backup: <bdi>)").text(nameOfFile(file)).tag("</bdi></p>");
}

void addFileLink(Markup& page, const NamedFile& file, const std::string& copy) {
    const std::string name = nameOfFile(file);
    addMediaPath(page.tag(R"(<p><a class="file" href=")"), copy);
    page.tag(R"(" download=")").text(name).tag(R"("><bdi>)").text(name).tag("</bdi></a></p>");
}

void addPicture(Markup& page, const std::string& copy, const std::string& sender) {
    addMediaPath(page.tag(R"(<p class="picture"><a href=")"), copy);
    addMediaPath(page.tag(R"("><img src=")"), copy);
    page.tag(R"(" alt="Picture from )").text(sender).tag(R"(" loading="lazy" decoding="async"></a></p>)");
}

// What the browser cannot play can still be opened by another program.
void addVoice(Markup& page, const NamedFile& file, const std::string& copy) {
    addMediaPath(page.tag(R"(<p class="voice"><audio controls preload="metadata" aria-label="Voice message" src=")"),
                 copy);
    page.tag(R"("></audio></p>)");
    addFileLink(page, file, copy);
}

void addVideo(Markup& page, const NamedFile& file, const std::string& copy, const std::string& still) {
    addMediaPath(page.tag(R"(<p class="video"><video controls preload="none" src=")"), copy).tag("\"");
    if (!still.empty()) addMediaPath(page.tag(R"( poster=")"), still).tag("\"");
    page.tag("></video></p>");
    addFileLink(page, file, copy);
}

// Shows the files of one message, one after another.
class FilesOfMessage {
public:
    FilesOfMessage(Markup& page, const std::vector<NamedFile>& files, MediaFolder& media, std::string sender)
        : page_(page), files_(files), media_(media), sender_(std::move(sender)) {}

    void add() {
        for (std::size_t i = 0; i < files_.size(); ++i) {
            const bool followed = i + 1 < files_.size();
            if (files_[i].kind == MediaKind::picture && !files_[i].isPreview && followed && files_[i + 1].isPreview) {
                addPictureOrPreview(files_[i], files_[i + 1]);
                ++i;
            } else if (files_[i].isPreview && followed && files_[i + 1].kind == MediaKind::video) {
                addOne(files_[i + 1], media_.copyOf(files_[i]));
                ++i;
            } else {
                addOne(files_[i], "");
            }
        }
    }

private:
    // The smaller picture is of use only where the picture itself is missing.
    void addPictureOrPreview(const NamedFile& picture, const NamedFile& preview) {
        std::string copy = media_.copyOf(picture);
        if (copy.empty()) copy = media_.copyOf(preview);
        addCopy(picture, copy, "");
    }

    void addOne(const NamedFile& file, const std::string& still) { addCopy(file, media_.copyOf(file), still); }

    void addCopy(const NamedFile& file, const std::string& copy, const std::string& still) {
        if (copy.empty()) {
            addMissing(page_, file);
        } else if (file.kind == MediaKind::picture) {
            addPicture(page_, copy, sender_);
        } else if (file.kind == MediaKind::voice) {
            addVoice(page_, file, copy);
        } else if (file.kind == MediaKind::video) {
            addVideo(page_, file, copy, still);
        } else {
            addFileLink(page_, file, copy);
        }
    }

    Markup& page_;
    const std::vector<NamedFile>& files_;
    MediaFolder& media_;
    std::string sender_;
};

void addBody(Markup& page, const History& history, const Message& message, MediaFolder& media) {
    const std::vector<NamedFile> files = history.filesOf(message.body, message.type);
    if (files.empty()) {
        page.tag(R"(<div class="body" dir="auto">)").text(shownText(message.body)).tag("</div>");
        return;
    }
    page.tag(R"(<div class="body files">)");
    FilesOfMessage(page, files, media, senderOf(history, message)).add();
    page.tag("</div>");
}

}  // namespace

void addMessage(Markup& page, const History& history, const Message& message, std::size_t number, MediaFolder& media) {
    page.tag(R"(<li id="m)").number(static_cast<long long>(number)).tag(R"(" class="message)");
    if (isOwn(history, message)) page.tag(" own");
    page.tag(R"("><p class="meta"><bdi class="sender">)").text(senderOf(history, message)).tag("</bdi> ");
    addTime(page, message, number);
    page.tag("</p>");
    addBody(page, history, message, media);
    page.tag("</li>\n");
}

}  // namespace app::view
