// One mark for each pixel of an image, 64 to a word: a row of marks is tested, set and cleared word by word.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>

#include "Image/Dimensions.h"

namespace PixelList {

class MarkMap {
public:
    using Word = std::uint64_t;
    static constexpr std::int32_t WordMarks = 64;

    /// No mark is set. False when there is no memory for the marks, or a side is beyond 31 bits.
    bool Allocate(const Image::Dimensions &size);

    bool IsSet(std::int32_t x, std::int32_t y) const { return (WordOf(x, y) & BitOf(x)) != 0; }
    void Set(std::int32_t x, std::int32_t y) { WordOf(x, y) |= BitOf(x); }
    /// Columns first to last of a row.
    void SetRun(std::int32_t first, std::int32_t last, std::int32_t y) {
        ForEachWord(first, last, y, [](Word &word, Word mask) { word |= mask; });
    }
    void ClearRun(std::int32_t first, std::int32_t last, std::int32_t y) {
        ForEachWord(first, last, y, [](Word &word, Word mask) { word &= ~mask; });
    }
    /// Sets the marks of columns x to x + 63 whose bits are set, that of x the lowest.
    void SetFrom(std::int32_t x, std::int32_t y, Word bits) {
        Word *const word = &WordOf(x, y);
        const int shift = x % WordMarks;
        word[0] |= bits << shift;
        word[1] |= bits >> 1 >> (WordMarks - 1 - shift);
    }
    /// The byte of eight marks, of which that of x is the lowest, for x a multiple of 8. Those of the columns from
    /// there on follow: words stand in memory with their lowest byte first.
    char *ByteOf(std::int32_t x, std::int32_t y) const {
        return reinterpret_cast<char *>(words_.get() + y * rowWords_) + x / 8;
    }
    /// Bytes from a mark to that in the next row.
    std::intptr_t PitchBytes() const { return rowWords_ * static_cast<std::intptr_t>(sizeof(Word)); }
    /// As From, for x a multiple of 8.
    Word FromByte(std::int32_t x, std::int32_t y) const {
        Word word;
        std::memcpy(&word, ByteOf(x, y), sizeof word);
        return word;
    }
    /// The marks of columns x to x + 63, that of x in the lowest bit; none are set beyond the last column.
    Word From(std::int32_t x, std::int32_t y) const {
        const Word *const word = &WordOf(x, y);
        const int shift = x % WordMarks;
        // In two steps, since a shift by all 64 places is none.
        return word[0] >> shift | word[1] << 1 << (WordMarks - 1 - shift);
    }

private:
    Word &WordOf(std::int32_t x, std::int32_t y) const { return words_.get()[y * rowWords_ + x / WordMarks]; }
    static Word BitOf(std::int32_t x) { return Word{1} << (x % WordMarks); }

    template <class Change>
    void ForEachWord(std::int32_t first, std::int32_t last, std::int32_t y, Change &&change) {
        Word *const row = &WordOf(0, y);
        const Word firstMask = ~Word{0} << (first % WordMarks);
        const Word lastMask = ~Word{0} >> (WordMarks - 1 - last % WordMarks);
        const std::int32_t firstWord = first / WordMarks, lastWord = last / WordMarks;
        if (firstWord == lastWord)
            return change(row[firstWord], firstMask & lastMask);
        change(row[firstWord], firstMask);
        for (std::int32_t i = firstWord + 1; i < lastWord; ++i)
            change(row[i], ~Word{0});
        change(row[lastWord], lastMask);
    }

    std::intptr_t rowWords_ = 0; ///< one of them behind the last column, which From may read
    std::unique_ptr<Word, decltype(&std::free)> words_{nullptr, &std::free};
};

} // namespace PixelList
