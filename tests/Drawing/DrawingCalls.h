/* The exported functions of drawing and of flood fill by name, with all but image, plane and modes settled; and the
 * ways in which all of them fail alike. */
#ifndef ORV_TESTS_DRAWING_CALLS_H
#define ORV_TESTS_DRAWING_CALLS_H

#include "Drawing/DrawingSupport.h"

namespace TestSupport {

struct DrawingCall {
    std::string Name;
    std::string Reporter;
    std::function<std::int32_t(void *image, std::intptr_t plane, std::uint32_t mode, std::uint32_t antiAlias)> Call;
};
inline void PrintTo(const DrawingCall &call, std::ostream *out) {
    *out << call.Name;
}

/// Draws around pixel (2, 2).
inline std::vector<DrawingCall> DrawingCalls() {
    using Word = std::uint32_t;
    return {
        {"DrawLineInImage", "DrawLineInImage",
         [](void *image, std::intptr_t plane, Word mode, Word antiAlias) {
             return DrawLineInImage(image, plane, 2, 2, 5, 2, 1, mode, antiAlias, 9.0);
         }},
        {"DrawLineInImage, thick", "DrawLineInImage",
         [](void *image, std::intptr_t plane, Word mode, Word antiAlias) {
             return DrawLineInImage(image, plane, 2, 2, 5, 2, 3, mode, antiAlias, 9.0);
         }},
        {"DrawEllipseInImage", "DrawEllipseInImage",
         [](void *image, std::intptr_t plane, Word mode, Word antiAlias) {
             return DrawEllipseInImage(image, plane, 2, 2, 2, 1, 1, mode, antiAlias, 0.5, 9.0);
         }},
        {"DrawEllipseInImage, thick", "DrawEllipseInImage",
         [](void *image, std::intptr_t plane, Word mode, Word antiAlias) {
             return DrawEllipseInImage(image, plane, 2, 2, 2, 1, 3, mode, antiAlias, 0.5, 9.0);
         }},
        {"FillEllipseInImage", "FillEllipseInImage",
         [](void *image, std::intptr_t plane, Word mode, Word antiAlias) {
             return FillEllipseInImage(image, plane, 2, 2, 2, 1, mode, antiAlias, 0.5, 9.0);
         }},
        {"DrawCircleInImage", "DrawEllipseInImage",
         [](void *image, std::intptr_t plane, Word mode, Word antiAlias) {
             return DrawCircleInImage(image, plane, 2, 2, 2, 1, mode, antiAlias, 9.0);
         }},
        {"FillCircleInImage", "FillEllipseInImage", [](void *image, std::intptr_t plane, Word mode, Word antiAlias) {
             return FillCircleInImage(image, plane, 2, 2, 2, mode, antiAlias, 9.0);
         }}};
}
inline std::vector<DrawingCall> FillingCalls() {
    return {{"FloodFillMono", "FloodFillMono", [](void *image, std::intptr_t plane, std::uint32_t, std::uint32_t) {
                 return FloodFillMono(image, plane, 2, 2, 9.0, 0.0);
             }}};
}

/// Expects exactly one report, with a text of the reporter's own, and takes it.
inline void ExpectReportWithText(std::uint32_t code, const std::string &text, const std::string &reporter) {
    EXPECT_EQ(ReportCount(), 1);
    const auto report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->code, code);
    EXPECT_EQ(report->function, reporter);
    EXPECT_EQ(report->text, text);
    ClearReports();
}

/// Expects a refusal with a text, an image left alone and no reference kept.
inline void ExpectRefusal(const DrawingCall &call, FakeImage &image, std::uint32_t code, const std::string &text,
                          std::intptr_t plane = 0, std::uint32_t mode = 0, std::uint32_t antiAlias = 0) {
    SCOPED_TRACE(call.Name);
    const PlaneBytes before = image.Pixels;
    EXPECT_EQ(call.Call(image.Handle(), plane, mode, antiAlias), Status(code));
    ExpectReportWithText(code, text, call.Reporter);
    EXPECT_EQ(image.Count(), 1);
    EXPECT_EQ(image.Pixels, before);
}

inline void ExpectNoImageRefused(const DrawingCall &call) {
    SCOPED_TRACE(call.Name);
    const auto refuses = [&](void *handle) {
        EXPECT_EQ(call.Call(handle, 0, 0, 0), Status(ErrNotAnImage));
        ExpectOneReport(ErrNotAnImage, call.Reporter.c_str());
    };
    refuses(nullptr);
    for (const auto &foreign : ForeignHandles()) {
        refuses(foreign.Get());
        EXPECT_EQ(foreign.Count(), 1) << foreign.Name;
    }
    const auto image = FakeImage::Planar(5, 5, 1, 8);
    image->Fails.QueryThrows = true;
    refuses(image->Handle());
    image->Fails.QueryThrows = false;
    image->Fails.QueryStatus = StatusNoInterface;
    refuses(image->Handle());
    image->Fails.QueryStatus = 0;
    image->Fails.QueryGivesNull = true;
    refuses(image->Handle());
    EXPECT_EQ(image->Count(), 1);
}

