/* Lists as objects: told from all others by their class, shared and released like images, and no images themselves.
 * Every function that takes a list meets every kind of handle that is none. */
#include "Interface/ImageFunctions.h"
#include "Overlays.h"
#include "PixelList/NoLists.h"
#include "PixelList/PixelLists.h"

namespace {

using namespace TestSupport;

using PixelListHandleTest = PixelListTest;

TEST_F(PixelListHandleTest, IsPixelsOfAListIsTrue) {
    for (const std::int64_t dimension : {2, 3, 256})
        EXPECT_TRUE(IsPixels(ListOf(dimension).Get()));
    EXPECT_TRUE(IsPixels(ListOf(2, {{1, 2}}).Get()));
    ExpectNoReport();
}

TEST_F(PixelListHandleTest, IsPixelsOfAnythingElseIsFalseAndReportsNothing) {
    EXPECT_FALSE(IsPixels(nullptr));
    for (const auto &none : NoLists()) {
        EXPECT_FALSE(IsPixels(none.Get())) << none.Name;
        none.ExpectLeftAlone();
    }
    ExpectNoReport();
}

TEST_F(PixelListHandleTest, IsPixelsOfAListIsTrueWhileItHasMoreThanOneReference) {
    const Handle list = ListOf(2);
    ASSERT_TRUE(ShareObject(list.Get()));
    EXPECT_TRUE(IsPixels(list.Get()));
    EXPECT_EQ(RefCount(list.Get()), 2u);
    EXPECT_EQ(ReleaseIUnknown(list.Get()), 1u);
    EXPECT_TRUE(IsPixels(list.Get()));
    EXPECT_EQ(RefCount(list.Get()), 1u);
}

TEST_F(PixelListHandleTest, IsSharedAndReleasedLikeAnImage) {
    void *list = CreatePixelList(3);
    ASSERT_EQ(RefCount(list), 1u);
    EXPECT_TRUE(ShareObject(list));
    EXPECT_EQ(ShareImage(list), 3);
    EXPECT_EQ(RefCount(list), 3u);
    void *pointer = list;
    EXPECT_FALSE(ReleaseObject(pointer)) << "others still hold it";
    EXPECT_EQ(pointer, list);
    EXPECT_EQ(ReleaseImage(list), 1);
    EXPECT_EQ(PixelListDimension(list), 3);
    EXPECT_TRUE(ReleaseObject(pointer));
    EXPECT_EQ(pointer, nullptr);
    ExpectNoReport();
}

TEST_F(PixelListHandleTest, OffersTheRootInterfaceOnly) {
    const Handle list = ListOf(2);
    EXPECT_TRUE(IsIUnknown(list.Get()));
    auto *const object = static_cast<pOLE::IUnknown *>(list.Get());
    for (const char *const id : {ORV_IID_IIMAGEVPA, ORV_IID_IIMAGEDIB, ORV_IID_ICOLORMODELINFO, ORV_IID_IIPPIPROXY,
                                 ORV_IID_IGRABBER, "IPixelList      "}) {
        EXPECT_FALSE(IsInterface(list.Get(), id)) << id;
        void *out = UntouchedPointer();
        EXPECT_EQ(object->QueryInterface(id, &out), StatusNoInterface) << id;
        EXPECT_EQ(out, UntouchedPointer()) << id;
    }
    EXPECT_EQ(RefCount(list.Get()), 1u);
    void *out = nullptr;
    EXPECT_EQ(object->QueryInterface(ORV_IID_IUNKNOWN, &out), 0);
    EXPECT_EQ(out, list.Get());
    EXPECT_EQ(RefCount(list.Get()), 2u);
    EXPECT_EQ(object->Release(), 1u);
    EXPECT_EQ(object->AddRef(), 2u);
    EXPECT_EQ(object->Release(), 1u);
    ExpectNoReport();
}

/// What a call with a handle that is no list leaves behind.
struct ListFunction {
    ListFunction(std::string name, std::function<std::int64_t(void *list)> call, Expected onNoList, std::string text)
        : Name(std::move(name)), Call(std::move(call)), OnNoList(std::move(onNoList)), Text(std::move(text)) {}

