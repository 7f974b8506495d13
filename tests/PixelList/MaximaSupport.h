/* What the tests of the maxima searches share: planes of any pixel type as values, images of them in any layout,
 * the ways to call the searches, and lists of pixels compared bit for bit. */
#ifndef ORV_TESTS_MAXIMA_SUPPORT_H
#define ORV_TESTS_MAXIMA_SUPPORT_H

#include "ImageMaps.h"
#include "ImageViews.h"
#include "PixelList/Pixel.h"
#include "Support/ImageAccess.h"
#include "Support/TestLayouts.h"

#include <bit>
#include <cmath>
#include <limits>
#include <type_traits>

namespace TestSupport {

inline constexpr std::int64_t Lowest64 = std::numeric_limits<std::int64_t>::min();
inline constexpr std::int64_t Highest64 = std::numeric_limits<std::int64_t>::max();
inline constexpr double Infinity = std::numeric_limits<double>::infinity();
inline constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

/// The data type word of a pixel type.
template <class T>
inline constexpr TDataType WordOf = static_cast<TDataType>(sizeof(T) * 8) |
                                    (std::is_floating_point_v<T> ? DataTypeFloat : 0u) |
                                    (std::is_integral_v<T> && std::is_signed_v<T> ? DataTypeSigned : 0u);

struct PixelRectangle {
    std::int64_t Left, Top, Right, Bottom;
};
inline void PrintTo(const PixelRectangle &r, std::ostream *out) {
    *out << r.Left << ", " << r.Top << " to " << r.Right << ", " << r.Bottom;
}
/// Both searches take it for the whole of any image.
inline constexpr PixelRectangle Everything{0, 0, Highest64, Highest64};

/// A pixel of a list of dimension 3. Equal: the same bits; one NaN is like another.
struct Spot {
    double X, Y, Value;
    static bool Same(double a, double b) {
        return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b) || (std::isnan(a) && std::isnan(b));
    }
    friend bool operator==(const Spot &a, const Spot &b) {
        return Same(a.X, b.X) && Same(a.Y, b.Y) && Same(a.Value, b.Value);
    }
};
using Spots = std::vector<Spot>;
inline void PrintTo(const Spot &spot, std::ostream *out) {
    const auto digits = out->precision(17);
    *out << "(" << spot.X << ", " << spot.Y << ": " << spot.Value << ")";
    out->precision(digits);
}

/// The pixels of one plane as values, row by row.
template <class T>
struct PixelGrid {
    std::intptr_t Width, Height;
    std::vector<T> Values;

    PixelGrid(std::intptr_t width, std::intptr_t height, T value = T{})
        : Width(width), Height(height), Values(static_cast<std::size_t>(width * height), value) {}
    PixelGrid(std::intptr_t width, std::vector<T> values)
        : Width(width), Height(std::ssize(values) / width), Values(std::move(values)) {}
    T &At(std::intptr_t x, std::intptr_t y) { return Values[static_cast<std::size_t>(y * Width + x)]; }
    T At(std::intptr_t x, std::intptr_t y) const { return Values[static_cast<std::size_t>(y * Width + x)]; }
    bool Inside(std::intptr_t x, std::intptr_t y) const { return x >= 0 && x < Width && y >= 0 && y < Height; }
    /// Beyond the edge the nearest pixel of the edge.
    T Clamped(std::intptr_t x, std::intptr_t y) const {
        return At(std::clamp<std::intptr_t>(x, 0, Width - 1), std::clamp<std::intptr_t>(y, 0, Height - 1));
    }
    /// A rectangle that lies inside.
    PixelGrid Cut(const PixelRectangle &r) const {
        PixelGrid cut(r.Right - r.Left + 1, r.Bottom - r.Top + 1);
        for (std::intptr_t y = 0; y < cut.Height; ++y)
            for (std::intptr_t x = 0; x < cut.Width; ++x)
                cut.At(x, y) = At(x + r.Left, y + r.Top);
        return cut;
    }
    PlaneBytes Bytes() const {
        PlaneBytes bytes(Values.size() * sizeof(T));
        std::memcpy(bytes.data(), Values.data(), bytes.size());
        return bytes;
    }
    /// What a plane of an image shows.
    static PixelGrid Of(void *image, std::intptr_t plane = 0) {
        const ImageSize size = SizeOf(image);
        PixelGrid grid(size.Width, size.Height);
        const PlaneBytes bytes = PixelBytes(image, plane);
        if (bytes.size() != grid.Values.size() * sizeof(T))
            throw std::runtime_error("a plane is read with another pixel type than its own");
        std::memcpy(grid.Values.data(), bytes.data(), bytes.size());
        return grid;
    }
};

/// Rows of digits as pixels of 0 to 9; a point is a 0.
template <class T = std::uint8_t>
PixelGrid<T> Digits(const std::vector<std::string> &rows) {
    PixelGrid<T> grid(std::ssize(rows[0]), std::ssize(rows));
    for (std::intptr_t y = 0; y < grid.Height; ++y)
        for (std::intptr_t x = 0; x < grid.Width; ++x) {
            const char digit = rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
            grid.At(x, y) = static_cast<T>(digit == '.' ? 0 : digit - '0');
        }
    return grid;
}

