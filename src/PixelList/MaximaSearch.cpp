#include "PixelList/MaximaSearch.h"

#include <bit>
#include <limits>

#include "PixelList/MaximumRows.h"
#include "PixelList/PlateauWalk.h"
#include "Scan/PixelRows.h"

namespace PixelList {
namespace {

template <class T>
class Search {
public:
    Search(const Image::PlaneView &plane, MarkMap &marks, const Rectangle &inside, T threshold,
           std::vector<Candidate> &found)
        : plane_(plane), rows_(plane), marks_(marks), walk_(rows_, marks, plane), threshold_(threshold),
          found_(found), left_(static_cast<std::int32_t>(inside.Left)),
          right_(static_cast<std::int32_t>(inside.Right)), top_(static_cast<std::int32_t>(inside.Top)),
          bottom_(static_cast<std::int32_t>(inside.Bottom)) {}

    void ScanOneByOne() {
        for (std::int32_t y = top_; y <= bottom_; ++y)
            for (std::int32_t x = left_; x <= right_; ++x)
                Visit(x, y);
    }

    /// The columns at the edges of the image have neighbours in the guard entries of the table only, and are tested
    /// by themselves.
    void ScanInRegisters() {
        const auto lastColumn = static_cast<std::int32_t>(plane_.Width - 1);
        const std::int32_t first = std::max(left_, 1), last = std::min(right_, lastColumn - 1);
        if (last < first)
            return ScanOneByOne();
        std::vector<MaximumBits> bits(static_cast<std::size_t>((last - first) / BitsColumns + 1));
        std::vector<std::uint32_t> open(bits.size());
        for (std::int32_t y = top_; y <= bottom_; ++y) {
            if (left_ < first)
                Visit(left_, y);
            TestRow<T>(RowsAround(first, y), last - first + 1, threshold_, bits.data());
            const std::size_t count = ListOpen(bits, first, y, open.data());
            for (std::size_t i = 0; i < count; ++i)
                VisitBits(bits[open[i]], first + static_cast<std::int32_t>(open[i] * BitsColumns), y);
            if (right_ > last)
                Visit(right_, y);
        }
    }

private:
    NeighbourRows RowsAround(std::int32_t x, std::int32_t y) {
        const std::intptr_t offset = x * static_cast<std::intptr_t>(sizeof(T));
        return {rows_.Row(y - 1) + offset, rows_.Row(y) + offset, rows_.Row(y + 1) + offset};
    }
    /// Also of the guard entries.
    T PixelAt(std::int32_t x, std::int32_t y) const {
        return *reinterpret_cast<const typename Scan::Loose<T>::Type *>(plane_.Pixel(x, y));
    }

    void Visit(std::int32_t x, std::int32_t y) {
        if (!marks_.IsSet(x, y) && PixelAt(x, y) >= threshold_ && !HasGreaterNeighbour(x, y))
            WalkFrom(x, y);
    }

    bool HasGreaterNeighbour(std::int32_t x, std::int32_t y) const {
        const T pixel = PixelAt(x, y);
        for (std::int32_t row = y - 1; row <= y + 1; ++row)
            for (std::int32_t column = x - 1; column <= x + 1; ++column)
                if (PixelAt(column, row) > pixel)
                    return true;
        return false;
    }

    /// The parts of a row in which a walk may begin. Without branches, which would be taken at random.
    std::size_t ListOpen(const std::vector<MaximumBits> &bits, std::int32_t x, std::int32_t y,
                         std::uint32_t *open) const {
        std::size_t count = 0, left = 0;
        for (std::uint32_t i = 0; i < bits.size(); ++i) {
            open[count] = i;
            count += bits[i].NoneGreater != 0 ? 1 : 0;
        }
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint32_t part = open[i];
            open[left] = part;
            const auto column = x + static_cast<std::int32_t>(part * BitsColumns);
            left += (bits[part].NoneGreater & ~marks_.From(column, y)) != 0 ? 1 : 0;
        }
        return left;
    }

    void VisitBits(const MaximumBits &bits, std::int32_t x, std::int32_t y) {
        MarkMap::Word left = bits.NoneGreater & ~marks_.From(x, y);
        if ((left & ~bits.AllLess) == 0)
            return KeepAll(left, x, y);
        while (left != 0) {
            const int place = std::countr_zero(left);
            left &= left - 1;
            if ((bits.AllLess >> place & 1) != 0) {
                KeepAll(MarkMap::Word{1} << place, x, y);
            } else {
                WalkFrom(x + place, y);
                left &= ~marks_.From(x, y);
            }
        }
    }

