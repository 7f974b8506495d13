/* Testing objects for interfaces and counting their references, with objects of the tests' own and with images.
 * Giving references back by ReleaseObject stands in ReleaseObject_test.cpp. */
#include "ImageCreation.h"
#include "InterfaceHandling.h"
#include "Support/TestImages.h"

using namespace TestSupport;

namespace pOLE {

/// The acquisition interface as a driver declares it for itself: the fourth slot of its own shows the dialog.
struct IGrabber : IUnknown {
    virtual void First() = 0;
    virtual void Second() = 0;
    virtual void Third() = 0;
    virtual void ShowDialog() = 0;

protected:
    ~IGrabber() = default;
};

} // namespace pOLE

namespace {

/// An object whose answers a test scripts.
class ScriptedUnknown final : public pOLE::IUnknown {
public:
    std::vector<std::string> Calls;
    std::function<std::int32_t(const char *id, void **out)> OnQuery;
    std::function<std::uintptr_t()> OnAddRef;
    std::function<std::uintptr_t()> OnRelease;

    void *Handle() { return static_cast<pOLE::IUnknown *>(this); }

    std::int32_t QueryInterface(const char *id, void **out) override {
        Calls.push_back("QueryInterface");
        if (OnQuery)
            return OnQuery(id, out);
        *out = Handle();
        return 0;
    }
    std::uintptr_t AddRef() override {
        Calls.push_back("AddRef");
        return OnAddRef ? OnAddRef() : 2u;
    }
    std::uintptr_t Release() override {
        Calls.push_back("Release");
        return OnRelease ? OnRelease() : 1u;
    }
};

/// A driver's grabber that notes which slots were called.
class FakeGrabber final : public pOLE::IGrabber {
public:
    std::int32_t QueryInterface(const char *id, void **out) override {
        ++Queries;
        const bool known = SameInterfaceId(id, ORV_IID_IUNKNOWN) || SameInterfaceId(id, ORV_IID_IGRABBER);
        *out = known && Queries <= QueriesAnswered ? this : nullptr;
        if (*out != nullptr)
            References.Take();
        return *out != nullptr ? 0 : StatusNoInterface;
    }
    std::uintptr_t AddRef() override { return References.Take(); }
    std::uintptr_t Release() override { return References.GiveBack(); }
    void First() override { Slots.push_back(1); }
    void Second() override { Slots.push_back(2); }
    void Third() override { Slots.push_back(3); }
    void ShowDialog() override {
        Slots.push_back(4);
        if (DialogThrows)
            throw std::runtime_error("no dialog");
    }

    void *Handle() { return static_cast<pOLE::IUnknown *>(this); }
    CountedReferences References;
    std::vector<int> Slots;
    int Queries = 0;
    int QueriesAnswered = 1000;
    bool DialogThrows = false;
};

class InterfaceHandling : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { EXPECT_EQ(ReportCount(), 0) << "this family never reports"; }
};

Handle SmallImage() {
    Handle image;
    EXPECT_TRUE(CreateGenericImage(1, 4, 3, false, image.Out()));
    return image;
}

TEST_F(InterfaceHandling, NullOffersNoInterface) {
    EXPECT_FALSE(IsInterface(nullptr, ORV_IID_IUNKNOWN));
    EXPECT_FALSE(IsIUnknown(nullptr));
    EXPECT_FALSE(IsImage(nullptr));
    EXPECT_FALSE(IsGrabber(nullptr));
    EXPECT_FALSE(ShowDriverDialog(nullptr));
}

TEST_F(InterfaceHandling, AnImageIsAnUnknownAndAnImageAndNoGrabber) {
    const Handle image = SmallImage();
    EXPECT_TRUE(IsIUnknown(image.Get()));
    EXPECT_TRUE(IsImage(image.Get()));
    EXPECT_FALSE(IsGrabber(image.Get()));
    EXPECT_TRUE(IsInterface(image.Get(), ORV_IID_IIMAGEDIB));
    EXPECT_FALSE(IsInterface(image.Get(), ORV_IID_ICOLORMODELINFO));
    EXPECT_FALSE(IsInterface(image.Get(), ORV_IID_IIPPIPROXY));
    EXPECT_EQ(RefCount(image.Get()), 1u);
}

