#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

#include "host/tools.h"

namespace {

using tools::getUniqueNameByUrl;

bool isValidEverywhere(const std::string& name) {
    const std::string allowed = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_.";
    return !name.empty() && name.size() <= 120 && name.front() != '.' && name.back() != '.' &&
           name.find_first_not_of(allowed) == std::string::npos;
}

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? c + 32 : c; });
    return text;
}

// The name without its "_<40 hexadecimal digits>".
std::string withoutHash(const std::string& name) {
    const std::size_t underscore = name.rfind('_');
    EXPECT_NE(underscore, std::string::npos) << name;
    const std::string hash = name.substr(underscore + 1, 40);
    EXPECT_EQ(hash.size(), 40U) << name;
    EXPECT_EQ(hash.find_first_not_of("0123456789abcdef"), std::string::npos) << name;
    return name.substr(0, underscore) + name.substr(std::min(name.size(), underscore + 41));
}

std::string readable(const std::string& url) {
    return withoutHash(getUniqueNameByUrl(url, true));
}

TEST(UniqueNameTest, EqualUrlsGiveEqualNames) {
    EXPECT_EQ(getUniqueNameByUrl("https://a.example/x.jpg", true), getUniqueNameByUrl("https://a.example/x.jpg", true));
}

TEST(UniqueNameTest, TheHashIsTheBeginningOfSha256OfTheWholeUrl) {
    // FIPS 180-4's well-known digest of "abc".
    EXPECT_EQ(getUniqueNameByUrl("abc", true), "abc_ba7816bf8f01cfea414140de5dae2223b00361a3");
}

TEST(UniqueNameTest, KeepsAReadableStemAndTheExtension) {
    EXPECT_EQ(readable("https://cdn.example/album/holiday-photo.jpg"), "holiday-photo.jpg");
}

TEST(UniqueNameTest, UrlsThatDifferAnywhereGiveDifferentNames) {
    const std::set<std::string> names = {
        getUniqueNameByUrl("https://a.example/x.jpg", true),     getUniqueNameByUrl("https://b.example/x.jpg", true),
        getUniqueNameByUrl("http://a.example/x.jpg", true),      getUniqueNameByUrl("https://a.example/1/x.jpg", true),
        getUniqueNameByUrl("https://a.example/x.jpg?s=1", true), getUniqueNameByUrl("https://a.example/x.jpg#1", true),
        getUniqueNameByUrl("https://a.example/x.jpg?", true),    getUniqueNameByUrl("https://a.example/x!jpg", true)};
    EXPECT_EQ(names.size(), 8U);
}

TEST(UniqueNameTest, UrlsThatDifferOnlyInCaseGiveNamesThatDifferInMore) {
    EXPECT_NE(lowered(getUniqueNameByUrl("https://a.example/X.jpg", true)),
              lowered(getUniqueNameByUrl("https://a.example/x.jpg", true)));
}

TEST(UniqueNameTest, UrlsThatDifferAfterANulGiveDifferentNames) {
    const std::string one("https://a.example/x\0one", 23);
    const std::string two("https://a.example/x\0two", 23);
    EXPECT_NE(getUniqueNameByUrl(one, true), getUniqueNameByUrl(two, true));
}

TEST(UniqueNameTest, ManyUrlsGiveAsManyNames) {
    std::set<std::string> names;
    for (int i = 0; i < 10000; ++i)
        names.insert(lowered(getUniqueNameByUrl("https://a.example/photo.jpg?id=" + std::to_string(i), true)));
    EXPECT_EQ(names.size(), 10000U);
}

TEST(UniqueNameTest, QueryAndFragmentDoNotShow) {
    EXPECT_EQ(readable("https://a.example/x.jpg?name=/evil.exe"), "x.jpg");
    EXPECT_EQ(readable("https://a.example/x.jpg#/evil.exe"), "x.jpg");
}

