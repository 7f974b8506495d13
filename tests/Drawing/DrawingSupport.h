/* What the tests of drawing share: images that stand between guard bytes, in every layout; calls that can be made and
 * followed by the model; and the comparison of all their memory. */
#ifndef ORV_TESTS_DRAWING_SUPPORT_H
#define ORV_TESTS_DRAWING_SUPPORT_H

#include "Drawing.h"
#include "Drawing/DrawingModel.h"

#include <ctime>

namespace TestSupport {

inline constexpr std::int64_t Lowest32 = std::numeric_limits<std::int32_t>::min();
inline constexpr std::int64_t Highest32 = std::numeric_limits<std::int32_t>::max();
inline constexpr std::int64_t Lowest64 = std::numeric_limits<std::int64_t>::min();
inline constexpr std::int64_t Highest64 = std::numeric_limits<std::int64_t>::max();
inline constexpr double Infinity = std::numeric_limits<double>::infinity();
inline constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
inline constexpr double Pi = 3.141592653589793;

inline constexpr TDataType TenTypes[] = {8,
                                         8 | DataTypeSigned,
                                         16,
                                         16 | DataTypeSigned,
                                         32,
                                         32 | DataTypeSigned,
                                         64,
                                         64 | DataTypeSigned,
                                         32 | DataTypeFloat,
                                         64 | DataTypeFloat};

/// An image and all the memory around its pixels.
struct Subject {
    static constexpr std::intptr_t Guard = 512;
    std::string Name;
    std::shared_ptr<FakeImage> Fake;   ///< the image when it is of the tests' own class, else null
    std::shared_ptr<PlaneBytes> Block; ///< the memory of an image over a pointer, else null
    std::shared_ptr<Handle> Owned;     ///< the image when it was made over a pointer, else null