    std::string Name;
    std::function<std::int64_t(void *list)> Call;
    Expected OnNoList;
    std::string Text; ///< empty: the composed one
};

const double SomePoint[3] = {1, 2, 3};

/// Calls with an output that no failure may touch.
template <class F>
std::function<std::int64_t(void *)> WithOutput(F call) {
    return [call](void *handle) {
        void *out = UntouchedPointer();
        const std::int64_t result = call(handle, &out);
        EXPECT_EQ(out, UntouchedPointer());
        return result;
    };
}

std::vector<ListFunction> ReadersAndWriters() {
    const auto none = [](std::int64_t result, const char *name) { return Reported(result, name, ErrNotAPixelList); };
    const auto index = [](const char *name, std::uint32_t code = ErrElementIndex) {
        return Expected{0, 2, code, name};
    };
    return {
        {"PixelListDimension",
         [](void *list) { return PixelListDimension(list); },
         none(0, "PixelListDimension"),
         {}},
        {"PixelListCount", [](void *list) { return PixelListCount(list); }, none(-1, "PixelListCount"), {}},
        {"AddPixel", [](void *list) { return AddPixel(list, SomePoint); }, none(0, "AddPixel"), {}},
        {"ModifyListPixel", [](void *list) { return ModifyListPixel(list, 0, SomePoint); },
         index("ModifyListPixel", ErrIndexRange), IndexTooHigh},
        {"ListPixelEx",
         [](void *list) {
             double out[3];
             return ListPixelEx(list, 0, out);
         },
         index("ListPixelEx"), IndexTooHigh},
        {"ListPixel",
         [](void *list) {
             std::int64_t x, y, value;
             return ListPixel(list, 0, &x, &y, &value);
         },
         index("ListPixel"), IndexTooHigh},
        {"RemovePixel", [](void *list) { return RemovePixel(list, 0); }, none(0, "RemovePixel"), {}},
        {"RemoveAllPixels", [](void *list) { return RemoveAllPixels(list); }, none(0, "RemoveAllPixels"), {}},
        {"TruncatePixelList",
         [](void *list) { return TruncatePixelList(list, 0); },
         none(0, "TruncatePixelList"),
         {}},
    };
}

std::vector<ListFunction> Operations() {
    const auto none = [](const char *name) { return Reported(0, name, ErrNotAPixelList); };
    return {
        {"CopyPixelList",
         WithOutput([](void *list, void **out) { return CopyPixelList(list, out); }),
         none("CopyPixelList"),
         {}},
        {"TransformPixelListMatrix",
         [](void *list) {
             return TransformPixelListMatrix(list, {1, 0, 0, 1}, 0, 0);
         },
         none("TransformPixelListMatrix"),
         {}},
        {"TransformPixelListCoordinates",
         [](void *list) { return TransformPixelListCoordinates(list, SomeMap); },
         none("TransformPixelListMatrix"),
         {}},
        // Required: what is no list counts as a list without pixels, which there is nothing to do for.
        {"CreateOverlayFromPixelList",
         WithOutput([](void *list, void **out) { return CreateOverlayFromPixelList(list, nullptr, out); }),
         {1, 2, 3, "CreateOverlayFromPixelList"},
         {}},
        {"SortPixelsByValue", [](void *list) { return SortPixelsByValue(list); }, none("SortPixelsByValue"), {}},
        {"SortPixelsByPosition",
         [](void *list) { return SortPixelsByPosition(list, 1, 0); },
         none("SortPixelsByPosition"),
         {}},
        {"SortPixelsEx", [](void *list) { return SortPixelsEx(list, SomePoint); }, none("SortPixelsEx"), {}},
        {"SeparatePixels",
         [](void *list) { return SeparatePixels(list, SomePoint, 1.0); },
         {0, 2, ErrDimension, "SeparatePixels"},
         "pixel list needs at least dimension 2"},
    };
}

TEST_F(PixelListHandleTest, EveryFunctionTellsWhatIsNoListByItsToldReport) {
    auto functions = ReadersAndWriters();
    for (auto &function : Operations())
        functions.push_back(std::move(function));
    for (const auto &none : NoLists())
        for (const auto &function : functions) {
            SCOPED_TRACE(function.Name + " of " + none.Name);
            ClearReports();
            EXPECT_EQ(function.Call(none.Get()), function.OnNoList.Result);
            ExpectReports(function.OnNoList.Reports, function.OnNoList.Code, function.OnNoList.Function,
                          function.Text);
            none.ExpectLeftAlone();
        }
}

TEST_F(PixelListHandleTest, AListIsNoImageForAnyFunctionThatTakesOne) {
    const Handle list = ListOf(3, {{1, 2, 3}});
    for (const auto &function : AllImageFunctions()) {
        SCOPED_TRACE(function.Name);
        ClearReports();
        Outputs out;
        EXPECT_EQ(function.Call(list.Get(), out), function.OnUnknown.value_or(function.OnForeign.Result));
        EXPECT_TRUE(out.Untouched());
        EXPECT_EQ(ReportCount(), function.OnForeign.Reports);
        const auto report = TakeReport();
        ASSERT_EQ(report.has_value(), function.OnForeign.Reports > 0);
        if (report) {
            EXPECT_EQ(report->code, function.OnForeign.Code);
            EXPECT_EQ(report->function, function.OnForeign.Function);
        }
        EXPECT_TRUE(Holds(list.Get(), {{1, 2, 3}}));
    }
}

TEST_F(PixelListHandleTest, ALargeListGoesWithItsLastReference) {
    void *list = CreatePixelList(256);
    const Point point(256, 1.5);
    for (int i = 0; i < 2000; ++i)
        ASSERT_TRUE(AddPixel(list, point.data()));
    ASSERT_TRUE(ShareObject(list));
    EXPECT_EQ(ReleaseIUnknown(list), 1u);
    EXPECT_EQ(PixelListCount(list), 2000);
    EXPECT_EQ(ReleaseIUnknown(list), 0u);
}

} // namespace