TEST_F(InterfaceHandling, AnIdIsComparedAsSixteenBytesWithoutTerminatorAndWithoutFolding) {
    const Handle image = SmallImage();
    const char unterminated[16] = {'I', 'I', 'm', 'a', 'g', 'e', 'V', 'P', 'A', ' ', ' ', ' ', ' ', ' ', ' ', ' '};
    EXPECT_TRUE(IsInterface(image.Get(), unterminated));
    EXPECT_TRUE(IsInterface(image.Get(), "IImageVPA       and more"));
    EXPECT_FALSE(IsInterface(image.Get(), "IIMAGEVPA       "));
    EXPECT_FALSE(IsInterface(image.Get(), "IImageVPA      x"));
    EXPECT_FALSE(IsInterface(image.Get(), "IImageVPA\0      "));
}

TEST_F(InterfaceHandling, ExternalImagesOfferTwoInterfaces) {
    std::uint8_t pixels[6] = {};
    Handle image;
    ASSERT_EQ(CreateImageFromPointer(pixels, 0, 3, 2, 1, 8, 1, 3, 0, nullptr, nullptr, nullptr, image.Out()), 0);
    EXPECT_TRUE(IsIUnknown(image.Get()));
    EXPECT_TRUE(IsImage(image.Get()));
    for (const char *id : {ORV_IID_IIMAGEDIB, ORV_IID_IIPPIPROXY, ORV_IID_ICOLORMODELINFO, ORV_IID_IGRABBER})
        EXPECT_FALSE(IsInterface(image.Get(), id)) << id;
    EXPECT_EQ(RefCount(image.Get()), 1u);
}

TEST_F(InterfaceHandling, AnExternalImageAnswersQueriesAsTold) {
    std::uint8_t pixels[6] = {};
    Handle image;
    ASSERT_EQ(CreateImageFromPointer(pixels, 0, 3, 2, 1, 8, 1, 3, 0, nullptr, nullptr, nullptr, image.Out()), 0);
    auto *const object = static_cast<pOLE::IUnknown *>(image.Get());
    int canary = 0;
    void *out = &canary;
    // Required: an id that the object does not support leaves the output alone.
    for (const char *id : {ORV_IID_IIMAGEDIB, ORV_IID_IIPPIPROXY, ORV_IID_ICOLORMODELINFO, ORV_IID_IGRABBER}) {
        EXPECT_EQ(object->QueryInterface(id, &out), StatusNoInterface) << id;
        EXPECT_EQ(out, &canary) << id;
    }
    EXPECT_EQ(object->QueryInterface(ORV_IID_IIMAGEVPA, &out), 0);
    EXPECT_EQ(RefCount(image.Get()), 2u) << "the interface carries a reference of its own";
    std::intptr_t planes = 0, width = 0, height = 0;
    EXPECT_EQ(static_cast<pOLE::IImageVPA *>(out)->GetImageDimensions(&planes, &width, &height), 0);
    EXPECT_EQ(width, 3);
    EXPECT_EQ(static_cast<pOLE::IImageVPA *>(out)->Release(), 1u);
    EXPECT_EQ(object->QueryInterface(ORV_IID_IUNKNOWN, &out), 0);
    EXPECT_EQ(static_cast<pOLE::IUnknown *>(out)->AddRef(), 3u);
    EXPECT_EQ(static_cast<pOLE::IUnknown *>(out)->Release(), 2u);
    EXPECT_EQ(static_cast<pOLE::IUnknown *>(out)->Release(), 1u);
}

TEST_F(InterfaceHandling, TheOutputDecidesAndNotTheStatus) {
    ScriptedUnknown object;
    object.OnQuery = [&](const char *, void **out) {
        *out = object.Handle();
        return StatusNoInterface;
    };
    EXPECT_TRUE(IsInterface(object.Handle(), ORV_IID_IIMAGEVPA));
    EXPECT_EQ(object.Calls, (std::vector<std::string>{"QueryInterface", "Release"}));

    object.Calls.clear();
    object.OnQuery = [](const char *, void **) { return 0; };
    EXPECT_FALSE(IsInterface(object.Handle(), ORV_IID_IIMAGEVPA)) << "the output is null before the call";
    EXPECT_EQ(object.Calls, (std::vector<std::string>{"QueryInterface"}));

    void *seen = &object;
    object.OnQuery = [&](const char *, void **out) {
        seen = *out;
        return 0;
    };
    IsImage(object.Handle());
    EXPECT_EQ(seen, nullptr);
}

