// The least and the greatest value of a stack of planes, and the front that the reductions of stacks share: what the
// results look like, what is refused, and what a failure leaves behind.
#include "ImageQueries.h"
#include "Scan/StatisticsModel.h"

namespace {

using namespace TestSupport;

/// Both results as values.
template <class T>
struct TwoResults {
    std::vector<T> First, Second;
};

template <class T>
TwoResults<T> LeastAndGreatestOf(FakeImage &image) {
    Handle least, greatest;
    ClearReports();
    EXPECT_EQ(CreateMinMaxImage(image.Handle(), least.Out(), greatest.Out()), 1);
    ExpectNoReport();
    return {ValuesOf<T>(least.Get()), ValuesOf<T>(greatest.Get())};
}

TEST(CreateMinMaxImage, GivesTheLeastAndTheGreatestValueOfAllPlanesAtEachPixel) {
    const auto image = Stack<std::uint8_t>(2, 2, 8, {{1, 200, 7, 255}, {0, 100, 7, 3}, {2, 150, 7, 0}});
    const auto [least, greatest] = LeastAndGreatestOf<std::uint8_t>(*image);
    EXPECT_EQ(least, (std::vector<std::uint8_t>{0, 100, 7, 0}));
    EXPECT_EQ(greatest, (std::vector<std::uint8_t>{2, 200, 7, 255}));
}

TEST(CreateMinMaxImage, OfOnePlaneGivesTheSourceTwice) {
    const auto image = Stack<std::int16_t>(3, 1, 0x110, {{-32768, 5, 32767}});
    const auto [least, greatest] = LeastAndGreatestOf<std::int16_t>(*image);
    EXPECT_EQ(least, (std::vector<std::int16_t>{-32768, 5, 32767}));
    EXPECT_EQ(greatest, least);
}

TEST(CreateMinMaxImage, ComparesSignedPixelsAsSignedAndUnsignedOnesAsUnsigned) {
    const auto bytes = Stack<std::uint8_t>(1, 1, 0x108, {{0xFF}, {0x01}});
    EXPECT_EQ(LeastAndGreatestOf<std::int8_t>(*bytes).First[0], -1);
    EXPECT_EQ(LeastAndGreatestOf<std::int8_t>(*bytes).Second[0], 1);
    const auto unsignedBytes = Stack<std::uint8_t>(1, 1, 8, {{0xFF}, {0x01}});
    EXPECT_EQ(LeastAndGreatestOf<std::uint8_t>(*unsignedBytes).First[0], 1);
    EXPECT_EQ(LeastAndGreatestOf<std::uint8_t>(*unsignedBytes).Second[0], 255);
    constexpr std::uint64_t top = std::uint64_t{1} << 63;
    const auto words = Stack<std::uint64_t>(1, 1, 0x40, {{top}, {1}});
    EXPECT_EQ(LeastAndGreatestOf<std::uint64_t>(*words).Second[0], top);
    const auto signedWords = Stack<std::uint64_t>(1, 1, 0x140, {{top}, {1}});
    EXPECT_EQ(LeastAndGreatestOf<std::uint64_t>(*signedWords).First[0], top);
}

TEST(CreateMinMaxImage, TellsWordsApartThatAreEqualAsDoubles) {
    constexpr std::int64_t big = std::int64_t{1} << 62;
    const auto image = Stack<std::int64_t>(2, 1, 0x140, {{big + 1, -big - 1}, {big, -big}, {big + 2, -big - 2}});
    const auto [least, greatest] = LeastAndGreatestOf<std::int64_t>(*image);
    EXPECT_EQ(least, (std::vector<std::int64_t>{big, -big - 2}));
    EXPECT_EQ(greatest, (std::vector<std::int64_t>{big + 2, -big}));
}

TEST(CreateMinMaxImage, KeepsANaNOfPlaneZeroAndPassesOverOneOfAnotherPlane) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    const auto image = Stack<float>(2, 1, 0x220, {{nan, 2.0f}, {1.0f, nan}, {3.0f, 1.0f}, {2.0f, nan}});
    const auto [least, greatest] = LeastAndGreatestOf<float>(*image);
    EXPECT_TRUE(std::isnan(least[0]));
    EXPECT_TRUE(std::isnan(greatest[0]));
    EXPECT_EQ(least[1], 1.0f);
    EXPECT_EQ(greatest[1], 2.0f);
}

