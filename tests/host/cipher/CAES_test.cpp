#include "host/CAES.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <map>
#include <new>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "host/cipher/cipher_container.h"
#include "host/cipher/cipher_error.h"
#include "host/cipher/cipher_files.h"
#include "host/cipher/cipher_key.h"
#include "host/cipher/cipher_key_cache.h"
#include "host/cipher/cipher_secret.h"
#include "host/cipher/cipher_stream.h"
#include "host/files/file_handle.h"
#include "tests/support/posix_helpers.h"
#include "tests/support/temp_dir.h"

namespace {

namespace fs = std::filesystem;

constexpr const char* kGoodKey = "correct horse";
constexpr std::size_t kPlainChunk = cipher::kChunkSize;
constexpr std::size_t kSealedChunk = cipher::kSealedChunkSize;

struct Outcome {
    int code;
    std::string reason;
};

Outcome convert(bool encrypt, const char* key, const std::string& input, const std::string& output) {
    std::array<char, 256> error{};
    const int code = CAES().File_Aes_Go_Block(encrypt, key, input.c_str(), output.c_str(), error.data());
    return {code, error.data()};
}

void expectFailure(const Outcome& outcome, const std::string& reason) {
    EXPECT_NE(outcome.code, 0);
    EXPECT_EQ(outcome.reason, reason);
}

// The container of the text with these parameters; leaves no file behind.
std::string sealWith(const cipher::Header& header, const cipher::TreeKey& treeKey, const std::string& text,
                     const test::TempDir& folder) {
    folder.write("text", text);
    cipher::InputFile input(folder.at("text").c_str());
    cipher::OutputFile output(folder.at("sealed"));
    cipher::ChunkPair chunks;
    cipher::sealFile(input, output, header, treeKey, chunks);
    output.commit();
    std::string container = test::readFile(folder.at("sealed"));
    fs::remove(folder.at("text"));
    fs::remove(folder.at("sealed"));
    return container;
}

class CAESTest : public testing::Test {
protected:
    Outcome encrypt(const std::string& from, const std::string& to, const char* key = kGoodKey) {
        return convert(true, key, folder_.at(from), folder_.at(to));
    }

    Outcome decrypt(const std::string& from, const std::string& to, const char* key = kGoodKey) {
        return convert(false, key, folder_.at(from), folder_.at(to));
    }

    // The encrypted form of a text; leaves no file behind.
    std::string containerOf(const std::string& text, const char* key = kGoodKey) {
        folder_.write("text", text);
        EXPECT_EQ(encrypt("text", "sealed", key).code, 0);
        std::string container = test::readFile(folder_.at("sealed"));
        fs::remove(folder_.at("text"));
        fs::remove(folder_.at("sealed"));
        return container;
    }

    // Decryption fails for a reason that begins so, leaves the input as it is and nothing beside it.
    void expectRefused(const std::string& container, const std::string& reason, const char* key = kGoodKey) {
        folder_.write("bad", container);
        const Outcome outcome = decrypt("bad", "opened", key);
        EXPECT_NE(outcome.code, 0);
        EXPECT_EQ(outcome.reason.compare(0, reason.size(), reason), 0) << outcome.reason;
        EXPECT_EQ(test::readFile(folder_.at("bad")), container);
        EXPECT_EQ(test::listing(folder_.path()), "bad");
    }

    test::TempDir folder_;
};

std::string chunkOf(const std::string& container, std::size_t number) {
    return container.substr(cipher::kHeaderSize + number * kSealedChunk, kSealedChunk);
}

std::string headerOf(const std::string& container) {
    return container.substr(0, cipher::kHeaderSize);
}

void putNumber(std::string& bytes, std::size_t offset, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i)
        bytes[offset + i] = static_cast<char>(value >> (24 - 8 * i));
}

std::uint64_t derivations() {
    return cipher::KeyCache::ofProcess().derivations();
}

constexpr const char* kFirstChunkBad = "wrong key, or the file is damaged, cut or extended";

