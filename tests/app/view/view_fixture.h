// What the tests of the pages share: packages written message by message, and the pages that come of them.
#pragma once

#include <string>
#include <vector>

#include "tests/app/sample_tree_fixture.h"

namespace test {

/// A message of a package. What a test does not care about has a value that makes sense.
struct Said {
    std::string body = "hello";
    long long conversation = 2002;
    long long sender = 2002;
    int type = 1;
    std::string day = R"({"year": 2024, "month": 3, "day": 7})";
    long long time = 1709820300000;  ///< 2024-03-07 14:05 UTC
    long long id = 1;
};

/// The body of a message that names files.
std::string fileBody(const std::string& mediaUrl, const std::string& fileName);
std::string pictureBody(const std::string& mediaUrl, const std::string& thumbUrl);

class ViewTest : public SampleTreeTest {
protected:
    /// Writes the package of the user kUser in the folder "package"; `contacts` are objects of recontact.mg.
    void writePackage(const std::vector<Said>& messages, const std::vector<std::string>& contacts = {}) const;
    /// Puts a file under the package's attachments.
    void writeAttachment(const std::string& name, const std::string& bytes) const;
    /// An object of recontact.mg.
    static std::string contact(long long id, const std::string& name, int top = 0, const std::string& lastText = "");

    /// The command, with its clock in UTC. `more` goes behind.
    Outcome view(const std::string& from, const std::string& to, const Arguments& more = {},
                 const std::string& zone = "UTC") const;
    /// Makes the pages of "package" in "pages".
    void makePages() const;
    /// Both.
    void makePagesOf(const std::vector<Said>& messages, const std::vector<std::string>& contacts = {}) const;

    /// The command made the pages of a sample of 300 messages in 4 conversations, and they hold all of it.
    void expectWholeSample(const Outcome& run) const;

    /// A file of "pages".
    std::string page(const std::string& name) const { return readFile(at("pages/" + name)); }
    /// The first page of the conversation 2002.
    std::string firstPage() const { return page("conversations/2002/1.html"); }
    /// The names of all files of "pages" with the ending, below the folder, sorted.
    std::vector<std::string> filesEnding(const std::string& ending) const;
    /// All pages in one text.
    std::string allPages() const;
};

/// How often `part` stands in `text`.
std::size_t countOf(const std::string& part, const std::string& text);

/// The values of the attribute in all elements of a page, in order.
std::vector<std::string> valuesOf(const std::string& attribute, const std::string& page);

}  // namespace test