TEST_F(InterfaceHandling, EachTestAsksForItsOwnId) {
    ScriptedUnknown object;
    std::vector<std::string> asked;
    object.OnQuery = [&](const char *id, void **out) {
        asked.emplace_back(id, 16);
        *out = object.Handle();
        return 0;
    };
    EXPECT_TRUE(IsIUnknown(object.Handle()));
    EXPECT_TRUE(IsImage(object.Handle()));
    EXPECT_TRUE(IsGrabber(object.Handle()));
    EXPECT_TRUE(IsInterface(object.Handle(), "Anything at all!"));
    EXPECT_EQ(asked, (std::vector<std::string>{"IUnknown        ", "IImageVPA       ", "IGrabber        ",
                                               "Anything at all!"}));
}

TEST_F(InterfaceHandling, AnObjectThatThrowsOffersNothing) {
    for (const bool throwsInt : {false, true}) {
        ThrowingUnknown object(throwsInt);
        EXPECT_FALSE(IsInterface(object.Handle(), ORV_IID_IUNKNOWN));
        EXPECT_FALSE(IsIUnknown(object.Handle()));
        EXPECT_FALSE(IsImage(object.Handle()));
        EXPECT_FALSE(IsGrabber(object.Handle()));
        EXPECT_FALSE(ShowDriverDialog(object.Handle()));
        EXPECT_EQ(object.Count(), 1);
    }
}

TEST_F(InterfaceHandling, TheDialogIsTheFourthSlotOfTheGrabber) {
    FakeGrabber grabber;
    EXPECT_TRUE(IsGrabber(grabber.Handle()));
    EXPECT_TRUE(ShowDriverDialog(grabber.Handle()));
    EXPECT_EQ(grabber.Slots, std::vector<int>{4});
    EXPECT_EQ(grabber.References.Count(), 1) << "the interface is released";
}

TEST_F(InterfaceHandling, NoDialogWithoutGrabber) {
    OnlyUnknown object;
    EXPECT_FALSE(ShowDriverDialog(object.Handle()));
    EXPECT_EQ(object.Count(), 1);
    EXPECT_FALSE(ShowDriverDialog(SmallImage().Get()));

    FakeGrabber fickle;
    fickle.QueriesAnswered = 1;
    EXPECT_FALSE(ShowDriverDialog(fickle.Handle())) << "a grabber whose second query gives null";
    EXPECT_EQ(fickle.Queries, 2);
    EXPECT_TRUE(fickle.Slots.empty());
    EXPECT_EQ(fickle.References.Count(), 1);
}

TEST_F(InterfaceHandling, ADialogThatThrowsGivesFalseAndItsInterfaceBack) {
    FakeGrabber grabber;
    grabber.DialogThrows = true;
    bool shown = true;
    EXPECT_NO_THROW(shown = ShowDriverDialog(grabber.Handle()));
    EXPECT_FALSE(shown);
    EXPECT_EQ(grabber.References.Count(), 1);
}

TEST_F(InterfaceHandling, SharingAndReleasingAnImageCounts) {
    Handle image = SmallImage();
    EXPECT_EQ(RefCount(image.Get()), 1u);
    EXPECT_EQ(ShareImage(image.Get()), 2);
    EXPECT_EQ(RefCount(image.Get()), 2u);
    EXPECT_EQ(ReleaseImage(image.Get()), 1);
    EXPECT_TRUE(ShareObject(image.Get()));
    EXPECT_EQ(RefCount(image.Get()), 2u);
    EXPECT_EQ(ReleaseIUnknown(image.Get()), 1u);
    EXPECT_EQ(RefCount(image.Get()), 1u);
}

TEST_F(InterfaceHandling, TheLastReleaseOfAnImageGivesZeroAndEndsIt) {
    std::uint8_t pixel = 0;
    int ends = 0;
    const auto atEnd = [](void *, void *userData) { ++*static_cast<int *>(userData); };
    for (const bool throughImage : {true, false}) {
        void *image = nullptr;
        ASSERT_EQ(CreateImageFromPointer(&pixel, 1, 1, 1, 1, 8, 1, 1, 0, nullptr, atEnd, &ends, &image), 0);
        ends = 0;
        ASSERT_EQ(ShareImage(image), 2);
        EXPECT_EQ(throughImage ? ReleaseImage(image) : static_cast<std::intptr_t>(ReleaseIUnknown(image)), 1);
        EXPECT_EQ(ends, 0);
        EXPECT_EQ(throughImage ? ReleaseImage(image) : static_cast<std::intptr_t>(ReleaseIUnknown(image)), 0);
        EXPECT_EQ(ends, 1);
    }
}