TEST(CreateMinMaxImage, KeepsTheFirstOfZerosOfBothSigns) {
    const auto image = Stack<double>(2, 1, 0x240, {{0.0, -0.0}, {-0.0, 0.0}});
    const auto [least, greatest] = LeastAndGreatestOf<double>(*image);
    EXPECT_FALSE(std::signbit(least[0]));
    EXPECT_FALSE(std::signbit(greatest[0]));
    EXPECT_TRUE(std::signbit(least[1]));
    EXPECT_TRUE(std::signbit(greatest[1]));
}

TEST(CreateMinMaxImage, KeepsInfinitiesAndDenormalNumbers) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    constexpr double tiny = std::numeric_limits<double>::denorm_min();
    const auto image = Stack<double>(2, 1, 0x240, {{0.0, tiny}, {-infinite, 0.0}, {infinite, -tiny}});
    const auto [least, greatest] = LeastAndGreatestOf<double>(*image);
    EXPECT_EQ(least, (std::vector<double>{-infinite, -tiny}));
    EXPECT_EQ(greatest, (std::vector<double>{infinite, tiny}));
}

/// Shows an image, but tells another size.
class ImageOfToldSize final : public pOLE::IImageVPA {
public:
    ImageOfToldSize(FakeImage &shown, ImageSize size) : image(shown), told(size) {}
    std::int32_t QueryInterface(const char *, void **out) override {
        references.Take();
        *out = static_cast<pOLE::IImageVPA *>(this);
        return 0;
    }
    std::uintptr_t AddRef() override { return references.Take(); }
    std::uintptr_t Release() override { return references.GiveBack(); }
    std::int32_t GetImageDimensions(std::intptr_t *planes, std::intptr_t *width, std::intptr_t *height) override {
        *planes = told.Planes;
        *width = told.Width;
        *height = told.Height;
        return 0;
    }
    std::int32_t GetPlaneDatatype(std::intptr_t plane, TDataType *type) override {
        return image.GetPlaneDatatype(plane, type);
    }
    std::int32_t GetPlaneVPA(std::intptr_t plane, void **base, VPAEntry **table) override {
        return image.GetPlaneVPA(plane, base, table);
    }
    std::int32_t GetCoordinateMap(TCoordinateMap *map) override { return image.GetCoordinateMap(map); }
    std::int32_t SetCoordinateMap(TCoordinateMap map) override { return image.SetCoordinateMap(map); }
    void *Handle() { return static_cast<pOLE::IImageVPA *>(this); }
    std::intptr_t Count() const { return references.Count(); }

private:
    CountedReferences references;
    FakeImage &image;
    ImageSize told;
};

class StackReduction : public testing::TestWithParam<Reduction> {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ClearReports(); }

    std::int32_t Create(void *image) { return GetParam().Create(image, &first, &second); }
    void ExpectUntouched() const {
        EXPECT_EQ(first, UntouchedPointer());
        EXPECT_EQ(second, UntouchedPointer());
    }
    void ExpectFailure(void *image, std::uint32_t code) {
        EXPECT_EQ(Create(image), 0);
        ExpectUntouched();
        ExpectOneReport(code, GetParam().Name);
    }
    void *first = UntouchedPointer();
    void *second = UntouchedPointer();
};
std::string NameOfReduction(const testing::TestParamInfo<Reduction> &info) {
    return info.param.Name;
}
INSTANTIATE_TEST_SUITE_P(Both, StackReduction, testing::Values(Extremes, Means), NameOfReduction);

TEST_P(StackReduction, MakesTwoImagesOfOnePlaneWithOneReferenceEach) {
    const auto image = Stack<std::int16_t>(3, 2, 0x110, {{1, 2, 3, 4, 5, 6}, {6, 5, 4, 3, 2, 1}});
    image->Coordinates = SkewedMap;
    Handle results[2];
    ASSERT_EQ(GetParam().Create(image->Handle(), results[0].Out(), results[1].Out()), 1);
    ExpectNoReport();
    EXPECT_EQ(image->Count(), 1);
    EXPECT_NE(results[0].Get(), results[1].Get());
    for (const Handle &result : results) {
        EXPECT_EQ(SizeOf(result.Get()), (ImageSize{1, 3, 2}));
        EXPECT_EQ(TypeOf(result.Get(), 0), 0x110u);
        EXPECT_EQ(RefCount(result.Get()), 1u);
        TCoordinateMap map{};
        ImageInterface(result.Get())->GetCoordinateMap(&map);
        EXPECT_TRUE(SameMap(map, IdentityMap));
        ExpectTable(
            AccessOf(result.Get(), 0).Table, 3, 2, [](std::intptr_t i) { return 2 * i; },
            [](std::intptr_t j) { return 6 * j; });
    }
}

