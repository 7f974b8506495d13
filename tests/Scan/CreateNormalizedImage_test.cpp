/* Stretching the values of planes: what each mode does to small planes, and every failure with all it leaves behind.
 */
#include "ImageCreation.h"
#include "Scan/MappingModel.h"
#include "ValueMapping.h"

namespace {

using namespace MappingModel;

constexpr const char *Name = "CreateNormalizedImage";
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NoNumber = std::numeric_limits<double>::quiet_NaN();

/// Normalises one plane of one row and gives the stored values.
template <class T>
std::vector<T> Normalized(const std::vector<T> &row, TDataType type, std::int32_t mode, double target1,
                          double target2) {
    const auto image = PlainImage(std::ssize(row), 1, type, {BytesOf(row)});
    Handle result;
    ClearReports();
    EXPECT_EQ(CreateNormalizedImage(image->Handle(), mode, target1, target2, result.Out()), 1);
    ExpectNoReport();
    EXPECT_EQ(PixelBytes(image->Handle(), 0), BytesOf(row)) << "the source is only read";
    EXPECT_EQ(image->Count(), 1);
    EXPECT_EQ(RefCount(result.Get()), 1u);
    EXPECT_EQ(TypeOf(result.Get(), 0), type);
    return ValuesOf<T>(PixelBytes(result.Get(), 0));
}
using Bytes = std::vector<std::uint8_t>;
using Words = std::vector<std::uint16_t>;
using Signed8 = std::vector<std::int8_t>;
using Floats = std::vector<float>;
using Doubles = std::vector<double>;

TEST(CreateNormalizedImageByRange, LeadsMinimumAndMaximumToTheTargets) {
    EXPECT_EQ(Normalized(Bytes{10, 20, 30}, 0x8, NormalizeMinimumMaximum, 0, 255), (Bytes{0, 128, 255}));
    EXPECT_EQ(Normalized(Words{1000, 1500, 3000}, 0x10, 1, 100, 500), (Words{100, 200, 500}));
    EXPECT_EQ(Normalized(Doubles{-1, 0, 3}, 0x240, 1, 0, 1), (Doubles{0, 0.25, 1}));
    EXPECT_EQ(Normalized(std::vector<std::int32_t>{-100, 0, 100}, 0x120, 1, 0, 2000),
              (std::vector<std::int32_t>{0, 1000, 2000}));
}

TEST(CreateNormalizedImageByRange, InvertsForATarget1AboveTarget2) {
    Bytes all(256), inverted(256);
    std::iota(all.begin(), all.end(), std::uint8_t{0});
    std::reverse_copy(all.begin(), all.end(), inverted.begin());
    EXPECT_EQ(Normalized(all, 0x8, 1, 255, 0), inverted);
    EXPECT_EQ(Normalized(Floats{1, 2, 5}, 0x220, 1, 4, 0), (Floats{4, 3, 0}));
}

TEST(CreateNormalizedImageByRange, LimitsTargetsToTheRangeOfTheType) {
    EXPECT_EQ(Normalized(Bytes{0, 1, 2}, 0x8, 1, -1e9, 1e300), (Bytes{0, 128, 255}));
    EXPECT_EQ(Normalized(Bytes{0, 1, 2}, 0x8, 1, -Infinity, Infinity), (Bytes{0, 128, 255}));
    EXPECT_EQ(Normalized(Bytes{5, 7}, 0x8, 1, 300, 400), (Bytes{253, 255})) << "both targets become 255, the gain 1";
    EXPECT_EQ(Normalized(Signed8{0, 10}, 0x108, 1, -1000, 1000), (Signed8{-127, 127}))
        << "a half is added to -128 too, before the cut toward zero";
    EXPECT_EQ(Normalized(Floats{0, 1}, 0x220, 1, 0, 1e300), (Floats{0, std::numeric_limits<float>::max()}));
}

TEST(CreateNormalizedImageByRange, MakesAConstantPlaneTarget2) {
    EXPECT_EQ(Normalized(Bytes{77, 77}, 0x8, 1, 20, 201), (Bytes{201, 201}));
    EXPECT_EQ(Normalized(Words{0, 0}, 0x10, 1, 20, 40000), (Words{40000, 40000}));
    EXPECT_EQ(Normalized(std::vector<std::int16_t>{-5}, 0x110, 1, 9, -30), (std::vector<std::int16_t>{-29}))
        << "-30 + 0.5 cut toward zero";
    EXPECT_EQ(Normalized(Floats{3.5f}, 0x220, 1, 9, -30.25), (Floats{-30.25f}));
}

TEST(CreateNormalizedImageByRange, KeepsTheSlopeForEqualTargets) {
    EXPECT_EQ(Normalized(Bytes{10, 20, 30}, 0x8, 1, 100, 100), (Bytes{80, 90, 100}));
    EXPECT_EQ(Normalized(Doubles{1, 2.5}, 0x240, 1, 7, 7), (Doubles{5.5, 7}));
}

TEST(CreateNormalizedImageByRange, RoundsNegativeValuesTowardZero) {
    EXPECT_EQ(Normalized(Signed8{-10, -9, -8, 10}, 0x108, 1, -10, 10), (Signed8{-9, -8, -7, 10}));
    EXPECT_EQ(Normalized(Floats{-10.75f, 10}, 0x220, 1, -10.75, 10), (Floats{-10.75f, 10})) << "no rounding";
}

TEST(CreateNormalizedImageByRange, LeavesFloatsThatAreNoNumberOutOfMinimumAndMaximum) {
    const auto row = Normalized(Doubles{NoNumber, 1, NoNumber, 3}, 0x240, 1, 10, 20);
    EXPECT_TRUE(std::isnan(row[0]) && std::isnan(row[2]));
    EXPECT_EQ(row[1], 10);
    EXPECT_EQ(row[3], 20);
}

TEST(CreateNormalizedImageByDeviation, LeadsMeanAndDeviationToTheTargets) {
    EXPECT_EQ(Normalized(Bytes{98, 102}, 0x8, NormalizeMeanDeviation, 50, 10), (Bytes{40, 60}));
    EXPECT_EQ(Normalized(Words{1000, 3000}, 0x10, 0, 500, 50), (Words{450, 550}));
    EXPECT_EQ(Normalized(Doubles{-1, 3}, 0x240, 0, 100, 5), (Doubles{95, 105}));
    EXPECT_EQ(Normalized(Floats{-1, 3}, 0x220, 0, -100, 5), (Floats{-105, -95}));
}

TEST(CreateNormalizedImageByDeviation, MakesAConstantUnsignedPlaneTarget1) {
    EXPECT_EQ(Normalized(Bytes{200, 200, 200}, 0x8, 0, 77, 10), (Bytes{77, 77, 77}));
    EXPECT_EQ(Normalized(Words{65535, 65535}, 0x10, 0, 1234, 10), (Words{1234, 1234}));
    EXPECT_EQ(Normalized(Doubles{4, 4}, 0x240, 0, 0.5, 10), (Doubles{0.5, 0.5}));
}

TEST(CreateNormalizedImageByDeviation, TakesTheMeanOfSignedPlanesOfOneAndTwoBytesTooHighByHalfTheRange) {
    EXPECT_EQ(Normalized(Signed8{5, 5}, 0x108, 0, 100, 10), (Signed8{-27, -27})) << "100 - 128 + 0.5, cut";
    EXPECT_EQ(Normalized(Signed8{3, 7}, 0x108, 0, 100, 1), (Signed8{35, 37}))
        << "98.5 and 100.5 less 64, and 0.5, cut";
    EXPECT_EQ(Normalized(std::vector<std::int16_t>{-1, -1}, 0x110, 0, 100, 10),
              (std::vector<std::int16_t>{-32667, -32667}));
    EXPECT_EQ(Normalized(std::vector<std::int32_t>{-3, -3}, 0x120, 0, 100, 10), (std::vector<std::int32_t>{100, 100}))
        << "wider planes have no such shift";
}

TEST(CreateNormalizedImageByDeviation, KeepsTheSlopeForATargetDeviationOfZero) {
    EXPECT_EQ(Normalized(Bytes{90, 110}, 0x8, 0, 50, 0), (Bytes{40, 60}));
    EXPECT_EQ(Normalized(Bytes{90, 110}, 0x8, 0, 50, -7), (Bytes{40, 60})) << "limited to 0 first";
}

TEST(CreateNormalizedImageByDeviation, LimitsTheTargetDeviationToTheUpperLimitSquared) {
    // A gain that is not limited would be so great that the mean itself is lost.
    EXPECT_EQ(Normalized(Bytes{100, 102, 101}, 0x8, 0, 128, 1e300), (Bytes{0, 255, 128}));
    EXPECT_EQ(Normalized(Bytes{100, 102}, 0x8, 0, 1000, 1), (Bytes{254, 255})) << "the mean is limited to 255";
}

TEST(CreateNormalizedImageByDeviation, WrapsSquaresOfSigned32BitPixelsAndTakesThemAsUnsigned) {
    // 65536 squared is 0: the mean square is 0, x is negative, the deviation 0 and the gain 1.
    EXPECT_EQ(Normalized(std::vector<std::int32_t>{0, 65536}, 0x120, 0, 40000, 5),
              (std::vector<std::int32_t>{7232, 72768}));
    // 65535 squared is 4294836225, above the signed range, and must not turn negative.
    EXPECT_EQ(Normalized(std::vector<std::int32_t>{-65535, 65535}, 0x120, 0, 100, 65535),
              (std::vector<std::int32_t>{-65434, 65635}))
        << "-65435 + 0.5 cut toward zero";
}

TEST(CreateNormalizedImageByDeviation, WrapsSquaresOfUnsigned32BitPixelsAndTakesThemAsSigned) {
    // 50000 squared is 2500000000, taken as -1794967296: the deviation is 0 and the gain 1.
    EXPECT_EQ(Normalized(std::vector<std::uint32_t>{0, 50000}, 0x20, 0, 30000, 5),
              (std::vector<std::uint32_t>{5000, 55000}));
    EXPECT_EQ(Normalized(std::vector<std::uint32_t>{0, 40000}, 0x20, 0, 30000, 5),
              (std::vector<std::uint32_t>{29995, 30005}));
}

TEST(CreateNormalizedImageByDeviation, DoesNotWrapSquaresOf64BitPixels) {
    EXPECT_EQ(Normalized(std::vector<std::int64_t>{0, 1LL << 33}, 0x140, 0, 1000, 5),
              (std::vector<std::int64_t>{995, 1005}));
    EXPECT_EQ(Normalized(std::vector<std::uint64_t>{0, 1ULL << 63}, 0x40, 0, 1000, 5),
              (std::vector<std::uint64_t>{995, 1005}));
}

TEST(CreateNormalizedImage, StoresWhatTheConversionGivesForTargetsThatAreNoNumber) {
    for (const std::int32_t mode : {0, 1}) {
        EXPECT_EQ(Normalized(Bytes{1, 2}, 0x8, mode, NoNumber, NoNumber), (Bytes{0, 0}));
        EXPECT_EQ(Normalized(Words{1, 2}, 0x10, mode, NoNumber, NoNumber), (Words{0, 0}));
        EXPECT_EQ(Normalized(std::vector<std::uint32_t>{1, 2}, 0x20, mode, NoNumber, NoNumber),
                  (std::vector<std::uint32_t>{0, 0}));
        constexpr std::int32_t lowest = std::numeric_limits<std::int32_t>::min();
        EXPECT_EQ(Normalized(std::vector<std::int32_t>{1, 2}, 0x120, mode, NoNumber, NoNumber),
                  (std::vector<std::int32_t>{lowest, lowest}));
        EXPECT_TRUE(std::isnan(Normalized(Doubles{1, 2}, 0x240, mode, NoNumber, NoNumber)[0]));
    }
}

TEST(CreateNormalizedImage, NormalizesEachPlaneByItsOwnStatisticsInItsOwnType) {
    const std::vector<TDataType> types = {0x8, 0x110, 0x220, 0x40};
    const auto image = MixedImage(2, 1, types,
                                  {BytesOf(Bytes{10, 20}), BytesOf(std::vector<std::int16_t>{-300, 300}),
                                   BytesOf(Floats{0, 8}), BytesOf(std::vector<std::uint64_t>{1000, 5000})});
    Handle result;
    ASSERT_EQ(CreateNormalizedImage(image->Handle(), 1, 1, 2, result.Out()), 1);
    ASSERT_EQ(SizeOf(result.Get()), (ImageSize{4, 2, 1}));
    ExpectPlane(result.Get(), 0, 0x8, BytesOf(Bytes{1, 2}));
    ExpectPlane(result.Get(), 1, 0x110, BytesOf(std::vector<std::int16_t>{1, 2}));
    ExpectPlane(result.Get(), 2, 0x220, BytesOf(Floats{1, 2}));
    ExpectPlane(result.Get(), 3, 0x40, BytesOf(std::vector<std::uint64_t>{1, 2}));
    EXPECT_EQ(RefCount(result.Get()), 1u);
}

TEST(CreateNormalizedImage, TakesIntegersOfFewerBitsAsThoseOfTheirBytes) {
    EXPECT_EQ(Normalized(Words{0, 4096}, 0xC, 1, 0, 1e6), (Words{0, 65535}));
    EXPECT_EQ(Normalized(Bytes{0, 8}, 0x4, 1, 0, 1e6), (Bytes{0, 255}));
}

TEST(CreateNormalizedImage, GivesAnOverlayImageForOne) {
    EXPECT_EQ(Normalized(Bytes{0, 8}, 0x408, 1, 0, 100), (Bytes{0, 100}));
}

TEST(CreateNormalizedImage, PassesTheCoordinateMapOn) {
    const auto image = PlainImage(2, 1, 0x8, {Bytes{1, 2}});
    image->Coordinates = {1.5, -2.5, {0.25, 3, -4, 5}};
    Handle result;
    ASSERT_EQ(CreateNormalizedImage(image->Handle(), 0, 1, 2, result.Out()), 1);
    TCoordinateMap map{};
    ImageInterface(result.Get())->GetCoordinateMap(&map);
    EXPECT_TRUE(SameMap(map, image->Coordinates));
}

/// Calls and expects 0 and an untouched output; the reports stay.
void ExpectRefusal(void *image, std::int32_t mode = 0) {
    ClearReports();
    void *result = UntouchedPointer();
    EXPECT_EQ(CreateNormalizedImage(image, mode, 1, 2, &result), 0);
    EXPECT_EQ(result, UntouchedPointer());
}

TEST(CreateNormalizedImageFailure, ReportsWhatIsNoImage) {
    ExpectRefusal(nullptr);
    ExpectOneReport(ErrNotAnImage, Name);
    for (const auto &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        ExpectRefusal(foreign.Get(), 2);
        ExpectOneReport(ErrNotAnImage, Name);
        EXPECT_EQ(foreign.Count(), 1);
    }
    EXPECT_EQ(CreateNormalizedImage(nullptr, 0, 1, 2, nullptr), 0);
    ExpectOneReport(ErrNotAnImage, Name);
}

TEST(CreateNormalizedImageFailure, ReportsANullResult) {
    const auto image = FakeImage::Planar(3, 2, 1, 0x8);
    ClearReports();
    EXPECT_EQ(CreateNormalizedImage(image->Handle(), 0, 1, 2, nullptr), 0);
    ExpectOneReport(ErrParameter, Name);
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateNormalizedImageFailure, ReportsModesOtherThanTheTwo) {
    for (const TDataType type : PixelTypes)
        for (const std::int32_t mode : {2, -1, 3, std::numeric_limits<std::int32_t>::min(), 256}) {
            const auto image = FakeImage::Planar(3, 2, 2, type);
            ExpectRefusal(image->Handle(), mode);
            ExpectOneReportWithText(ErrParameter, Name, "Unknown Normalization Mode specified");
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(CreateNormalizedImageFailure, ReportsPlanesOfNoneOfTheTenTypesBeforeAnythingElse) {
    for (const TDataType odd : {0x18u, 0x118u, 0x210u, 0x208u, 0x30u, 0x230u, 0x80u, 0x218u})
        for (const std::size_t position : {0u, 2u}) {
            std::vector<TDataType> types{0x8, 0x8, 0x8};
            std::vector<PlaneBytes> content(3, PlaneBytes(6));
            types[position] = odd;
            content[position].resize(6 * PixelSize(odd));
            const auto image = MixedImage(3, 2, types, content);
            SCOPED_TRACE(testing::Message() << "type " << odd << " at plane " << position);
            for (const std::int32_t mode : {0, 1, 2}) {
                ExpectRefusal(image->Handle(), mode);
                ExpectOneReport(ErrDataType, Name);
            }
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(CreateNormalizedImageFailure, ReportsAnImageThatRefusesAPlane) {
    const auto image = FakeImage::Planar(3, 2, 2, 0x10);
    image->Fails.VPAStatus = StatusBadPlane;
    ExpectRefusal(image->Handle());
    ExpectNewestReport(ErrGeneral, Name);
    image->Fails.VPAStatus = 0;
    image->Fails.DatatypeStatus = StatusBadPlane;
    ExpectRefusal(image->Handle());
    ExpectNewestReport(ErrGeneral, Name);
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateNormalizedImageFailure, LetsExceptionsOfTheImagePassAndGivesAllReferencesBack) {
    for (const TDataType type : {0x8u, 0x220u}) {
        const auto image = FakeImage::Planar(3, 2, 2, type);
        ExpectExceptionsToPass(*image, [&] {
            void *result = UntouchedPointer();
            const bool made = CreateNormalizedImage(image->Handle(), 1, 1, 2, &result) == 1;
            if (made)
                ReleaseObject(result);
            return made;
        });
    }
}

} // namespace
