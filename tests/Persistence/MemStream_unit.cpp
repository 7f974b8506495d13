// The streams over memory and over nothing, and strings in a stream.
#include "Objects/TDummyStream.h"
#include "Objects/TMemStream.h"
#include "Persistence/StreamText.h"
#include "Persistence/Tree/TreeNodes.h"

#include <gtest/gtest.h>

namespace {

using TestSupport::StringStream;
using TestSupport::ThrownText;

TEST(TMemStream, ReadsUpToTheEndAndLeavesTheRestOfTheBufferAlone) {
    char block[4] = {'a', 'b', 'c', 'd'};
    TMemStream stream(block, sizeof block, TMemStream::Purpose::Reading);
    EXPECT_EQ(stream.GetHighWater(), 4u);
    EXPECT_EQ(stream.GetLimit(), 4u);
    char buffer[6] = {'-', '-', '-', '-', '-', '-'};
    EXPECT_EQ(stream.Read(buffer, 3), 3u);
    EXPECT_EQ(stream.Read(buffer + 3, 3), 1u);
    EXPECT_EQ(std::string(buffer, 6), "abcd--");
    EXPECT_EQ(stream.Read(buffer, 1), 0u);
    EXPECT_EQ(stream.GetPosition(), 4u);
}

TEST(TMemStream, WritesUpToTheLimitAndRaisesItsHighWater) {
    char block[4] = {};
    TMemStream stream(block, sizeof block, TMemStream::Purpose::Writing);
    EXPECT_EQ(stream.GetHighWater(), 0u);
    EXPECT_EQ(stream.Write("ab", 2), 2u);
    EXPECT_EQ(stream.GetHighWater(), 2u);
    EXPECT_EQ(stream.Seek(0, TMemStream::FromStart), 0);
    EXPECT_EQ(stream.Write("c", 1), 1u);
    EXPECT_EQ(stream.GetHighWater(), 2u);
    EXPECT_EQ(stream.Write("defg", 4), 3u);
    EXPECT_EQ(std::string(block, 4), "cdef");
    EXPECT_EQ(stream.GetHighWater(), 4u);
}

TEST(TMemStream, MovesOverlappingBytes) {
    char block[] = "abcdef";
    TMemStream stream(block, 6, TMemStream::Purpose::Reading);
    EXPECT_EQ(stream.Read(block + 1, 5), 5u);
    EXPECT_EQ(std::string(block), "aabcde");
}

TEST(TMemStream, SeeksFromTheStartThePositionAndTheHighWater) {
    char block[10] = {};
    TMemStream stream(block, sizeof block, TMemStream::Purpose::Writing);
    stream.Write("abcdef", 6);
    EXPECT_EQ(stream.Seek(2, 0), 2);
    EXPECT_EQ(stream.Seek(3, 1), 5);
    EXPECT_EQ(stream.Seek(-1, 1), 4);
    EXPECT_EQ(stream.Seek(-2, 2), 4);
    EXPECT_EQ(stream.Seek(1, 2), 7);
    EXPECT_EQ(stream.Seek(5, 3), 7) << "any other origin";
    EXPECT_EQ(stream.Seek(-8, 1), 0) << "beyond the front";
    EXPECT_EQ(stream.Seek(-7, 2), 0);
}

TEST(TMemStream, MovesNothingBehindItsLimit) {
    char block[2] = {'a', 'b'};
    TMemStream stream(block, sizeof block, TMemStream::Purpose::Reading);
    EXPECT_EQ(stream.Seek(100, 0), 100);
    char byte = '-';
    EXPECT_EQ(stream.Read(&byte, 1), 0u);
    EXPECT_EQ(stream.Write("c", 1), 0u);
    EXPECT_EQ(byte, '-');
}

TEST(TDummyStream, CountsWithoutLookingAtTheBuffer) {
    TDummyStream stream;
    EXPECT_EQ(TDummyStream::GetHighWater(), 0u);
    EXPECT_EQ(stream.Write(nullptr, 10), 10u);
    EXPECT_EQ(stream.Read(nullptr, 5), 5u);
    EXPECT_EQ(stream.GetPosition(), 10u);
    EXPECT_EQ(TDummyStream::GetHighWater(), 10u);
    const TDummyStream next;
    EXPECT_EQ(TDummyStream::GetHighWater(), 0u) << "one word for the process, cleared by each new stream";
}

TEST(TDummyStream, HasTheOriginsOfSeekInterchanged) {
    TDummyStream stream;
    stream.Write(nullptr, 10);
    EXPECT_EQ(stream.Seek(4, 0), 4);
    EXPECT_EQ(stream.Seek(1, 1), 11) << "from the high water";
    EXPECT_EQ(stream.Seek(1, 2), 12) << "from the position";
    EXPECT_EQ(stream.Seek(-11, 1), 0);
    EXPECT_EQ(stream.Seek(-1, 2), 0);
}

TEST(StreamText, HasALengthOfEightBytesThatCountsTheNul) {
    StringStream stream;
    Persistence::WriteCString(stream, "ab");
    Persistence::WriteCString(stream, nullptr);
    Persistence::WriteCStringBigEndian(stream, "c");
    EXPECT_EQ(stream.Bytes, std::string("\3\0\0\0\0\0\0\0ab\0\0\0\0\0\0\0\0\0\0\0\0\2\0\0\0\0c\0", 29));
    StringStream full({}, 9);
    EXPECT_NE(ThrownText([&] { Persistence::WriteCString(full, "ab"); }), "nothing thrown");
}

TEST(StreamText, IsReadByALengthOfFourBytes) {
    StringStream stream(std::string("\3\0\0\0ab\0\0\0\0\0", 11));
    EXPECT_STREQ(Persistence::ReadCString(stream).get(), "ab");
    EXPECT_EQ(Persistence::ReadCString(stream), nullptr);
    StringStream turned(std::string("\0\0\0\2c\0", 6));
    EXPECT_STREQ(Persistence::ReadCStringBigEndian(turned).get(), "c");
    StringStream cut(std::string("\xFF\xFF\xFF\x7F"
                                 "abc",
                                 7));
    EXPECT_NE(ThrownText([&] { Persistence::ReadCString(cut); }), "nothing thrown");
}

} // namespace
