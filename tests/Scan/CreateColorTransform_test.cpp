/* Linear combinations of planes: what rows of a matrix do to small planes, the reflection at the lower limit, and
 * every failure with all it leaves behind. */
#include "ColorTransforms.h"
#include "Scan/MappingModel.h"

namespace {

using namespace MappingModel;

constexpr const char *Name = "CreateColorTransform";
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NoNumber = std::numeric_limits<double>::quiet_NaN();
using Bytes = std::vector<std::uint8_t>;
using Words = std::vector<std::uint16_t>;
using Row = std::vector<double>;

/// One target plane made of some source pixels, each of a plane of its own and all of type T.
template <class T>
T Combined(TDataType type, const std::vector<T> &pixels, const Row &row, bool absolute = false) {
    std::vector<PlaneBytes> planes;
    for (const T pixel : pixels)
        planes.push_back(Flat(6, pixel));
    const auto image = PlainImage(3, 2, type, planes);
    Handle result;
    ClearReports();
    EXPECT_EQ(CreateColorTransform(image->Handle(), 1, absolute, row.data(), result.Out()), 1);
    ExpectNoReport();
    EXPECT_EQ(SizeOf(result.Get()), (ImageSize{1, 3, 2}));
    EXPECT_EQ(TypeOf(result.Get(), 0), type);
    EXPECT_EQ(RefCount(result.Get()), 1u);
    EXPECT_EQ(image->Count(), 1);
    return OneValueOf<T>(result.Get());
}
std::uint8_t OfBytes(const Bytes &pixels, const Row &row, bool absolute = false) {
    return Combined(0x8, pixels, row, absolute);
}

TEST(CreateColorTransform, MakesEachTargetPlaneOfOneRowOfTheMatrix) {
    const auto image = PlainImage(2, 1, 0x8, {Bytes{10, 20}, Bytes{1, 2}, Bytes{100, 200}});
    const double matrix[] = {0,   0,   1,   0,  //
                             2,   3,   0,   5,  //
                             0,   0,   0,   44, //
                             -1,  1,   0,   20, //
                             0.5, 0.5, 0.5, 0.25};
    Handle result;
    ASSERT_EQ(CreateColorTransform(image->Handle(), 5, 0, matrix, result.Out()), 1);
    ASSERT_EQ(SizeOf(result.Get()), (ImageSize{5, 2, 1}));
    EXPECT_EQ(PixelBytes(result.Get(), 0), (Bytes{100, 200}));
    EXPECT_EQ(PixelBytes(result.Get(), 1), (Bytes{28, 51}));
    EXPECT_EQ(PixelBytes(result.Get(), 2), (Bytes{44, 44}));
    EXPECT_EQ(PixelBytes(result.Get(), 3), (Bytes{11, 2}));
    EXPECT_EQ(PixelBytes(result.Get(), 4), (Bytes{56, 111}));
}

TEST(CreateColorTransform, ClampsSumsToTheRange) {
    EXPECT_EQ(OfBytes({100, 100, 100}, {1, 1, 1, 0}), 255);
    EXPECT_EQ(OfBytes({100, 50, 5}, {1, 1, 1, 0}), 155);
    EXPECT_EQ(OfBytes({100, 50, 5}, {-1, 0, 0, 0}), 0);
    EXPECT_EQ((Combined<std::int8_t>(0x108, {100, 100}, {1, 1, 0})), 127);
    EXPECT_EQ((Combined<std::int8_t>(0x108, {-100, -100}, {1, 1, 0})), -127) << "a half is added to the limit -128";
    EXPECT_EQ((Combined<std::uint16_t>(0x10, {50000}, {2, 0})), 65535);
    EXPECT_EQ((Combined<std::int16_t>(0x110, {-30000}, {2, 0})), -32767);
    EXPECT_EQ((Combined<std::uint32_t>(0x20, {4000000000u}, {2, 0})), 4294967295u);
    EXPECT_EQ((Combined<std::int32_t>(0x120, {-2000000000}, {2, 0})), -2147483647);
    EXPECT_EQ((Combined<std::int32_t>(0x120, {2000000000}, {2, 0})), 2147483647);
    EXPECT_EQ((Combined<float>(0x220, {3e38f}, {2, 0})), std::numeric_limits<float>::max());
    EXPECT_EQ((Combined<float>(0x220, {3e38f}, {-2, 0})), std::numeric_limits<float>::lowest());
    EXPECT_EQ((Combined<double>(0x240, {1.5e308}, {2, 0})), std::numeric_limits<double>::max());
    EXPECT_EQ((Combined<double>(0x240, {1.5e308}, {-2, 0})), std::numeric_limits<double>::lowest());
}

TEST(CreateColorTransform, StoresWhatTheConversionGivesAtTheUpperEndOf64Bits) {
    EXPECT_EQ((Combined<std::int64_t>(0x140, {0}, {1, Infinity})), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ((Combined<std::int64_t>(0x140, {0}, {1, -Infinity})), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ((Combined<std::uint64_t>(0x40, {0}, {1, Infinity})), std::uint64_t{1} << 63);
    EXPECT_EQ((Combined<std::uint64_t>(0x40, {std::uint64_t{3} << 62}, {1, 0})), std::uint64_t{3} << 62);
    EXPECT_EQ((Combined<std::int64_t>(0x140, {-(std::int64_t{1} << 62)}, {1, 0})), -(std::int64_t{1} << 62));
}

TEST(CreateColorTransform, RoundsByAddingAHalfAndCuttingTowardZero) {
    EXPECT_EQ(OfBytes({1}, {0.5, 0}), 1);
    EXPECT_EQ(OfBytes({1}, {0.4999, 0}), 0);
    EXPECT_EQ(OfBytes({3}, {0.5, 0}), 2);
    EXPECT_EQ((Combined<std::int8_t>(0x108, {-3}, {0.5, 0})), -1);
    EXPECT_EQ((Combined<std::int8_t>(0x108, {-10}, {1, 0})), -9) << "-9.5 cut";
    EXPECT_EQ((Combined<std::int16_t>(0x110, {-10}, {1, -0.5})), -10);
}

TEST(CreateColorTransform, YieldsTheMagnitudeOfUnsignedTypesForAbsolute) {
    EXPECT_EQ(OfBytes({100, 50, 5}, {-1, 0, 0, 0}, true), 100);
    EXPECT_EQ(OfBytes({100, 50, 5}, {-1, -1, -1, 0}, true), 155);
    EXPECT_EQ(OfBytes({100, 50, 5}, {1, -1, 0, 0}, true), 50);
    EXPECT_EQ(OfBytes({200, 100, 0}, {1, 1, 0, 0}, true), 255) << "above the range there is no reflection";
    EXPECT_EQ((Combined<std::uint16_t>(0x10, {50000}, {-1, 0}, true)), 50000);
    EXPECT_EQ((Combined<std::uint32_t>(0x20, {50000}, {-1, 0.25}, true)), 50000u);
}

TEST(CreateColorTransform, StoresTheLowBitsOfAReflectedValue) {
    EXPECT_EQ(OfBytes({100}, {-3, 0}, true), 44) << "300";
    EXPECT_EQ(OfBytes({100}, {-2.55, 0}, true), 255);
    EXPECT_EQ(OfBytes({100}, {-2.56, 0}, true), 0);
    EXPECT_EQ((Combined<std::uint16_t>(0x10, {50000}, {-2, 0}, true)), 100000 - 65536);
    EXPECT_EQ((Combined<std::uint32_t>(0x20, {4000000000u}, {-2, 0}, true)), 3705032704u) << "8000000000";
    EXPECT_EQ(OfBytes({100}, {-9999999, 0}, true), 999999900 % 256);
    EXPECT_EQ(OfBytes({100}, {-1e9, 0}, true), 0) << "beyond 32 bits";
    EXPECT_EQ((Combined<std::uint32_t>(0x20, {0}, {0, -1e300}, true)), 0u) << "beyond 64 bits";
}

TEST(CreateColorTransform, ReflectsSignedValuesAtTheirLowerLimit) {
    EXPECT_EQ((Combined<std::int8_t>(0x108, {-100}, {1.3, 0}, true)), -125) << "-130 becomes -126, -125.5 is cut";
    EXPECT_EQ((Combined<std::int8_t>(0x108, {-100}, {1, 0}, true)), -99);
    EXPECT_EQ((Combined<std::int8_t>(0x108, {-128}, {4, 0}, true)), 0) << "-512 becomes 256";
    EXPECT_EQ((Combined<std::int16_t>(0x110, {-30000}, {2, 0}, true)), -5535);
    EXPECT_EQ((Combined<std::int32_t>(0x120, {-2000000000}, {2, 0}, true)), -294967295);
    EXPECT_EQ((Combined<std::int32_t>(0x120, {-2000000000}, {1e9, 0}, true)),
              std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ((Combined<float>(0x220, {-3e38f}, {1e9, 0}, true)), std::numeric_limits<float>::infinity());
    EXPECT_TRUE(std::isnan(Combined<double>(0x240, {0}, {1, -Infinity}, true)));
}

TEST(CreateColorTransform, StoresWhatTheConversionGivesForWhatIsNoNumber) {
    for (const bool absolute : {false, true})
        for (const Row &row : {Row{NoNumber, 0}, Row{1, NoNumber}, Row{Infinity, -Infinity}}) {
            EXPECT_EQ(OfBytes({7}, row, absolute), 0);
            EXPECT_EQ((Combined<std::int8_t>(0x108, {7}, row, absolute)), 0);
            EXPECT_EQ((Combined<std::uint16_t>(0x10, {7}, row, absolute)), 0);
            EXPECT_EQ((Combined<std::int16_t>(0x110, {7}, row, absolute)), 0);
            EXPECT_EQ((Combined<std::uint32_t>(0x20, {7}, row, absolute)), 0u);
            EXPECT_EQ((Combined<std::int32_t>(0x120, {7}, row, absolute)), std::numeric_limits<std::int32_t>::min());
            EXPECT_EQ((Combined<std::int64_t>(0x140, {7}, row, absolute)), std::numeric_limits<std::int64_t>::min());
            EXPECT_EQ((Combined<std::uint64_t>(0x40, {7}, row, absolute)), std::uint64_t{1} << 63);
            EXPECT_TRUE(std::isnan(Combined<float>(0x220, {7}, row, absolute)));
            EXPECT_TRUE(std::isnan(Combined<double>(0x240, {7}, row, absolute)));
        }
    EXPECT_EQ(OfBytes({0}, {Infinity, 0}), 0) << "zero times infinity";
    EXPECT_EQ(OfBytes({1}, {Infinity, 0}), 255);
    EXPECT_EQ(OfBytes({1}, {-Infinity, 0}), 0);
}

TEST(CreateColorTransform, KeepsFloatResultsUnrounded) {
    EXPECT_EQ((Combined<float>(0x220, {0.25f, 0.5f}, {1, 1, 0.125})), 0.875f);
    EXPECT_EQ((Combined<double>(0x240, {0.1, 0.2}, {1, 1, 0})), 0.1 + 0.2);
    EXPECT_EQ((Combined<double>(0x240, {-0.3}, {1, 0})), -0.3);
    EXPECT_EQ((Combined<double>(0x240, {-0.3}, {1, 0}, true)), -0.3);
    EXPECT_EQ((Combined<float>(0x220, {0.1f}, {0.1, 0})), static_cast<float>(static_cast<double>(0.1f) * 0.1));
}

TEST(CreateColorTransform, AddsTheProductsToTheOffsetInPlaneOrder) {
    EXPECT_EQ((Combined<double>(0x240, {1, 1}, {1e17, -1e17, 1})), 0) << "1 + 1e17 loses the 1";
    EXPECT_EQ((Combined<double>(0x240, {1, 1, 1}, {1e17, -1e17, 1, 0})), 1);
    EXPECT_EQ((Combined<double>(0x240, {1, 1, 1}, {1, 1e17, -1e17, 0})), 0);
    EXPECT_EQ(OfBytes({1, 1}, {1e17, -1e17, 201}), 208) << "201 + 1e17 rounds to a multiple of 16";
}

TEST(CreateColorTransform, PassesTheCoordinateMapOn) {
    const auto image = PlainImage(2, 1, 0x8, {Bytes{1, 2}});
    image->Coordinates = {1.5, -2.5, {0.25, 3, -4, 5}};
    const double row[] = {1, 0};
    Handle result;
    ASSERT_EQ(CreateColorTransform(image->Handle(), 1, 0, row, result.Out()), 1);
    TCoordinateMap map{};
    ImageInterface(result.Get())->GetCoordinateMap(&map);
    EXPECT_TRUE(SameMap(map, image->Coordinates));
}

TEST(CreateColorTransform, TakesIntegersOfFewerBitsAsThoseOfTheirBytes) {
    EXPECT_EQ((Combined<std::uint16_t>(0xC, {4000}, {20, 0})), 65535);
    EXPECT_EQ((Combined<std::uint8_t>(0x408, {3}, {20, 0})), 60);
}

TEST(CreateColorTransform, ReadsWiderPlanesAsTheTypeOfPlane0) {
    const auto image =
        MixedImage(2, 1, {0x8, 0x10, 0x220}, {Bytes{1, 2}, BytesOf(Words{0x1234, 0x0107}), Flat(2, 1.0f)});
    const double row[] = {100, 1, 1, 0};
    Handle result;
    ASSERT_EQ(CreateColorTransform(image->Handle(), 1, 0, row, result.Out()), 1);
    ExpectPlane(result.Get(), 0, 0x8, Bytes{100 + 0x34, 200 + 0x07});
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateColorTransform, ReadsPlanesOfOtherTypesOfOneWidthAsTheTypeOfPlane0) {
    const auto image = MixedImage(1, 1, {0x108, 0x8}, {Bytes{255}, Bytes{200}});
    const double row[] = {0, 1, 10};
    Handle result;
    ASSERT_EQ(CreateColorTransform(image->Handle(), 1, 0, row, result.Out()), 1);
    EXPECT_EQ(OneValueOf<std::int8_t>(result.Get()), 10 - 56 + 1) << "-46 + 0.5 cut toward zero";
}

TEST(CreateLinearCombinationImage, IsTheColourTransformToOnePlane) {
    const auto image = PlainImage(2, 1, 0x8, {Bytes{100, 20}, Bytes{10, 200}});
    for (const bool absolute : {false, true}) {
        const double row[] = {1, -1, 0};
        Handle result;
        ClearReports();
        ASSERT_EQ(CreateLinearCombinationImage(image->Handle(), absolute, row, result.Out()), 1);
        ExpectNoReport();
        ASSERT_EQ(SizeOf(result.Get()).Planes, 1);
        EXPECT_EQ(PixelBytes(result.Get(), 0), (Bytes{90, static_cast<std::uint8_t>(absolute ? 180 : 0)}));
        EXPECT_EQ(RefCount(result.Get()), 1u);
    }
    EXPECT_EQ(image->Count(), 1);
}

constexpr double Numbers[] = {1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1};

/// Calls and expects 0 and an untouched output; the reports stay.
void ExpectRefusal(void *image, std::int64_t targetPlanes = 1, const double *matrix = Numbers) {
    ClearReports();
    void *result = UntouchedPointer();
    EXPECT_EQ(CreateColorTransform(image, targetPlanes, 0, matrix, &result), 0);
    EXPECT_EQ(result, UntouchedPointer());
}

TEST(CreateColorTransformFailure, ReportsWhatIsNoImage) {
    ExpectRefusal(nullptr);
    ExpectOneReport(ErrNotAnImage, Name);
    for (const auto &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        ExpectRefusal(foreign.Get(), 1048577, nullptr);
        ExpectOneReport(ErrNotAnImage, Name);
        EXPECT_EQ(foreign.Count(), 1);
    }
    EXPECT_EQ(CreateLinearCombinationImage(nullptr, 0, nullptr, nullptr), 0);
    ExpectOneReport(ErrNotAnImage, Name);
}

TEST(CreateColorTransformFailure, ReportsANullResult) {
    const auto image = FakeImage::Planar(3, 2, 1, 0x8);
    ClearReports();
    EXPECT_EQ(CreateColorTransform(image->Handle(), 1, 0, Numbers, nullptr), 0);
    ExpectOneReport(ErrParameter, Name);
    EXPECT_EQ(CreateLinearCombinationImage(image->Handle(), 0, Numbers, nullptr), 0);
    ExpectOneReport(ErrParameter, Name);
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateColorTransformFailure, Reports1048577TargetPlanes) {
    const auto image = FakeImage::Planar(3, 2, 1, 0x8);
    for (const std::int64_t planes : {std::int64_t{1048577}, std::numeric_limits<std::int64_t>::max()}) {
        ExpectRefusal(image->Handle(), planes, nullptr);
        ExpectOneReportWithText(ErrParameter, Name, "Invalid Target Dimension");
    }
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateColorTransformFailure, ReportsANullMatrixAlsoFor1048576TargetPlanesWhichAreNotTooMany) {
    const auto image = FakeImage::Planar(3, 2, 1, 0x18);
    for (const std::int64_t planes : {1, 1048576}) {
        ExpectRefusal(image->Handle(), planes, nullptr);
        ExpectOneReportWithText(ErrParameter, Name, "Invalid input Array");
    }
    ExpectRefusal(image->Handle(), 1048576);
    ExpectOneReport(ErrDataType, Name);
    void *result = UntouchedPointer();
    EXPECT_EQ(CreateLinearCombinationImage(image->Handle(), 0, nullptr, &result), 0);
    EXPECT_EQ(result, UntouchedPointer());
    ExpectOneReportWithText(ErrParameter, Name, "Invalid input Array");
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateColorTransformFailure, ReportsPixelsOfNoneOfTheTenTypes) {
    for (const TDataType type : {0x18u, 0x118u, 0x210u, 0x208u, 0x30u, 0x80u}) {
        const auto image = FakeImage::Planar(3, 2, 2, type);
        ExpectRefusal(image->Handle());
        ExpectOneReport(ErrDataType, Name);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(CreateColorTransformFailure, ReportsAPlaneNarrowerThanPlane0) {
    for (const std::size_t position : {1u, 2u}) {
        std::vector<TDataType> types(3, 0x10);
        types[position] = 0x8;
        const auto image = MixedImage(3, 2, types, std::vector<PlaneBytes>(3, PlaneBytes(12)));
        ExpectRefusal(image->Handle());
        ExpectOneReport(ErrNotPossible, Name);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(CreateColorTransformFailure, ReportsThatAResultOfNoPlanesCannotBeMade) {
    const auto image = FakeImage::Planar(3, 2, 1, 0x8);
    for (const std::int64_t planes : {std::int64_t{0}, std::int64_t{-1}, std::numeric_limits<std::int64_t>::min()}) {
        ExpectRefusal(image->Handle(), planes);
        ExpectOneReport(ErrGeneral, Name);
    }
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateColorTransformFailure, ReportsAnImageThatRefusesAPlane) {
    const auto image = FakeImage::Planar(3, 2, 2, 0x10);
    image->Fails.VPAStatus = StatusBadPlane;
    ExpectRefusal(image->Handle());
    ExpectOneReport(ErrGeneral, Name);
    image->Fails.VPAStatus = 0;
    image->Fails.DatatypeStatus = StatusBadPlane;
    ExpectRefusal(image->Handle());
    ExpectOneReport(ErrGeneral, Name);
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateColorTransformFailure, ReportsAnImageWithoutPlanesAsOneWithoutADataType) {
    FakeImage image(3, 2);
    ExpectRefusal(image.Handle());
    ExpectOneReport(ErrDataType, Name);
    EXPECT_EQ(image.Count(), 1);
}

TEST(CreateColorTransformFailure, LetsExceptionsOfTheImagePassAndGivesAllReferencesBack) {
    const auto image = FakeImage::Planar(3, 2, 2, 0x8);
    ExpectExceptionsToPass(*image, [&] {
        void *result = UntouchedPointer();
        const bool made = CreateColorTransform(image->Handle(), 2, 0, Numbers, &result) == 1;
        if (made)
            ReleaseObject(result);
        return made;
    });
}

} // namespace
