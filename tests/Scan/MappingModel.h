/* What the tests of value mapping and colour share: the ten pixel types, conversions with a told result for every
 * double, content with extreme values, one content in all layouts, and comparisons of whole planes.
 * The naive models of the functions themselves stand beside their tests. */
#ifndef ORV_TESTS_MAPPING_MODEL_H
#define ORV_TESTS_MAPPING_MODEL_H

#include "Support/ImageAccess.h"
#include "Support/TestLayouts.h"

#include <cmath>
#include <limits>

namespace MappingModel {

using namespace TestSupport;

inline constexpr TDataType PixelTypes[] = {0x108, 0x8, 0x110, 0x10, 0x120, 0x20, 0x140, 0x40, 0x220, 0x240};

/// Calls with a value of the type that the word tells: by its bytes, its float flag, its signed flag.
template <class Function>
void ForPixelType(TDataType type, Function function) {
    const bool isSigned = (type & DataTypeSigned) != 0;
    switch (PixelSize(type) | ((type & DataTypeFloat) != 0 ? 16u : 0u)) {
    case 1:
        return isSigned ? function(std::int8_t{}) : function(std::uint8_t{});
    case 2:
        return isSigned ? function(std::int16_t{}) : function(std::uint16_t{});
    case 4:
        return isSigned ? function(std::int32_t{}) : function(std::uint32_t{});
    case 8:
        return isSigned ? function(std::int64_t{}) : function(std::uint64_t{});
    case 20:
        return function(float{});
    case 24:
        return function(double{});
    default:
        throw std::runtime_error("no pixel type");
    }
}

inline std::string TypeName(const testing::TestParamInfo<TDataType> &info) {
    const char *const kind = (info.param & DataTypeFloat) != 0    ? "Float"
                             : (info.param & DataTypeSigned) != 0 ? "Signed"
                                                                  : "Unsigned";
    return kind + std::to_string(info.param & DataTypeBitsMask);
}

inline std::int64_t CutTo64(double value) {
    return value >= -0x1p63 && value < 0x1p63 ? static_cast<std::int64_t>(value)
                                              : std::numeric_limits<std::int64_t>::min();
}
inline std::int32_t CutTo32(double value) {
    return value > -2147483649.0 && value < 2147483648.0 ? static_cast<std::int32_t>(value)
                                                         : std::numeric_limits<std::int32_t>::min();
}

/// Toward zero: at 32 bits signed, or at 64 where the type needs it; then the low bits. Floats are narrowed.
template <class T>
T CutTo(double value) {
    if constexpr (std::is_floating_point_v<T>)
        return static_cast<T>(value);
    else if constexpr (std::is_same_v<T, std::uint64_t>)
        return value >= 0x1p63 ? static_cast<T>(CutTo64(value - 0x1p63)) | T{1} << 63
                               : static_cast<T>(CutTo64(value));
    else if constexpr (sizeof(T) == 8 || std::is_same_v<T, std::uint32_t>)
        return static_cast<T>(CutTo64(value));
    else
        return static_cast<T>(CutTo32(value));
}

/// A pixel type's range, and what is added before the cut.
template <class T>
struct Range {
    static constexpr double Lower = static_cast<double>(std::numeric_limits<T>::lowest());
    static constexpr double Upper = static_cast<double>(std::numeric_limits<T>::max());
    static constexpr double Rounding = std::is_integral_v<T> ? 0.5 : 0.0;
};

/// A value that is no number stays as it is.
inline double Limited(double value, double lower, double upper) {
    return value < lower ? lower : value > upper ? upper : value;
}

template <class T>
std::vector<T> ValuesOf(const PlaneBytes &bytes) {
    std::vector<T> values(bytes.size() / sizeof(T));
    std::memcpy(values.data(), bytes.data(), values.size() * sizeof(T));
    return values;
}
template <class T>
PlaneBytes BytesOf(const std::vector<T> &values) {
    PlaneBytes bytes(values.size() * sizeof(T));
    std::memcpy(bytes.data(), values.data(), bytes.size());
    return bytes;
}
/// The same value in each pixel.
template <class T>
PlaneBytes Flat(std::intptr_t pixels, T value) {
    return BytesOf(std::vector<T>(static_cast<std::size_t>(pixels), value));
}

enum class Content { Tame, Wild };

/// Random values of a type: wild ones are any bits and the ends of the range, for floats with infinities and NaN;
/// tame ones are small numbers.
template <class T>
T RandomValue(std::mt19937_64 &random, Content content) {
    using Limits = std::numeric_limits<T>;
    const std::uint64_t word = random();
    if (content == Content::Tame && std::is_floating_point_v<T>)
        return static_cast<T>(static_cast<double>(static_cast<std::int64_t>(word)) * 0x1p-53);
    if (content == Content::Tame)
        return static_cast<T>(word % 201);
    const T ends[] = {
        Limits::lowest(), Limits::max(),      T{0}, T{1}, Limits::infinity(), static_cast<T>(-Limits::infinity()),
        Limits::min(),    Limits::quiet_NaN()};
    if (word >> 60 == 0)
        return ends[(word >> 32) % (std::is_floating_point_v<T> ? 8 : 4)];
    T value;
    std::memcpy(&value, &word, sizeof value);
    return value;
}

inline std::vector<PlaneBytes> RandomPlanes(std::intptr_t pixels, std::intptr_t planes, TDataType type,
                                            std::uint64_t seed, Content content) {
    std::mt19937_64 random(seed);
    std::vector<PlaneBytes> all;
    for (std::intptr_t plane = 0; plane < planes; ++plane)
        ForPixelType(type, [&](auto zero) {
            std::vector<decltype(zero)> values(static_cast<std::size_t>(pixels));
            for (auto &value : values)
                value = RandomValue<decltype(zero)>(random, content);
            all.push_back(BytesOf(values));
        });
    return all;
}

/// One content in all layouts.
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

/// An image of separate planes, each with a type of its own.
inline std::unique_ptr<FakeImage> MixedImage(std::intptr_t width, std::intptr_t height,
                                             const std::vector<TDataType> &types,
                                             const std::vector<PlaneBytes> &content) {
    std::size_t bytes = 0;
    for (const auto &plane : content)
        bytes = (bytes + 7) / 8 * 8 + plane.size();
    auto image = std::make_unique<FakeImage>(width, height, bytes);
    std::uint8_t *base = image->Pixels.data();
    for (std::size_t plane = 0; plane < types.size(); ++plane) {
        const auto size = static_cast<std::intptr_t>(PixelSize(types[plane]));
        image->AddPlane(
            base, types[plane], [=](std::intptr_t i) { return i * size; },
            [=](std::intptr_t j) { return j * width * size; });
        std::copy(content[plane].begin(), content[plane].end(), base);
        base += (content[plane].size() + 7) / 8 * 8;
    }
    return image;
}
inline std::unique_ptr<FakeImage> PlainImage(std::intptr_t width, std::intptr_t height, TDataType type,
                                             const std::vector<PlaneBytes> &content) {
    return MixedImage(width, height, std::vector<TDataType>(content.size(), type), content);
}

template <class T>
bool IsNaN(T value) {
    if constexpr (std::is_floating_point_v<T>)
        return std::isnan(value);
    else
        return false;
}

/// Compares a plane of an image with its expected pixels, bit for bit; NaN has many faces and equals NaN.
inline void ExpectPlane(void *image, std::intptr_t plane, TDataType type, const PlaneBytes &expected) {
    ASSERT_EQ(TypeOf(image, plane), type);
    const PlaneBytes actual = PixelBytes(image, plane);
    if (actual == expected)
        return;
    ASSERT_EQ(actual.size(), expected.size());
    ForPixelType(type, [&](auto zero) {
        using T = decltype(zero);
        const auto is = ValuesOf<T>(actual), told = ValuesOf<T>(expected);
        for (std::size_t i = 0; i < is.size(); ++i) {
            const bool bothNaN = IsNaN(is[i]) && IsNaN(told[i]);
            ASSERT_TRUE(bothNaN || std::memcmp(&is[i], &told[i], sizeof(T)) == 0)
                << "plane " << plane << ", pixel " << i << " is " << +is[i] << " and should be " << +told[i];
        }
    });
}

/// The one value of a flat plane. A plane of several values fails.
template <class T>
T OneValueOf(void *image, std::intptr_t plane = 0) {
    const auto values = ValuesOf<T>(PixelBytes(image, plane));
    EXPECT_FALSE(values.empty());
    EXPECT_TRUE(BytesOf(values) == Flat(std::ssize(values), values.front())) << "the plane is not flat";
    return values.front();
}

inline void ExpectOneReportWithText(std::uint32_t code, const char *function, const char *text) {
    EXPECT_EQ(ReportCount(), 1);
    const auto report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->code, code);
    EXPECT_EQ(report->function, function);
    EXPECT_EQ(report->text, text);
    ClearReports();
}

