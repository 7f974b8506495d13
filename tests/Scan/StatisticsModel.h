/* Naive models of what is computed pixel by pixel through the tables of an image: stacks of planes reduced to two,
 * and overlay bits copied. Also pixels of extreme values, and an image that tells another size than it has. */
#ifndef ORV_TESTS_STATISTICS_MODEL_H
#define ORV_TESTS_STATISTICS_MODEL_H

#include "Image/MapModel.h"
#include "ImageStatistics.h"

#include <array>
#include <cmath>
#include <type_traits>

namespace TestSupport {

/// Calls operation with a value of the type of a pixel. The word must be one of the ten pixel types.
template <class Operation>
void WithPixelType(TDataType type, Operation operation) {
    const bool isSigned = (type & DataTypeSigned) != 0;
    const auto as = [&](auto signedPixel, auto unsignedPixel) {
        if (isSigned)
            operation(signedPixel);
        else
            operation(unsignedPixel);
    };
    switch (PixelSize(type) + ((type & DataTypeFloat) != 0 ? 100 : 0)) {
    case 1:
        return as(std::int8_t{}, std::uint8_t{});
    case 2:
        return as(std::int16_t{}, std::uint16_t{});
    case 4:
        return as(std::int32_t{}, std::uint32_t{});
    case 8:
        return as(std::int64_t{}, std::uint64_t{});
    case 104:
        return operation(float{});
    case 108:
        return operation(double{});
    default:
        throw std::runtime_error("a test takes a word for a pixel type that is none");
    }
}

template <class T>
T ReadPixel(const std::uint8_t *bytes) {
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}
template <class T>
void AppendPixel(PlaneBytes &bytes, T value) {
    const std::size_t before = bytes.size();
    bytes.resize(before + sizeof value);
    std::memcpy(bytes.data() + before, &value, sizeof value);
}
/// The bytes of a plane of some values.
template <class T>
PlaneBytes BytesOf(const std::vector<T> &values) {
    PlaneBytes bytes;
    for (const T value : values)
        AppendPixel(bytes, value);
    return bytes;
}

inline std::int64_t TruncatedTo64Bits(double value) {
    return value >= -0x1p63 && value < 0x1p63 ? static_cast<std::int64_t>(value) : Lowest;
}
inline std::int32_t TruncatedTo32Bits(double value) {
    return value > -0x1p31 - 1.0 && value < 0x1p31 ? static_cast<std::int32_t>(value)
                                                   : std::numeric_limits<std::int32_t>::min();
}

/// How a double becomes a pixel: no rounding, no saturation.
template <class T>
T PixelFrom(double value) {
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(value);
    else if constexpr (std::is_same_v<T, std::uint64_t>)
        return value >= 0x1p63 ? static_cast<T>(TruncatedTo64Bits(value - 0x1p63)) | (T{1} << 63)
                               : static_cast<T>(TruncatedTo64Bits(value));
    else if constexpr (sizeof(T) == 8 || std::is_same_v<T, std::uint32_t>)
        return static_cast<T>(TruncatedTo64Bits(value));
    else
        return static_cast<T>(TruncatedTo32Bits(value));
}

template <class T>
std::pair<T, T> LeastAndGreatest(const std::vector<T> &values) {
    T least = values.front(), greatest = values.front();
    for (const T value : values) {
        if (value < least)
            least = value;
        if (value > greatest)
            greatest = value;
    }
    return {least, greatest};
}

template <class T>
std::pair<T, T> MeanAndDeviation(const std::vector<T> &values) {
    const auto count = static_cast<double>(values.size());
    double sum = 0.0, squares = 0.0;
    for (const T value : values) {
        const auto number = static_cast<double>(value);
        sum += number;
        squares += number * number;
    }
    const double mean = sum / count;
    const double meanOfSquares = squares / count;
    const double spread = meanOfSquares - mean * mean;
    return {PixelFrom<T>(mean), spread > 0.0 ? PixelFrom<T>(std::sqrt(spread) + 0.5) : T{0}};
}

/// The two functions that reduce the planes of an image, and what they give.
struct Reduction {
    const char *Name;
    std::int32_t (*Create)(void *image, void **first, void **second);
    bool IsOfMeans;
};
inline constexpr Reduction Extremes{"CreateMinMaxImage", CreateMinMaxImage, false};
inline constexpr Reduction Means{"CreateMeanVarianceImage", CreateMeanVarianceImage, true};
inline void PrintTo(const Reduction &reduction, std::ostream *out) {
    *out << reduction.Name;
}

using TwoPlanes = std::array<PlaneBytes, 2>;

/// Both results for an image, all of whose planes are read as the type of plane 0.
inline TwoPlanes ReduceByModel(void *image, const Reduction &reduction) {
    const ImageSize size = SizeOf(image);
    std::vector<PlaneAccess> planes;
    for (std::intptr_t plane = 0; plane < size.Planes; ++plane)
        planes.push_back(AccessOf(image, plane));
    TwoPlanes results;
    WithPixelType(TypeOf(image, 0), [&]<class T>(T) {
        std::vector<T> values(planes.size());
        for (std::intptr_t y = 0; y < size.Height; ++y)
            for (std::intptr_t x = 0; x < size.Width; ++x) {
                for (std::size_t plane = 0; plane < planes.size(); ++plane)
                    values[plane] = ReadPixel<T>(planes[plane].At(x, y));
                const auto [first, second] =
                    reduction.IsOfMeans ? MeanAndDeviation(values) : LeastAndGreatest(values);
                AppendPixel(results[0], first);
                AppendPixel(results[1], second);
            }
    });
    return results;
}

/// Equal bits; for computed floating-point numbers also two NaNs, whose bits nobody promises, and two zeros.
template <class T>
bool SamePixel(const std::uint8_t *a, const std::uint8_t *b, bool isComputed) {
    if (std::memcmp(a, b, sizeof(T)) == 0)
        return true;
    if constexpr (std::is_floating_point_v<T>) {
        const T x = ReadPixel<T>(a), y = ReadPixel<T>(b);
        return isComputed && ((std::isnan(x) && std::isnan(y)) || (x == T{0} && y == T{0}));
    }
    return false;
}

/// Runs a reduction and compares both results with the model. The image must stay as it was.
inline void ExpectReductionLikeTheModel(void *image, const Reduction &reduction) {
    const TwoPlanes expected = ReduceByModel(image, reduction);
    const ImageSize size = SizeOf(image);
    const TDataType type = TypeOf(image, 0);
    std::array<Handle, 2> results;
    ASSERT_EQ(reduction.Create(image, results[0].Out(), results[1].Out()), 1);
    for (const std::size_t result : {0u, 1u}) {
        ASSERT_EQ(SizeOf(results[result].Get()), (ImageSize{1, size.Width, size.Height}));
        ASSERT_EQ(TypeOf(results[result].Get(), 0), type);
        const PlaneBytes actual = PixelBytes(results[result].Get(), 0);
        ASSERT_EQ(actual.size(), expected[result].size());
        WithPixelType(type, [&]<class T>(T) {
            for (std::size_t at = 0; at < actual.size(); at += sizeof(T))
                ASSERT_TRUE(SamePixel<T>(&actual[at], &expected[result][at], reduction.IsOfMeans))
                    << reduction.Name << ", result " << result << ", pixel " << at / sizeof(T) << " is "
                    << testing::PrintToString(ReadPixel<T>(&actual[at])) << " instead of "
                    << testing::PrintToString(ReadPixel<T>(&expected[result][at]));
        });
    }
}

/// All layouts of some content, as MakeLayouts has them of random content.
inline std::vector<NamedImage> LayoutsOf(const std::vector<PlaneBytes> &content, std::intptr_t width,
                                         std::intptr_t height, TDataType type) {
    const auto planes = static_cast<std::intptr_t>(content.size());
    std::vector<NamedImage> images;
    for (const auto &rule : LayoutRules(width, height, planes, type))
        images.push_back(MakeFake(rule, content, width, height, type));
    for (const auto &rule : PitchRules(width, height, planes, type))
        images.push_back(MakeExternal(rule, content, width, height, type));
    return images;
}

/// A name of letters and digits for a test of a data type.
inline std::string NameOfType(const testing::TestParamInfo<TDataType> &info) {
    const char *const kind = (info.param & DataTypeFloat) != 0    ? "Float"
                             : (info.param & DataTypeSigned) != 0 ? "Signed"
                                                                  : "Unsigned";
    return kind + std::to_string(info.param & DataTypeBitsMask);
}

/// Planes over one block of memory that holds the values one after the other.
template <class T>
std::unique_ptr<FakeImage> Stack(std::intptr_t width, std::intptr_t height, TDataType type,
                                 const std::vector<std::vector<T>> &planes) {
    auto image = FakeImage::Planar(width, height, std::ssize(planes), type);
    for (std::size_t plane = 0; plane < planes.size(); ++plane)
        std::memcpy(image->BaseOf(plane), planes[plane].data(), planes[plane].size() * sizeof(T));
    return image;
}

/// The values of a plane, read through its table.
template <class T>
std::vector<T> ValuesOf(void *image, std::intptr_t plane = 0) {
    const PlaneBytes bytes = PixelBytes(image, plane);
    std::vector<T> values(bytes.size() / sizeof(T));
    std::memcpy(values.data(), bytes.data(), values.size() * sizeof(T));
    return values;
}

/// The bytes from the first to the last pixel of each plane of some images, to be kept and put back.
class PixelMemory {
public:
    explicit PixelMemory(std::initializer_list<void *> images) {
        for (void *const image : images) {
            const ImageSize size = SizeOf(image);
            for (std::intptr_t plane = 0; plane < size.Planes; ++plane)
                Add(AccessOf(image, plane), size, PixelSize(TypeOf(image, plane)));
        }
    }
    std::vector<PlaneBytes> Read() const {
        std::vector<PlaneBytes> bytes;
        for (const auto &[first, count] : ranges)
            bytes.emplace_back(first, first + count);
        return bytes;
    }
    void Write(const std::vector<PlaneBytes> &bytes) const {
        for (std::size_t i = 0; i < ranges.size(); ++i)
            std::copy(bytes[i].begin(), bytes[i].end(), ranges[i].first);
    }

private:
    std::vector<std::pair<std::uint8_t *, std::size_t>> ranges;