inline void ExpectPlanesOutsideRefused(const DrawingCall &call) {
    const auto image = FakeImage::Planar(5, 5, 2, 8);
    for (const std::intptr_t plane : {std::intptr_t{-1}, std::intptr_t{2}, std::intptr_t{3}, Lowest64, Highest64,
                                      std::intptr_t{1} << 32, -(std::intptr_t{1} << 32)}) {
        SCOPED_TRACE(plane);
        SCOPED_TRACE(call.Name);
        EXPECT_EQ(call.Call(image->Handle(), plane, 0, 0), Status(ErrIndexRange));
        EXPECT_EQ(ReportCount(), 1);
        const auto report = TakeReport();
        ASSERT_TRUE(report.has_value());
        EXPECT_EQ(report->code, ErrIndexRange);
        EXPECT_EQ(report->function, call.Reporter);
        EXPECT_FALSE(report->text.empty());
        EXPECT_NE(report->text, ComposedText(ErrIndexRange));
        EXPECT_EQ(image->Count(), 1);
        EXPECT_EQ(image->Pixels, PlaneBytes(50));
        ClearReports();
    }
}

/// Types that no function of the family takes, and what their refusal ends in.
inline std::vector<std::pair<TDataType, std::string>> RefusedTypes() {
    return {{8 | DataTypeComplex, "complex8"},
            {64 | DataTypeComplex | DataTypeFloat, "complex64"},
            {16 | DataTypeComplex | DataTypeSigned, "complex16"},
            {16 | DataTypeFloat, "float16"},
            {8 | DataTypeFloat | DataTypeSigned, "float8"},
            {63 | DataTypeFloat, "float63"},
            {33 | DataTypeFloat, "float33"},
            {80 | DataTypeFloat, "float80"},
            {65, "uint65"},
            {72 | DataTypeOverlay, "uint72"},
            {65 | DataTypeSigned, "sint65"},
            {128 | DataTypeSigned, "sint128"},
            {255, "uint255"}};
}
inline void ExpectTypesRefused(const DrawingCall &call) {
    for (const auto &[type, name] : RefusedTypes()) {
        const auto image = FakeImage::Planar(5, 5, 1, type);
        ExpectRefusal(call, *image, ErrDataType, "Unsupported image data type: " + name);
    }
}

/// What an image throws arrives by its type.
inline void ExpectExceptionsReported(const DrawingCall &call) {
    const auto image = FakeImage::Planar(5, 5, 1, 8);
    const auto throwing = [&](auto exception, std::uint32_t code) {
        image->Fails.OnOperation = [exception] { throw exception; };
        ExpectRefusal(call, *image, code, exception.what());
    };
    throwing(std::out_of_range("far away"), ErrIndexRange);
    throwing(std::invalid_argument("not so"), ErrParameter);
    throwing(std::runtime_error("not now"), ErrNotAnImage);
    throwing(std::overflow_error("too much"), ErrNotAnImage);
    throwing(std::logic_error("never"), ErrDataType);
    throwing(std::domain_error("elsewhere"), ErrDataType);
    throwing(std::length_error("too long"), ErrDataType);
    const auto throwingAnythingElse = [&](auto exception) {
        SCOPED_TRACE(call.Name);
        image->Fails.OnOperation = [exception] { throw exception; };
        EXPECT_EQ(call.Call(image->Handle(), 0, 0, 0), Status(ErrGeneral));
        ExpectOneReport(ErrGeneral, call.Reporter.c_str());
        EXPECT_EQ(image->Count(), 1);
    };
    throwingAnythingElse(std::bad_alloc());
    throwingAnythingElse(42);
    throwingAnythingElse(std::exception());
}

/// Whatever operation of an image is refused or throws first, references are given back and no pixel is written.
inline void ExpectLateExceptionsReported(const DrawingCall &call) {
    const auto image = FakeImage::Planar(5, 5, 1, 8);
    for (int good = 0;; ++good) {
        ASSERT_LT(good, 50) << "no end of operations";
        int calls = 0;
        image->Fails.OnOperation = [&] {
            if (calls++ >= good)
                throw std::invalid_argument("enough");
        };
        const std::int32_t result = call.Call(image->Handle(), 0, 0, 0);
        EXPECT_EQ(image->Count(), 1) << call.Name << good;
        if (calls <= good) {
            EXPECT_EQ(result, 0);
            ExpectNoReport();
            break;
        }
        EXPECT_EQ(result, Status(ErrParameter)) << call.Name << good;
        ExpectReportWithText(ErrParameter, "enough", call.Reporter);
        EXPECT_EQ(image->Pixels, PlaneBytes(25)) << call.Name << good;
    }
}

inline void ExpectRefusingImagesReported(const DrawingCall &call) {
    for (int refusal = 0; refusal < 3; ++refusal) {
        SCOPED_TRACE(call.Name + " " + std::to_string(refusal));
        const auto image = FakeImage::Planar(5, 5, 1, 8);
        (refusal == 0   ? image->Fails.DimensionsStatus
         : refusal == 1 ? image->Fails.DatatypeStatus
                        : image->Fails.VPAStatus) = StatusBadPlane;
        EXPECT_EQ(call.Call(image->Handle(), 0, 0, 0), Status(ErrNotAnImage));
        EXPECT_EQ(ReportCount(), 1);
        const auto report = TakeReport();
        ASSERT_TRUE(report.has_value());
        EXPECT_EQ(report->code, ErrNotAnImage);
        EXPECT_EQ(report->function, call.Reporter);
        EXPECT_EQ(image->Count(), 1);
        EXPECT_EQ(image->Pixels, PlaneBytes(25));
        ClearReports();
    }
}

} // namespace TestSupport

#endif