// What comes back

class CAESRoundTrip : public CAESTest, public testing::WithParamInterface<std::size_t> {};

TEST_P(CAESRoundTrip, GivesTheTextBack) {
    const std::string text = test::patterned(GetParam());
    folder_.write("text", text);
    EXPECT_EQ(encrypt("text", "sealed").code, 0);
    EXPECT_EQ(decrypt("sealed", "opened").code, 0);
    EXPECT_TRUE(test::readFile(folder_.at("opened")) == text);
}

INSTANTIATE_TEST_SUITE_P(Sizes, CAESRoundTrip, testing::Values(0, 1, 15, 16, 17, 65535, 65536, 65537, 131072, 5000000));

TEST_F(CAESTest, LeavesTheInputAsItIs) {
    folder_.write("text", "hello");
    EXPECT_EQ(encrypt("text", "sealed").code, 0);
    EXPECT_EQ(test::readFile(folder_.at("text")), "hello");
}

TEST_F(CAESTest, AddsAHeaderAndOneTagForEachChunk) {
    EXPECT_EQ(containerOf("").size(), 68U + 16U);
    EXPECT_EQ(containerOf(test::patterned(65536)).size(), 68U + 65536U + 16U);
    EXPECT_EQ(containerOf(test::patterned(65537)).size(), 68U + 65537U + 2 * 16U);
}

TEST_F(CAESTest, TheContainerDoesNotShowTheText) {
    EXPECT_EQ(containerOf("a telling sentence").find("telling"), std::string::npos);
}

TEST_F(CAESTest, EncryptingATextTwiceGivesDifferentBytes) {
    const std::string first = containerOf("hello");
    const std::string second = containerOf("hello");
    EXPECT_NE(first.substr(cipher::kHeaderSize), second.substr(cipher::kHeaderSize));
}

TEST_F(CAESTest, KeysOfAnyBytesWork) {
    const char* key = "\xD0\xBA\xD0\xBB\xFF\x01 \n";
    folder_.write("sealed", containerOf("hello", key));
    EXPECT_EQ(decrypt("sealed", "opened", key).code, 0);
    EXPECT_EQ(test::readFile(folder_.at("opened")), "hello");
}

TEST_F(CAESTest, OneObjectServesSeveralFilesAfterAFailureToo) {
    CAES object;
    folder_.write("text", test::patterned(70000));
    const auto run = [&](bool encrypt, const char* from, const char* to) {
        return object.File_Aes_Go_Block(encrypt, kGoodKey, folder_.at(from).c_str(), folder_.at(to).c_str(), nullptr);
    };
    EXPECT_EQ(run(true, "text", "sealed"), 0);
    EXPECT_NE(run(false, "text", "opened"), 0);
    EXPECT_EQ(run(false, "sealed", "opened"), 0);
    EXPECT_TRUE(test::readFile(folder_.at("opened")) == test::patterned(70000));
}

// What is refused

TEST_F(CAESTest, AWrongKeyIsRefused) {
    expectRefused(containerOf("hello"), kFirstChunkBad, "correct horsf");
}

TEST_F(CAESTest, EveryCutOfASmallFileIsNoticed) {
    const std::string container = containerOf("hello");
    for (std::size_t size = 0; size < container.size(); ++size) {
        SCOPED_TRACE(size);
        const char* const reason = size < 8    ? "not an encrypted file"
                                   : size < 68 ? "damaged header: cut"
                                               : kFirstChunkBad;
        expectRefused(container.substr(0, size), reason);
    }
}

TEST_F(CAESTest, AFlippedBitInAnyByteIsNoticed) {
    // Each flipped bit of the tree salt costs a derivation: with the least iterations allowed they stay short.
    const cipher::Header header{cipher::kMinIterations, {1, 2, 3}, {4, 5, 6}};
    const cipher::TreeKey treeKey = cipher::deriveTreeKey(kGoodKey, header.treeSalt, header.iterations);
    const std::string container = sealWith(header, treeKey, "hello", folder_);
    for (std::size_t i = 0; i < container.size(); ++i) {
        SCOPED_TRACE(i);
        std::string damaged = container;
        damaged[i] = static_cast<char>(damaged[i] ^ (1 << (i % 8)));
        expectRefused(damaged, "");
    }
}

