/* Calls of the geometric transforms, compared with their naive models: size, types, every pixel, coordinate system,
 * reports, reference counts and an untouched source. Also the maps and images that the tests walk through. */
#ifndef ORV_TESTS_TRANSFORM_CHECKS_H
#define ORV_TESTS_TRANSFORM_CHECKS_H

#include "ImageTransformations.h"
#include "Transformations/TransformModel.h"

namespace TransformModel {

using Call = std::function<bool(void *image, void **out)>;

inline constexpr TMatrix IdentityMatrix{1.0, 0.0, 0.0, 1.0};

inline TArea RectArea(double left, double top, double right, double bottom) {
    TArea area;
    SetRectArea(&area, left, top, right, bottom);
    return area;
}
inline TMatrix Turned(double degrees, double scale = 1.0) {
    TMatrix matrix;
    RotationMatrix(&matrix, degrees);
    return {matrix.A11 * scale, matrix.A12 * scale, matrix.A21 * scale, matrix.A22 * scale};
}

/// All affine exports on one image, each with arguments that succeed.
struct AffineExport {
    const char *Name;
    const char *ReportName;
    Call Run;
};
inline const TCoordinateMap SlightlyTurned{3.0, -2.0, Turned(10.0)};
inline const TArea SmallArea = RectArea(0.0, 0.0, 3.0, 2.0);
inline std::vector<AffineExport> AffineExports() {
    return {
        {"CreateAffineTransformedImage", "CreateAffineTransformedImage",
         [](void *image, void **out) { return CreateAffineTransformedImage(image, &SlightlyTurned, out); }},
        {"CreateAreaAffineTransformedImage", "CreateAreaAffineTransformedImage",
         [](void *image, void **out) {
             return CreateAreaAffineTransformedImage(image, &SlightlyTurned, &SmallArea, out);
         }},
        {"CreateMatrixTransformedImage", "CreateMatrixTransformedImage",
         [](void *image, void **out) { return CreateMatrixTransformedImage(image, out, SlightlyTurned.Matrix); }},
        {"CreateMatrixTransformedImageEx", "CreateMatrixTransformedImage",
         [](void *image, void **out) { return CreateMatrixTransformedImageEx(image, out, SlightlyTurned.Matrix); }},
        {"CreateSubImage", "CreateSubImage",
         [](void *image, void **out) { return CreateSubImage(image, out, SmallArea); }}};
}

/// Leaves the position alone.
inline void SamePosition(void *, double *, double *) {}
inline std::vector<AffineExport> CallbackExports() {
    return {{"CreateTransformedImage", "CreateTransformedImage",
             [](void *image, void **out) { return CreateTransformedImage(image, 3, 2, SamePosition, nullptr, out); }},
            {"CreateAreaSubImage", "CreateAreaSubImage",
             [](void *image, void **out) { return CreateAreaSubImage(image, out, SmallArea); }}};
}
inline std::vector<AffineExport> AllExports() {
    auto exports = AffineExports();
    for (auto &callback : CallbackExports())
        exports.push_back(std::move(callback));
    return exports;
}

/// Compares an image with what a model made.
inline void ExpectResult(void *made, const ModelSource &source, const ModelResult &expected) {
    ASSERT_EQ(RefCount(made), 1u);
    ASSERT_EQ(SizeOf(made), (ImageSize{source.Size.Planes, expected.Width, expected.Height}));
    for (std::size_t plane = 0; plane < expected.Planes.size(); ++plane)
        ASSERT_NO_FATAL_FAILURE(
            ExpectPlane(made, static_cast<std::intptr_t>(plane), source.Types[plane], expected.Planes[plane]))
            << "a result of " << expected.Width << " x " << expected.Height;
    TCoordinateMap coordinates;
    ASSERT_EQ(ImageInterface(made)->GetCoordinateMap(&coordinates), 0);
    ASSERT_TRUE(SameMap(coordinates, expected.Coordinates));
}

/// Calls, and expects what the model made, or a false that leaves the output alone where it could make nothing.
inline void ExpectAsModel(void *image, const ModelSource &source, const Call &call,
                          const std::optional<ModelResult> &expected) {
    ClearReports();
    void *out = UntouchedPointer();
    const bool made = call(image, &out);
    ASSERT_EQ(made, expected.has_value());
    ASSERT_EQ(RefCount(image), 1u);
    if (!made) {
        ASSERT_EQ(out, UntouchedPointer());
        ClearReports();
        return;
    }
    const Handle result(out);
    ASSERT_EQ(ReportCount(), 0);
    ASSERT_NO_FATAL_FAILURE(ExpectResult(out, source, *expected));
    for (std::size_t plane = 0; plane < source.Planes.size(); ++plane)
        ASSERT_TRUE(PixelBytes(image, static_cast<std::intptr_t>(plane)) == source.Planes[plane])
            << "the source is only read";
}

inline void ExpectWholeAsModel(void *image, const ModelSource &source, const TMatrix &matrix) {
    ExpectAsModel(
        image, source, [&](void *from, void **out) { return CreateMatrixTransformedImage(from, out, matrix); },
        ModelWhole(source, {0.0, 0.0, matrix}));
}
inline void ExpectAreaAsModel(void *image, const ModelSource &source, const TArea &area, const TCoordinateMap &map) {
    ExpectAsModel(
        image, source,
        [&](void *from, void **out) { return CreateAreaAffineTransformedImage(from, &map, &area, out); },
        ModelArea(source, area, map));
}
inline void ExpectSubImageAsModel(void *image, const ModelSource &source, const TArea &area) {
    ExpectAsModel(
        image, source, [&](void *from, void **out) { return CreateSubImage(from, out, area); },
        ModelSubImage(source, area));
}
inline void ExpectAreaSubImageAsModel(void *image, const ModelSource &source, const TArea &area) {
    ExpectAsModel(
        image, source, [&](void *from, void **out) { return CreateAreaSubImage(from, out, area); },
        ModelAreaSubImage(source, area));
}

/// A function for CreateTransformedImage that can be anything.
using Position = std::function<void(double *x, double *y)>;
inline void CallPosition(void *position, double *x, double *y) {
    (*static_cast<const Position *>(position))(x, y);
}
inline bool TransformBy(void *image, std::intptr_t width, std::intptr_t height, Position position, void **out) {
    return CreateTransformedImage(image, width, height, CallPosition, &position, out);
}
inline void ExpectTransformedAsModel(void *image, const ModelSource &source, std::intptr_t width,
                                     std::intptr_t height, const Position &position) {
    ExpectAsModel(
        image, source, [&](void *from, void **out) { return TransformBy(from, width, height, position, out); },
        ModelTransformed(source, width, height, position));
}

/// Expects false, with the output untouched and no new reference on the image. Reports are the caller's to look at.
inline void ExpectRefusal(void *image, const Call &call) {
    ClearReports();
    const auto before = image != nullptr ? RefCount(image) : 0;
    void *out = UntouchedPointer();
    EXPECT_FALSE(call(image, &out));
    EXPECT_EQ(out, UntouchedPointer());
    EXPECT_EQ(image != nullptr ? RefCount(image) : 0, before);
}

struct NamedMatrix {
    const char *Name;
    TMatrix Matrix;
};
/// Maps whose results are about as large as the source.
inline std::vector<NamedMatrix> Matrices() {
    return {{"identity", IdentityMatrix},
            {"turned by 90", Turned(90.0)},
            {"turned by exactly 90", {0.0, -1.0, 1.0, 0.0}},
            {"turned by 180", Turned(180.0)},
            {"turned by 270", Turned(270.0)},
            {"turned by 10", Turned(10.0)},
            {"turned by -45", Turned(-45.0)},
            {"turned by 200, larger", Turned(200.0, 1.7)},
            {"half", {0.5, 0.0, 0.0, 0.5}},
            {"double", {2.0, 0.0, 0.0, 2.0}},
            {"three times as wide", {3.0, 0.0, 0.0, 0.7}},
            {"a hundredth", {0.01, 0.0, 0.0, 0.01}},
            {"sheared along x", {1.0, 0.37, 0.0, 1.0}},
            {"sheared along y", {1.0, 0.0, -1.25, 1.0}},
            {"mirrored along x", {-1.0, 0.0, 0.0, 1.0}},
            {"mirrored along y", {1.0, 0.0, 0.0, -1.0}},
            {"transposed", {0.0, 1.0, 1.0, 0.0}},
            {"nearly singular", {1.0, 1.0, 1.0, 1.0 + 2e-6}},
            {"nearly singular, flat", {1.0, 0.0, 0.5, 1.1e-6}},
            {"too singular", {1.0, 1.0, 1.0, 1.0 + 5e-7}}};
}

/// Turns the overlay flag of the planes told by a set of bits on.
inline std::vector<TDataType> WithOverlays(std::vector<TDataType> types, std::uint32_t planes) {
    for (std::size_t plane = 0; plane < types.size(); ++plane)
        if ((planes >> plane & 1u) != 0)
            types[plane] |= DataTypeOverlay;
    return types;
}

/// Planes of random wild pixels of these types.
inline std::unique_ptr<FakeImage> WildImage(std::intptr_t width, std::intptr_t height,
                                            const std::vector<TDataType> &types, std::uint64_t seed) {
    std::vector<PlaneBytes> content;
    for (const TDataType type : types)
        content.push_back(RandomPlanes(width * height, 1, type, ++seed, Content::Wild).front());
    return MixedImage(width, height, types, content);
}

/// One row or several, all given.
template <class T>
std::unique_ptr<FakeImage> ImageOf(std::intptr_t width, std::intptr_t height, TDataType type,
                                   const std::vector<T> &pixels) {
    return PlainImage(width, height, type, {BytesOf(pixels)});
}
template <class T>
std::vector<T> PixelsOf(const Handle &image, std::intptr_t plane = 0) {
    return ValuesOf<T>(PixelBytes(image.Get(), plane));
}

} // namespace TransformModel

#endif
