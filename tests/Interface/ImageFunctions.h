/* The table of all exported functions that take an image or another object, as calls that store into marked outputs,
 * with what each gives for null and for what is no image. */
#ifndef ORV_TESTS_IMAGE_FUNCTIONS_H
#define ORV_TESTS_IMAGE_FUNCTIONS_H

#include "ImageCoordinates.h"
#include "ImageCopies.h"
#include "ImageFiles.h"
#include "ImageMaps.h"
#include "ImageQueries.h"
#include "Support/TestImages.h"

namespace TestSupport {

/// Every kind of output that a function can have, all holding something that no function stores.
struct Outputs {
    void *Handle = &Mark;
    void *Base = &Mark;
    VPAEntry *Entries = &MarkedEntry;
    std::uint64_t Value = 0x1122334455667788u;
    double X = -1.25, Y = -2.5;
    TArea Area{-1, -2, -3, -4, -5, -6};
    TCoordinateMap Map{-1, -2, {-3, -4, -5, -6}};
    TPlaneRec Plane{&Mark, &MarkedEntry, -7, -8, 0xABCDu};

    static inline int Mark = 0;
    static inline VPAEntry MarkedEntry{};

    bool Untouched() const {
        const Outputs fresh;
        return Handle == fresh.Handle && Base == fresh.Base && Entries == fresh.Entries && Value == fresh.Value &&
               X == fresh.X && Y == fresh.Y && std::memcmp(&Area, &fresh.Area, sizeof Area) == 0 &&
               std::memcmp(&Map, &fresh.Map, sizeof Map) == 0 && Plane.BaseAddress == fresh.Plane.BaseAddress &&
               Plane.VPAT == fresh.Plane.VPAT && Plane.Width == fresh.Plane.Width &&
               Plane.Height == fresh.Plane.Height && Plane.Datatype == fresh.Plane.Datatype;
    }
    /// Gives an image back that a function made after all.
    void ReleaseResult() {
        if (Handle != &Mark)
            ReleaseObject(Handle);
    }
};

/// What a call leaves behind: its result as a number, and its reports.
struct Expected {
    std::int64_t Result;
    std::intptr_t Reports;
    std::uint32_t Code;
    std::string Function;
};
inline Expected Silent(std::int64_t result) {
    return {result, 0, 0, {}};
}
inline Expected Reported(std::int64_t result, const std::string &function, std::uint32_t code = ErrNotAnImage) {
    return {result, 1, code, function};
}
/// The function's own ErrGeneral over the report of what it called.
inline Expected ReportedTwice(std::int64_t result, const std::string &function) {
    return {result, 2, ErrGeneral, function};
}

struct ImageFunction {
    std::string Name;
    std::function<std::int64_t(void *image, Outputs &out)> Call;
    Expected OnNull;
    Expected OnForeign;
    bool PassesExceptions = false;              ///< what a query throws reaches the caller
    std::optional<std::int64_t> OnUnknown = {}; ///< the result for what offers "IUnknown        ", where it differs
};

/// For functions without a result.
template <class F>
std::function<std::int64_t(void *, Outputs &)> NoResult(F call) {
    return [call](void *image, Outputs &out) {
        call(image, out);
        return std::int64_t{0};
    };
}

inline std::string PathOfNoFile() {
    return testing::TempDir() + "written_from_no_image.bmp";
}

inline constexpr TArea SomeArea{1, 2, 3, 4, 5, 6};
inline constexpr TCoordinateMap SomeMap{1, 2, {3, 4, 5, 6}};

/// Calls with a second reference taken, and gives it back where the call did not.
template <class F>
std::function<std::int64_t(void *, Outputs &)> WithASecondReference(F call) {
    return [call](void *handle, Outputs &) {
        auto *const object = static_cast<pOLE::IUnknown *>(handle);
        if (object != nullptr)
            object->AddRef();
        const std::int64_t result = call(handle);
        if (object != nullptr && RefCount(object) > 1)
            object->Release();
        return result;
    };
}

/// Calls, and gives back what the call took.
template <class F>
std::function<std::int64_t(void *, Outputs &)> Balanced(F call) {
    return [call](void *handle, Outputs &) {
        const std::int64_t result = call(handle);
        if (handle != nullptr && RefCount(handle) > 1)
            static_cast<pOLE::IUnknown *>(handle)->Release();
        return result;
    };
}

inline std::int64_t ReleaseACopyOf(void *handle) {
    void *pointer = handle;
    const bool released = ReleaseObject(pointer);
    EXPECT_EQ(pointer, handle) << "the pointer stays";
    return released;
}

inline void AddCounting(std::vector<ImageFunction> &all) {
    const auto add = [&](const char *name, auto call, std::int64_t onNull, std::int64_t onForeign,
                         std::int64_t onUnknown) {
        all.push_back({name, call, Silent(onNull), Silent(onForeign), false, onUnknown});
    };
    add(
        "IsIUnknown", [](void *handle, Outputs &) { return IsIUnknown(handle); }, 0, 0, 1);
    add("ShareImage", Balanced([](void *handle) { return ShareImage(handle); }), -1, -1, 2);
    add("ShareObject", Balanced([](void *handle) { return ShareObject(handle); }), 0, 0, 1);
    add("ReleaseIUnknown",
        WithASecondReference([](void *handle) { return static_cast<std::int64_t>(ReleaseIUnknown(handle)); }), 0, 0,
        1);
    add("ReleaseImage", WithASecondReference([](void *handle) { return ReleaseImage(handle); }), 0, 0, 1);
    add("ReleaseObject", WithASecondReference(ReleaseACopyOf), 1, 0, 0);
}

inline void AddHandleFunctions(std::vector<ImageFunction> &all) {
    const auto add = [&](const char *name, auto call, std::int64_t onNull, std::int64_t onForeign) {
        all.push_back({name, call, Silent(onNull), Silent(onForeign)});
    };
    add(
        "IsInterface", [](void *image, Outputs &) { return IsInterface(image, ORV_IID_IIMAGEVPA); }, 0, 0);
    add(
        "IsImage", [](void *image, Outputs &) { return IsImage(image); }, 0, 0);
    add(
        "IsGrabber", [](void *image, Outputs &) { return IsGrabber(image); }, 0, 0);
    add(
        "ShowDriverDialog", [](void *image, Outputs &) { return ShowDriverDialog(image); }, 0, 0);
    add(
        "RefCount", [](void *image, Outputs &) { return static_cast<std::int64_t>(RefCount(image)); }, 0, 1);
    add("SetPlaneRec", NoResult([](void *image, Outputs &out) { SetPlaneRec(image, 0, &out.Plane); }), 0, 0);
}

inline void AddQueries(std::vector<ImageFunction> &all) {
    const auto add = [&](const char *name, auto call, std::int64_t failure) {
        all.push_back({name, call, Reported(failure, name), Reported(failure, name)});
    };
    add(
        "ImageDimension", [](void *image, Outputs &) { return ImageDimension(image); }, 0);
    add(
        "ImageWidth", [](void *image, Outputs &) { return ImageWidth(image); }, 0);
    add(
        "ImageHeight", [](void *image, Outputs &) { return ImageHeight(image); }, 0);
    add(
        "ImageDatatype", [](void *image, Outputs &) { return ImageDatatype(image, 0); }, 0xFFFFFFFF);
    add(
        "HasOverlay", [](void *image, Outputs &) { return HasOverlay(image); }, 0);
    add(
        "IsAll8Bit", [](void *image, Outputs &) { return IsAll8Bit(image); }, 0);
    add(
        "ImageColorModel", [](void *image, Outputs &) { return ImageColorModel(image); }, 0);
    add(
        "MaxImageArea", [](void *image, Outputs &out) { return MaxImageArea(image, &out.Area); }, 0);
    add(
        "GetImageVPA", [](void *image, Outputs &out) { return GetImageVPA(image, 0, &out.Base, &out.Entries); }, 0);
    add(
        "PixVal", [](void *image, Outputs &) { return PixVal(image, 0, 0, 0); }, 0x80000010);
    // Required: the alias is the same function and reports under its first name.
    all.push_back({"IsOverlayImage", [](void *image, Outputs &) { return IsOverlayImage(image); },
                   Reported(0, "HasOverlay"), Reported(0, "HasOverlay")});
}

inline void AddPixelAccess(std::vector<ImageFunction> &all) {
    const auto add = [&](const char *name, auto call) { all.push_back({name, call, Silent(0), Silent(0), true}); };
    add("GetPixVal", [](void *image, Outputs &out) { return GetPixVal(image, 0, 0, 0, &out.Value); });
    add("GetPixel", [](void *image, Outputs &out) { return GetPixel(image, 0, 0, 0, &out.Value); });
    add("SetPixVal", [](void *image, Outputs &out) { return SetPixVal(image, 0, 0, 0, &out.Value); });
    add("SetPixel", [](void *image, Outputs &out) { return SetPixel(image, 0, 0, 0, &out.Value); });
}

inline void AddCoordinates(std::vector<ImageFunction> &all) {
    const auto add = [&](const char *name, auto call, auto expected) {
        all.push_back({name, call, expected(0, name), expected(0, name)});
    };
    const auto once = [](std::int64_t result, const char *name) { return Reported(result, name); };
    const auto twice = [](std::int64_t result, const char *name) { return ReportedTwice(result, name); };
    add(
        "SetImageCoordinates", [](void *image, Outputs &) { return SetImageCoordinates(image, SomeMap); }, once);
    add(
        "GetImageCoordinates", [](void *image, Outputs &out) { return GetImageCoordinates(image, &out.Map); }, once);
    add(
        "SetImageOrigin", [](void *image, Outputs &) { return SetImageOrigin(image, 1, 2); }, once);
    add(
        "GetImageOrigin", [](void *image, Outputs &out) { return GetImageOrigin(image, &out.X, &out.Y); }, twice);
    add("PixelToImage", NoResult([](void *image, Outputs &out) { PixelToImage(image, &out.X, &out.Y, 1, 2); }),
        twice);
    add("ImageToPixel", NoResult([](void *image, Outputs &out) { ImageToPixel(image, &out.X, &out.Y, 1, 2); }),
        twice);
    add("PixelAreaToImage", NoResult([](void *image, Outputs &out) { PixelAreaToImage(image, &out.Area, SomeArea); }),
        twice);
    add("ImageAreaToPixel", NoResult([](void *image, Outputs &out) { ImageAreaToPixel(image, &out.Area, SomeArea); }),
        twice);
    // Required: these two look at the handle only; what they call fails unseen.
    all.push_back({"PixelToImageCoordinates",
                   [](void *image, Outputs &out) { return PixelToImageCoordinates(image, &out.X, &out.Y, 1, 2); },
                   Silent(0), ReportedTwice(1, "PixelToImage")});
    all.push_back({"ImageToPixelCoordinates",
                   [](void *image, Outputs &out) { return ImageToPixelCoordinates(image, &out.X, &out.Y, 1, 2); },
                   Silent(0), ReportedTwice(1, "ImageToPixel")});
}

/// Joins the image with a good one, as first or second, and watches the good one's count.
inline std::int64_t JoinWithAGoodImage(void *image, Outputs &out, bool asFirst, std::uint32_t direction) {
    const auto good = FakeImage::Planar(2, 2, 1, 8);
    const bool result = asFirst ? CreatePanoramicImageMap(image, good->Handle(), direction, &out.Handle)
                                : CreatePanoramicImageMap(good->Handle(), image, direction, &out.Handle);
    out.ReleaseResult();
    if (result)
        out.Handle = &Outputs::Mark;
    EXPECT_EQ(good->Count(), 1);
    return result;
}

inline void AddMakers(std::vector<ImageFunction> &all) {
    const auto add = [&](const char *name, auto call, const Expected &expected) {
        all.push_back({name, call, expected, expected});
    };
    for (const std::uint32_t rotation : {1u, 2u, 3u})
        add(
            "CreateRotatedImageMap",
            [=](void *image, Outputs &out) { return CreateRotatedImageMap(image, rotation, &out.Handle); },
            Silent(0));
    // Required: what the stitching throws is reported as its bare number.
    const Expected bare = Reported(0, "CreatePanoramicImageMap", 0x10);
    for (const std::uint32_t direction : {0u, 1u}) {
        add(
            "CreatePanoramicImageMap, first",
            [=](void *image, Outputs &out) { return JoinWithAGoodImage(image, out, true, direction); }, bare);
        add(
            "CreatePanoramicImageMap, second",
            [=](void *image, Outputs &out) { return JoinWithAGoodImage(image, out, false, direction); }, bare);
        add(
            "CreatePanoramicImageMap, both",
            [=](void *image, Outputs &out) { return CreatePanoramicImageMap(image, image, direction, &out.Handle); },
            bare);
    }
    for (const std::intptr_t size : {0, 5})
        add(
            "CreateCompatibleImage",
            [=](void *image, Outputs &out) { return CreateCompatibleImage(image, size, size, 0, &out.Handle); },
            Reported(0, "CreateCompatibleImage"));
    add(
        "CreateDuplicateImage", [](void *image, Outputs &out) { return CreateDuplicateImage(image, &out.Handle); },
        Reported(0, "CreateDuplicateImage"));
    add(
        "WriteImageFile", [](void *image, Outputs &) { return WriteImageFile(image, PathOfNoFile().c_str()); },
        Silent(0));
    add(
        "WriteLossyImageFile",
        [](void *image, Outputs &) { return WriteLossyImageFile(image, PathOfNoFile().c_str(), 0.5); }, Silent(0));
}

inline std::vector<ImageFunction> AllImageFunctions() {
    std::vector<ImageFunction> all;
    AddCounting(all);
    AddHandleFunctions(all);
    AddQueries(all);
    AddPixelAccess(all);
    AddCoordinates(all);
    AddMakers(all);
    return all;
}

} // namespace TestSupport

#endif
