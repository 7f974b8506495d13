#include "Transformations/UprightRows.h"

#include <algorithm>

#include "Image/KernelLevel.h"
#include "Scan/PixelRows.h"
#include "Transformations/Strips.h"

namespace Transformations {
namespace {

using Image::ThreeBytes;

/// A signed byte raised by 128; all other elements as they are.
template <class Element>
ORV_INLINE std::int32_t Raised(Element element) {
    if constexpr (std::is_same_v<Element, char>)
        return static_cast<unsigned char>(element) ^ 0x80;
    else
        return element;
}

template <class Element, class Word>
ORV_INLINE void MixElements(Word *__restrict to, const Element *upper, const Element *lower, std::intptr_t count,
                            std::int32_t weight) {
    for (std::intptr_t k = 0; k < count; ++k) {
        const std::int32_t first = Raised(upper[k]), second = Raised(lower[k]);
        to[k] = static_cast<Word>(first * 16 + (second - first) * weight);
    }
}

/// A pixel from the words of its source and of the right neighbour.
template <class Pixel>
ORV_INLINE Pixel MixWords(std::int32_t left, std::int32_t right, std::int32_t weight) {
    return static_cast<Pixel>((left * 16 + (right - left) * weight + 8) >> 8);
}
/// Words of 16 bits wrap on the way and hold every sum in the end: at most 255 * 256 + 8.
template <class Pixel>
ORV_INLINE Pixel MixWords(std::uint16_t left, std::uint16_t right, std::uint16_t weight) {
    constexpr int sign = std::is_same_v<Pixel, char> ? 0x80 : 0;
    const auto difference = static_cast<std::uint16_t>(right - left);
    const auto sum = static_cast<std::uint16_t>(left * 16u + std::uint32_t{difference} * weight + 8u);
    return static_cast<Pixel>((sum >> 8) ^ sign);
}

template <class Pixel>
constexpr std::intptr_t WeightsPerPixel = std::is_same_v<Pixel, ThreeBytes> ? 4 : 1;

/// The words of each position of a strip and those of its right neighbour, for each kind of word.
template <class Pixel, class Word>
struct WordStrip;

template <class Pixel>
struct WordStrip<Pixel, std::uint16_t> {
    alignas(64) std::uint32_t Pairs[StripLength];

    ORV_INLINE void Collect(std::intptr_t i, const std::uint16_t *words) {
        std::memcpy(&Pairs[i], words, sizeof Pairs[i]);
    }
    ORV_INLINE void Mix(Pixel *__restrict to, const std::uint16_t *weights, std::intptr_t count) const {
        for (std::intptr_t i = 0; i < count; ++i)
            to[i] = MixWords<Pixel>(static_cast<std::uint16_t>(Pairs[i]), static_cast<std::uint16_t>(Pairs[i] >> 16),
                                    weights[i]);
    }
};

template <class Pixel>
struct WordStrip<Pixel, std::int32_t> {
    alignas(64) std::uint64_t Pairs[StripLength];

    ORV_INLINE void Collect(std::intptr_t i, const std::int32_t *words) {
        std::memcpy(&Pairs[i], words, sizeof Pairs[i]);
    }
    ORV_INLINE void Mix(Pixel *__restrict to, const std::uint16_t *weights, std::intptr_t count) const {
        for (std::intptr_t i = 0; i < count; ++i)
            to[i] = MixWords<Pixel>(static_cast<std::int32_t>(Pairs[i]), static_cast<std::int32_t>(Pairs[i] >> 32),
                                    std::int32_t{weights[i]});
    }
};

/// Four words each, of which the last belongs to the next pixel and is left out in the end.
template <>
struct WordStrip<ThreeBytes, std::uint16_t> {
    alignas(64) std::uint16_t Left[4 * StripLength];
    alignas(64) std::uint16_t Right[4 * StripLength];