/// An image of one plane that holds a grid, of the tests' own class.
template <class T>
std::unique_ptr<FakeImage> ImageOf(const PixelGrid<T> &grid, TDataType type = WordOf<T>) {
    auto image = FakeImage::Planar(grid.Width, grid.Height, 1, type);
    const PlaneBytes bytes = grid.Bytes();
    std::copy(bytes.begin(), bytes.end(), image->Pixels.begin());
    return image;
}

/// How many layouts LaidOut knows.
inline constexpr std::size_t LayoutCount = 12 + 9 + 4;

/// An image with a grid in plane 1 of 2, in one of many layouts; a rescaled, a stitched and two turned views among
/// them. The layout may repeat, leave out or turn what the grid holds: read the image back with PixelGrid::Of.
struct LaidOutImage {
    std::string Name;
    std::vector<NamedImage> Sources;
    Handle View;
    void *Get() const { return View ? View.Get() : Sources[0].Get(); }
};
template <class T>
LaidOutImage LaidOut(const PixelGrid<T> &grid, std::size_t layout, TDataType type = WordOf<T>) {
    const std::intptr_t width = grid.Width, height = grid.Height;
    const std::vector<PlaneBytes> content = {PlaneBytes(grid.Values.size() * sizeof(T), 0x55), grid.Bytes()};
    const auto rules = LayoutRules(width, height, 2, type);
    const auto pitches = PitchRules(width, height, 2, type);
    LaidOutImage image;
    if (layout < rules.size() + pitches.size()) {
        image.Sources.push_back(layout < rules.size()
                                    ? MakeFake(rules[layout], content, width, height, type)
                                    : MakeExternal(pitches[layout - rules.size()], content, width, height, type));
        image.Name = image.Sources[0].Name;
        return image;
    }
    image.Sources.push_back(MakeExternal(pitches[1], content, width, height, type));
    void *const source = image.Sources[0].Get();
    bool made = false;
    switch (layout - rules.size() - pitches.size()) {
    case 0:
        image.Name = "rescaled view";
        made = CreateImageMap(source, 0, 0, width - 1, height - 1, width + 3, std::max<std::intptr_t>(height / 2, 1),
                              image.View.Out());
        break;
    case 1:
        image.Name = "stitched view";
        image.Sources.push_back(MakeExternal(pitches[2], content, width, height, type));
        made = CreatePanoramicImageMap(source, image.Sources[1].Get(), PanoramaSideBySide, image.View.Out());
        break;
    case 2:
        image.Name = "view turned once";
        made = CreateRotatedImageMap(source, 1, image.View.Out());
        break;
    default:
        image.Name = "view turned three times";
        made = CreateRotatedImageMap(source, 3, image.View.Out());
    }
    if (!made)
        throw std::runtime_error("no " + image.Name);
    return image;
}

/// Reads a list of dimension 3 that nobody else holds.
inline Spots ReadSpots(void *list) {
    Spots spots;
    EXPECT_TRUE(IsPixels(list));
    EXPECT_EQ(PixelListDimension(list), 3);
    EXPECT_EQ(RefCount(list), 1u);
    for (std::int64_t i = 0; i < PixelListCount(list); ++i) {
        double components[3] = {};
        EXPECT_TRUE(ListPixelEx(list, i, components));
        spots.push_back({components[0], components[1], components[2]});
    }
    return spots;
}

/// Searches with FindMaxima and expects success without a report.
inline Spots Maxima(void *image, const PixelRectangle &r, std::int64_t locality = 0, std::int64_t threshold = 1,
                    std::intptr_t plane = 0) {
    Handle list;
    ClearReports();
    EXPECT_EQ(FindMaxima(image, plane, r.Left, r.Top, r.Right, r.Bottom, locality, threshold, list.Out()), -1);
    ExpectNoReport();
    return ReadSpots(list.Get());
}
template <class T>
Spots Maxima(const PixelGrid<T> &grid, const PixelRectangle &r, std::int64_t locality = 0,
             std::int64_t threshold = 1) {
    const auto image = ImageOf(grid);
    const Spots spots = Maxima(image->Handle(), r, locality, threshold);
    EXPECT_EQ(image->Count(), 1) << "the image's references";
    return spots;
}

/// What a sub-pixel search is told beside image, plane and rectangle.
struct SubPixelChoice {
    std::int64_t Locality = 0;
    double Threshold = 1.0;
    std::uint32_t Fit = FitNone;
    std::int32_t Radius = 1;
};

/// Searches with FindSubPixelMaxima and expects success without a report.
inline Spots SubPixelMaxima(void *image, const PixelRectangle &r, const SubPixelChoice &choice = {},
                            std::intptr_t plane = 0) {
    Handle list;
    ClearReports();
    EXPECT_TRUE(FindSubPixelMaxima(image, plane, r.Left, r.Top, r.Right, r.Bottom, choice.Locality, choice.Fit,
                                   choice.Radius, list.Out(), choice.Threshold));
    ExpectNoReport();
    return ReadSpots(list.Get());
}
template <class T>
Spots SubPixelMaxima(const PixelGrid<T> &grid, const PixelRectangle &r, const SubPixelChoice &choice = {}) {
    const auto image = ImageOf(grid);
    const Spots spots = SubPixelMaxima(image->Handle(), r, choice);
    EXPECT_EQ(image->Count(), 1) << "the image's references";
    return spots;
}

} // namespace TestSupport

#endif
