// Planes left out: which ones stay, what they share, and every position and count that can be asked for.
#include "Image/MapModel.h"
#include "ImageCreation.h"
#include "ImageQueries.h"

namespace {

using namespace TestSupport;

constexpr unsigned char NotAndShared[] = {0, 1};

std::unique_ptr<FakeImage> PlanesOf16Bits(std::intptr_t planes) {
    auto image = FakeImage::Planar(3, 2, planes, 0x10);
    WriteContent(*image, RandomContent(3, 2, planes, 0x10, 20), 3, 2, 0x10);
    image->Coordinates = SkewedMap;
    return image;
}

/// The plane numbers in front of position, and those from position + count on; nothing when one does not exist.
std::optional<std::vector<std::intptr_t>> Remaining(std::intptr_t planes, std::intptr_t position,
                                                    std::intptr_t count) {
    const std::intptr_t front = std::min(planes, position);
    std::vector<std::intptr_t> numbers;
    for (std::intptr_t plane = 0; plane < front; ++plane)
        numbers.push_back(plane);
    for (std::intptr_t plane = front + count; plane < planes; ++plane) {
        if (plane < 0)
            return std::nullopt;
        numbers.push_back(plane);
    }
    return numbers;
}

void ExpectRemaining(FakeImage &image, const std::vector<std::intptr_t> &expected, std::intptr_t position,
                     std::intptr_t count, unsigned char share) {
    ClearReports();
    Handle list;
    ASSERT_TRUE(CreateImageDeleteList(image.Handle(), position, count, share, list.Out()));
    ExpectNoReport();
    ASSERT_EQ(SizeOf(list.Get()), (ImageSize{std::ssize(expected), 3, 2}));
    EXPECT_TRUE(SameMap(MapOf(list.Get()), SkewedMap));
    EXPECT_EQ(RefCount(list.Get()), 1u);
    EXPECT_EQ(image.Count(), share != 0 ? 1 + std::ssize(expected) : 1);
    for (std::intptr_t i = 0; i < std::ssize(expected); ++i) {
        const std::intptr_t plane = expected[static_cast<std::size_t>(i)];
        EXPECT_EQ(PixelBytes(list.Get(), i), PixelBytes(image.Handle(), plane));
        EXPECT_EQ(AccessOf(list.Get(), i).Base == AccessOf(image.Handle(), plane).Base, share != 0);
    }
    list.Reset();
    EXPECT_EQ(image.Count(), 1);
}

} // namespace

TEST(CreateImageDeleteList, LeavesOutTheThirdOfFourPlanes) {
    const auto image = PlanesOf16Bits(4);
    for (const unsigned char share : NotAndShared)
        ExpectRemaining(*image, {0, 1, 3}, 2, 1, share);
}

TEST(CreateImageDeleteList, LeavesOutUpToTheEndWhenTheCountGoesBeyond) {
    const auto image = PlanesOf16Bits(4);
    for (const unsigned char share : NotAndShared)
        for (const std::intptr_t count :
             {std::intptr_t{3}, std::intptr_t{4}, std::intptr_t{1} << 32, Highest - 1, Highest})
            ExpectRemaining(*image, {0}, 1, count, share);
}

TEST(CreateImageDeleteList, LeavesNothingOutFromAPositionBehindTheLast) {
    const auto image = PlanesOf16Bits(4);
    for (const unsigned char share : NotAndShared)
        for (const std::intptr_t position : {std::intptr_t{4}, std::intptr_t{5}, Highest})
            for (const std::intptr_t count : {std::intptr_t{0}, std::intptr_t{1}, Highest})
                ExpectRemaining(*image, {0, 1, 2, 3}, position, count, share);
}

TEST(CreateImageDeleteList, OfAllPlanesIsAnImageWithoutPlanes) {
    const auto image = PlanesOf16Bits(4);
    for (const unsigned char share : NotAndShared)
        ExpectRemaining(*image, {}, 0, 4, share);
}

// Required: neither number is checked. What the two runs of planes then are decides; they may meet a plane twice.
TEST(CreateImageDeleteList, OfAnyPositionAndCountKeepsTheTwoRunsOfPlanes) {
    for (const std::intptr_t planes : {0, 1, 3, 4}) {
        const auto image = PlanesOf16Bits(planes);
        for (std::intptr_t position = -3; position <= planes + 2; ++position)
            for (std::intptr_t count = -4; count <= planes + 2; ++count)
                for (const unsigned char share : NotAndShared) {
                    SCOPED_TRACE(testing::Message() << planes << " planes, position " << position << ", count "
                                                    << count << ", share " << int{share});
                    const auto expected = Remaining(planes, position, count);
                    if (expected.has_value()) {
                        ASSERT_NO_FATAL_FAILURE(ExpectRemaining(*image, *expected, position, count, share));
                        continue;
                    }
                    ExpectSilentRefusal(UntouchedPointer(), nullptr, [&](void **out) {
                        return CreateImageDeleteList(image->Handle(), position, count, share, out);
                    });
                    EXPECT_EQ(image->Count(), 1);
                }
    }
}