    void *Get() const { return Fake ? Fake->Handle() : Owned->Get(); }
    PlaneBytes &Memory() const { return Fake ? Fake->Pixels : *Block; }
    void Refill(std::uint32_t seed) const {
        const auto count = static_cast<std::intptr_t>(Memory().size());
        Memory() = RandomContent(count, 1, 1, 8, seed)[0];
    }
    void Clear() const { std::fill(Memory().begin(), Memory().end(), std::uint8_t{0}); }
};

/// The type whose pixels have the size that drawing takes.
inline TDataType StoredType(TDataType type) {
    return static_cast<TDataType>(StorageOf(type) * 8);
}

inline Subject FakeSubject(const LayoutRule &rule, std::intptr_t width, std::intptr_t height, std::intptr_t planes,
                           TDataType type) {
    std::intptr_t lowest = 0, highest = 0;
    for (std::intptr_t plane = 0; plane < planes; ++plane)
        for (std::intptr_t y = 0; y < height; ++y)
            for (std::intptr_t x = 0; x < width; ++x) {
                lowest = std::min(lowest, rule.X(plane, x) + rule.Y(plane, y));
                highest = std::max(highest, rule.X(plane, x) + rule.Y(plane, y));
            }
    const auto bytes = static_cast<std::size_t>(highest - lowest + 2 * Subject::Guard) + StorageOf(type);
    auto image = std::make_shared<FakeImage>(width, height, bytes);
    for (std::intptr_t plane = 0; plane < planes; ++plane)
        image->AddPlane(
            image->Pixels.data() + Subject::Guard - lowest, type, [&](std::intptr_t i) { return rule.X(plane, i); },
            [&](std::intptr_t j) { return rule.Y(plane, j); });
    return {"fake " + rule.Name, image, nullptr, nullptr};
}

inline Subject ExternalSubject(const PitchRule &rule, std::intptr_t width, std::intptr_t height, std::intptr_t planes,
                               TDataType type) {
    std::intptr_t lowest = 0, highest = 0;
    for (const std::intptr_t end : {(width - 1) * rule.X, (height - 1) * rule.Y, (planes - 1) * rule.Plane}) {
        lowest += std::min<std::intptr_t>(end, 0);
        highest += std::max<std::intptr_t>(end, 0);
    }
    auto block = std::make_shared<PlaneBytes>(static_cast<std::size_t>(highest - lowest + 2 * Subject::Guard) +
                                              StorageOf(type));
    void *image = nullptr;
    EXPECT_EQ(CreateImageFromPointer(block->data() + Subject::Guard - lowest, 0, width, height, planes, type, rule.X,
                                     rule.Y, rule.Plane, nullptr, nullptr, nullptr, &image),
              0);
    return {"external " + rule.Name, nullptr, block, std::make_shared<Handle>(image)};
}

/// Layouts that are even along one axis only, or show their pixels at several places.
inline std::vector<LayoutRule> HalfEvenRules(std::intptr_t width, std::intptr_t height, TDataType type) {
    const auto size = static_cast<std::intptr_t>(PixelSize(type));
    const std::intptr_t planeBytes = width * height * size;
    const auto evenColumns = [=](std::intptr_t plane, std::intptr_t i) { return plane * planeBytes + i * size; };
    return {{"unevenRows", evenColumns,
             [=](std::intptr_t, std::intptr_t j) {
                 return (j < height / 2 ? j : height / 2 * 3 - 1 - j) * width * size;
             }},
            {"unevenColumns",
             [=](std::intptr_t plane, std::intptr_t i) {
                 return plane * planeBytes + (i < width / 2 ? i : width / 2 * 3 - 1 - i) * size;
             },
             [=](std::intptr_t, std::intptr_t j) { return j * width * size; }},
            {"diagonal", evenColumns, [=](std::intptr_t, std::intptr_t j) { return j * size; }},
            {"equalRows", evenColumns, [](std::intptr_t, std::intptr_t) { return std::intptr_t{0}; }}};
}

/// One image in every layout; the memory is cleared.
inline std::vector<Subject> AllSubjects(std::intptr_t width, std::intptr_t height, std::intptr_t planes,
                                        TDataType type) {
    std::vector<Subject> subjects;
    for (const auto &rule : LayoutRules(width, height, planes, StoredType(type)))
        subjects.push_back(FakeSubject(rule, width, height, planes, type));
    for (const auto &rule : HalfEvenRules(width, height, StoredType(type)))
        subjects.push_back(FakeSubject(rule, width, height, planes, type));
    for (const auto &rule : PitchRules(width, height, planes, StoredType(type)))
        subjects.push_back(ExternalSubject(rule, width, height, planes, type));
    return subjects;
}

/// One plane without gaps, in rows.
inline Subject PlainSubject(std::intptr_t width, std::intptr_t height, TDataType type = 8) {
    return FakeSubject(LayoutRules(width, height, 1, StoredType(type))[3], width, height, 1, type);
}
/// The same with tables in which rows and columns stand out of order.
inline Subject ScatteredSubject(std::intptr_t width, std::intptr_t height, TDataType type = 8) {
    return FakeSubject(LayoutRules(width, height, 1, StoredType(type))[0], width, height, 1, type);
}

struct LineCall {
    std::int64_t X0, Y0, X1, Y1, Thickness = 1;
    std::uint32_t Mode = 0;
    double Value = 1.0;

    std::int32_t Draw(void *image, std::intptr_t plane) const {
        return DrawLineInImage(image, plane, X0, Y0, X1, Y1, Thickness, Mode, 0, Value);
    }
    void Follow(ModelPlane &plane) const { ModelLine(plane, {X0, Y0}, {X1, Y1}, Thickness, {Value, Mode}); }
};
inline void PrintTo(const LineCall &call, std::ostream *out) {
    *out << "line " << call.X0 << ", " << call.Y0 << " to " << call.X1 << ", " << call.Y1 << " thickness "
         << call.Thickness << " mode " << call.Mode << " value " << call.Value;
}

struct EllipseCall {
    std::int64_t X, Y, A, B, Thickness = 1;
    std::uint32_t Mode = 0;
    double Rotation = 0.0;
    double Value = 1.0;