TEST_F(CAESTest, AppendedBytesAreNoticed) {
    const std::string container = containerOf("hello");
    expectRefused(container + '\0', kFirstChunkBad);
    expectRefused(container + container, kFirstChunkBad);
    expectRefused(container + chunkOf(container, 0), kFirstChunkBad);
}

TEST_F(CAESTest, BytesAppendedToAFullLastChunkAreNoticed) {
    expectRefused(containerOf(test::patterned(65536)) + "x", kFirstChunkBad);
}

TEST_F(CAESTest, SwappedChunksAreNoticed) {
    const std::string c = containerOf(test::patterned(3 * kPlainChunk));
    expectRefused(headerOf(c) + chunkOf(c, 0) + chunkOf(c, 2) + chunkOf(c, 1),
                  "damaged, cut or extended data at chunk 1");
}

TEST_F(CAESTest, ADroppedFirstChunkIsNoticed) {
    const std::string c = containerOf(test::patterned(3 * kPlainChunk));
    expectRefused(headerOf(c) + chunkOf(c, 1) + chunkOf(c, 2), kFirstChunkBad);
}

TEST_F(CAESTest, ADroppedMiddleChunkIsNoticed) {
    const std::string c = containerOf(test::patterned(3 * kPlainChunk));
    expectRefused(headerOf(c) + chunkOf(c, 0) + chunkOf(c, 2), "damaged, cut or extended data at chunk 1");
}

TEST_F(CAESTest, ADroppedLastChunkIsNoticed) {
    const std::string c = containerOf(test::patterned(3 * kPlainChunk));
    expectRefused(headerOf(c) + chunkOf(c, 0) + chunkOf(c, 1), "damaged, cut or extended data at chunk 1");
}

TEST_F(CAESTest, ADuplicatedChunkIsNoticed) {
    const std::string c = containerOf(test::patterned(2 * kPlainChunk));
    expectRefused(headerOf(c) + chunkOf(c, 0) + chunkOf(c, 0) + chunkOf(c, 1),
                  "damaged, cut or extended data at chunk 1");
}

TEST_F(CAESTest, ADuplicatedLastChunkIsNoticed) {
    const std::string c = containerOf(test::patterned(2 * kPlainChunk));
    expectRefused(c + chunkOf(c, 1), "damaged, cut or extended data at chunk 1");
}

TEST_F(CAESTest, AChunkOfAnotherFileUnderTheSameKeyIsNoticed) {
    const std::string one = containerOf(test::patterned(65537));
    const std::string other = containerOf(test::patterned(65537));
    expectRefused(headerOf(one) + chunkOf(one, 0) + chunkOf(other, 1), "damaged, cut or extended data at chunk 1");
}

TEST_F(CAESTest, TheHeaderOfAnotherFileUnderTheSameKeyIsNoticed) {
    expectRefused(headerOf(containerOf("one")) + chunkOf(containerOf("two"), 0), kFirstChunkBad);
}

TEST_F(CAESTest, AStubOfATagAfterAFullChunkIsNoticed) {
    expectRefused(containerOf(test::patterned(65537)).substr(0, cipher::kHeaderSize + kSealedChunk + 15),
                  "damaged, cut or extended data at chunk 1");
}

