// Rotated views of what can't be turned, and the statuses of a view's own operations.
#include "Image/ViewSupport.h"
#include "ImageCreation.h"
#include "ImageMaps.h"

namespace {

using namespace TestSupport;

constexpr std::uint32_t Rotations[] = {1, 2, 3};
constexpr std::int32_t NoInterface = Status(0x80000011u);
constexpr std::int32_t BadParameter = Status(0x80000002u);
constexpr std::int32_t BadPlane = Status(0x80000006u);

/// A failure leaves the output and the reports alone.
void ExpectSilentFailure(void *image, std::uint32_t rotation, const std::string &what) {
    ClearReports();
    int mark = 0;
    void *out = &mark;
    EXPECT_FALSE(CreateRotatedImageMap(image, rotation, &out)) << what << ", rotation " << rotation;
    EXPECT_EQ(out, &mark) << what;
    EXPECT_EQ(ReportCount(), 0) << what;
}

enum class Missing { Base, Table, GoodStatus };

/// Answers as another image does, but for one answer about one plane.
class MissingAccess final : public pOLE::IImageVPA {
public:
    MissingAccess(FakeImage &answers, std::intptr_t plane, Missing answer)
        : image(answers), missingPlane(plane), missing(answer) {}
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
        if (plane != missingPlane)
            return status;
        if (missing == Missing::Base)
            *base = nullptr;
        if (missing == Missing::Table)
            *table = nullptr;
        return missing == Missing::GoodStatus ? BadPlane : status;
    }
    std::int32_t GetCoordinateMap(TCoordinateMap *map) override { return image.GetCoordinateMap(map); }
    std::int32_t SetCoordinateMap(TCoordinateMap map) override { return image.SetCoordinateMap(map); }

private:
    FakeImage &image;
    std::intptr_t missingPlane;
    Missing missing;
};

} // namespace

TEST(CreateRotatedImageMap, RefusesANullImage) {
    for (const std::uint32_t rotation : {0u, 1u, 2u, 3u, 4u})
        ExpectSilentFailure(nullptr, rotation, "null");
}

