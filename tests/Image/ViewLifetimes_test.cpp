// What views share with their sources and for how long: references, base addresses, tables, and releases in every
// order, also from two threads.
#include "Image/MapModel.h"
#include "ImageCoordinates.h"
#include "ImageCopies.h"
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "ImageQueries.h"

#include <barrier>
#include <thread>

namespace {

using namespace TestSupport;

/// Every way to make a view or a copy of the three planes of one image, by name.
struct Maker {
    std::string Name;
    std::intptr_t Planes; ///< of the result that show the image
    std::function<void(void *image, unsigned char share, void **out)> Make;
};

std::vector<Maker> ListMakers() {
    return {{"sub list", 3,
             [](void *image, unsigned char share, void **out) {
                 EXPECT_TRUE(CreateImageSubList(image, 0, 3, share, out));
             }},
            {"delete list", 2,
             [](void *image, unsigned char share, void **out) {
                 EXPECT_TRUE(CreateImageDeleteList(image, 1, 1, share, out));
             }},
            {"insert list, into", 3,
             [](void *image, unsigned char share, void **out) {
                 const auto other = FakeImage::Planar(4, 3, 0, 8);
                 EXPECT_EQ(CreateImageInsertList(image, other->Handle(), 1, share, 0, out), 1);
             }},
            {"insert list, of", 3,
             [](void *image, unsigned char share, void **out) {
                 const auto other = FakeImage::Planar(4, 3, 0, 8);
                 EXPECT_EQ(CreateImageInsertList(other->Handle(), image, 0, share, 1, out), 1);
             }},
            {"insert list, into itself", 6, [](void *image, unsigned char share, void **out) {
                 EXPECT_EQ(CreateImageInsertList(image, image, 1, share, 0, out), 1);
             }}};
}

std::vector<Maker> ViewMakers() {
    auto makers = ListMakers();
    makers.push_back({"map", 3, [](void *image, unsigned char, void **out) {
                          EXPECT_TRUE(CreateImageMap(image, 0, 0, 3, 2, 4, 3, out));
                      }});
    return makers;
}

/// An image over a pointer whose pixels go when the library gives them back.
class CountedSource {
public:
    explicit CountedSource(std::uint8_t first) : pixels(std::make_unique<PlaneBytes>(24)) {
        std::iota(pixels->begin(), pixels->end(), first);
        EXPECT_EQ(CreateImageFromPointer(pixels->data(), 24, 4, 3, 2, 8, 1, 4, 12, nullptr, GiveBack, this, &image),
                  0);
    }
    CountedSource(const CountedSource &) = delete;
    CountedSource &operator=(const CountedSource &) = delete;
    int GivenBack() const { return givenBack; }
    void *image = nullptr;

private:
    static void GiveBack(void *, void *source) {
        auto *const self = static_cast<CountedSource *>(source);
        self->pixels.reset();
        ++self->givenBack;
    }
    std::unique_ptr<PlaneBytes> pixels;
    std::atomic<int> givenBack{0};
};

/// Two sources, and views of them and of each other. Handles 0 and 1 are the sources.
struct Family {
    static constexpr std::size_t Members = 6;
    CountedSource First{1}, Second{101};
    void *Handles[Members] = {First.image, Second.image};
    /// The members that keep each source alive.
    static constexpr bool HoldsFirst[Members] = {true, false, true, true, true, false};
    static constexpr bool HoldsSecond[Members] = {false, true, true, true, true, true};
    std::vector<PlaneBytes> Shown[Members];