    /// Plateaus of one pixel.
    void KeepAll(MarkMap::Word places, std::int32_t x, std::int32_t y) {
        using Pixel = typename Scan::Loose<T>::Type;
        const Pixel *const row = reinterpret_cast<const Pixel *>(rows_.Row(y)) + x;
        Candidate candidates[MarkMap::WordMarks];
        std::ptrdiff_t count = 0;
        marks_.SetFrom(x, y, places);
        for (; places != 0; places &= places - 1) {
            const int place = std::countr_zero(places);
            candidates[count++] = {x + place, y, row[place]};
        }
        found_.insert(found_.end(), candidates, candidates + count);
    }

    void WalkFrom(std::int32_t x, std::int32_t y) {
        if (walk_.Run(x, y))
            Keep(x, y);
    }
    void Keep(std::int32_t x, std::int32_t y) { found_.push_back({x, y, PixelAt(x, y)}); }

    const Image::PlaneView &plane_;
    DenseRows<T> rows_;
    MarkMap &marks_;
    PlateauWalk<T> walk_;
    T threshold_;
    std::vector<Candidate> &found_;
    std::int32_t left_, right_, top_, bottom_;
};

/// Room for the maxima of white noise, one for each nine pixels. Memory that is not written costs nothing.
void ReserveFor(const Rectangle &inside, std::vector<Candidate> &maxima) {
    constexpr std::int64_t most = 1 << 20;
    const std::int64_t pixels = (inside.Right - inside.Left + 1) * (inside.Bottom - inside.Top + 1);
    maxima.reserve(static_cast<std::size_t>(std::min(pixels / 8, most)));
}

/// The upper and the lower row are walls, from the left column up to the one before the right.
void MarkWalls(MarkMap &marks, const Rectangle &inside) {
    if (inside.Left >= inside.Right)
        return;
    for (const std::int64_t row : {inside.Top, inside.Bottom})
        marks.SetRun(static_cast<std::int32_t>(inside.Left), static_cast<std::int32_t>(inside.Right - 1),
                     static_cast<std::int32_t>(row));
}

} // namespace

template <class T>
bool SearchMaxima(const Image::PlaneView &plane, const MaximaRequest &request, std::vector<Candidate> &maxima,
                  MaximumTest test) {
    using Limits = std::numeric_limits<T>;
    maxima.clear();
    const Rectangle &inside = request.Inside;
    if (plane.Width < 1 || plane.Height < 1 || inside.Left > inside.Right || inside.Top > inside.Bottom ||
        request.Threshold > std::int64_t{Limits::max()})
        return true;
    MarkMap marks;
    if (!marks.Allocate({1, plane.Width, plane.Height}))
        return false;
    MarkWalls(marks, inside);
    ReserveFor(inside, maxima);
    const auto threshold = static_cast<T>(std::max(request.Threshold, std::int64_t{Limits::lowest()}));
    Search<T> search(plane, marks, inside, threshold, maxima);
    if (test == MaximumTest::OneByOne)
        search.ScanOneByOne();
    else
        search.ScanInRegisters();
    SortByValue(maxima);
    if (request.Locality >= 1)
        SelectByLocality(maxima, marks, inside, request.Locality);
    return true;
}

template bool SearchMaxima<char>(const Image::PlaneView &, const MaximaRequest &, std::vector<Candidate> &,
                                 MaximumTest);
template bool SearchMaxima<unsigned char>(const Image::PlaneView &, const MaximaRequest &, std::vector<Candidate> &,
                                          MaximumTest);
template bool SearchMaxima<short>(const Image::PlaneView &, const MaximaRequest &, std::vector<Candidate> &,
                                  MaximumTest);
template bool SearchMaxima<unsigned short>(const Image::PlaneView &, const MaximaRequest &, std::vector<Candidate> &,
                                           MaximumTest);
template bool SearchMaxima<int>(const Image::PlaneView &, const MaximaRequest &, std::vector<Candidate> &,
                                MaximumTest);

} // namespace PixelList