TEST_P(StackReduction, GivesResultsWithMemoryOfTheirOwn) {
    const auto image = Stack<std::uint8_t>(2, 1, 8, {{10, 20}});
    Handle results[2];
    ASSERT_EQ(GetParam().Create(image->Handle(), results[0].Out(), results[1].Out()), 1);
    const auto before = PixelBytes(results[1].Get(), 0);
    *AccessOf(results[0].Get(), 0).At(0, 0) = 99;
    EXPECT_EQ(PixelBytes(results[1].Get(), 0), before);
    EXPECT_EQ(PixelBytes(image->Handle(), 0), (PlaneBytes{10, 20}));
}

TEST_P(StackReduction, HandsTheWholeDataTypeWordOn) {
    for (const TDataType type :
         {0x408u, 0x508u, 0x808u, 0xCu, 0x10Au, 0x1u, 0x419u, 0x320u, 0x720u, 0x340u, 0x239u}) {
        SCOPED_TRACE(testing::Message() << "type " << type);
        const auto image = FakeImage::Planar(5, 3, 3, type);
        WriteContent(*image, RandomContent(5, 3, 3, type, type * 5 + 2), 5, 3, type);
        ASSERT_NO_FATAL_FAILURE(ExpectReductionLikeTheModel(image->Handle(), GetParam()));
        ExpectNoReport();
    }
}

TEST_P(StackReduction, TreatsTheOverlayBitAsPartOfTheValue) {
    const auto image = Stack<std::uint8_t>(2, 1, 0x408, {{3, 5}, {3, 7}});
    Handle results[2];
    ASSERT_EQ(GetParam().Create(image->Handle(), results[0].Out(), results[1].Out()), 1);
    EXPECT_EQ(PixelBytes(results[0].Get(), 0)[0], 3);
    EXPECT_TRUE(HasOverlay(results[0].Get()));
    EXPECT_TRUE(HasOverlay(results[1].Get()));
}

constexpr TDataType OddType = 0x18; ///< of three bytes; none of the ten

/// An image whose planes have a block and a type each; the blocks hold content of the type.
std::unique_ptr<FakeImage> OfTypes(const std::vector<TDataType> &types, std::uint32_t seed,
                                   std::vector<PlaneBytes> &blocks) {
    auto image = std::make_unique<FakeImage>(9, 4);
    blocks.clear();
    for (const TDataType type : types)
        blocks.push_back(RandomContent(9, 4, 1, type, seed++)[0]);
    for (std::size_t plane = 0; plane < types.size(); ++plane) {
        const auto bytes = static_cast<std::intptr_t>(PixelSize(types[plane]));
        image->AddPlane(
            blocks[plane].data(), types[plane], [=](std::intptr_t i) { return i * bytes; },
            [=](std::intptr_t j) { return j * 9 * bytes; });
    }
    return image;
}