    Family() {
        EXPECT_EQ(CreateImageInsertList(Handles[0], Handles[1], 1, 1, 0, &Handles[2]), 1);
        EXPECT_TRUE(CreateImageMap(Handles[2], 1, 0, 3, 2, 5, 4, &Handles[3]));
        EXPECT_TRUE(CreateRotatedImageMap(Handles[3], 3, &Handles[4]));
        EXPECT_TRUE(CreateImageDeleteList(Handles[1], 0, 1, 1, &Handles[5]));
        for (std::size_t member = 0; member < Members; ++member)
            Shown[member] = AllPlanes(member);
    }
    std::vector<PlaneBytes> AllPlanes(std::size_t member) const {
        std::vector<PlaneBytes> planes;
        for (std::intptr_t plane = 0; plane < SizeOf(Handles[member]).Planes; ++plane)
            planes.push_back(PixelBytes(Handles[member], plane));
        return planes;
    }
    void Release(std::size_t member) {
        void *released = std::exchange(Handles[member], nullptr);
        ReleaseObject(released);
    }
    bool IsHeld(const bool (&holders)[Members]) const {
        for (std::size_t member = 0; member < Members; ++member)
            if (holders[member] && Handles[member] != nullptr)
                return true;
        return false;
    }
};

template <class Body>
void ForEveryOrder(Body body) {
    std::vector<std::size_t> order(Family::Members);
    std::iota(order.begin(), order.end(), std::size_t{0});
    do {
        ASSERT_NO_FATAL_FAILURE(body(order)) << "order " << testing::PrintToString(order);
    } while (std::next_permutation(order.begin(), order.end()));
}

/// Answers as another image does, with a base address that can move.
class MovingImage final : public pOLE::IImageVPA {
public:
    explicit MovingImage(FakeImage &answers) : image(answers) {}
    std::intptr_t MovedBytes = 0;

    std::int32_t QueryInterface(const char *id, void **out) override {
        const std::int32_t status = image.QueryInterface(id, out);
        *out = status == 0 ? static_cast<pOLE::IUnknown *>(this) : nullptr;
        return status;
    }
    std::uintptr_t AddRef() override { return image.AddRef(); }
    std::uintptr_t Release() override { return image.Release(); }
    std::int32_t GetImageDimensions(std::intptr_t *planes, std::intptr_t *width, std::intptr_t *height) override {
        return image.GetImageDimensions(planes, width, height);
    }
    std::int32_t GetPlaneDatatype(std::intptr_t plane, TDataType *type) override {
        return image.GetPlaneDatatype(plane, type);
    }
    std::int32_t GetPlaneVPA(std::intptr_t plane, void **base, VPAEntry **table) override {
        const std::int32_t status = image.GetPlaneVPA(plane, base, table);
        *base = static_cast<std::uint8_t *>(*base) + MovedBytes;
        return status;
    }
    std::int32_t GetCoordinateMap(TCoordinateMap *map) override { return image.GetCoordinateMap(map); }
    std::int32_t SetCoordinateMap(TCoordinateMap map) override { return image.SetCoordinateMap(map); }

private:
    FakeImage &image;
};

} // namespace