    void Add(const PlaneAccess &plane, const ImageSize &size, std::size_t pixelBytes) {
        if (size.Width < 1 || size.Height < 1)
            return;
        const Offsets x = AxisOf(plane.Table, &VPAEntry::XEntry, size.Width);
        const Offsets y = AxisOf(plane.Table, &VPAEntry::YEntry, size.Height);
        const auto [left, right] = std::minmax_element(x.begin(), x.end());
        const auto [top, bottom] = std::minmax_element(y.begin(), y.end());
        ranges.emplace_back(plane.Base + *left + *top,
                            static_cast<std::size_t>(*right - *left + *bottom - *top) + pixelBytes);
    }
};

/// Runs a call again and again, each time with another operation of the image that throws an int, up to the first
/// success. The int passes on, and expectUntouched runs behind it.
template <class Call, class Check>
void ExpectThrowsOfEachOperationToPassOn(FakeImage &image, Call call, Check expectUntouched) {
    bool finished = false;
    for (int failing = 0; !finished; ++failing) {
        ASSERT_LT(failing, 1000);
        SCOPED_TRACE(testing::Message() << "operation " << failing << " throws");
        int number = 0;
        image.Fails.OnOperation = [&] {
            if (number++ == failing)
                throw failing;
        };
        try {
            const std::int32_t result = call();
            EXPECT_EQ(result, 1);
            EXPECT_GE(failing, number) << "what an operation threw was swallowed";
            finished = true;
        } catch (int thrown) {
            EXPECT_EQ(thrown, failing);
            expectUntouched();
        }
        image.Fails.OnOperation = nullptr;
        ASSERT_EQ(image.Count(), 1);
    }
}

/// A point, or a step, in whole pixels or in 16.16 fixed point.
struct Point {
    std::int64_t X, Y;
};

/// The plain walk: 16.16 fixed-point positions, one step per sample, one test per sample. For areas whose numbers are
/// small enough for every product to fit 64 bits.
class PlainWalk {
public:
    PlainWalk(const TArea &area, std::int64_t perThousand) : density(static_cast<double>(perThousand)) {
        start = {Rounded(area.X0), Rounded(area.Y0)};
        const Point first{Rounded(area.X1) - start.X, Rounded(area.Y1) - start.Y};
        const Point second{Rounded(area.X2) - start.X, Rounded(area.Y2) - start.Y};
        step = static_cast<std::int64_t>(65536000.0 / density);
        SetSampleStep(first);
        SetLineStep(second);
        for (std::int64_t *const part : {&sample.X, &sample.Y, &line.X, &line.Y})
            *part += *part == 0;
    }
    /// Result: the signed count.
    template <class Visit>
    std::int32_t Run(std::int64_t width, std::int64_t height, Visit visit) const {
        std::int32_t count = 0;
        bool clipped = false;
        std::int64_t lineX = start.X * 65536 + 0x8000, lineY = start.Y * 65536 + 0x8000;
        for (std::int64_t left = lines; left > 0; --left, lineX += line.X, lineY += line.Y) {
            std::int64_t x = lineX & 0xFFFF0000, y = lineY & 0xFFFF0000;
            if (followsY)
                x = lineX - static_cast<std::int32_t>((lineY & 0xFFFF) * sample.X / sample.Y);
            else
                y = lineY - static_cast<std::int32_t>((lineX & 0xFFFF) * sample.Y / sample.X);
            for (std::int64_t i = 0; i < samples; ++i, x += sample.X, y += sample.Y) {
                const std::int32_t column = static_cast<std::int32_t>(x >> 16);
                const std::int32_t row = static_cast<std::int32_t>(y >> 16);
                const bool inside = column >= 0 && column < width && row >= 0 && row < height;
                clipped = clipped || !inside;
                if (inside) {
                    ++count;
                    visit(column, row);
                }
            }
        }
        return clipped ? -count : count;
    }

private:
    double density;
    Point start{}, sample{}, line{};
    std::int64_t step = 0, samples = 1, lines = 1;
    bool followsY = false;

