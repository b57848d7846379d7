#include "app/view/content_policy.h"

#include <gtest/gtest.h>

namespace app::view {
namespace {

bool has(const std::string& policy, const std::string& part) {
    return policy.find(part) != std::string::npos;
}

TEST(Base64OfHex, FollowsThePublishedVectors) {
    EXPECT_EQ("", base64OfHex(""));
    EXPECT_EQ("Zg==", base64OfHex("66"));
    EXPECT_EQ("Zm8=", base64OfHex("666f"));
    EXPECT_EQ("Zm9v", base64OfHex("666f6f"));
    EXPECT_EQ("Zm9vYmE=", base64OfHex("666f6f6261"));
    EXPECT_EQ("+/8A", base64OfHex("fbff00"));
}

TEST(ContentPolicy, AllowsNothingThatIsNotNamed) {
    for (const PageKind kind : {PageKind::plain, PageKind::conversation, PageKind::search}) {
        const std::string policy = contentPolicy(kind);
        EXPECT_EQ(0U, policy.find("default-src 'none'; base-uri 'none'; form-action 'none'; "));
        EXPECT_FALSE(has(policy, "unsafe"));
        EXPECT_FALSE(has(policy, "http"));
        EXPECT_FALSE(has(policy, "*"));
        EXPECT_FALSE(has(policy, "data:"));
    }
}

TEST(ContentPolicy, LetsOnlyTheSearchRunAScript) {
    EXPECT_FALSE(has(contentPolicy(PageKind::plain), "script-src"));
    EXPECT_FALSE(has(contentPolicy(PageKind::conversation), "script-src"));
    EXPECT_TRUE(has(contentPolicy(PageKind::search), "script-src 'sha256-"));
}

TEST(ContentPolicy, LetsOnlyConversationsShowPictures) {
    EXPECT_FALSE(has(contentPolicy(PageKind::plain), "img-src"));
    EXPECT_FALSE(has(contentPolicy(PageKind::search), "img-src"));
    EXPECT_TRUE(has(contentPolicy(PageKind::conversation), "img-src 'self' file:"));
}

}  // namespace
}  // namespace app::view