TEST_F(CAESTest, AnEmptyLastChunkAfterAnotherIsRefusedThoughItVerifies) {
    const cipher::WritingKey key = cipher::KeyCache::ofProcess().forWriting(kGoodKey);
    const cipher::Header header{key.iterations, key.treeSalt, cipher::randomFileSalt()};
    const cipher::HeaderBytes headerBytes = cipher::encodeHeader(header);
    cipher::ChunkCipher sealing(cipher::ChunkCipher::Direction::seal,
                                cipher::deriveFileKey(key.treeKey, header.fileSalt), headerBytes);
    std::string container(headerBytes.begin(), headerBytes.end());
    cipher::Chunk chunk;
    std::memset(chunk.data(), 'x', cipher::kChunkSize);
    for (const std::size_t size : {cipher::kChunkSize, std::size_t{0}}) {
        chunk.setSize(size);
        sealing.seal(size == 0 ? 1 : 0, size == 0, chunk);
        container.append(chunk.data(), chunk.data() + chunk.size());
    }
    expectRefused(container, "damaged, cut or extended data at chunk 1");
}

TEST_F(CAESTest, APlainFileIsNoEncryptedFile) {
    expectRefused("{\"messages\": []}", "not an encrypted file");
}

TEST_F(CAESTest, ANewerVersionIsNamed) {
    std::string container = containerOf("hello");
    container[9] = 2;
    expectRefused(container, "written by a newer version of the format (2)");
}

TEST_F(CAESTest, ANewerVersionIsNamedThoughItsHeaderIsShorter) {
    std::string container = containerOf("hello").substr(0, 20);
    container[8] = 1;
    expectRefused(container, "written by a newer version of the format (257)");
}

TEST_F(CAESTest, AVersionThatNeverWasIsRefused) {
    std::string container = containerOf("hello");
    container[9] = 0;
    expectRefused(container, "damaged header: no such version");
}

TEST_F(CAESTest, AnUnknownMethodIsRefused) {
    std::string container = containerOf("hello");
    container[10] = 2;
    expectRefused(container, "damaged header: unknown method");
}

TEST_F(CAESTest, AnIterationCountOutOfBoundsIsRefusedBeforeAnyDerivation) {
    std::string container = containerOf("hello");
    const std::uint64_t before = derivations();
    for (const std::uint32_t iterations : {0U, 1U, 99999U, 1000001U, 0x7FFFFFFFU, 0xFFFFFFFFU}) {
        putNumber(container, 12, iterations);
        expectRefused(container, "damaged header: iteration count out of bounds");
    }
    EXPECT_EQ(derivations(), before);
}

TEST_F(CAESTest, AnotherChunkSizeIsRefusedBeforeAnyDerivation) {
    std::string container = containerOf("hello");
    const std::uint64_t before = derivations();
    for (const std::uint32_t size : {0U, 1U, 65535U, 65537U, 0xFFFFFFFFU}) {
        putNumber(container, 16, size);
        expectRefused(container, "damaged header: chunk size out of bounds");
    }
    EXPECT_EQ(derivations(), before);
}

// The output

TEST_F(CAESTest, AFailureKeepsAnExistingOutput) {
    folder_.write("bad", containerOf("hello"));
    folder_.write("opened", "earlier");
    EXPECT_NE(decrypt("bad", "opened", "another key").code, 0);
    EXPECT_EQ(test::readFile(folder_.at("opened")), "earlier");
}

TEST_F(CAESTest, ASuccessReplacesAnExistingOutput) {
    folder_.write("sealed", containerOf("hello"));
    folder_.write("opened", "an earlier, longer text");
    EXPECT_EQ(decrypt("sealed", "opened").code, 0);
    EXPECT_EQ(test::readFile(folder_.at("opened")), "hello");
}

TEST_F(CAESTest, ALinkUnderTheOutputsNameIsReplacedAndItsTargetKept) {
    folder_.write("sealed", containerOf("hello"));
    folder_.write("target", "earlier");
    fs::create_symlink("target", folder_.at("opened"));
    EXPECT_EQ(decrypt("sealed", "opened").code, 0);
    EXPECT_EQ(test::readFile(folder_.at("target")), "earlier");
    EXPECT_TRUE(fs::symlink_status(folder_.at("opened")).type() == fs::file_type::regular);
}

