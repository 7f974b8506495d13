/* Scaling 16-bit images down to 8 bits: the scale of one plane and of all, every value for every maximum, all
 * layouts, and every failure with all it leaves behind. */
#include "ImageCopies.h"
#include "ImageCreation.h"
#include "Scan/MappingModel.h"
#include "ValueMapping.h"

namespace {

using namespace MappingModel;

constexpr const char *Name = "MapTo8Bit";
using Words = std::vector<std::uint16_t>;
using Bytes = std::vector<std::uint8_t>;

Bytes Mapped(const Words &values, double maximum) {
    Bytes mapped;
    for (const std::uint16_t value : values)
        mapped.push_back(CutTo<std::uint8_t>(value * 255.0 / maximum + 0.0));
    return mapped;
}
double MaximumOf(const Words &values) {
    return *std::max_element(values.begin(), values.end());
}

/// Maps and expects 8-bit planes of the same size, and all references back.
Handle MappedImage(FakeImage &image, unsigned char commonScale) {
    Handle result;
    ClearReports();
    EXPECT_EQ(MapTo8Bit(image.Handle(), commonScale, result.Out()), 1);
    ExpectNoReport();
    EXPECT_EQ(SizeOf(result.Get()), SizeOf(image.Handle()));
    for (std::intptr_t plane = 0; plane < SizeOf(image.Handle()).Planes; ++plane)
        EXPECT_EQ(TypeOf(result.Get(), plane), 0x8u);
    EXPECT_EQ(RefCount(result.Get()), 1u);
    EXPECT_EQ(image.Count(), 1);
    return result;
}

TEST(MapTo8Bit, ScalesEachPlaneToItsOwnMaximum) {
    const auto image = PlainImage(
        3, 1, 0x10, {BytesOf(Words{0, 500, 1000}), BytesOf(Words{2000, 1000, 1}), BytesOf(Words{7, 7, 7})});
    const Handle result = MappedImage(*image, 0);
    EXPECT_EQ(PixelBytes(result.Get(), 0), (Bytes{0, 127, 255}));
    EXPECT_EQ(PixelBytes(result.Get(), 1), (Bytes{255, 127, 0}));
    EXPECT_EQ(PixelBytes(result.Get(), 2), (Bytes{255, 255, 255}));
}

TEST(MapTo8Bit, ScalesAllPlanesToTheCommonMaximum) {
    const auto image = PlainImage(2, 1, 0x10, {BytesOf(Words{0, 1000}), BytesOf(Words{2000, 1000})});
    for (const unsigned char common : std::initializer_list<unsigned char>{1, 2, 255}) {
        const Handle result = MappedImage(*image, common);
        EXPECT_EQ(PixelBytes(result.Get(), 0), (Bytes{0, 127}));
        EXPECT_EQ(PixelBytes(result.Get(), 1), (Bytes{255, 127}));
    }
}

TEST(MapTo8Bit, DoesNotShiftTheLowestValueToZero) {
    const auto image = PlainImage(2, 1, 0x10, {BytesOf(Words{900, 1000})});
    EXPECT_EQ(PixelBytes(MappedImage(*image, 0).Get(), 0), (Bytes{229, 255}));
}

TEST(MapTo8Bit, StoresZeroForAPlaneOfMaximumZero) {
    const auto image = PlainImage(40, 3, 0x10, {Flat<std::uint16_t>(120, 0), Flat<std::uint16_t>(120, 9)});
    EXPECT_EQ(PixelBytes(MappedImage(*image, 0).Get(), 0), Bytes(120, 0));
    EXPECT_EQ(PixelBytes(MappedImage(*image, 0).Get(), 1), Bytes(120, 255));
    const auto black = PlainImage(40, 3, 0x10, {Flat<std::uint16_t>(120, 0)});
    EXPECT_EQ(PixelBytes(MappedImage(*black, 1).Get(), 0), Bytes(120, 0));
}

TEST(MapTo8Bit, TakesPlanesOf9To16BitsAsThoseOfTwoBytes) {
    const auto image = PlainImage(2, 1, 0xC, {BytesOf(Words{2048, 4096})});
    EXPECT_EQ(PixelBytes(MappedImage(*image, 0).Get(), 0), (Bytes{127, 255}));
}

TEST(MapTo8Bit, PassesTheCoordinateMapOn) {
    const auto image = FakeImage::Planar(2, 1, 1, 0x10);
    image->Coordinates = {1.5, -2.5, {0.25, 3, -4, 5}};
    const Handle result = MappedImage(*image, 0);
    TCoordinateMap map{};
    ImageInterface(result.Get())->GetCoordinateMap(&map);
    EXPECT_TRUE(SameMap(map, image->Coordinates));
}

TEST(MapTo8Bit, OfAnImageOf8BitPlanesIsItsDuplicate) {
    for (const TDataType type : {0x8u, 0x108u, 0x408u, 0x208u})
        for (const bool common : {false, true}) {
            const auto image = PlainImage(33, 2, type, RandomPlanes(66, 3, 0x8, type, Content::Wild));
            image->Coordinates = {1.5, -2.5, {0.25, 3, -4, 5}};
            Handle result, duplicate;
            ASSERT_EQ(MapTo8Bit(image->Handle(), common, result.Out()), 1);
            ASSERT_EQ(CreateDuplicateImage(image->Handle(), duplicate.Out()), 1);
            for (std::intptr_t plane = 0; plane < 3; ++plane) {
                EXPECT_EQ(TypeOf(result.Get(), plane), type);
                EXPECT_EQ(PixelBytes(result.Get(), plane), PixelBytes(image->Handle(), plane));
                EXPECT_EQ(TypeOf(result.Get(), plane), TypeOf(duplicate.Get(), plane));
            }
            TCoordinateMap map{};
            ImageInterface(result.Get())->GetCoordinateMap(&map);
            EXPECT_TRUE(SameMap(map, image->Coordinates));
            EXPECT_EQ(RefCount(result.Get()), 1u);
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(MapTo8Bit, SucceedsForPlanesOfAnyOtherType) {
    for (const TDataType type : {0x110u, 0x20u, 0x120u, 0x40u, 0x140u, 0x220u, 0x240u, 0x18u, 0x210u})
        for (const bool common : {false, true})
            MappedImage(*PlainImage(5, 3, type, std::vector<PlaneBytes>(2, PlaneBytes(15 * PixelSize(type), 3))),
                        common);
}

/// Maps a plane of 500 and 1000 on a common scale beside a plane of one other value.
template <class T>
Bytes MappedBeside(TDataType type, T other) {
    const auto image = MixedImage(2, 1, {0x10, type}, {BytesOf(Words{500, 1000}), Flat<T>(2, other)});
    return PixelBytes(MappedImage(*image, 1).Get(), 0);
}
Bytes MappedOf(double maximum) {
    return Mapped({500, 1000}, maximum);
}

TEST(MapTo8Bit, CountsTheMagnitudesOfPlanesOfOtherTypesInTheCommonScale) {
    EXPECT_EQ(MappedBeside<std::uint8_t>(0x8, 255), MappedOf(1000)) << "less than 1000";
    EXPECT_EQ(MappedBeside<std::int16_t>(0x110, -2000), MappedOf(2000));
    EXPECT_EQ(MappedBeside<std::int16_t>(0x110, -32768), MappedOf(32768));
    EXPECT_EQ(MappedBeside<std::int32_t>(0x120, -3000), MappedOf(3000));
    EXPECT_EQ(MappedBeside<std::uint32_t>(0x20, 4000), MappedOf(4000));
    EXPECT_EQ(MappedBeside<std::int64_t>(0x140, -5000), MappedOf(5000));
    EXPECT_EQ(MappedBeside<std::uint64_t>(0x40, 6000), MappedOf(6000));
    EXPECT_EQ(MappedBeside<float>(0x220, -7000.75f), MappedOf(7000)) << "cut to an integer first";
    EXPECT_EQ(MappedBeside<double>(0x240, 1000.999), MappedOf(1000)) << "cut to an integer first";
}

TEST(MapTo8Bit, LimitsTheCommonScaleTo16Bits) {
    using std::numeric_limits;
    EXPECT_EQ(MappedBeside<std::uint32_t>(0x20, 65536), MappedOf(65535));
    EXPECT_EQ(MappedBeside<std::int32_t>(0x120, -100000), MappedOf(65535));
    EXPECT_EQ(MappedBeside<std::int32_t>(0x120, numeric_limits<std::int32_t>::max()), MappedOf(65535));
    EXPECT_EQ(MappedBeside<std::uint64_t>(0x40, numeric_limits<std::uint64_t>::max()), MappedOf(65535));
    EXPECT_EQ(MappedBeside<std::int64_t>(0x140, numeric_limits<std::int64_t>::max()), MappedOf(65535));
    EXPECT_EQ(MappedBeside<float>(0x220, 1e6f), MappedOf(65535));
}

TEST(MapTo8Bit, TakesTheLowestIntegerForAMagnitudeOfHalfTheRange) {
    using std::numeric_limits;
    EXPECT_EQ(MappedBeside<std::int32_t>(0x120, numeric_limits<std::int32_t>::min()), MappedOf(65535));
    EXPECT_EQ(MappedBeside<std::int64_t>(0x140, numeric_limits<std::int64_t>::min()), MappedOf(65535));
}

TEST(MapTo8Bit, SetsThe16BitPlanesOfAMixedImageOnly) {
    const auto image = MixedImage(2, 1, {0x8, 0x10, 0x220, 0x10},
                                  {Bytes{1, 2}, BytesOf(Words{10, 20}), Flat(2, 500000.0f), BytesOf(Words{30, 40})});
    const Handle own = MappedImage(*image, 0);
    EXPECT_EQ(PixelBytes(own.Get(), 1), (Bytes{127, 255}));
    EXPECT_EQ(PixelBytes(own.Get(), 3), (Bytes{191, 255}));
    const Handle common = MappedImage(*image, 1);
    EXPECT_EQ(PixelBytes(common.Get(), 1), (Bytes{0, 0}));
}

TEST(MapTo8Bit, LeavesPlanesOfNoneOfTheTenTypesOutOfTheCommonScale) {
    const auto image = MixedImage(2, 1, {0x10, 0x18}, {BytesOf(Words{10, 20}), PlaneBytes(6, 255)});
    EXPECT_EQ(PixelBytes(MappedImage(*image, 1).Get(), 0), (Bytes{127, 255}));
    EXPECT_EQ(PixelBytes(MappedImage(*image, 0).Get(), 0), (Bytes{127, 255}));
}

/// Expects every plane mapped to its own maximum, then to the common one.
void ExpectMapped(void *image, const std::vector<PlaneBytes> &content) {
    double common = 0;
    for (const auto &plane : content)
        common = std::max(common, MaximumOf(ValuesOf<std::uint16_t>(plane)));
    for (const bool commonScale : {false, true}) {
        SCOPED_TRACE(testing::Message() << "common scale " << commonScale);
        Handle result;
        ASSERT_EQ(MapTo8Bit(image, commonScale, result.Out()), 1);
        ASSERT_EQ(SizeOf(result.Get()), SizeOf(image));
        for (std::size_t plane = 0; plane < content.size(); ++plane) {
            const auto values = ValuesOf<std::uint16_t>(content[plane]);
            ASSERT_NO_FATAL_FAILURE(ExpectPlane(result.Get(), static_cast<std::intptr_t>(plane), 0x8,
                                                Mapped(values, commonScale ? common : MaximumOf(values))));
        }
    }
    ASSERT_EQ(RefCount(image), 1u);
}

TEST(MapTo8BitAtRandom, EqualsTheModelForEveryLayout) {
    std::uint64_t seed = 0;
    for (const Content kind : {Content::Tame, Content::Wild})
        for (const auto &[width, height] : {std::pair{1, 1}, {1, 37}, {37, 1}, {7, 5}, {257, 3}, {33, 17}})
            for (std::intptr_t planes = 1; planes <= 6; ++planes) {
                const auto content = RandomPlanes(width * height, planes, 0x10, ++seed, kind);
                for (const auto &image : LayoutsOf(content, width, height, 0x10)) {
                    SCOPED_TRACE(testing::Message()
                                 << image.Name << ", " << planes << " planes of " << width << " x " << height);
                    ASSERT_NO_FATAL_FAILURE(ExpectMapped(image.Get(), image.Content));
                }
            }
}

TEST(MapTo8BitAtRandom, EqualsTheModelForEveryWidth) {
    for (const std::intptr_t width : Widths)
        for (std::intptr_t planes = 1; planes <= 3; ++planes)
            for (const auto &image :
                 LayoutsOf(RandomPlanes(width, planes, 0x10, static_cast<std::uint64_t>(width), Content::Wild), width,
                           1, 0x10)) {
                SCOPED_TRACE(testing::Message() << image.Name << ", " << planes << " planes of width " << width);
                ASSERT_NO_FATAL_FAILURE(ExpectMapped(image.Get(), image.Content));
            }
}

TEST(MapTo8BitAtRandom, ReadsNothingOutsideThePixels) {
    for (const std::intptr_t width : {1, 5, 16, 33, 67, 130})
        for (const auto fence : {FencedBlock::Fence::Behind, FencedBlock::Fence::Before}) {
            const auto content = RandomPlanes(width * 3, 1, 0x10, 4, Content::Wild);
            const FencedBlock block(content[0].size(), fence);
            std::copy(content[0].begin(), content[0].end(), block.Data());
            Handle image;
            ASSERT_EQ(CreateImageFromPointer(block.Data(), content[0].size(), width, 3, 1, 0x10, 2, 2 * width, 0,
                                             nullptr, nullptr, nullptr, image.Out()),
                      0);
            ASSERT_NO_FATAL_FAILURE(ExpectMapped(image.Get(), content));
        }
}

/// All maxima of one remainder modulo 4.
class MapTo8BitMaxima : public testing::TestWithParam<int> {};

TEST_P(MapTo8BitMaxima, CutAtTheEdgesOfAllGreyValues) {
    const auto image = FakeImage::Planar(513, 1, 1, 0x10);
    Words values(513);
    for (int maximum = GetParam(); maximum <= 65535; maximum += 4) {
        for (int grey = 0; grey < 256; ++grey) { // the first value that reaches a grey value, and the one below it
            const int first = (grey * maximum + 254) / 255;
            values[static_cast<std::size_t>(2 * grey)] = static_cast<std::uint16_t>(first);
            values[static_cast<std::size_t>(2 * grey + 1)] = static_cast<std::uint16_t>(std::max(first - 1, 0));
        }
        values[512] = static_cast<std::uint16_t>(maximum);
        std::memcpy(image->Pixels.data(), values.data(), image->Pixels.size());
        Handle result;
        ASSERT_EQ(MapTo8Bit(image->Handle(), 0, result.Out()), 1);
        const auto mapped = Mapped(values, maximum);
        ASSERT_EQ(std::memcmp(AccessOf(result.Get(), 0).At(0, 0), mapped.data(), mapped.size()), 0)
            << "maximum " << maximum;
    }
}
INSTANTIATE_TEST_SUITE_P(Quarters, MapTo8BitMaxima, testing::Values(1, 2, 3, 4));

TEST(MapTo8BitMaxima, MapAllValuesUpToThem) {
    for (const int maximum : {1, 2, 254, 255, 256, 1000, 4095, 32767, 32768, 43690, 65279, 65280, 65534, 65535}) {
        Words values(static_cast<std::size_t>(maximum) + 1);
        std::iota(values.begin(), values.end(), std::uint16_t{0});
        const auto image = PlainImage(maximum + 1, 1, 0x10, {BytesOf(values)});
        ASSERT_NO_FATAL_FAILURE(ExpectMapped(image->Handle(), {BytesOf(values)}));
    }
}

/// Calls and expects 0 and an untouched output; the reports stay.
void ExpectRefusal(void *image, unsigned char commonScale = 0) {
    ClearReports();
    void *result = UntouchedPointer();
    EXPECT_EQ(MapTo8Bit(image, commonScale, &result), 0);
    EXPECT_EQ(result, UntouchedPointer());
}

TEST(MapTo8BitFailure, ReportsWhatIsNoImage) {
    ExpectRefusal(nullptr);
    ExpectOneReport(ErrNotAnImage, Name);
    for (const auto &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        ExpectRefusal(foreign.Get(), 1);
        ExpectOneReport(ErrNotAnImage, Name);
        EXPECT_EQ(foreign.Count(), 1);
    }
    EXPECT_EQ(MapTo8Bit(nullptr, 0, nullptr), 0);
    ExpectOneReport(ErrNotAnImage, Name);
}

TEST(MapTo8BitFailure, ReportsANullResult) {
    for (const TDataType type : {0x8u, 0x10u}) {
        const auto image = FakeImage::Planar(3, 2, 1, type);
        ClearReports();
        EXPECT_EQ(MapTo8Bit(image->Handle(), 0, nullptr), 0);
        ExpectOneReport(ErrParameter, Name);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(MapTo8BitFailure, ReportsThatAnImageWithoutPixelsHasNoTarget) {
    for (const std::intptr_t planes : {1, 3}) {
        const auto image = FakeImage::Planar(0, 4, planes, 0x10);
        ExpectRefusal(image->Handle());
        ExpectOneReport(ErrGeneral, Name);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(MapTo8BitFailure, ReportsAnImageThatRefusesItsPixels) {
    const auto image = FakeImage::Planar(3, 2, 2, 0x10);
    image->Fails.VPAStatus = StatusBadPlane;
    for (const bool common : {false, true}) {
        ExpectRefusal(image->Handle(), common);
        ExpectNewestReport(ErrGeneral, Name);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(MapTo8BitFailure, LetsExceptionsOfTheImagePassAndGivesAllReferencesBack) {
    for (const bool common : {false, true}) {
        const auto image = FakeImage::Planar(3, 2, 2, 0x10);
        ExpectExceptionsToPass(*image, [&] {
            void *result = UntouchedPointer();
            const bool made = MapTo8Bit(image->Handle(), common, &result) == 1;
            if (made)
                ReleaseObject(result);
            return made;
        });
    }
}

} // namespace