TEST(CreateImageDeleteList, OfExtremeNumbersGivesAnImageExactlyWhenItSaysSo) {
    const auto image = PlanesOf16Bits(4);
    const std::intptr_t numbers[] = {
        Lowest, Lowest + 1, -(std::intptr_t{1} << 32), -1, 0, 3, std::intptr_t{1} << 32, Highest - 1, Highest};
    for (const std::intptr_t position : numbers)
        for (const std::intptr_t count : numbers)
            for (const unsigned char share : NotAndShared) {
                SCOPED_TRACE(testing::Message() << "position " << position << ", count " << count);
                ClearReports();
                void *out = UntouchedPointer();
                const bool made = CreateImageDeleteList(image->Handle(), position, count, share, &out);
                EXPECT_EQ(made, out != nullptr);
                EXPECT_NE(out, UntouchedPointer());
                ReleaseObject(out);
                EXPECT_EQ(image->Count(), 1);
                ExpectNoReport();
            }
}

TEST(CreateImageDeleteList, HasTheTablesAndTypesOfThePlanesThatStay) {
    std::mt19937_64 random(21);
    FakeImage image(6, 11, 3);
    const TDataType types[] = {0x8, 0x408, 0x220};
    std::vector<Offsets> x, y;
    for (std::size_t plane = 0; plane < 3; ++plane) {
        x.push_back(RandomOffsets(random, 6));
        y.push_back(RandomOffsets(random, 11));
        image.AddPlane(image.Pixels.data() + plane, types[plane], EntriesOf(x.back()), EntriesOf(y.back()));
    }
    Handle list;
    ASSERT_TRUE(CreateImageDeleteList(image.Handle(), 1, 1, 1, list.Out()));
    for (const std::size_t plane : {0u, 2u}) {
        const auto shown = static_cast<std::intptr_t>(plane / 2);
        const PlaneAccess access = AccessOf(list.Get(), shown);
        EXPECT_EQ(access.Base, image.BaseOf(plane));
        EXPECT_EQ(TypeOf(list.Get(), shown), types[plane]);
        EXPECT_TRUE(AxisIs(access.Table, &VPAEntry::XEntry, x[plane]));
        EXPECT_TRUE(AxisIs(access.Table, &VPAEntry::YEntry, y[plane]));
    }
}

TEST(CreateImageDeleteList, OfEveryLayoutShowsThePixelsThatStay) {
    for (const TDataType type : TenPixelTypes)
        for (const NamedImage &image : MakeLayouts(5, 4, 3, type, type))
            for (const unsigned char share : NotAndShared) {
                Handle list;
                ASSERT_TRUE(CreateImageDeleteList(image.Get(), 1, 1, share, list.Out()));
                ASSERT_EQ(PixelBytes(list.Get(), 0), image.Content[0]) << image.Name << ", type " << type;
                ASSERT_EQ(PixelBytes(list.Get(), 1), image.Content[2]) << image.Name << ", type " << type;
            }
}

TEST(CreateImageDeleteList, RefusesWhatIsNoImage) {
    for (const unsigned char share : NotAndShared) {
        const auto leaveOut = [=](void *image) {
            return [=](void **out) { return CreateImageDeleteList(image, 0, 1, share, out); };
        };
        ExpectSilentRefusal(UntouchedPointer(), UntouchedPointer(), leaveOut(nullptr));
        for (const ForeignHandle &foreign : ForeignHandles()) {
            SCOPED_TRACE(foreign.Name);
            ExpectSilentRefusal(UntouchedPointer(), UntouchedPointer(), leaveOut(foreign.Get()));
            EXPECT_EQ(foreign.Count(), 1);
        }
    }
}

TEST(CreateImageDeleteList, RefusesAPlaneThatTheSourceRefuses) {
    const auto image = PlanesOf16Bits(3);
    for (const unsigned char share : NotAndShared)
        for (std::ptrdiff_t allowed = 0; allowed < 2; ++allowed) {
            image->ClearCalls();
            image->Fails.OnOperation = [&] {
                image->Fails.VPAStatus = image->CallsOf("GetPlaneVPA") > allowed ? StatusBadPlane : 0;
            };
            ExpectSilentRefusal(UntouchedPointer(), nullptr,
                                [&](void **out) { return CreateImageDeleteList(image->Handle(), 1, 1, share, out); });
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(CreateImageDeleteList, GivesFalseWhenTheCopyFails) {
    const auto image = FakeImage::Planar(3, 2, 3, 0x18);
    ClearReports();
    void *out = UntouchedPointer();
    EXPECT_FALSE(CreateImageDeleteList(image->Handle(), 0, 1, 0, &out));
    EXPECT_EQ(out, nullptr);
    const auto report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->function, "CreateDuplicateImage");
    EXPECT_EQ(report->code, 0x8000001Cu);
    EXPECT_EQ(image->Count(), 1);
}

TEST(CreateImageDeleteList, PassesOnWhatAnOperationOfTheSourceThrows) {
    const auto image = FakeImage::Planar(5, 4, 3, 8);
    const auto leaveOut = [&](void **out) { EXPECT_TRUE(CreateImageDeleteList(image->Handle(), 1, 1, 1, out)); };
    ExpectPassedOn<std::runtime_error>(*image, leaveOut);
    ExpectPassedOn<std::out_of_range>(*image, leaveOut);
    ExpectPassedOn<std::length_error>(*image, leaveOut);
    ExpectPassedOn<std::string>(*image, leaveOut);
}

TEST(CreateImageDeleteList, PassesOnThatASourceLosesItsInterface) {
    const auto image = FakeImage::Planar(5, 4, 2, 8);
    image->Fails.OnOperation = [&] { image->Fails.QueryGivesNull = true; };
    void *out = UntouchedPointer();
    EXPECT_ANY_THROW(CreateImageDeleteList(image->Handle(), 1, 1, 1, &out));
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(image->Count(), 1);
}