    static std::int64_t Rounded(double value) { return static_cast<std::int64_t>(std::floor(value + 0.5)); }
    static std::int64_t Quotient(std::int64_t a, std::int64_t b, std::int64_t c) {
        return static_cast<std::int64_t>(static_cast<double>(a * b) / static_cast<double>(c));
    }
    std::int64_t CountAlong(std::int64_t length) const {
        return static_cast<std::int64_t>(static_cast<double>(std::abs(length)) * density / 1000.0) + 1;
    }
    void SetSampleStep(const Point &edge) {
        if (std::abs(edge.Y) > std::abs(edge.X)) {
            followsY = true;
            samples = CountAlong(edge.Y);
            sample.Y = edge.Y < 0 ? -step : step;
            sample.X = Quotient(edge.X, sample.Y, edge.Y);
        } else if (edge.X != 0) {
            samples = CountAlong(edge.X);
            sample.X = edge.X < 0 ? -step : step;
            sample.Y = Quotient(edge.Y, sample.X, edge.X);
        }
    }
    void SetLineStep(const Point &edge) {
        const auto word = [](std::int64_t value) { return static_cast<std::uint32_t>(value); };
        const auto cross = static_cast<std::int32_t>(word(sample.X) * word(edge.Y) - word(sample.Y) * word(edge.X));
        if (cross == 0)
            return SetLineStepOfParallelEdges(edge);
        const auto cell = static_cast<std::int32_t>(cross < 0 ? 0u - static_cast<std::uint32_t>(cross)
                                                              : static_cast<std::uint32_t>(cross));
        const double q = 65536.0 / density;
        const double k = q * q * (1000000.0 / cell);
        const auto scaled = [k](std::int64_t length) {
            const double value = static_cast<double>(length) * k;
            return std::abs(value) < 2147483647.0 ? static_cast<std::int64_t>(std::floor(value + 0.5)) : length;
        };
        line = {scaled(edge.X), scaled(edge.Y)};
        lines = static_cast<std::int64_t>(std::floor(65536.0 / k + 0.5)) + 1;
    }
    void SetLineStepOfParallelEdges(const Point &edge) {
        if (std::abs(edge.Y) > std::abs(edge.X)) {
            followsY = true;
            line.Y = edge.Y < 0 ? -step : step;
            line.X = Quotient(edge.X, line.Y, edge.Y);
            lines = CountAlong(edge.Y);
        } else if (edge.X != 0) {
            followsY = false;
            line.X = edge.X < 0 ? -step : step;
            line.Y = Quotient(edge.Y, line.X, edge.X);
            lines = CountAlong(edge.X);
        }
    }
};

} // namespace TestSupport

#endif