TEST_P(StackReduction, ReadsPlanesOfOtherTypesAsTheTypeOfPlaneZero) {
    const std::vector<TDataType> mixtures[] = {
        {0x8, 0x108},      {0x108, 0x8, 0x408}, {0x220, 0x20, 0x120},       {0x20, 0x220},
        {0x8, 0x10, 0x40}, {0x10, 0x240, 32},   {0x120, 0x40, 0x240, 0x20}, {0x220, 0x240, 0x40, 0x20},
        {0x240, 0x140},    {0x140, 0x40},       {0x10, OddType, 0x10}};
    for (const auto &types : mixtures)
        for (std::uint32_t seed = 1; seed <= 10; ++seed) {
            SCOPED_TRACE(testing::Message() << testing::PrintToString(types) << ", seed " << seed);
            std::vector<PlaneBytes> blocks;
            const auto image = OfTypes(types, seed, blocks);
            ASSERT_NO_FATAL_FAILURE(ExpectReductionLikeTheModel(image->Handle(), GetParam()));
            ExpectNoReport();
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST_P(StackReduction, RefusesAPlaneThatIsNarrowerThanPlaneZero) {
    const std::vector<TDataType> mixtures[] = {{0x10, 0x8},        {0x20, 0x20, 0x10}, {0x240, 0x220},
                                               {0x40, 0x40, 0x20}, {0x110, 0x408},     {0x220, 0x108, 0x220},
                                               {0x20, OddType}};
    for (const auto &types : mixtures) {
        SCOPED_TRACE(testing::PrintToString(types));
        std::vector<PlaneBytes> blocks;
        const auto image = OfTypes(types, 3, blocks);
        ExpectFailure(image->Handle(), ErrNotPossible);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST_P(StackReduction, ReportsWhatIsNoImage) {
    ExpectFailure(nullptr, ErrNotAnImage);
    for (const auto &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        ExpectFailure(foreign.Get(), ErrNotAnImage);
        EXPECT_EQ(foreign.Count(), 1);
    }
    const auto image = FakeImage::Planar(2, 2, 2, 8);
    image->Fails.QueryThrows = true;
    ExpectFailure(image->Handle(), ErrNotAnImage);
    EXPECT_EQ(image->Count(), 1);
}

TEST_P(StackReduction, ReportsANullOutput) {
    const auto image = FakeImage::Planar(2, 2, 2, 8);
    EXPECT_EQ(GetParam().Create(image->Handle(), nullptr, &second), 0);
    ExpectOneReport(ErrParameter, GetParam().Name);
    EXPECT_EQ(GetParam().Create(image->Handle(), &first, nullptr), 0);
    ExpectOneReport(ErrParameter, GetParam().Name);
    EXPECT_EQ(GetParam().Create(nullptr, nullptr, nullptr), 0);
    ExpectOneReport(ErrNotAnImage, GetParam().Name);
    ExpectUntouched();
    EXPECT_EQ(image->Count(), 1);
}

TEST_P(StackReduction, RefusesPixelsThatAreNoneOfTheTenTypes) {
    for (const TDataType type : {0x0u, 0x100u, 0x18u, 0x118u, 0x28u, 0x48u, 0xFFu, 0x208u, 0x210u, 0x218u, 0x200u,
                                 0x80000008u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(testing::Message() << "type " << type);
        const auto image = FakeImage::Planar(2, 2, 2, type);
        ExpectFailure(image->Handle(), ErrDataType);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST_P(StackReduction, OfAnImageWithoutPlanesHasNoDataType) {
    FakeImage image(2, 2);
    ExpectFailure(image.Handle(), ErrDataType);
    EXPECT_EQ(image.Count(), 1);
}

TEST_P(StackReduction, OfAnImageWithoutPixelsGivesImagesWithoutPixels) {
    for (const auto &[width, height] : {std::pair<std::intptr_t, std::intptr_t>{0, 3}, {3, 0}, {0, 0}})
        for (const TDataType type : {0x8u, 0x110u, 0x240u}) {
            const auto image = FakeImage::Planar(width, height, 2, type);
            Handle results[2];
            EXPECT_EQ(GetParam().Create(image->Handle(), results[0].Out(), results[1].Out()), 1);
            ExpectNoReport();
            for (const Handle &result : results)
                EXPECT_EQ(SizeOf(result.Get()), (ImageSize{1, width, height}));
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST_P(StackReduction, FailsWhenAResultCanNotBeMade) {
    constexpr std::intptr_t wide = std::intptr_t{1} << 31;
    const auto shown = FakeImage::Planar(2, 2, 2, 8);
    for (const ImageSize size :
         {ImageSize{2, wide, 1}, ImageSize{2, 1, wide}, ImageSize{2, -1, 2}, ImageSize{2, 2, -1},
          ImageSize{2, Highest, Highest}, ImageSize{2, wide - 1, wide - 1}}) {
        SCOPED_TRACE(testing::PrintToString(size));
        ImageOfToldSize image(*shown, size);
        ExpectFailure(image.Handle(), ErrGeneral);
        EXPECT_EQ(image.Count(), 1);
    }
}

TEST_P(StackReduction, FailsWhenTheImageRefusesADataTypeOrATable) {
    const auto image = FakeImage::Planar(2, 2, 2, 8);
    image->Fails.DatatypeStatus = StatusBadPlane;
    ExpectFailure(image->Handle(), ErrGeneral);
    image->Fails.DatatypeStatus = 0;
    image->Fails.VPAStatus = StatusBadPlane;
    ExpectFailure(image->Handle(), ErrGeneral);
    EXPECT_EQ(image->Count(), 1);
    const auto one = FakeImage::Planar(2, 2, 1, 8);
    ImageOfToldSize more(*one, {2, 2, 2}); // plane 1 is refused
    ExpectFailure(more.Handle(), ErrGeneral);
    EXPECT_EQ(more.Count(), 1);
}

TEST_P(StackReduction, PassesOnWhatTheImageThrows) {
    const auto image = FakeImage::Planar(3, 2, 3, 0x10);
    ASSERT_NO_FATAL_FAILURE(ExpectThrowsOfEachOperationToPassOn(
        *image, [&] { return Create(image->Handle()); }, [&] { ExpectUntouched(); }));
    EXPECT_NE(first, UntouchedPointer());
    ReleaseObject(first);
    ReleaseObject(second);
}

} // namespace
