#include "tests/app/view/view_fixture.h"

#include <algorithm>
#include <filesystem>

#include "tests/support/json_text.h"
#include "tests/support/listed.h"

namespace test {
namespace {

namespace fs = std::filesystem;

std::string jsonOf(const Said& said) {
    return R"({"date": )" + said.day + R"(, "msgs": [{"sendUserID": )" + std::to_string(said.sender) +
           R"(, "sendTime": )" + std::to_string(said.time) + R"(, "message": )" + quoted(said.body) +
           R"(, "messageType": )" + std::to_string(said.type) + R"(, "messageID": )" + std::to_string(said.id) +
           R"(, "senderSessionID": )" + std::to_string(said.conversation) + "}]}";
}

}  // namespace

std::string fileBody(const std::string& mediaUrl, const std::string& fileName) {
    return R"({"mediaUrl": )" + quoted(mediaUrl) + R"(, "fileName": )" + quoted(fileName) + "}";
}

std::string pictureBody(const std::string& mediaUrl, const std::string& thumbUrl) {
    return R"({"mediaUrl": )" + quoted(mediaUrl) + R"(, "thumbUrl": )" + quoted(thumbUrl) + "}";
}

void ViewTest::writePackage(const std::vector<Said>& messages, const std::vector<std::string>& contacts) const {
    const std::string folder = std::string("package/qelmsg_0/messages_0/") + kUser + "/";
    std::vector<std::string> days;
    days.reserve(messages.size());
    for (const Said& message : messages)
        days.push_back(jsonOf(message));
    dir_.write(folder + "msg_0.mg", R"({"version": "1.0", "msgs": [)" + listed(days, ",") + "]}");
    dir_.write(folder + "recontact.mg", R"({"version": "1.0", "recontact": [)" + listed(contacts, ",") + "]}");
    dir_.makeDir(std::string("package/qelmsg_0/qelimfiles_0/") + kUser);
}

void ViewTest::writeAttachment(const std::string& name, const std::string& bytes) const {
    dir_.write(std::string("package/qelmsg_0/qelimfiles_0/") + kUser + "/" + name, bytes);
}

std::string ViewTest::contact(long long id, const std::string& name, int top, const std::string& lastText) {
    return R"({"targetID": )" + std::to_string(id) + R"(, "name": )" + quoted(name) + R"(, "top": )" +
           std::to_string(top) + R"(, "lastMsg": )" + quoted(lastText) + "}";
}

Outcome ViewTest::view(const std::string& from, const std::string& to, const Arguments& more,
                       const std::string& zone) const {
    const Arguments arguments = {"view", "--from", at(from), "--user", kUser, "--to", at(to)};
    return chatTransfer(joined(arguments, more), {{"TZ=" + zone}});
}

void ViewTest::makePages() const {
    ASSERT_EXIT_CODE(0, view("package", "pages"));
}

void ViewTest::makePagesOf(const std::vector<Said>& messages, const std::vector<std::string>& contacts) const {
    writePackage(messages, contacts);
    makePages();
}

std::vector<std::string> ViewTest::filesEnding(const std::string& ending) const {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(at("pages"))) {
        if (entry.path().extension() == ending) names.push_back(entry.path().lexically_relative(at("pages")).string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string ViewTest::allPages() const {
    std::string text;
    for (const std::string& name : filesEnding(".html"))
        text += page(name);
    return text;
}

void ViewTest::expectWholeSample(const Outcome& run) const {
    expectRows(expectSuccess(run), {{"Messages", "300"}, {"Conversations", "4"}, {"Attachments missing", "0"}});
    EXPECT_EQ(300U, countOf(R"(<li id="m)", allPages()));
}

std::size_t countOf(const std::string& part, const std::string& text) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

std::vector<std::string> valuesOf(const std::string& attribute, const std::string& page) {
    const std::string begin = " " + attribute + R"(=")";
    std::vector<std::string> values;
    for (std::size_t at = page.find(begin); at != std::string::npos; at = page.find(begin, at)) {
        at += begin.size();
        values.push_back(page.substr(at, page.find('"', at) - at));
    }
    return values;
}

}  // namespace test
