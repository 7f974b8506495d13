#include "CtkFileStream.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "CtkHRESULTException.h"
#include "VirtualSlot.h"

namespace {

using tkIO::CtkIOException;

/// A file of a name of its own that goes with the test.
class TemporaryFile {
public:
    explicit TemporaryFile(const std::string &content) : path_(MakePath()) { std::ofstream(path_) << content; }
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile() { std::filesystem::remove(path_); }
    const char *Path() const { return path_.c_str(); }
    std::string Content() const {
        std::ifstream file(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

private:
    static std::string MakePath() {
        std::string path = (std::filesystem::temp_directory_path() / "CtkFileStream_XXXXXX").string();
        close(mkstemp(path.data()));
        return path;
    }

    std::string path_;
};

std::string Read(CtkFileStream &stream, std::size_t count) {
    std::string text(count, '?');
    EXPECT_EQ(stream.Read(text.data(), count), count);
    return text;
}

template <class Body>
void ExpectIOException(std::uint32_t word, Body &&body) {
    try {
        body();
        ADD_FAILURE() << "nothing thrown";
    } catch (const CtkIOException &exception) {
        EXPECT_EQ(static_cast<std::uint32_t>(exception.GetWord()) & 0x1FFFFFFu, word);
        EXPECT_TRUE(exception.IsFailure());
    }
}

void ExpectCannotOpen(const char *path, std::int32_t mode) {
    ExpectIOException(0x00105002u, [&] { const CtkFileStream stream(path, mode); });
}

void ExpectReadBeyondEnd(CtkFileStream &stream, std::size_t count) {
    std::string buffer(count, '?');
    ExpectIOException(0x00105001u, [&] { stream.Read(buffer.data(), count); });
}

TEST(CtkStream, IsOfTheFamily21WithItsSlotsInOrder) {
    const TemporaryFile file("");
    const CtkFileStream stream(file.Path(), CtkFileStream::ModeRead);
    EXPECT_EQ(stream.GetFamily(), 21u);
    EXPECT_TRUE(stream.IsValid());
    EXPECT_EQ(TestSupport::SlotOf(&CtkStream::Read), 6u);
    EXPECT_EQ(TestSupport::SlotOf(&CtkStream::Write), 7u);
    EXPECT_EQ(TestSupport::SlotOf(&CtkStream::Seek), 8u);
}

TEST(CtkFileStream, Mode2ReadsAndMode1Writes) {
    const TemporaryFile file("content");
    {
        CtkFileStream reader(file.Path(), 2);
        EXPECT_EQ(Read(reader, 7), "content");
    }
    {
        CtkFileStream writer(file.Path(), 1);
        EXPECT_EQ(writer.Write("ab", 2), 2u);
        EXPECT_EQ(writer.Write("c", 1), 1u);
    }
    EXPECT_EQ(file.Content(), "abc");
}

TEST(CtkFileStream, ThrowsWhenItCannotOpen) {
    const TemporaryFile file("content");
    ExpectCannotOpen("/no/such/file", 2);
    ExpectCannotOpen("/no/such/file", 1);
    ExpectCannotOpen(nullptr, 2);
    ExpectCannotOpen(file.Path(), 0);
    ExpectCannotOpen(file.Path(), 3);
    EXPECT_EQ(file.Content(), "content");
}

TEST(CtkFileStream, ReadingBeyondTheEndThrowsAndKeepsThePosition) {
    const TemporaryFile file("abcdef");
    CtkFileStream stream(file.Path(), 2);
    EXPECT_EQ(Read(stream, 4), "abcd");
    ExpectReadBeyondEnd(stream, 3);
    EXPECT_EQ(stream.Seek(0, CtkFileStream::FromPosition), 4);
    EXPECT_EQ(Read(stream, 2), "ef");
    ExpectReadBeyondEnd(stream, 1);
    EXPECT_EQ(stream.Read(nullptr, 0), 0u);
}

TEST(CtkFileStream, AWriterCannotRead) {
    const TemporaryFile file("abcdef");
    CtkFileStream stream(file.Path(), 1);
    ExpectReadBeyondEnd(stream, 1);
}

TEST(CtkFileStream, AReaderWritesNothing) {
    const TemporaryFile file("abcdef");
    CtkFileStream stream(file.Path(), 2);
    EXPECT_EQ(stream.Write("xy", 2), 0u);
    EXPECT_EQ(stream.Seek(0, CtkFileStream::FromPosition), 0);
}

TEST(CtkFileStream, SeekWithWhence0MovesFromTheStart) {
    const TemporaryFile file("abcdef");
    CtkFileStream stream(file.Path(), 2);
    EXPECT_EQ(stream.Seek(4, 0), 4);
    EXPECT_EQ(Read(stream, 1), "e");
}

TEST(CtkFileStream, SeekWithWhence1MovesFromTheEnd) {
    const TemporaryFile file("abcdef");
    CtkFileStream stream(file.Path(), 2);
    EXPECT_EQ(stream.Seek(-2, 1), 4);
    EXPECT_EQ(Read(stream, 2), "ef");
    EXPECT_EQ(stream.Seek(0, 1), 6);
}

TEST(CtkFileStream, SeekWithWhence2MovesFromTheCurrentPlace) {
    const TemporaryFile file("abcdef");
    CtkFileStream stream(file.Path(), 2);
    EXPECT_EQ(Read(stream, 3), "abc");
    EXPECT_EQ(stream.Seek(-2, 2), 1);
    EXPECT_EQ(stream.Seek(2, 2), 3);
    EXPECT_EQ(Read(stream, 1), "d");
}

TEST(CtkFileStream, SeekWithAnyOtherWhenceDoesNothing) {
    const TemporaryFile file("abcdef");
    CtkFileStream stream(file.Path(), 2);
    EXPECT_EQ(stream.Seek(2, 0), 2);
    EXPECT_EQ(stream.Seek(4, 3), 2);
    EXPECT_EQ(stream.Seek(4, -1), 2);
    EXPECT_EQ(Read(stream, 1), "c");
}

TEST(CtkFileStream, SeekBeforeTheStartDoesNothing) {
    const TemporaryFile file("abcdef");
    CtkFileStream stream(file.Path(), 2);
    EXPECT_EQ(stream.Seek(2, 0), 2);
    EXPECT_EQ(stream.Seek(-3, 2), 2);
    EXPECT_EQ(stream.Seek(-7, 1), 2);
    EXPECT_EQ(Read(stream, 1), "c");
}

TEST(CtkFileStream, AWriterCanGoBack) {
    const TemporaryFile file("");
    {
        CtkFileStream stream(file.Path(), 1);
        stream.Write("abcdef", 6);
        EXPECT_EQ(stream.Seek(1, 0), 1);
        stream.Write("X", 1);
        EXPECT_EQ(stream.Seek(0, 2), 2);
        EXPECT_EQ(stream.Seek(0, 1), 6);
        stream.Write("!", 1);
    }
    EXPECT_EQ(file.Content(), "aXcdef!");
}

TEST(CtkFileStream, WritingToAFullDeviceIsShort) {
    CtkFileStream stream("/dev/full", 1);
    const std::string large(std::size_t{1} << 20, 'x');
    EXPECT_LT(stream.Write(large.data(), large.size()), large.size());
}

} // namespace
