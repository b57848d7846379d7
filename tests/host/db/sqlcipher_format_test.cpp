// A keyed database is read here without the database library, straight from the published file format: existing tools
// must be able to open what we write.
#include <openssl/evp.h>
#include <openssl/hmac.h>

#include <array>
#include <cstring>
#include <string>

#include "tests/host/db/database_test.h"

namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kSalt = 16;
constexpr std::size_t kIv = 16;
constexpr std::size_t kMac = 64;
constexpr std::size_t kCipherText = kPage - kIv - kMac;  // where the encrypted bytes of a page end

using Key = std::array<unsigned char, 32>;

const unsigned char* bytesOf(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.data());
}

Key derive(const std::string& secret, const std::string& salt, int rounds) {
    Key key{};
    EXPECT_EQ(1, PKCS5_PBKDF2_HMAC(secret.data(), static_cast<int>(secret.size()), bytesOf(salt),
                                   static_cast<int>(salt.size()), rounds, EVP_sha512(), static_cast<int>(key.size()),
                                   key.data()));
    return key;
}

std::string textOf(const Key& key) {
    return {key.begin(), key.end()};
}

std::string authenticationCode(const Key& key, const std::string& message) {
    std::array<unsigned char, kMac> code{};
    unsigned size = 0;
    HMAC(EVP_sha512(), key.data(), static_cast<int>(key.size()), bytesOf(message), message.size(), code.data(), &size);
    return {code.begin(), code.begin() + size};
}

std::string decrypted(const Key& key, const std::string& iv, const std::string& cipherText) {
    std::string plain(cipherText.size() + EVP_MAX_BLOCK_LENGTH, '\0');
    int size = 0;
    EVP_CIPHER_CTX* context = EVP_CIPHER_CTX_new();
    EVP_DecryptInit_ex(context, EVP_aes_256_cbc(), nullptr, key.data(), bytesOf(iv));
    EVP_CIPHER_CTX_set_padding(context, 0);
    EVP_DecryptUpdate(context, reinterpret_cast<unsigned char*>(plain.data()), &size, bytesOf(cipherText),
                      static_cast<int>(cipherText.size()));
    EVP_CIPHER_CTX_free(context);
    plain.resize(static_cast<std::size_t>(size));
    return plain;
}

class SqlcipherFormatTest : public testing::Test {
protected:
    void SetUp() override {
        test::runSql(dir_.at("keyed.db"), {"create table im_msg_42(msgID integer)"}, "secret");
        page_ = test::readFile(dir_.at("keyed.db")).substr(0, kPage);
        ASSERT_EQ(kPage, page_.size());
        salt_ = page_.substr(0, kSalt);
        key_ = derive("secret", salt_, 256000);
    }

    test::TempDir dir_;
    std::string page_;
    std::string salt_;
    Key key_{};
};

TEST_F(SqlcipherFormatTest, ThePageIsAes256CbcUnderTheDerivedKey) {
    const std::string plain = decrypted(key_, page_.substr(kCipherText, kIv), page_.substr(kSalt, kCipherText - kSalt));
    EXPECT_EQ(std::string("\x10\x00", 2), plain.substr(0, 2)) << "page size";
    EXPECT_EQ('\x50', plain[4]) << "80 reserved bytes";
    EXPECT_NE(std::string::npos, plain.find("CREATE TABLE im_msg_42"));
}

TEST_F(SqlcipherFormatTest, ThePageIsAuthenticated) {
    std::string macSalt = salt_;
    for (char& c : macSalt)
        c = static_cast<char>(c ^ 0x3A);
    const Key macKey = derive(textOf(key_), macSalt, 2);
    const std::string message = page_.substr(kSalt, kCipherText + kIv - kSalt) + std::string("\1\0\0\0", 4);
    EXPECT_TRUE(page_.substr(kPage - kMac) == authenticationCode(macKey, message));
}

TEST_F(SqlcipherFormatTest, AFlippedBitIsNoticed) {
    page_[2000] = static_cast<char>(page_[2000] ^ 1);
    dir_.write("keyed.db", page_ + test::readFile(dir_.at("keyed.db")).substr(kPage));
    imsdk::dbUtils db;
    EXPECT_EQ(0, db.open(dir_.at("keyed.db").c_str(), "secret"));
}

}  // namespace