/// Expects a report of the function itself to be the newest.
inline void ExpectNewestReport(std::uint32_t code, const char *function) {
    const auto report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->code, code);
    EXPECT_EQ(report->function, function);
    ClearReports();
}

/// Lets the first, second, third ... operation of an image throw until a call gets through. Each call before it must
/// let the exception out and leave no reference behind.
template <class Call>
void ExpectExceptionsToPass(FakeImage &image, Call call) {
    int throwing = 0;
    for (bool finished = false; !finished; ++throwing) {
        ASSERT_LT(throwing, 200) << "the operations never end";
        int left = throwing;
        image.Fails.OnOperation = [&left] {
            if (left-- == 0)
                throw std::length_error("the image's own");
        };
        SCOPED_TRACE(testing::Message() << "operation " << throwing << " throws");
        try {
            finished = call();
            EXPECT_TRUE(left >= 0) << "an exception was swallowed";
        } catch (const std::length_error &) {
        }
        EXPECT_EQ(image.Count(), 1);
    }
    EXPECT_GT(throwing, 1);
    image.Fails.OnOperation = nullptr;
    ClearReports();
}

/// Around the lengths of vector registers and of the blocks that hold some of them.
inline constexpr std::intptr_t Widths[] = {1,  2,   3,   7,   8,   15,  16,  17,   23,   31,   32,   33,   63,  64,
                                           65, 127, 128, 129, 255, 256, 257, 1023, 1024, 1025, 2047, 2048, 2049};

} // namespace MappingModel

#endif