TEST(CreateRotatedImageMap, RefusesOtherRotations) {
    const auto image = FakeImage::Planar(3, 2, 1, 8);
    for (const std::uint32_t rotation : {0u, 4u, 5u, 0x101u, 0x80000001u, 0xFFFFFFFFu}) {
        ExpectSilentFailure(image->Handle(), rotation, "an image");
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(CreateRotatedImageMap, RefusesForeignHandles) {
    for (const ForeignHandle &foreign : ForeignHandles())
        for (const std::uint32_t rotation : Rotations) {
            ExpectSilentFailure(foreign.Get(), rotation, foreign.Name);
            EXPECT_EQ(foreign.Count(), 1) << foreign.Name;
        }
}

TEST(CreateRotatedImageMap, RefusesAnImageThatRefusesItsInterface) {
    const auto image = FakeImage::Planar(3, 2, 1, 8);
    image->Fails.QueryThrows = true;
    ExpectSilentFailure(image->Handle(), 1, "throws at the query");
    image->Fails = {};
    image->Fails.QueryGivesNull = true;
    ExpectSilentFailure(image->Handle(), 1, "gives a null interface");
    image->Fails = {};
    image->Fails.QueryStatus = NoInterface;
    ExpectSilentFailure(image->Handle(), 1, "fails at the query");
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateRotatedImageMap, FailsWhenAPlaneHasNoAccess) {
    for (const std::intptr_t planes : {1, 3}) {
        const auto image = FakeImage::Planar(3, 2, planes, 8);
        for (std::intptr_t plane = 0; plane < planes; ++plane)
            for (const std::uint32_t rotation : Rotations) {
                for (const Missing answer : {Missing::Base, Missing::Table, Missing::GoodStatus}) {
                    MissingAccess broken(*image, plane, answer);
                    ExpectSilentFailure(&broken, rotation, "answer " + std::to_string(static_cast<int>(answer)));
                }
                EXPECT_EQ(image->Count(), 1);
            }
    }
}

TEST(CreateRotatedImageMap, FailsWhenAPlanesTableIsRefused) {
    const auto image = FakeImage::Planar(3, 2, 3, 8);
    for (const std::uint32_t rotation : Rotations)
        for (std::ptrdiff_t allowed = 0; allowed < 3; ++allowed) {
            image->ClearCalls();
            image->Fails.OnOperation = [&] {
                image->Fails.VPAStatus = image->CallsOf("GetPlaneVPA") > allowed ? BadPlane : 0;
            };
            ExpectSilentFailure(image->Handle(), rotation, "refused after " + std::to_string(allowed));
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(CreateRotatedImageMap, SwallowsWhatAnyOperationOfTheSourceThrows) {
    const auto image = FakeImage::Planar(3, 2, 3, 8);
    for (const std::uint32_t rotation : Rotations) {
        image->Fails = {};
        image->ClearCalls();
        Handle view;
        ASSERT_TRUE(CreateRotatedImageMap(image->Handle(), rotation, view.Out()));
        view.Reset();
        const auto operations =
            static_cast<int>(image->Calls().size()) - static_cast<int>(image->CallsOf("QueryInterface IImageVPA"));
        ASSERT_GE(operations, 5) << "the map, the size and three tables";
        for (int failing = 0; failing < operations; ++failing) {
            int number = 0;
            image->Fails.OnOperation = [&] {
                if (number++ == failing)
                    throw failing; // not a std::exception
            };
            ExpectSilentFailure(image->Handle(), rotation, "operation " + std::to_string(failing));
            EXPECT_EQ(image->Count(), 1) << "operation " << failing;
        }
    }
}

TEST(CreateRotatedImageMap, FailsForATableThatNoMemoryCanHold) {
    constexpr std::intptr_t most = std::numeric_limits<std::intptr_t>::max();
    for (const std::intptr_t longest : {most, most - 8, most / 8}) {
        FakeImage wide(longest, 1);
        FakeImage high(1, longest);
        for (const std::uint32_t rotation : Rotations) {
            ExpectSilentFailure(wide.Handle(), rotation, "too wide");
            ExpectSilentFailure(high.Handle(), rotation, "too high");
        }
    }
}

TEST(CreateRotatedImageMap, OfAnImageWithoutPlanesSwapsItsSize) {
    Handle image;
    ASSERT_TRUE(CreateGenericImage(0, 5, 3, false, image.Out()));
    for (const std::uint32_t rotation : Rotations) {
        Handle view;
        ASSERT_TRUE(CreateRotatedImageMap(image.Get(), rotation, view.Out()));
        EXPECT_EQ(SizeOf(view.Get()), rotation == 2 ? (ImageSize{0, 5, 3}) : (ImageSize{0, 3, 5}));
        void *base = nullptr;
        VPAEntry *table = nullptr;
        EXPECT_EQ(ImageInterface(view.Get())->GetPlaneVPA(0, &base, &table), BadPlane);
    }
}

TEST(CreateRotatedImageMap, OfAnImageWithoutPixelsHasNone) {
    FakeImage empty(0, 3, 1);
    empty.AddPlane(
        empty.Pixels.data(), 8, [](auto) { return 0; }, [](auto j) { return j * 5; });
    Handle view;
    ASSERT_TRUE(CreateRotatedImageMap(empty.Handle(), 1, view.Out()));
    EXPECT_EQ(SizeOf(view.Get()), (ImageSize{1, 3, 0}));
    EXPECT_TRUE(AxisIs(AccessOf(view.Get(), 0).Table, &VPAEntry::XEntry, {0, 5, 10}));
}

TEST(RotatedImageMap, AnswersQueriesByItsTwoInterfaces) {
    const auto image = FakeImage::Planar(3, 2, 1, 8);
    Handle view;
    ASSERT_TRUE(CreateRotatedImageMap(image->Handle(), 1, view.Out()));
    const ImageInterface self(view.Get());
    for (const char *id : {ORV_IID_IUNKNOWN, ORV_IID_IIMAGEVPA}) {
        void *found = nullptr;
        EXPECT_EQ(self->QueryInterface(id, &found), 0);
        EXPECT_EQ(found, view.Get()) << id;
        EXPECT_EQ(self->Release(), 2u) << "the query took a reference";
        EXPECT_EQ(self->QueryInterface(id, nullptr), BadParameter);
    }
    int mark = 0;
    for (const char *id : {ORV_IID_IIMAGEDIB, ORV_IID_ICOLORMODELINFO, ORV_IID_IIPPIPROXY, ORV_IID_IGRABBER,
                           "IImageVPA\0\0\0\0\0\0", "iimagevpa       "}) {
        void *found = &mark;
        EXPECT_EQ(self->QueryInterface(id, &found), NoInterface);
        EXPECT_EQ(found, nullptr) << id;
        EXPECT_EQ(self->QueryInterface(id, nullptr), BadParameter) << "a null output comes first";
    }
    EXPECT_EQ(self->AddRef(), 3u);
    EXPECT_EQ(self->Release(), 2u);
    EXPECT_TRUE(IsImage(view.Get()));
    EXPECT_TRUE(IsIUnknown(view.Get()));
    EXPECT_FALSE(IsInterface(view.Get(), ORV_IID_IIMAGEDIB));
}

TEST(RotatedImageMap, RefusesBadPlanesBeforeNullOutputs) {
    const auto image = FakeImage::Planar(3, 2, 2, 8);
    for (const std::uint32_t rotation : Rotations) {
        Handle view;
        ASSERT_TRUE(CreateRotatedImageMap(image->Handle(), rotation, view.Out()));
        const ImageInterface self(view.Get());
        int mark = 0;
        VPAEntry markEntry{};
        void *base = &mark;
        VPAEntry *table = &markEntry;
        for (const std::intptr_t plane : {std::numeric_limits<std::intptr_t>::min(), std::intptr_t{-1},
                                          std::intptr_t{2}, std::numeric_limits<std::intptr_t>::max()}) {
            EXPECT_EQ(self->GetPlaneVPA(plane, &base, &table), BadPlane);
            EXPECT_EQ(self->GetPlaneVPA(plane, nullptr, nullptr), BadPlane);
        }
        for (const std::intptr_t plane : {0, 1}) {
            EXPECT_EQ(self->GetPlaneVPA(plane, nullptr, &table), BadParameter);
            EXPECT_EQ(self->GetPlaneVPA(plane, &base, nullptr), BadParameter);
        }
        EXPECT_EQ(base, &mark);
        EXPECT_EQ(table, &markEntry);
        EXPECT_EQ(self->GetPlaneVPA(1, &base, &table), 0);
        EXPECT_EQ(base, image->BaseOf(1));
    }
}

TEST(RotatedImageMap, HandsOnTheSourcesStatusForADataType) {
    const auto image = FakeImage::Planar(3, 2, 1, 16);
    Handle view;
    ASSERT_TRUE(CreateRotatedImageMap(image->Handle(), 2, view.Out()));
    const ImageInterface self(view.Get());
    TDataType type = 0x123;
    EXPECT_EQ(self->GetPlaneDatatype(1, &type), StatusBadPlane) << "this is the source's own answer";
    image->Fails.DatatypeStatus = -77;
    EXPECT_EQ(self->GetPlaneDatatype(0, &type), -77);
    EXPECT_EQ(type, 0x123u);
    image->Fails = {};
    EXPECT_EQ(self->GetPlaneDatatype(0, &type), 0);
    EXPECT_EQ(type, 16u);

    Handle generic;
    ASSERT_TRUE(CreateGenericImage(1, 3, 2, false, generic.Out()));
    ASSERT_TRUE(CreateRotatedImageMap(generic.Get(), 2, view.Out()));
    EXPECT_EQ(ImageInterface(view.Get())->GetPlaneDatatype(-1, &type), -1);
}