TEST_F(CAESTest, AFileCanBeConvertedInPlace) {
    folder_.write("file", "hello");
    EXPECT_EQ(encrypt("file", "file").code, 0);
    EXPECT_EQ(test::readFile(folder_.at("file")).size(), 68U + 5U + 16U);
    EXPECT_EQ(decrypt("file", "file").code, 0);
    EXPECT_EQ(test::readFile(folder_.at("file")), "hello");
}

TEST_F(CAESTest, AFailureInPlaceKeepsTheFile) {
    folder_.write("file", "hello");
    EXPECT_NE(decrypt("file", "file").code, 0);
    EXPECT_EQ(test::readFile(folder_.at("file")), "hello");
}

TEST_F(CAESTest, TheOutputIsForItsOwnerAlone) {
    const mode_t mask = ::umask(0);
    folder_.write("text", "hello");
    const int code = encrypt("text", "sealed").code;
    ::umask(mask);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(fs::status(folder_.at("sealed")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST_F(CAESTest, ASuccessLeavesNothingBesideTheOutput) {
    folder_.write("text", "hello");
    EXPECT_EQ(encrypt("text", "sealed").code, 0);
    EXPECT_EQ(test::listing(folder_.path()), "sealed text");
}

TEST_F(CAESTest, TheOutputsNameMayBeAsLongAsTheFileSystemAllows) {
    folder_.write("text", "hello");
    EXPECT_EQ(encrypt("text", std::string(255, 'n')).code, 0);
}

TEST_F(CAESTest, APathWithoutAFolderMeansTheCurrentOne) {
    folder_.write("text", "hello");
    const fs::path before = fs::current_path();
    fs::current_path(folder_.path());
    const Outcome outcome = convert(true, kGoodKey, "text", "sealed");
    fs::current_path(before);
    EXPECT_EQ(outcome.code, 0);
    EXPECT_TRUE(fs::exists(folder_.at("sealed")));
}

TEST_F(CAESTest, AMissingOutputFolderIsAFailure) {
    folder_.write("text", "hello");
    expectFailure(encrypt("text", "missing/sealed"), "cannot write output: No such file or directory");
}

TEST_F(CAESTest, AFolderUnderTheOutputsNameIsAFailureAndStays) {
    folder_.write("text", "hello");
    fs::create_directory(folder_.at("sealed"));
    expectFailure(encrypt("text", "sealed"), "cannot write output: Is a directory");
    EXPECT_EQ(test::listing(folder_.path()), "sealed text");
}

TEST_F(CAESTest, AnOutputThatCannotBeWrittenWholeLeavesNothing) {
    folder_.write("text", test::patterned(300000));
    const test::FileSizeLimit limit(100000);
    expectFailure(encrypt("text", "sealed"), "cannot write output: File too large");
    EXPECT_EQ(test::listing(folder_.path()), "text");
}

TEST_F(CAESTest, AProcessKilledWhileWritingLeavesNoOutput) {
    folder_.write("text", test::patterned(300000));
    const pid_t child = ::fork();
    if (child == 0) {
        const rlimit noCore{0, 0};
        ::setrlimit(RLIMIT_CORE, &noCore);
        const test::FileSizeLimit limit(100000);
        (void)std::signal(SIGXFSZ, SIG_DFL);
        ::_exit(encrypt("text", "sealed").code);
    }
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_FALSE(fs::exists(folder_.at("sealed")));
}

// The input

TEST_F(CAESTest, AMissingInputIsAFailure) {
    expectFailure(encrypt("missing", "sealed"), "cannot open input: No such file or directory");
    EXPECT_EQ(test::listing(folder_.path()), "");
}

TEST_F(CAESTest, AFifoIsRefusedWithoutWaiting) {
    ASSERT_EQ(::mkfifo(folder_.at("fifo").c_str(), 0600), 0);
    expectFailure(encrypt("fifo", "sealed"), "input is not a regular file");
}

TEST_F(CAESTest, ASocketIsRefused) {
    const tools::detail::FileHandle listener(::socket(AF_UNIX, SOCK_STREAM, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    folder_.at("socket").copy(std::begin(address.sun_path), sizeof(address.sun_path) - 1);
    ASSERT_EQ(::bind(listener.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    expectFailure(encrypt("socket", "sealed"), "input is not a regular file");
}

TEST_F(CAESTest, AFolderAsInputIsRefused) {
    fs::create_directory(folder_.at("folder"));
    expectFailure(encrypt("folder", "sealed"), "input is not a regular file");
}

TEST_F(CAESTest, ALinkAsInputIsRefused) {
    folder_.write("text", "hello");
    fs::create_symlink("text", folder_.at("link"));
    expectFailure(encrypt("link", "sealed"), "input is not a regular file");
    EXPECT_EQ(test::listing(folder_.path()), "link text");
}

// The arguments

TEST_F(CAESTest, AMissingOrEmptyKeyIsRefused) {
    folder_.write("text", "hello");
    for (const char* key : {static_cast<const char*>(nullptr), ""}) {
        expectFailure(encrypt("text", "sealed", key), "no key");
        EXPECT_EQ(test::listing(folder_.path()), "text");
    }
}

TEST_F(CAESTest, AKeyTextBeyondTheLimitIsRefused) {
    folder_.write("text", "hello");
    EXPECT_EQ(encrypt("text", "sealed", std::string(65536, 'k').c_str()).code, 0);
    expectFailure(encrypt("text", "sealed", std::string(65537, 'k').c_str()), "key text too long");
}

TEST_F(CAESTest, MissingPathsAreRefused) {
    std::array<char, 256> error{};
    EXPECT_NE(CAES().File_Aes_Go_Block(true, kGoodKey, nullptr, "out", error.data()), 0);
    EXPECT_STREQ(error.data(), "no input path");
    EXPECT_NE(CAES().File_Aes_Go_Block(true, kGoodKey, "in", nullptr, error.data()), 0);
    EXPECT_STREQ(error.data(), "no output path");
    EXPECT_NE(convert(true, kGoodKey, "", "out").code, 0);
    EXPECT_NE(convert(true, kGoodKey, "in", "").code, 0);
}

TEST_F(CAESTest, AFailureWithoutAnErrorBufferIsJustAFailure) {
    EXPECT_NE(CAES().File_Aes_Go_Block(true, kGoodKey, folder_.at("missing").c_str(), "out", nullptr), 0);
}

TEST_F(CAESTest, ASuccessLeavesTheErrorBufferAlone) {
    folder_.write("text", "hello");
    EXPECT_EQ(encrypt("text", "sealed").reason, "");
}

TEST_F(CAESTest, ALongPathGivesATerminatedReasonWithin256Bytes) {
    std::string buffer(300, 'x');
    const std::string path(5000, 'p');
    EXPECT_NE(CAES().File_Aes_Go_Block(true, kGoodKey, path.c_str(), path.c_str(), buffer.data()), 0);
    EXPECT_LT(buffer.find('\0'), 256U);
    EXPECT_EQ(buffer.substr(256), std::string(44, 'x'));
}

// The cost

TEST_F(CAESTest, AThousandFilesUnderOneKeyCostOneDerivation) {
    const std::uint64_t before = derivations();
    for (int i = 0; i < 1000; ++i) {
        folder_.write("text", std::to_string(i));
        ASSERT_EQ(encrypt("text", "sealed", "the key of the thousand").code, 0);
        ASSERT_EQ(decrypt("sealed", "opened", "the key of the thousand").code, 0);
        ASSERT_EQ(test::readFile(folder_.at("opened")), std::to_string(i));
    }
    EXPECT_EQ(derivations(), before + 1);
}

TEST_F(CAESTest, ThreadsShareOneDerivation) {
    folder_.write("text", "hello");
    const std::uint64_t before = derivations();
    std::array<Outcome, 4> outcomes{};
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < outcomes.size(); ++i)
        threads.emplace_back([&, i] { outcomes[i] = encrypt("text", std::to_string(i), "the key of the threads"); });
    for (std::thread& thread : threads)
        thread.join();
    for (const Outcome& outcome : outcomes)
        EXPECT_EQ(outcome.code, 0) << outcome.reason;
    EXPECT_EQ(derivations(), before + 1);
}

TEST(KeyCacheTest, KeepsOneSaltForEachKeyText) {
    cipher::KeyCache cache;
    const cipher::WritingKey first = cache.forWriting("a");
    EXPECT_EQ(cache.forWriting("a").treeSalt, first.treeSalt);
    EXPECT_NE(cache.forWriting("b").treeSalt, first.treeSalt);
    EXPECT_EQ(cache.derivations(), 2U);
}

TEST(KeyCacheTest, ReadsWhatItWroteWithoutAnotherDerivation) {
    cipher::KeyCache cache;
    const cipher::WritingKey key = cache.forWriting("a");
    EXPECT_TRUE(cache.forReading("a", key.treeSalt, key.iterations) == key.treeKey);
    EXPECT_EQ(cache.derivations(), 1U);
}

TEST(KeyCacheTest, NeverWritesWithASaltFromAFile) {
    cipher::KeyCache cache;
    const cipher::TreeSalt foreign{1, 2, 3};
    (void)cache.forReading("a", foreign, cipher::kWritingIterations);
    EXPECT_NE(cache.forWriting("a").treeSalt, foreign);
}

TEST(KeyCacheTest, TellsKeyTextsSaltsAndIterationsApart) {
    cipher::KeyCache cache;
    const cipher::TreeKey key = cache.forReading("a", {1}, 100000);
    EXPECT_FALSE(cache.forReading("b", {1}, 100000) == key);
    EXPECT_FALSE(cache.forReading("a", {2}, 100000) == key);
    EXPECT_FALSE(cache.forReading("a", {1}, 100001) == key);
}

TEST(KeyCacheTest, ForgetsTheLeastRecentlyUsedKeyFirst) {
    cipher::KeyCache cache;
    const auto read = [&](std::size_t salt) {
        (void)cache.forReading("a", {static_cast<unsigned char>(salt)}, cipher::kMinIterations);
        return cache.derivations();
    };
    for (std::size_t salt = 0; salt < cipher::KeyCache::kCapacity; ++salt)
        (void)read(salt);
    EXPECT_EQ(read(0), 8U) << "all eight are still known";
    EXPECT_EQ(read(8), 9U) << "a ninth drops the oldest, which is now 1";
    EXPECT_EQ(read(0), 9U);
    EXPECT_EQ(read(1), 10U);
}

TEST(SecretTest, IsOverwrittenWhenItEnds) {
    using Key = cipher::Secret<32>;
    alignas(Key) std::array<unsigned char, sizeof(Key)> memory{};
    Key* const key = new (memory.data()) Key;
    std::memset(key->data(), 0xA5, Key::size());
    key->~Key();
    EXPECT_EQ(memory, (std::array<unsigned char, sizeof(Key)>{}));
}

TEST(ChunkNonceTest, HoldsTheNumberAndTheLastFlag) {
    EXPECT_EQ(cipher::chunkNonce(0, true), (cipher::Nonce{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}));
    EXPECT_EQ(cipher::chunkNonce(0x01020304, false), (cipher::Nonce{0, 0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 0}));
}

TEST(ChunkNonceTest, EndsBeforeTheCounterWouldRepeat) {
    EXPECT_NO_THROW(static_cast<void>(cipher::chunkNonce(cipher::kMaxChunks - 1, true)));
    EXPECT_THROW(static_cast<void>(cipher::chunkNonce(cipher::kMaxChunks, true)), cipher::Failure);
}

// The vectors that docs/formats/cipher-container.md publishes

using Vector = std::map<std::string, std::string>;

std::vector<Vector> documentedVectors() {
    std::istringstream page(test::readFile(CHAT_TRANSFER_SOURCE_DIR "/docs/formats/cipher-container.md"));
    std::vector<Vector> vectors(1);
    std::string line;
    while (std::getline(page, line) && line != "```vectors") {
    }
    while (std::getline(page, line) && line != "```") {
        const std::size_t colon = line.find(':');
        if (line.empty()) {
            vectors.emplace_back();
        } else {
            vectors.back()[line.substr(0, colon)] = line.size() > colon + 2 ? line.substr(colon + 2) : "";
        }
    }
    return vectors;
}

std::string fromHex(const std::string& hex) {
    std::string bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes += static_cast<char>(std::stoi(hex.substr(i, 2), nullptr, 16));
    return bytes;
}

template <typename Bytes>
std::string toHex(const Bytes& bytes) {
    std::string hex;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes.data()[i]);
        hex += "0123456789abcdef"[byte >> 4];
        hex += "0123456789abcdef"[byte & 15];
    }
    return hex;
}

template <typename Salt>
Salt saltOf(const std::string& hex) {
    Salt salt{};
    const std::string bytes = fromHex(hex);
    EXPECT_EQ(bytes.size(), salt.size());
    std::copy_n(bytes.begin(), std::min(bytes.size(), salt.size()), salt.begin());
    return salt;
}

cipher::Header headerOf(const Vector& vector) {
    return {static_cast<std::uint32_t>(std::stoul(vector.at("iterations"))),
            saltOf<cipher::TreeSalt>(vector.at("tree-salt")), saltOf<cipher::FileSalt>(vector.at("file-salt"))};
}

cipher::TreeKey treeKeyOf(const Vector& vector) {
    const cipher::Header header = headerOf(vector);
    return cipher::KeyCache::ofProcess().forReading(vector.at("key-text"), header.treeSalt, header.iterations);
}

std::string textOf(const Vector& vector) {
    return vector.count("text") > 0 ? fromHex(vector.at("text")) : test::patterned(std::stoul(vector.at("text-size")));
}

// The container that the header, key and text of the vector give.
std::string sealed(const Vector& vector, const test::TempDir& folder) {
    return sealWith(headerOf(vector), treeKeyOf(vector), textOf(vector), folder);
}

TEST(DocumentedVectorsTest, AreThree) {
    EXPECT_EQ(documentedVectors().size(), 3U);
}

TEST(DocumentedVectorsTest, ShowTheDerivedKeys) {
    for (const Vector& vector : documentedVectors()) {
        SCOPED_TRACE(vector.at("name"));
        const cipher::TreeKey treeKey = treeKeyOf(vector);
        EXPECT_EQ(toHex(treeKey), vector.at("tree-key"));
        EXPECT_EQ(toHex(cipher::deriveFileKey(treeKey, headerOf(vector).fileSalt)), vector.at("file-key"));
    }
}

TEST(DocumentedVectorsTest, AreWhatEncryptionWithTheirSaltsGives) {
    const test::TempDir folder;
    for (const Vector& vector : documentedVectors()) {
        SCOPED_TRACE(vector.at("name"));
        const std::string container = sealed(vector, folder);
        if (vector.count("container") > 0) {
            EXPECT_EQ(toHex(container), vector.at("container"));
        } else {
            EXPECT_EQ(toHex(cipher::hashKeyText(container)), vector.at("container-sha256"));
        }
    }
}

TEST(DocumentedVectorsTest, AreDecrypted) {
    const test::TempDir folder;
    for (const Vector& vector : documentedVectors()) {
        SCOPED_TRACE(vector.at("name"));
        const bool given = vector.count("container") > 0;
        folder.write("sealed", given ? fromHex(vector.at("container")) : sealed(vector, folder));
        const Outcome outcome = convert(false, vector.at("key-text").c_str(), folder.at("sealed"), folder.at("opened"));
        EXPECT_EQ(outcome.code, 0) << outcome.reason;
        EXPECT_TRUE(test::readFile(folder.at("opened")) == textOf(vector));
    }
}

}  // namespace