TEST(ViewLifetimes, AViewHoldsAReferenceForEachOfItsPlanes) {
    for (const Maker &maker : ViewMakers()) {
        SCOPED_TRACE(maker.Name);
        const auto image = FakeImage::Planar(4, 3, 3, 8);
        Handle view;
        maker.Make(image->Handle(), 1, view.Out());
        EXPECT_EQ(image->Count(), 1 + maker.Planes);
        EXPECT_EQ(RefCount(view.Get()), 1u);
        EXPECT_EQ(ShareImage(view.Get()), 2);
        EXPECT_EQ(ReleaseImage(view.Get()), 1);
        EXPECT_EQ(image->Count(), 1 + maker.Planes) << "more references of the view are none of the source";
        view.Reset();
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(ViewLifetimes, AViewOfAViewHoldsTheViewOnly) {
    for (const Maker &maker : ViewMakers()) {
        SCOPED_TRACE(maker.Name);
        const auto image = FakeImage::Planar(4, 3, 3, 8);
        Handle first, second;
        ASSERT_TRUE(CreateImageSubList(image->Handle(), 0, 3, 1, first.Out()));
        maker.Make(first.Get(), 1, second.Out());
        EXPECT_EQ(image->Count(), 4);
        EXPECT_EQ(RefCount(first.Get()), static_cast<std::uintptr_t>(1 + maker.Planes));
        first.Reset();
        EXPECT_EQ(image->Count(), 4);
        EXPECT_EQ(AccessOf(second.Get(), 0).Base, image->BaseOf(0));
        second.Reset();
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(ViewLifetimes, ADeepCopyHoldsNothing) {
    for (const Maker &maker : ListMakers())
        for (const TDataType type : {0x8u, 0x110u}) {
            SCOPED_TRACE(maker.Name);
            const auto image = FakeImage::Planar(4, 3, 3, type);
            Handle copy;
            maker.Make(image->Handle(), 0, copy.Out());
            EXPECT_EQ(image->Count(), 1);
            EXPECT_EQ(RefCount(copy.Get()), 1u);
            EXPECT_EQ(SizeOf(copy.Get()), (ImageSize{maker.Planes, 4, 3}));
            image->ClearCalls();
            EXPECT_NE(AccessOf(copy.Get(), 0).Base, image->BaseOf(0));
            EXPECT_TRUE(image->Calls().empty());
        }
}

TEST(ViewLifetimes, AWriteThroughAViewShowsInTheSource) {
    for (const Maker &maker : ViewMakers()) {
        SCOPED_TRACE(maker.Name);
        const auto image = FakeImage::Planar(4, 3, 3, 8);
        Handle view;
        maker.Make(image->Handle(), 1, view.Out());
        const std::uint64_t value = 0x7B;
        ASSERT_TRUE(SetPixVal(view.Get(), 0, 3, 2, &value));
        EXPECT_EQ(*image->PixelAddress(0, 3, 2), 0x7B);
        EXPECT_EQ(std::count(image->Pixels.begin(), image->Pixels.end(), 0x7B), 1);
        *image->PixelAddress(0, 1, 1) = 0x21;
        EXPECT_EQ(PixVal(view.Get(), 0, 1, 1), 0x21);
    }
}

TEST(ViewLifetimes, AWriteIntoADeepCopyDoesNot) {
    for (const Maker &maker : ListMakers()) {
        SCOPED_TRACE(maker.Name);
        const auto image = FakeImage::Planar(4, 3, 3, 8);
        const auto before = image->Pixels;
        Handle copy;
        maker.Make(image->Handle(), 0, copy.Out());
        for (std::intptr_t plane = 0; plane < maker.Planes; ++plane)
            for (std::intptr_t i = 0; i < 12; ++i)
                *AccessOf(copy.Get(), plane).At(i % 4, i / 4) = 0x7B;
        EXPECT_EQ(image->Pixels, before);
    }
}

TEST(ViewLifetimes, AViewAsksItsSourceForTheBaseAtEveryAccess) {
    for (const Maker &maker : ViewMakers()) {
        SCOPED_TRACE(maker.Name);
        const auto image = FakeImage::Planar(4, 3, 3, 8);
        MovingImage moving(*image);
        Handle view;
        maker.Make(&moving, 1, view.Out());
        const PlaneAccess before = AccessOf(view.Get(), 0);
        EXPECT_EQ(before.Base, image->BaseOf(0));
        for (const std::intptr_t moved : {4, 8, 0}) {
            moving.MovedBytes = moved;
            image->ClearCalls();
            const PlaneAccess access = AccessOf(view.Get(), 0);
            EXPECT_EQ(access.Base, static_cast<std::uint8_t *>(image->BaseOf(0)) + moved);
            EXPECT_EQ(access.Table, before.Table);
            EXPECT_EQ(image->Calls(), std::vector<std::string>{"GetPlaneVPA"});
        }
    }
}

TEST(ViewLifetimes, AViewAnswersAllElseItself) {
    for (const Maker &maker : ViewMakers()) {
        SCOPED_TRACE(maker.Name);
        const auto image = FakeImage::Planar(4, 3, 3, 0x110);
        Handle view;
        maker.Make(image->Handle(), 1, view.Out());
        image->ClearCalls();
        EXPECT_EQ(SizeOf(view.Get()), (ImageSize{maker.Planes, 4, 3}));
        EXPECT_EQ(TypeOf(view.Get(), 0), 0x110u);
        EXPECT_TRUE(SetImageOrigin(view.Get(), 3.0, 4.0));
        EXPECT_EQ(MapOf(view.Get()).Y, 4.0);
        EXPECT_TRUE(image->Calls().empty());
        EXPECT_TRUE(SameMap(image->Coordinates, IdentityMap));
    }
}

TEST(ViewLifetimes, ATableIsNeverUpdated) {
    for (const Maker &maker : ViewMakers()) {
        SCOPED_TRACE(maker.Name);
        const auto image = FakeImage::Planar(4, 3, 3, 8);
        Handle view;
        maker.Make(image->Handle(), 1, view.Out());
        for (std::size_t plane = 0; plane < 3; ++plane)
            for (std::intptr_t i = -4; i < 8; ++i)
                image->TableOf(plane)[i] = {77, 78};
        const VPAEntry *table = AccessOf(view.Get(), 0).Table;
        EXPECT_TRUE(AxisIs(table, &VPAEntry::XEntry, {0, 1, 2, 3}));
        EXPECT_TRUE(AxisIs(table, &VPAEntry::YEntry, {0, 4, 8}));
    }
}

TEST(ViewLifetimes, AViewWithoutASourceHasNoBase) {
    const auto image = FakeImage::Planar(4, 3, 1, 8);
    image->Fails.OnOperation = [&] { image->Fails.QueryStatus = -5; };
    Handle view;
    ASSERT_TRUE(CreateImageMap(image->Handle(), 0, 0, 3, 2, 4, 3, view.Out()));
    EXPECT_EQ(image->Count(), 1);
    EXPECT_EQ(AccessOf(view.Get(), 0).Base, nullptr);
    EXPECT_TRUE(AxisIs(AccessOf(view.Get(), 0).Table, &VPAEntry::XEntry, {0, 1, 2, 3}));
}

TEST(ViewLifetimes, AViewRefusesBadPlanesAndOtherInterfaces) {
    for (const Maker &maker : ViewMakers()) {
        SCOPED_TRACE(maker.Name);
        Handle source, view;
        ASSERT_TRUE(CreateGenericImage(3, 4, 3, false, source.Out()));
        maker.Make(source.Get(), 1, view.Out());
        EXPECT_FALSE(IsInterface(view.Get(), ORV_IID_IIMAGEDIB));
        const ImageInterface self(view.Get());
        for (const std::intptr_t plane : {Lowest, std::intptr_t{-1}, maker.Planes, Highest}) {
            void *base = UntouchedPointer();
            VPAEntry entry{}, *table = &entry;
            TDataType type = 0x123;
            EXPECT_EQ(self->GetPlaneVPA(plane, &base, &table), -1);
            EXPECT_EQ(self->GetPlaneDatatype(plane, &type), -1);
            EXPECT_EQ(base, UntouchedPointer());
            EXPECT_EQ(table, &entry);
            EXPECT_EQ(type, 0x123u);
        }
    }
}

TEST(ViewLifetimes, SourcesLiveExactlyAsLongAsTheirViewsInEveryOrderOfRelease) {
    ForEveryOrder([](const std::vector<std::size_t> &order) {
        Family family;
        for (const std::size_t member : order) {
            family.Release(member);
            ASSERT_EQ(family.First.GivenBack(), family.IsHeld(Family::HoldsFirst) ? 0 : 1);
            ASSERT_EQ(family.Second.GivenBack(), family.IsHeld(Family::HoldsSecond) ? 0 : 1);
            for (std::size_t other = 0; other < Family::Members; ++other)
                if (family.Handles[other] != nullptr) {
                    ASSERT_EQ(family.AllPlanes(other), family.Shown[other]) << "member " << other;
                }
        }
    });
}

TEST(ViewLifetimes, SourcesAreGivenBackOnceWhenTwoThreadsRelease) {
    std::unique_ptr<Family> family;
    const std::vector<std::size_t> *order = nullptr;
    std::barrier step(3);
    const auto releaseEverySecond = [&](std::size_t start) {
        for (;;) {
            step.arrive_and_wait();
            if (family == nullptr)
                return;
            for (std::size_t i = start; i < Family::Members; i += 2) {
                const std::size_t member = (*order)[i];
                EXPECT_EQ(family->AllPlanes(member), family->Shown[member]);
                family->Release(member);
            }
            step.arrive_and_wait();
        }
    };
    std::thread even(releaseEverySecond, 0), odd(releaseEverySecond, 1);
    ForEveryOrder([&](const std::vector<std::size_t> &current) {
        family = std::make_unique<Family>();
        order = &current;
        step.arrive_and_wait();
        step.arrive_and_wait();
        EXPECT_EQ(family->First.GivenBack(), 1);
        EXPECT_EQ(family->Second.GivenBack(), 1);
    });
    family.reset();
    step.arrive_and_wait();
    even.join();
    odd.join();
}
