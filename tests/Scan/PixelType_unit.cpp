// The one dispatch over data types.
#include "Scan/PixelType.h"

#include <gtest/gtest.h>
#include <typeindex>
#include <typeinfo>

namespace {

using Scan::ForPixelType;
using Scan::PixelType;
using Scan::PixelTypeOf;

/// The type that a data type word is dispatched to; void for none.
std::type_index Dispatched(TDataType type) {
    std::type_index found = typeid(void);
    const bool called = ForPixelType(type, [&found]<class T>() { found = typeid(T); });
    EXPECT_EQ(called, found != std::type_index(typeid(void)));
    return found;
}

TEST(PixelType, KnowsTenTypesByTheirNumbers) {
    const std::pair<TDataType, int> known[] = {{0x108, 1}, {8, 2},     {0x110, 3}, {16, 4},    {0x120, 5},
                                               {32, 6},    {0x140, 7}, {64, 8},    {0x220, 9}, {0x240, 10}};
    for (const auto &[type, number] : known)
        EXPECT_EQ(static_cast<int>(PixelTypeOf(type)), number) << type;
}

TEST(PixelType, DispatchesToTheTypes) {
    EXPECT_EQ(Dispatched(0x108), typeid(char));
    EXPECT_EQ(Dispatched(8), typeid(unsigned char));
    EXPECT_EQ(Dispatched(0x110), typeid(short));
    EXPECT_EQ(Dispatched(16), typeid(unsigned short));
    EXPECT_EQ(Dispatched(0x120), typeid(int));
    EXPECT_EQ(Dispatched(32), typeid(unsigned int));
    EXPECT_EQ(Dispatched(0x140), typeid(long));
    EXPECT_EQ(Dispatched(64), typeid(unsigned long));
    EXPECT_EQ(Dispatched(0x220), typeid(float));
    EXPECT_EQ(Dispatched(0x240), typeid(double));
}

TEST(PixelType, GoesByBytesSoThatTenBitsAreSixteen) {
    EXPECT_EQ(PixelTypeOf(10), PixelType::Unsigned16);
    EXPECT_EQ(PixelTypeOf(1), PixelType::Unsigned8);
    EXPECT_EQ(PixelTypeOf(0x119), PixelType::Signed32);
}

TEST(PixelType, TestsFloatBeforeSigned) {
    EXPECT_EQ(PixelTypeOf(0x320), PixelType::Float32);
    EXPECT_EQ(PixelTypeOf(0x340), PixelType::Float64);
}

TEST(PixelType, RefusesAllOtherWords) {
    for (const TDataType type :
         {0x0u, 0x100u, 0x208u, 0x210u, 0x18u, 0x48u, 0xFFu, 0x80000008u, 0xFFFFFFFFu, 0x228u}) {
        EXPECT_EQ(PixelTypeOf(type), PixelType::Unsupported) << type;
        EXPECT_EQ(Dispatched(type), typeid(void)) << type;
    }
}

TEST(PixelType, IgnoresOverlayAndComplexBits) {
    EXPECT_EQ(PixelTypeOf(0x408), PixelType::Unsigned8);
    EXPECT_EQ(PixelTypeOf(0x840), PixelType::Unsigned64);
}

} // namespace