    ORV_INLINE void Collect(std::intptr_t i, const std::uint16_t *words) {
        std::memcpy(Left + 4 * i, words, 8);
        std::memcpy(Right + 4 * i, words + 3, 8);
    }
    ORV_INLINE void Mix(ThreeBytes *to, const std::uint16_t *weights, std::intptr_t count) const {
        alignas(64) std::uint8_t mixed[4 * StripLength];
        for (std::intptr_t k = 0; k < 4 * count; ++k)
            mixed[k] = MixWords<std::uint8_t>(Left[k], Right[k], weights[k]);
        LeaveOutFourthBytes(mixed, count, to);
    }
};

template <class Pixel, class Word>
ORV_INLINE void MixColumns(Pixel *to, const Word *words, const std::int32_t *places, const std::uint16_t *weights,
                           std::intptr_t columns) {
    using Strip = WordStrip<Pixel, Word>;
    ForEachStrip<Strip>(
        columns,
        [&](Strip &strip, std::intptr_t first, std::intptr_t count) ORV_INLINE_LAMBDA {
            for (std::intptr_t i = 0; i < count; ++i)
                strip.Collect(i, words + Opaque(places[first + i]));
        },
        [&](const Strip &strip, std::intptr_t first, std::intptr_t count)
            ORV_INLINE_LAMBDA { strip.Mix(to + first, weights + WeightsPerPixel<Pixel> * first, count); });
}

template <class Pixel>
ORV_INLINE void CopyEverySecond(Pixel *__restrict to, const Pixel *__restrict row, std::intptr_t count) {
    for (std::intptr_t i = 0; i < count; ++i)
        to[i] = row[2 * i];
}

} // namespace

bool IsUpright(const TransTable &table) {
    const IndexRange &columns = table.Columns(), &rows = table.Rows();
    const TransTableEntry *const entries = table.Entries();
    // Terms are monotone: those between two equal ones are equal.
    return (columns.End == 0 || entries[columns.Begin].YFromX == entries[columns.End - 1].YFromX) &&
           (rows.End == 0 || entries[rows.Begin].XFromY == entries[rows.End - 1].XFromY);
}

template <class Pixel>
UprightRows<Pixel>::UprightRows(const Image::PlaneView &source, const TransTable &table) : source_(source) {
    if (table.Rows().End == 0)
        return;
    const TransTableEntry &row = table.Entries()[table.Rows().Begin];
    const auto width = static_cast<std::size_t>(table.Width());
    columns_.reserve(width);
    weights_.reserve(width * static_cast<std::size_t>(WeightsPerPixel<Pixel>));
    for (std::intptr_t x = table.Columns().Begin; x < table.Columns().End; ++x) {
        const std::int64_t position = FixedPosition(table.Entries()[x], row).X;
        if (position != static_cast<std::int32_t>(position) || position < 0 || position >> 8 >= source.Width)
            continue;
        if (columns_.empty())
            inside_.Begin = x;
        inside_.End = x + 1;
        columns_.push_back(static_cast<std::int32_t>(position >> 8));
        const auto weight = static_cast<std::uint16_t>((position >> 4) & 15);
        for (std::intptr_t i = 0; i < WeightsPerPixel<Pixel>; ++i)
            weights_.push_back(weight);
        isWhole_ = isWhole_ && weight == 0;
    }
    if (!columns_.empty())
        Prepare();
}

template <class Pixel>
void UprightRows<Pixel>::Prepare() {
    constexpr std::intptr_t perPixel = UprightWords<Pixel>::Count;
    first_ = std::min(columns_.front(), columns_.back());
    count_ = std::max(columns_.front(), columns_.back()) - first_ + 2;
    places_.reserve(columns_.size());
    step_ = columns_.size() > 1 ? columns_[1] - columns_[0] : 1;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        columns_[i] -= static_cast<std::int32_t>(first_);
        places_.push_back(static_cast<std::int32_t>(columns_[i] * perPixel));
        if (i > 0 && columns_[i] - columns_[i - 1] != step_)
            step_ = 0;
    }
    // One word more than the pixels have: neighbours are read four words at a time.
    words_.resize(static_cast<std::size_t>(count_ * perPixel + 1));
    upper_.resize(static_cast<std::size_t>(count_));
    lower_.resize(static_cast<std::size_t>(count_));
}

/// Without the right neighbour of the last column, which only the table tells.
template <class Pixel>
std::intptr_t UprightRows<Pixel>::ColumnsInRow() const {
    return std::min(count_, source_.Width - first_);
}

/// Columns first_ to first_ + ColumnsInRow() - 1 as an array.
template <class Pixel>
const Pixel *UprightRows<Pixel>::RowOf(std::int64_t y, std::vector<Pixel> &buffer) const {
    const char *const first = source_.Pixel(first_, y);
    if (Scan::IsArray<Pixel>(source_, first))
        return reinterpret_cast<const Pixel *>(first);
    Scan::Gather<Pixel>(source_, first_, y, ColumnsInRow(), buffer.data());
    return buffer.data();
}

template <class Pixel>
void UprightRows<Pixel>::MixRows(std::int64_t y, std::uint32_t weight) {
    constexpr std::intptr_t perPixel = UprightWords<Pixel>::Count;
    const std::int64_t below = weight == 0 ? y : y + 1;
    const auto *const upper = reinterpret_cast<const Element *>(RowOf(y, upper_));
    const auto *const lower = reinterpret_cast<const Element *>(RowOf(below, lower_));
    Word *const words = words_.data();
    const std::intptr_t inRow = ColumnsInRow() * perPixel;
    const auto mixing = static_cast<std::int32_t>(weight);
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { MixElements(words, upper, lower, inRow, mixing); });
    if (ColumnsInRow() == count_)
        return;
    Element edge[2][perPixel];
    std::memcpy(edge[0], source_.Pixel(source_.Width, y), sizeof edge[0]);
    std::memcpy(edge[1], source_.Pixel(source_.Width, below), sizeof edge[1]);
    MixElements(words + inRow, edge[0], edge[1], perPixel, mixing);
}

template <class Pixel>
void UprightRows<Pixel>::Copy(std::int64_t y, Pixel *to) {
    const auto count = static_cast<std::intptr_t>(columns_.size());
    if (step_ == 1)
        return Scan::Gather<Pixel>(source_, first_, y, count, to);
    const Pixel *const row = RowOf(y, upper_);
    if (step_ == 2)
        return Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { CopyEverySecond(to, row, count); });
    for (std::intptr_t i = 0; i < count; ++i)
        to[i] = row[columns_[static_cast<std::size_t>(i)]];
}

template <class Pixel>
void UprightRows<Pixel>::Sample(std::int64_t y, std::uint32_t weight, Pixel *to) {
    if (columns_.empty())
        return;
    if (isWhole_ && weight == 0)
        return Copy(y, to);
    MixRows(y, weight);
    const Word *const words = words_.data();
    const std::int32_t *const places = places_.data();
    const std::uint16_t *const weights = weights_.data();
    const auto count = static_cast<std::intptr_t>(columns_.size());
    Image::RunAtLevel([=]() ORV_INLINE_LAMBDA { MixColumns(to, words, places, weights, count); });
}

template class UprightRows<char>;
template class UprightRows<unsigned char>;
template class UprightRows<short>;
template class UprightRows<unsigned short>;
template class UprightRows<Image::ThreeBytes>;

} // namespace Transformations