TEST(UniqueNameTest, TheHostIsNoName) {
    EXPECT_EQ(readable("https://example.com"), "file");
    EXPECT_EQ(readable("https://example.com/"), "file");
    EXPECT_EQ(readable("https://example.com?x=/a.jpg"), "file");
}

TEST(UniqueNameTest, TheEmptyUrlHasAName) {
    EXPECT_EQ(readable(""), "file");
}

TEST(UniqueNameTest, ExtensionsAreLowerCase) {
    EXPECT_EQ(readable("https://a.example/x.JPG"), "x.jpg");
}

TEST(UniqueNameTest, OnlyPlainExtensionsOfUpToTenCharactersCount) {
    EXPECT_EQ(readable("a/x.abcdefghij"), "x.abcdefghij");
    EXPECT_EQ(readable("a/x.abcdefghijk"), "x-abcdefghijk");
    EXPECT_EQ(readable("a/x.j%20g"), "x-j-20g");
    EXPECT_EQ(readable("a/x."), "x");
}

TEST(UniqueNameTest, ANameThatIsAllExtensionGetsAStem) {
    EXPECT_EQ(readable("a/.jpg"), "file.jpg");
}

TEST(UniqueNameTest, DotsInTheStemBecomeDashes) {
    EXPECT_EQ(readable("a/../archive..tar.gz"), "archive-tar.gz");
}

TEST(UniqueNameTest, EndingsOfTheTransfersOwnFilesAreDropped) {
    for (const char* ending : {"mg", "ct", "nt", "rm", "decrypt", "CT"})
        EXPECT_EQ(readable(std::string("https://a.example/x.") + ending), "x");
}

TEST(UniqueNameTest, CharactersForbiddenInNamesBecomeDashes) {
    EXPECT_EQ(readable("a/one<two>:\"three\\four|five*six\nseven eight.png"),
              "one-two-three-four-five-six-seven-eight.png");
}

TEST(UniqueNameTest, NonAsciiTextBecomesDashes) {
    EXPECT_EQ(readable("https://a.example/caf\xC3\xA9-\xD0\xBA\xD0\xBE\xD1\x82 1.jpg"), "caf-1.jpg");
}

TEST(UniqueNameTest, LongNamesAreCut) {
    EXPECT_EQ(readable("a/" + std::string(10000, 'x') + ".jpg"), std::string(40, 'x') + ".jpg");
}

TEST(UniqueNameTest, EveryByteGivesAValidName) {
    for (int byte = 0; byte < 256; ++byte) {
        const std::string text(1, static_cast<char>(byte));
        for (const std::string& url : {text, "a/" + text, text + ".jpg", "x" + text + "y", "x." + text, "x" + text}) {
            EXPECT_TRUE(isValidEverywhere(getUniqueNameByUrl(url, true))) << byte;
            EXPECT_TRUE(isValidEverywhere(getUniqueNameByUrl(url, false))) << byte;
        }
    }
}

TEST(UniqueNameTest, WithoutUniqueTheHashIsLeftOut) {
    EXPECT_EQ(getUniqueNameByUrl("https://a.example/x.jpg?s=1", false), "x.jpg");
    EXPECT_EQ(getUniqueNameByUrl("", false), "file");
}

TEST(UniqueNameTest, NamesOfDevicesAreAvoided) {
    EXPECT_EQ(getUniqueNameByUrl("a/CON", false), "file-CON");
    EXPECT_EQ(getUniqueNameByUrl("a/nul.txt", false), "file-nul.txt");
    EXPECT_EQ(getUniqueNameByUrl("a/Com1.x", false), "file-Com1.x");
    EXPECT_EQ(getUniqueNameByUrl("a/lpt9", false), "file-lpt9");
    EXPECT_EQ(getUniqueNameByUrl("a/com10.x", false), "com10.x");
    EXPECT_EQ(getUniqueNameByUrl("a/CON", true).substr(0, 4), "CON_");
}

}  // namespace
