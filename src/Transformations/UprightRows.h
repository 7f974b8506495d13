// Sampling in fixed point under a map that keeps rows rows and columns columns: one row position for each row of the
// result, one column position for each column. Two rows of the source are mixed first, and columns from that.
#pragma once

#include "Scan/PixelRows.h"
#include "Transformations/TransTable.h"

/// Three bytes stand anywhere and are of bytes only: they need no type of their own.
template <>
struct Scan::Loose<Image::ThreeBytes> {
    using Type = Image::ThreeBytes;
};

namespace Transformations {

/// True when no column changes a row's position and no row a column's.
bool IsUpright(const TransTable &table);

/// What the mixing of rows gives for each byte or word of them.
template <class Pixel>
struct UprightWords {
    using Element = Pixel;
    using Word = std::int32_t;
    static constexpr std::intptr_t Count = 1; ///< per pixel
};
template <>
struct UprightWords<char> {
    using Element = char;
    using Word = std::uint16_t;
    static constexpr std::intptr_t Count = 1;
};
template <>
struct UprightWords<unsigned char> {
    using Element = unsigned char;
    using Word = std::uint16_t;
    static constexpr std::intptr_t Count = 1;
};
template <>
struct UprightWords<Image::ThreeBytes> {
    using Element = unsigned char;
    using Word = std::uint16_t;
    static constexpr std::intptr_t Count = 3;
};

/// The rows of one plane of pixels of 8 or 16 bits, or of three planes of bytes as one.
template <class Pixel>
class UprightRows {
public:
    /// The table must be upright.
    UprightRows(const Image::PlaneView &source, const TransTable &table);

    /// The columns that have a source; also where they are none.
    const IndexRange &Inside() const { return inside_; }
    /// Writes pixels Inside() of a row of the result, the first of them to to[0]. y, weight are the row's position in
    /// the source, which has such a row.
    void Sample(std::int64_t y, std::uint32_t weight, Pixel *to);

private:
    using Element = typename UprightWords<Pixel>::Element;
    using Word = typename UprightWords<Pixel>::Word;

    void Prepare();
    void Copy(std::int64_t y, Pixel *to);
    void MixRows(std::int64_t y, std::uint32_t weight);
    const Pixel *RowOf(std::int64_t y, std::vector<Pixel> &buffer) const;
    std::intptr_t ColumnsInRow() const;

    Image::PlaneView source_;
    IndexRange inside_;
    std::intptr_t first_ = 0;            ///< the lowest column of the source that takes part
    std::intptr_t count_ = 0;            ///< from it to the right neighbour of the highest one
    bool isWhole_ = true;                ///< no column has a weight
    std::intptr_t step_ = 0;             ///< from each column's source to the next one's, or 0
    std::vector<std::int32_t> columns_;  ///< each column's source, counted from first_
    std::vector<std::int32_t> places_;   ///< its first word among words_
    std::vector<std::uint16_t> weights_; ///< of each word of each column, and one for the word between pixels
    std::vector<Word> words_;            ///< two rows mixed
    std::vector<Pixel> upper_, lower_;   ///< rows that are no arrays in memory
};

} // namespace Transformations
