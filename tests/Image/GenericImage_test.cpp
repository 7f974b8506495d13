// Making images with memory of their own: arguments, results, outputs and failures. The layouts that come out are
// tested in GenericImageTree_test.cpp.
#include "ImageCreation.h"
#include "ImageQueries.h"
#include "Support/ImageAccess.h"

#include <limits>

namespace {

using namespace TestSupport;

constexpr std::intptr_t Highest = std::numeric_limits<std::intptr_t>::max();
constexpr std::intptr_t Lowest = std::numeric_limits<std::intptr_t>::min();
constexpr std::intptr_t HighestAxis = std::numeric_limits<std::int32_t>::max();

struct Arguments {
    std::intptr_t Planes, Width, Height;
};
void PrintTo(const Arguments &arguments, std::ostream *out) {
    *out << arguments.Planes << " planes of " << arguments.Width << " x " << arguments.Height;
}

const Arguments NegativeArguments[] = {{-1, 2, 2},     {1, -1, 2},     {1, 2, -1},     {3, -1, -1},
                                       {Lowest, 2, 2}, {1, Lowest, 2}, {1, 2, Lowest}, {0, -1, 0},
                                       {0, 0, -1},     {3, 0, -5},     {-1, 0, 0},     {-1, -1, -1}};

TEST(CreateGenericImage, RefusesNegativeArgumentsAndLeavesTheOutputAlone) {
    ClearReports();
    for (const auto &arguments : NegativeArguments)
        for (const bool overlay : {false, true}) {
            void *out = UntouchedPointer();
            EXPECT_FALSE(CreateGenericImage(arguments.Planes, arguments.Width, arguments.Height, overlay, &out))
                << testing::PrintToString(arguments);
            EXPECT_EQ(out, UntouchedPointer());
        }
    ExpectNoReport();
}

TEST(CreateGenericImageDT, RefusesNegativeArgumentsAndLeavesTheOutputAlone) {
    ClearReports();
    for (const auto &arguments : NegativeArguments) {
        void *out = UntouchedPointer();
        EXPECT_FALSE(CreateGenericImageDT(arguments.Planes, arguments.Width, arguments.Height, 16, &out))
            << testing::PrintToString(arguments);
        EXPECT_EQ(out, UntouchedPointer());
    }
    ExpectNoReport();
}

// Each needs more bytes than 63 bits can count, or an axis that no table of an image can hold.
const Arguments TooLarge[] = {{1, Highest, Highest},
                              {3, Highest, Highest},
                              {2, Highest, Highest},
                              {1, Highest, 1},
                              {1, Highest - 2, 2},
                              {3, Highest / 3 + 1, 1},
                              {3, Highest, 1},
                              {2, 1, Highest},
                              {1, std::intptr_t{1} << 62, 4},
                              {4, std::intptr_t{1} << 32, std::intptr_t{1} << 32},
                              {1, HighestAxis, HighestAxis},
                              {2, HighestAxis, HighestAxis},
                              {3, HighestAxis, HighestAxis}};

TEST(CreateGenericImage, GivesFalseAndANullHandleForSizesBeyondMemory) {
    ClearReports();
    for (const auto &arguments : TooLarge)
        for (const bool overlay : {false, true}) {
            void *out = UntouchedPointer();
            EXPECT_FALSE(CreateGenericImage(arguments.Planes, arguments.Width, arguments.Height, overlay, &out))
                << testing::PrintToString(arguments);
            EXPECT_EQ(out, nullptr) << "the output is cleared once the arguments have proved not negative";
        }
    ExpectNoReport();
}

TEST(CreateGenericImageDT, GivesFalseAndANullHandleForSizesBeyondMemory) {
    ClearReports();
    for (const auto &arguments : TooLarge)
        for (const TDataType type : {0x8u, 0x10u, 0x240u, 0xFFu}) {
            void *out = UntouchedPointer();
            EXPECT_FALSE(CreateGenericImageDT(arguments.Planes, arguments.Width, arguments.Height, type, &out))
                << testing::PrintToString(arguments) << " type " << type;
            EXPECT_EQ(out, nullptr);
        }
    void *out = UntouchedPointer();
    EXPECT_FALSE(CreateGenericImageDT(1, std::intptr_t{1} << 30, std::intptr_t{1} << 31, 64, &out))
        << "2 to the 64 bytes are not 0 bytes";
    EXPECT_EQ(out, nullptr);
    ExpectNoReport();
}

TEST(CreateGenericImage, GivesTrueAndNoHandleForAnEmptyBitmap) {
    ClearReports();
    for (const std::intptr_t planes : {1, 3})
        for (const auto &[width, height] : {std::pair{0, 5}, std::pair{5, 0}, std::pair{0, 0}}) {
            void *out = UntouchedPointer();
            EXPECT_TRUE(CreateGenericImage(planes, width, height, false, &out));
            EXPECT_EQ(out, nullptr);
        }
    ExpectNoReport();
}

TEST(CreateGenericImage, GivesFalseForAnEmptyBitmapWithOverlay) {
    ClearReports();
    for (const std::intptr_t planes : {1, 3})
        for (const auto &[width, height] : {std::pair{0, 5}, std::pair{5, 0}, std::pair{0, 0}}) {
            void *out = UntouchedPointer();
            EXPECT_FALSE(CreateGenericImage(planes, width, height, true, &out));
            EXPECT_EQ(out, nullptr);
        }
    ExpectNoReport();
}

TEST(CreateGenericImage, GivesAnImageWithoutPlanesForNoPlanes) {
    for (const bool overlay : {false, true}) {
        Handle image;
        ASSERT_TRUE(CreateGenericImage(0, 6, 4, overlay, image.Out()));
        ASSERT_TRUE(image);
        EXPECT_EQ(SizeOf(image.Get()), (ImageSize{0, 6, 4}));
        EXPECT_EQ(RefCount(image.Get()), 1u);
        void *base = UntouchedPointer();
        auto *table = static_cast<VPAEntry *>(UntouchedPointer());
        const ImageInterface interface(image.Get());
        EXPECT_EQ(interface->GetPlaneVPA(0, &base, &table), Status(0xFFFFFFFFu));
        EXPECT_EQ(base, UntouchedPointer());
    }
}

TEST(CreateGenericImageDT, GivesAnImageWithoutPlanesForNoPlanes) {
    Handle image;
    ASSERT_TRUE(CreateGenericImageDT(0, 6, 4, 0x240, image.Out()));
    ASSERT_TRUE(image);
    EXPECT_EQ(SizeOf(image.Get()), (ImageSize{0, 6, 4}));
    EXPECT_EQ(ImageDatatype(image.Get(), 0), DataTypeNone);
}

TEST(CreateGenericImage, MakesEightBitPlanesAndMarksThemAsOverlayOnDemand) {
    for (const std::intptr_t planes : {1, 2, 3, 4, 7})
        for (const bool overlay : {false, true}) {
            Handle image;
            ASSERT_TRUE(CreateGenericImage(planes, 5, 3, overlay, image.Out()));
            EXPECT_EQ(SizeOf(image.Get()), (ImageSize{planes, 5, 3}));
            for (std::intptr_t plane = 0; plane < planes; ++plane)
                EXPECT_EQ(TypeOf(image.Get(), plane), overlay ? 0x408u : 0x8u);
            EXPECT_EQ(HasOverlay(image.Get()), overlay);
        }
}

TEST(CreateGenericImageDT, TakesTheDataTypeWordAsItIs) {
    for (const TDataType type : {0x8u, 0x108u, 0x408u, 0x10u, 0x110u, 0x510u, 0x20u, 0x220u, 0x240u, 0x140u, 0x820u,
                                 0x18u, 0x1u, 0xCu, 0x80u, 0xFFu, 0x12345610u}) {
        Handle image;
        ASSERT_TRUE(CreateGenericImageDT(2, 3, 2, type, image.Out())) << type;
        EXPECT_EQ(TypeOf(image.Get(), 0), type);
        EXPECT_EQ(TypeOf(image.Get(), 1), type);
    }
}

TEST(CreateGenericImage, ReportsNothingOnSuccess) {
    ClearReports();
    Handle image;
    EXPECT_TRUE(CreateGenericImage(3, 2, 2, true, image.Out()));
    EXPECT_TRUE(CreateGenericImageDT(3, 2, 2, 0x10, image.Out()));
    ExpectNoReport();
}

TEST(CreateGenericImage, OffersTheBitmapInterfaceForOneAndThreePlanesOnly) {
    for (const std::intptr_t planes : {0, 1, 2, 3, 4}) {
        Handle image;
        ASSERT_TRUE(CreateGenericImage(planes, 4, 4, false, image.Out()));
        EXPECT_EQ(IsInterface(image.Get(), ORV_IID_IIMAGEDIB), planes == 1 || planes == 3) << planes;
        EXPECT_EQ(RefCount(image.Get()), 1u);
    }
}

TEST(CreateGenericImageDT, NeverOffersTheBitmapInterface) {
    for (const std::intptr_t planes : {0, 1, 2, 3, 4}) {
        Handle image;
        ASSERT_TRUE(CreateGenericImageDT(planes, 4, 4, 8, image.Out()));
        EXPECT_FALSE(IsInterface(image.Get(), ORV_IID_IIMAGEDIB)) << planes;
    }
}

TEST(CreateGenericImage, StartsWithTheIdentityAsCoordinateMap) {
    for (const std::intptr_t planes : {0, 1, 2, 3}) {
        Handle generic, typed;
        ASSERT_TRUE(CreateGenericImage(planes, 4, 4, false, generic.Out()));
        ASSERT_TRUE(CreateGenericImageDT(planes, 4, 4, 0x20, typed.Out()));
        for (void *image : {generic.Get(), typed.Get()}) {
            TCoordinateMap map{};
            const ImageInterface interface(image);
            EXPECT_EQ(interface->GetCoordinateMap(&map), 0);
            EXPECT_TRUE(SameMap(map, IdentityMap));
        }
    }
}

// An empty axis makes empty blocks here. Whatever comes out agrees with the result, and its queries hold.
TEST(CreateGenericImage, NeverPairsTrueWithNothingForEmptySeparatePlanes) {
    for (const auto &[width, height] : {std::pair{0, 5}, std::pair{5, 0}, std::pair{0, 0}}) {
        Handle generic, typed;
        const bool genericMade = CreateGenericImage(2, width, height, false, generic.Out());
        const bool typedMade = CreateGenericImageDT(1, width, height, 0x10, typed.Out());
        EXPECT_EQ(genericMade, static_cast<bool>(generic));
        EXPECT_EQ(typedMade, static_cast<bool>(typed));
        if (generic) {
            EXPECT_EQ(SizeOf(generic.Get()), (ImageSize{2, width, height}));
        }
        if (typed) {
            EXPECT_EQ(SizeOf(typed.Get()), (ImageSize{1, width, height}));
        }
    }
}

TEST(CreateGenericImageDT, ReachesEachOfManyPlanes) {
    constexpr std::intptr_t planes = 100;
    Handle image;
    ASSERT_TRUE(CreateGenericImageDT(planes, 3, 2, 0x10, image.Out()));
    for (std::intptr_t plane = planes - 1; plane >= 0; --plane) {
        const std::uint16_t value = static_cast<std::uint16_t>(1000 + plane);
        std::memcpy(AccessOf(image.Get(), plane).At(2, 1), &value, sizeof value);
    }
    for (std::intptr_t plane = 0; plane < planes; ++plane) {
        std::uint16_t value = 0;
        std::memcpy(&value, AccessOf(image.Get(), plane).At(2, 1), sizeof value);
        EXPECT_EQ(value, 1000 + plane);
    }
    EXPECT_EQ(TypeOf(image.Get(), planes - 1), 0x10u);
    TDataType type = 0;
    for (const std::intptr_t none : {std::intptr_t{-1}, planes, planes + 1})
        EXPECT_NE(ImageInterface(image.Get())->GetPlaneDatatype(none, &type), 0) << none;
}

} // namespace