    std::int32_t Draw(void *image, std::intptr_t plane) const {
        return DrawEllipseInImage(image, plane, X, Y, A, B, Thickness, Mode, 0, Rotation, Value);
    }
    void Follow(ModelPlane &plane) const {
        ModelEllipseOutline(plane, ModelEllipse({X, Y}, A, B, Rotation), Thickness, {Value, Mode});
    }
};
inline void PrintTo(const EllipseCall &call, std::ostream *out) {
    *out << "ellipse at " << call.X << ", " << call.Y << " radii " << call.A << ", " << call.B << " thickness "
         << call.Thickness << " mode " << call.Mode << " rotation " << call.Rotation << " value " << call.Value;
}

/// Thickness is not looked at.
struct FilledEllipseCall : EllipseCall {
    std::int32_t Draw(void *image, std::intptr_t plane) const {
        return FillEllipseInImage(image, plane, X, Y, A, B, Mode, 0, Rotation, Value);
    }
    void Follow(ModelPlane &plane) const {
        ModelPolygon(plane, ModelEllipse({X, Y}, A, B, Rotation).Points(), {Value, Mode});
    }
};

/// Draws, lets a model draw in a copy, and compares all bytes. False after a difference.
template <class Call, class Model>
bool DrawsLike(const Subject &subject, std::intptr_t plane, const Call &call, const Model &model) {
    PlaneBytes copy = subject.Memory();
    ModelPlane follower(subject.Get(), plane, subject.Memory().data(), copy);
    model(follower);
    const std::int32_t result = call.Draw(subject.Get(), plane);
    const auto [found, expected] = std::mismatch(subject.Memory().begin(), subject.Memory().end(), copy.begin());
    if (result == 0 && found == subject.Memory().end())
        return true;
    ADD_FAILURE() << subject.Name << ", plane " << plane << ": " << testing::PrintToString(call) << ": result "
                  << result
                  << (found == subject.Memory().end()
                          ? std::string(", right pixels")
                          : ", byte " + std::to_string(found - subject.Memory().begin()) + " is " +
                                std::to_string(*found) + " for " + std::to_string(*expected));
    return false;
}
template <class Call>
bool DrawsAsTold(const Subject &subject, std::intptr_t plane, const Call &call) {
    return DrawsLike(subject, plane, call, [&](ModelPlane &model) { call.Follow(model); });
}

/// Rows of an 8-bit plane: a point for 0, a star for all else.
inline std::vector<std::string> PictureOf(const Subject &subject) {
    const ImageSize size = SizeOf(subject.Get());
    const PlaneAccess access = AccessOf(subject.Get(), 0);
    std::vector<std::string> picture;
    for (std::intptr_t y = 0; y < size.Height; ++y) {
        picture.emplace_back();
        for (std::intptr_t x = 0; x < size.Width; ++x)
            picture.back() += *access.At(x, y) == 0 ? '.' : '*';
    }
    return picture;
}
using Picture = std::vector<std::string>;

/// A pixel of the first plane of a type that T stores.
template <class T>
T PixelAt(const Subject &subject, std::intptr_t x, std::intptr_t y, std::intptr_t plane = 0) {
    T pixel;
    std::memcpy(&pixel, AccessOf(subject.Get(), plane).At(x, y), sizeof pixel);
    return pixel;
}

/// Seconds of processor time that a piece of work takes.
template <class Work>
double SecondsOf(const Work &work) {
    const std::clock_t before = std::clock();
    work();
    return static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
}

/// A whole number between two, both included.
inline std::int64_t Between(std::mt19937 &random, std::int64_t lowest, std::int64_t highest) {
    return std::uniform_int_distribution<std::int64_t>(lowest, highest)(random);
}
/// A value to draw: most of small types, some beyond the limits.
inline double RandomValue(std::mt19937 &random) {
    constexpr double Far[] = {-1e30, 1e30, 1e300, -1e300, 4294967295.0, -2147483648.0, 9.3e18, 1.9e19, -0.0, 0.5};
    if (Between(random, 0, 3) == 0)
        return Far[Between(random, 0, std::ssize(Far) - 1)];
    return static_cast<double>(Between(random, -70000, 70000)) / 64.0;
}

} // namespace TestSupport

#endif
