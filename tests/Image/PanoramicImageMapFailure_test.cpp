// Joined views that can't be made: which report, in which order the checks come, and what stays untouched. And the
// statuses of a view's own operations.
#include "Image/ViewSupport.h"
#include "ImageCreation.h"
#include "ImageMaps.h"

namespace {

using namespace TestSupport;

constexpr std::uint32_t Directions[] = {0, 1};
constexpr std::int32_t NoInterface = Status(0x80000011u);
constexpr std::int32_t BadParameter = Status(0x80000002u);

/// False, one report with the code under the function's own name, and the output untouched.
void ExpectReport(void *first, void *second, std::uint32_t direction, std::uint32_t code, const std::string &what) {
    SCOPED_TRACE(what + ", direction " + std::to_string(direction));
    ClearReports();
    int mark = 0;
    void *out = &mark;
    EXPECT_FALSE(CreatePanoramicImageMap(first, second, direction, &out));
    EXPECT_EQ(out, &mark);
    ExpectOneReport(code, "CreatePanoramicImageMap");
}

/// Two images that can be joined in both directions, until a test breaks one.
struct Pair {
    std::unique_ptr<FakeImage> First = FakeImage::Planar(3, 3, 3, 8);
    std::unique_ptr<FakeImage> Second = FakeImage::Planar(3, 3, 3, 8);

    void ExpectReport(std::uint32_t direction, std::uint32_t code, const std::string &what) const {
        ::ExpectReport(First->Handle(), Second->Handle(), direction, code, what);
        EXPECT_EQ(First->Count(), 1) << what;
        EXPECT_EQ(Second->Count(), 1) << what;
    }
    /// A failing status with the number 0 is no failure for the caller: true, no report, no image.
    void ExpectTrueWithoutImage(std::uint32_t direction) const {
        ClearReports();
        int mark = 0;
        void *out = &mark;
        EXPECT_TRUE(CreatePanoramicImageMap(First->Handle(), Second->Handle(), direction, &out));
        EXPECT_EQ(out, &mark);
        EXPECT_EQ(ReportCount(), 0);
        EXPECT_EQ(First->Count(), 1);
        EXPECT_EQ(Second->Count(), 1);
    }
    void Join(Handle &view, std::uint32_t direction) const {
        ASSERT_TRUE(CreatePanoramicImageMap(First->Handle(), Second->Handle(), direction, view.Out()));
    }
};

/// Statuses as an image may give them, and the number that is reported: 12 bits of the low 16; 0 stands for none.
struct StatusCase {
    std::uint32_t Status;
    std::uint32_t Reported;
};
constexpr StatusCase StatusCases[] = {
    {0x80000002, 2},     {0x80000006, 6}, {0x80000013, 0x13}, {0xFFFFFFFF, 0xFFF}, {0x8000ABCD, 0xBCD},
    {0x80107001, 0x001}, {0x80000000, 0}, {0x80010000, 0},    {0x8000F000, 0},     {0xFFFF0000, 0}};

void ExpectStatusCase(const Pair &pair, const StatusCase &status, const std::string &what) {
    for (const std::uint32_t direction : Directions)
        if (status.Reported == 0)
            pair.ExpectTrueWithoutImage(direction);
        else
            pair.ExpectReport(direction, status.Reported, what + " gives " + std::to_string(status.Status));
}

} // namespace