TEST_F(InterfaceHandling, NullGivesTheNeutralResults) {
    EXPECT_EQ(ReleaseIUnknown(nullptr), 0u);
    EXPECT_EQ(ReleaseImage(nullptr), 0);
    EXPECT_EQ(ShareImage(nullptr), -1);
    EXPECT_FALSE(ShareObject(nullptr));
    EXPECT_EQ(RefCount(nullptr), 0u);
}

TEST_F(InterfaceHandling, WhatIsNoUnknownIsNeitherSharedNorReleased) {
    for (const auto &foreign : ForeignHandles()) {
        if (foreign.OffersUnknown)
            continue;
        EXPECT_EQ(ReleaseIUnknown(foreign.Get()), 0u) << foreign.Name;
        EXPECT_EQ(ReleaseImage(foreign.Get()), 0) << foreign.Name;
        EXPECT_EQ(ShareImage(foreign.Get()), -1) << foreign.Name;
        EXPECT_FALSE(ShareObject(foreign.Get())) << foreign.Name;
        EXPECT_EQ(foreign.Count(), 1) << foreign.Name;
    }
}

TEST_F(InterfaceHandling, WhatIsOnlyAnUnknownIsSharedAndReleasedLikeAnImage) {
    OnlyUnknown object;
    EXPECT_EQ(ShareImage(object.Handle()), 2);
    EXPECT_TRUE(ShareObject(object.Handle()));
    EXPECT_EQ(object.Count(), 3);
    EXPECT_EQ(ReleaseImage(object.Handle()), 2);
    EXPECT_EQ(ReleaseIUnknown(object.Handle()), 1u);
    EXPECT_EQ(ReleaseImage(object.Handle()), 0);
    EXPECT_TRUE(object.Destroyed());
}

TEST_F(InterfaceHandling, ReleaseImageCutsTheCountToThirtyTwoBitsAndExtendsTheSign) {
    ScriptedUnknown object;
    bool queried = false;
    object.OnRelease = [&]() -> std::uintptr_t {
        // The first release in each call gives back the interface of the test for IUnknown.
        queried = !queried;
        return queried ? 1u : 0x1234567880000005u;
    };
    EXPECT_EQ(ReleaseImage(object.Handle()), std::intptr_t{-2147483643});
    EXPECT_EQ(ReleaseIUnknown(object.Handle()), 0x1234567880000005u) << "nothing is cut here";
    object.OnRelease = [] { return std::uintptr_t{0x100000003u}; };
    EXPECT_EQ(ReleaseImage(object.Handle()), 3);
}

TEST_F(InterfaceHandling, ShareImageHandsOutWhatAddRefSays) {
    ScriptedUnknown object;
    object.OnAddRef = [] { return std::uintptr_t{77}; };
    EXPECT_EQ(ShareImage(object.Handle()), 77);
}

TEST_F(InterfaceHandling, RefCountTakesAReferenceAndHandsOutWhatReleaseSays) {
    ScriptedUnknown object;
    object.OnAddRef = [] { return std::uintptr_t{1000}; };
    object.OnRelease = [] { return std::uintptr_t{0x100000009u}; };
    EXPECT_EQ(RefCount(object.Handle()), 0x100000009u);
    EXPECT_EQ(object.Calls, (std::vector<std::string>{"AddRef", "Release"})) << "no query for IUnknown";
}

TEST_F(InterfaceHandling, RefCountDoesNotAskForTheInterface) {
    for (const auto &foreign : ForeignHandles()) {
        EXPECT_EQ(RefCount(foreign.Get()), 1u) << foreign.Name;
        EXPECT_EQ(foreign.Count(), 1) << foreign.Name;
    }
}

TEST_F(InterfaceHandling, NoExceptionOfAnObjectPasses) {
    ScriptedUnknown object;
    const auto fail = []() -> std::uintptr_t { throw std::runtime_error("count refused"); };
    object.OnAddRef = fail;
    EXPECT_NO_THROW(EXPECT_EQ(ShareImage(object.Handle()), -1));
    EXPECT_NO_THROW(EXPECT_FALSE(ShareObject(object.Handle())));
    EXPECT_NO_THROW(EXPECT_EQ(RefCount(object.Handle()), 0u));
    bool queried = false;
    object.OnRelease = [&]() -> std::uintptr_t {
        queried = !queried;
        return queried ? 1u : throw 7;
    };
    EXPECT_NO_THROW(EXPECT_EQ(ReleaseIUnknown(object.Handle()), 0u));
    EXPECT_NO_THROW(EXPECT_EQ(ReleaseImage(object.Handle()), 0));
}

} // namespace
