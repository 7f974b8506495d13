// The holder of one reference, the counted base class, and the image guard.
#include "Interface/SmartPointer.h"

#include <gtest/gtest.h>

#include "base/VirtualSlot.h"
#include "Interface/BasicIUnknown.h"
#include "Interface/ImageGuard.h"
#include "Support/TestImages.h"

namespace {

using Interface::ImageHolder;
using TestSupport::FakeImage;
using TestSupport::SlotOf;

TEST(SmartPointer, HasItsSlotsInOrderBehindTheDestructor) {
    EXPECT_EQ(SlotOf(&ImageHolder::IsValid), 2u);
    EXPECT_EQ(SlotOf(&ImageHolder::operator pOLE::IImageVPA *), 3u);
    EXPECT_EQ(SlotOf(&ImageHolder::Get), 4u);
}

TEST(SmartPointer, GivesItsReferenceBackOnce) {
    const auto image = FakeImage::Planar(2, 2, 1, 8);
    {
        const ImageHolder held = Interface::QueryImage(image->Handle());
        EXPECT_TRUE(held.IsValid());
        EXPECT_EQ(held.Get(), image.get());
        EXPECT_EQ(image->Count(), 2);
        const ImageHolder copy = held;
        EXPECT_EQ(image->Count(), 3);
        ImageHolder other = copy;
        const ImageHolder moved = std::move(other);
        EXPECT_EQ(image->Count(), 4);
        EXPECT_TRUE(moved.IsValid());
    }
    EXPECT_EQ(image->Count(), 1);
}

TEST(SmartPointer, DetachHandsTheReferenceOver) {
    const auto image = FakeImage::Planar(2, 2, 1, 8);
    pOLE::IImageVPA *raw = ImageHolder::Share(image.get()).Detach();
    EXPECT_EQ(image->Count(), 2);
    raw->Release();
    EXPECT_FALSE(ImageHolder().IsValid());
    EXPECT_EQ(static_cast<pOLE::IImageVPA *>(ImageHolder()), nullptr);
}

/// An object with a bitmap interface that it also tells of, and a colour model that it keeps to itself.
class Sample final : public orvBase::CBasicIUnknown<Sample>, public pOLE::IImageDIB {
public:
    explicit Sample(bool *destroyed, bool tellsAll, std::int32_t count = 1)
        : CBasicIUnknown(count), destroyed_(destroyed), tellsAll_(tellsAll) {}
    std::int32_t QueryInterface(const char *id, void **out) override {
        return CBasicIUnknown::QueryInterface(id, out);
    }
    std::uintptr_t AddRef() override { return CBasicIUnknown::AddRef(); }
    std::uintptr_t Release() override { return CBasicIUnknown::Release(); }
    bool SupportsInterface(const char *id) override { return tellsAll_ || CBasicIUnknown::SupportsInterface(id); }
    std::int32_t GetBitmapInfoHeader(TBitmapInfoHeader *) override { return 0; }
    std::int32_t GetBitmapBits(void **) override { return 0; }

private:
    ~Sample() override { *destroyed_ = true; }
    bool *destroyed_;
    bool tellsAll_;
};

constexpr auto NoInterface = static_cast<std::int32_t>(0x80000011u);

TEST(BasicIUnknown, HandsOutItsInterfacesWithAReference) {
    bool destroyed = false;
    auto *object = new Sample(&destroyed, true);
    void *out = nullptr;
    EXPECT_EQ(object->QueryInterface(ORV_IID_IUNKNOWN, &out), 0);
    EXPECT_EQ(out, object->AsUnknown());
    EXPECT_EQ(object->QueryInterface(ORV_IID_IIMAGEDIB, &out), 0);
    EXPECT_EQ(out, static_cast<pOLE::IImageDIB *>(object));
    EXPECT_EQ(object->Release(), 2u);
    EXPECT_EQ(object->Release(), 1u);
    EXPECT_FALSE(destroyed);
    EXPECT_EQ(object->Release(), 0u);
    EXPECT_TRUE(destroyed);
}

TEST(BasicIUnknown, AnUnsupportedIdLeavesTheOutput) {
    bool destroyed = false;
    auto *object = new Sample(&destroyed, false);
    void *out = &out;
    EXPECT_EQ(object->QueryInterface(ORV_IID_IIMAGEDIB, &out), NoInterface);
    EXPECT_EQ(out, &out);
    EXPECT_EQ(object->Release(), 0u);
}

TEST(BasicIUnknown, ASupportedIdOutsideTheListGivesNull) {
    bool destroyed = false;
    auto *object = new Sample(&destroyed, true);
    void *out = &out;
    EXPECT_EQ(object->QueryInterface(ORV_IID_IGRABBER, &out), NoInterface);
    EXPECT_EQ(out, nullptr);
    out = &out;
    EXPECT_EQ(object->QueryInterface(ORV_IID_IIMAGEVPA, &out), NoInterface) << "the object has no such base";
    EXPECT_EQ(object->QueryInterface(ORV_IID_IIPPIPROXY, &out), NoInterface);
    EXPECT_EQ(object->QueryInterface(ORV_IID_ICOLORMODELINFO, &out), NoInterface);
    EXPECT_EQ(out, &out) << "a base that is missing leaves the output";
    EXPECT_EQ(object->Release(), 0u);
    EXPECT_TRUE(destroyed);
}

TEST(BasicIUnknown, AReleaseBelowZeroGivesZeroAndDestroysNothing) {
    bool destroyed = false;
    auto *object = new Sample(&destroyed, true, 0);
    EXPECT_EQ(object->Release(), 0u);
    EXPECT_FALSE(destroyed);
    EXPECT_EQ(object->AddRef(), 0u);
    EXPECT_EQ(object->AddRef(), 1u);
    EXPECT_EQ(object->Release(), 0u);
    EXPECT_TRUE(destroyed);
}

TEST(BasicIUnknown, HasItsCountFirstAndItsDestructorBeforeTheQuestionForInterfaces) {
    bool destroyed = false;
    auto *object = new Sample(&destroyed, true, 5);
    std::int32_t count = 0;
    std::memcpy(&count, reinterpret_cast<const char *>(object->AsUnknown()) + sizeof(void *), sizeof count);
    EXPECT_EQ(count, 5);
    EXPECT_EQ(SlotOf(&pOLE::IUnknown::QueryInterface), 0u);
    EXPECT_EQ(SlotOf(&pOLE::IUnknown::AddRef), 1u);
    EXPECT_EQ(SlotOf(&pOLE::IUnknown::Release), 2u);
    EXPECT_EQ(SlotOf(&Sample::CBasicIUnknown::SupportsInterface), 5u) << "the destructor has the slots 3 and 4";
    while (object->Release() > 0) {
    }
    EXPECT_TRUE(destroyed);
}

TEST(SmartUnknownObject, KeepsItsObjectAlive) {
    bool destroyed = false;
    {
        const orvThreads::CSmartUnknownObject<Sample> held(new Sample(&destroyed, true));
        EXPECT_TRUE(held.IsValid());
        EXPECT_EQ(held.Get(), held.Object()->AsUnknown());
        EXPECT_FALSE(destroyed);
    }
    EXPECT_TRUE(destroyed);
}

TEST(ImageGuard, ReportsWhatIsNoImageUnderTheGivenName) {
    for (const auto &foreign : TestSupport::ForeignHandles()) {
        TestSupport::ClearReports();
        EXPECT_FALSE(Interface::GuardImage(foreign.Get(), "Someone").IsValid());
        const auto report = TestSupport::TakeReport();
        ASSERT_TRUE(report.has_value()) << foreign.Name;
        EXPECT_EQ(report->code, ErrNotAnImage);
        EXPECT_EQ(report->function, "Someone");
        EXPECT_EQ(foreign.Count(), 1);
    }
    EXPECT_FALSE(Interface::QueryImage(nullptr).IsValid());
}

} // namespace