TEST(CreatePanoramicImageMap, ReportsTheBareNumber10hForANullImage) {
    const auto image = FakeImage::Planar(3, 3, 1, 8);
    for (const std::uint32_t direction : {0u, 1u, 2u}) {
        ExpectReport(nullptr, image->Handle(), direction, 0x10, "first null");
        ExpectReport(image->Handle(), nullptr, direction, 0x10, "second null");
        ExpectReport(nullptr, nullptr, direction, 0x10, "both null");
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(CreatePanoramicImageMap, ReportsTheBareNumber10hForForeignHandles) {
    const auto image = FakeImage::Planar(3, 3, 1, 8);
    for (const ForeignHandle &foreign : ForeignHandles()) {
        ExpectReport(foreign.Get(), image->Handle(), 0, 0x10, "first " + foreign.Name);
        ExpectReport(image->Handle(), foreign.Get(), 1, 0x10, "second " + foreign.Name);
        EXPECT_EQ(foreign.Count(), 1) << foreign.Name;
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(CreatePanoramicImageMap, ReportsTheBareNumber10hForAnImageThatRefusesItsInterface) {
    Pair pair;
    for (FakeImage *image : {pair.First.get(), pair.Second.get()}) {
        image->Fails.QueryThrows = true;
        pair.ExpectReport(0, 0x10, "throws at the query");
        image->Fails = {};
        image->Fails.QueryGivesNull = true;
        pair.ExpectReport(0, 0x10, "gives a null interface");
        image->Fails = {};
        image->Fails.QueryStatus = NoInterface;
        pair.ExpectReport(0, 0x10, "fails at the query");
        image->Fails = {};
    }
}

TEST(CreatePanoramicImageMap, ReportsTheNumber2ForAnotherDirection) {
    const Pair pair;
    for (const std::uint32_t direction : {2u, 3u, 0x100u, 0x80000000u, 0xFFFFFFFFu})
        pair.ExpectReport(direction, 2, "a pair");
}

TEST(CreatePanoramicImageMap, ReportsTheNumber1AhForSizesThatDoNotMatch) {
    const auto image = FakeImage::Planar(3, 2, 2, 8);
    const auto fewerPlanes = FakeImage::Planar(3, 2, 1, 8);
    const auto higher = FakeImage::Planar(3, 3, 2, 8);
    const auto wider = FakeImage::Planar(4, 2, 2, 8);
    for (const std::uint32_t direction : Directions) {
        ExpectReport(image->Handle(), fewerPlanes->Handle(), direction, 0x1A, "fewer planes");
        ExpectReport(fewerPlanes->Handle(), image->Handle(), direction, 0x1A, "more planes");
    }
    ExpectReport(image->Handle(), higher->Handle(), 0, 0x1A, "a higher one beside");
    ExpectReport(higher->Handle(), image->Handle(), 0, 0x1A, "a lower one beside");
    ExpectReport(image->Handle(), wider->Handle(), 1, 0x1A, "a wider one below");
    ExpectReport(wider->Handle(), image->Handle(), 1, 0x1A, "a narrower one below");
    Handle view;
    EXPECT_TRUE(CreatePanoramicImageMap(image->Handle(), higher->Handle(), 1, view.Out())) << "height is free here";
}

TEST(CreatePanoramicImageMap, ReportsTheNumber1ChForDataTypesThatDiffer) {
    const TDataType type = 16;
    for (const TDataType other :
         {TDataType{8}, TDataType{12}, type | DataTypeSigned, type | DataTypeFloat, type | DataTypeComplex,
          type | DataTypeOverlay | DataTypeSigned, type | 0x1000u, type | 0x80000000u})
        for (const std::uint32_t direction : Directions) {
            FakeImage first(3, 2, 64);
            FakeImage second(3, 2, 64);
            const auto x = [](std::intptr_t i) { return i * 2; };
            const auto y = [](std::intptr_t j) { return j * 6; };
            first.AddPlane(first.Pixels.data(), type, x, y);
            first.AddPlane(first.Pixels.data(), type, x, y);
            second.AddPlane(second.Pixels.data(), type, x, y);
            second.AddPlane(second.Pixels.data(), other, x, y);
            ExpectReport(first.Handle(), second.Handle(), direction, 0x1C, "the second plane's type");
            ExpectReport(second.Handle(), first.Handle(), direction, 0x1C, "the second plane's type, swapped");
            EXPECT_EQ(first.Count(), 1);
            EXPECT_EQ(second.Count(), 1);
        }
}

TEST(CreatePanoramicImageMap, ReportsTheNumber13hForTablesThatAdvanceOtherwise) {
    std::uint8_t pixels[64] = {};
    Handle dense;
    Handle padded;
    Handle spaced;
    ASSERT_EQ(CreateImageFromPointer(pixels, 0, 2, 3, 1, 8, 1, 2, 0, nullptr, nullptr, nullptr, dense.Out()), 0);
    ASSERT_EQ(CreateImageFromPointer(pixels, 0, 2, 3, 1, 8, 1, 9, 0, nullptr, nullptr, nullptr, padded.Out()), 0);
    ASSERT_EQ(CreateImageFromPointer(pixels, 0, 2, 3, 1, 8, 4, 9, 0, nullptr, nullptr, nullptr, spaced.Out()), 0);
    ExpectReport(dense.Get(), padded.Get(), 0, 0x13, "another line stride beside");
    ExpectReport(padded.Get(), spaced.Get(), 1, 0x13, "another pixel stride below");
    EXPECT_EQ(RefCount(dense.Get()), 1u);
    EXPECT_EQ(RefCount(padded.Get()), 1u);
}

TEST(CreatePanoramicImageMap, ChecksInAFixedOrder) {
    Pair pair;
    pair.First->Fails.DimensionsStatus = BadParameter + 1; // the number 3, which no other check gives
    pair.ExpectReport(2, 2, "the direction comes before the sizes");
    pair.ExpectReport(0, 3, "the sizes are asked for first");
    pair.First->Fails = {};

    const auto otherInAll = FakeImage::Planar(2, 2, 2, 16);
    ExpectReport(pair.First->Handle(), otherInAll->Handle(), 0, 0x1A, "sizes come before data types");
    const auto otherType = FakeImage::Planar(3, 3, 3, 16);
    ExpectReport(pair.First->Handle(), otherType->Handle(), 0, 0x1C, "data types come before tables");
    otherType->Fails.VPAStatus = BadParameter + 1;
    ExpectReport(pair.First->Handle(), otherType->Handle(), 0, 0x1C, "data types come before a table's status");
}

TEST(CreatePanoramicImageMap, ReportsTheNumberOfAFailingStatusOfTheSizes) {
    for (const StatusCase &status : StatusCases) {
        Pair pair;
        pair.First->Fails.DimensionsStatus = static_cast<std::int32_t>(status.Status);
        ExpectStatusCase(pair, status, "the first image's size");
        pair.First->Fails = {};
        pair.Second->Fails.DimensionsStatus = static_cast<std::int32_t>(status.Status);
        ExpectStatusCase(pair, status, "the second image's size");
    }
}

TEST(CreatePanoramicImageMap, ReportsTheNumberOfAFailingStatusOfATable) {
    for (const StatusCase &status : StatusCases)
        for (std::ptrdiff_t plane = 0; plane < 3; ++plane)
            for (const bool breaksFirst : {false, true}) {
                const Pair pair;
                FakeImage &broken = breaksFirst ? *pair.First : *pair.Second;
                const auto failFromPlane = [&broken, plane, &status] {
                    const bool fails = broken.CallsOf("GetPlaneVPA") > plane;
                    broken.Fails.VPAStatus = fails ? static_cast<std::int32_t>(status.Status) : 0;
                };
                for (const std::uint32_t direction : Directions) {
                    broken.ClearCalls();
                    broken.Fails.OnOperation = failFromPlane;
                    if (status.Reported == 0)
                        pair.ExpectTrueWithoutImage(direction);
                    else
                        pair.ExpectReport(direction, status.Reported, "plane " + std::to_string(plane));
                }
            }
}

TEST(CreatePanoramicImageMap, ReportsTheWholeGeneralCodeForAnyOtherException) {
    for (const bool breaksFirst : {false, true}) {
        const Pair pair;
        FakeImage &broken = breaksFirst ? *pair.First : *pair.Second;
        Handle view;
        pair.Join(view, 0);
        view.Reset();
        const auto operations =
            static_cast<int>(broken.Calls().size()) - static_cast<int>(broken.CallsOf("QueryInterface IImageVPA"));
        ASSERT_GE(operations, 7) << "the size, three data types, three tables";
        for (int failing = 0; failing < operations; ++failing) {
            int number = 0;
            broken.Fails.OnOperation = [&] {
                if (number++ == failing && failing % 2 == 0)
                    throw std::runtime_error("refused");
                if (number > failing)
                    throw 42;
            };
            pair.ExpectReport(0, 0x80000001u, "operation " + std::to_string(failing));
        }
    }
}

TEST(CreatePanoramicImageMap, FailsForASizeThatNoMachineWordHolds) {
    constexpr std::intptr_t most = std::numeric_limits<std::intptr_t>::max();
    FakeImage wide(most - 8, 1);
    FakeImage high(1, most - 8);
    for (FakeImage *image : {&wide, &high}) {
        ClearReports();
        int mark = 0;
        void *out = &mark;
        EXPECT_FALSE(CreatePanoramicImageMap(image->Handle(), image->Handle(), image == &wide ? 0 : 1, &out));
        EXPECT_EQ(out, &mark);
        EXPECT_EQ(ReportCount(), 1);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(CreatePanoramicImageMap, ReportsTheNumber1AhForASizeBelowZero) {
    const auto dense = [](std::intptr_t i) { return i; };
    FakeImage tall(4, 20, 80);
    tall.AddPlane(tall.Pixels.data(), 8, dense, dense);
    FakeImage negative(4, -10, 80);
    negative.AddPlane(negative.Pixels.data(), 8, dense, dense);
    ExpectReport(tall.Handle(), negative.Handle(), 1, 0x1A, "second");
    ExpectReport(negative.Handle(), tall.Handle(), 1, 0x1A, "first");
    EXPECT_EQ(tall.Count(), 1);
    EXPECT_EQ(negative.Count(), 1);
}

TEST(CreatePanoramicImageMap, OfImagesWithoutPlanesHasNone) {
    Handle first;
    Handle second;
    ASSERT_TRUE(CreateGenericImage(0, 5, 3, false, first.Out()));
    ASSERT_TRUE(CreateGenericImage(0, 2, 3, false, second.Out()));
    Handle view;
    ASSERT_TRUE(CreatePanoramicImageMap(first.Get(), second.Get(), 0, view.Out()));
    EXPECT_EQ(SizeOf(view.Get()), (ImageSize{0, 7, 3}));
}

TEST(StitchedImage, AnswersQueriesByItsTwoInterfaces) {
    const Pair pair;
    Handle view;
    pair.Join(view, 0);
    const ImageInterface self(view.Get());
    void *root = nullptr;
    ASSERT_EQ(self->QueryInterface(ORV_IID_IUNKNOWN, &root), 0);
    EXPECT_EQ(root, view.Get()) << "both bases answer with the one root";
    EXPECT_EQ(static_cast<pOLE::IUnknown *>(root)->Release(), 2u) << "both bases share one count";
    void *image = nullptr;
    ASSERT_EQ(static_cast<pOLE::IUnknown *>(view.Get())->QueryInterface(ORV_IID_IIMAGEVPA, &image), 0);
    EXPECT_EQ(static_cast<pOLE::IImageVPA *>(image)->Release(), 2u);
    int mark = 0;
    for (const char *id : {ORV_IID_IIMAGEDIB, ORV_IID_ICOLORMODELINFO, ORV_IID_IIPPIPROXY, ORV_IID_IGRABBER}) {
        void *found = &mark;
        EXPECT_EQ(self->QueryInterface(id, &found), NoInterface) << id;
        EXPECT_EQ(found, &mark) << id << " leaves the output untouched";
    }
    EXPECT_EQ(self->AddRef(), 3u);
    EXPECT_EQ(self->Release(), 2u);
    EXPECT_TRUE(IsImage(view.Get()));
    EXPECT_FALSE(IsInterface(view.Get(), ORV_IID_IIMAGEDIB));
}

TEST(StitchedImage, RefusesBadPlanesAndLeavesTheOutputs) {
    const Pair pair;
    Handle view;
    pair.Join(view, 1);
    const ImageInterface self(view.Get());
    int mark = 0;
    VPAEntry markEntry{};
    void *base = &mark;
    VPAEntry *table = &markEntry;
    TDataType type = 0x123;
    for (const std::intptr_t plane : {std::numeric_limits<std::intptr_t>::min(), std::intptr_t{-1}, std::intptr_t{3},
                                      std::numeric_limits<std::intptr_t>::max()}) {
        EXPECT_EQ(self->GetPlaneVPA(plane, &base, &table), BadParameter);
        EXPECT_EQ(self->GetPlaneDatatype(plane, &type), BadParameter);
    }
    EXPECT_EQ(base, &mark);
    EXPECT_EQ(table, &markEntry);
    EXPECT_EQ(type, 0x123u);
    EXPECT_EQ(self->GetPlaneVPA(2, &base, &table), 0);
    EXPECT_EQ(base, pair.First->BaseOf(2));
}

TEST(StitchedImage, HandsOnTheFirstImagesStatusForADataType) {
    const Pair pair;
    Handle view;
    pair.Join(view, 0);
    const ImageInterface self(view.Get());
    pair.First->ClearCalls();
    pair.Second->ClearCalls();
    TDataType type = 0;
    EXPECT_EQ(self->GetPlaneDatatype(1, &type), 0);
    EXPECT_EQ(type, 8u);
    pair.First->Fails.DatatypeStatus = -77;
    EXPECT_EQ(self->GetPlaneDatatype(1, &type), -77);
    EXPECT_EQ(pair.First->CallsOf("GetPlaneDatatype"), 2);
    EXPECT_TRUE(pair.Second->Calls().empty());
}
