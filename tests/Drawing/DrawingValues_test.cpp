// What becomes of the value: limits of every type, fractions, infinities and what is no number.
#include "Drawing/DrawingSupport.h"

namespace {

using namespace TestSupport;

/// The pixel that each of the functions leaves for a value, always the same; read with the pixel's storage type.
template <class T>
T Drawn(TDataType type, double value) {
    std::vector<T> pixels;
    for (int function = 0; function < 4; ++function) {
        const Subject subject = PlainSubject(5, 5, type);
        std::int32_t result = -1;
        switch (function) {
        case 0:
            result = DrawLineInImage(subject.Get(), 0, 2, 2, 4, 2, 1, 0, 0, value);
            break;
        case 1:
            result = DrawLineInImage(subject.Get(), 0, 1, 2, 3, 2, 3, 0, 0, value);
            break;
        case 2:
            result = DrawCircleInImage(subject.Get(), 0, 2, 2, 0, 1, 0, 0, value);
            break;
        default:
            result = FillCircleInImage(subject.Get(), 0, 2, 2, 2, 0, 0, value);
        }
        EXPECT_EQ(result, 0);
        pixels.push_back(PixelAt<T>(subject, 2, 2));
    }
    EXPECT_EQ(std::memcmp(&pixels[0], &pixels[1], sizeof(T)), 0) << "thick line, type " << type << ", " << value;
    EXPECT_EQ(std::memcmp(&pixels[0], &pixels[2], sizeof(T)), 0) << "circle, type " << type << ", " << value;
    EXPECT_EQ(std::memcmp(&pixels[0], &pixels[3], sizeof(T)), 0) << "filled circle, type " << type << ", " << value;
    return pixels[0];
}

TEST(DrawingValues, UnsignedBytesAreLimitedTo0And255) {
    EXPECT_EQ(Drawn<std::uint8_t>(8, 300.0), 255);
    EXPECT_EQ(Drawn<std::uint8_t>(8, -1.0), 0);
    EXPECT_EQ(Drawn<std::uint8_t>(8, 255.0), 255);
    EXPECT_EQ(Drawn<std::uint8_t>(8, 255.5), 255);
    EXPECT_EQ(Drawn<std::uint8_t>(8, 254.99), 254);
    EXPECT_EQ(Drawn<std::uint8_t>(8, 0.99), 0);
    EXPECT_EQ(Drawn<std::uint8_t>(8, -0.5), 0);
    EXPECT_EQ(Drawn<std::uint8_t>(8, 7.5), 7);
    EXPECT_EQ(Drawn<std::uint8_t>(8 | DataTypeOverlay, 300.0), 255);
}

TEST(DrawingValues, TheLowestSignedByteCannotBeDrawn) {
    EXPECT_EQ(Drawn<std::int8_t>(8 | DataTypeSigned, -128.0), -127);
    EXPECT_EQ(Drawn<std::int8_t>(8 | DataTypeSigned, -127.0), -127);
    EXPECT_EQ(Drawn<std::int8_t>(8 | DataTypeSigned, -1000.0), -127);
    EXPECT_EQ(Drawn<std::int8_t>(8 | DataTypeSigned, 128.0), 127);
    EXPECT_EQ(Drawn<std::int8_t>(8 | DataTypeSigned, -126.9), -126);
    EXPECT_EQ(Drawn<std::int8_t>(8 | DataTypeSigned, -0.9), 0);
}

TEST(DrawingValues, WiderIntegersAreLimitedByTheirWidths) {
    EXPECT_EQ(Drawn<std::uint16_t>(16, 1e9), 65535);
    EXPECT_EQ(Drawn<std::uint16_t>(16, -1e9), 0);
    EXPECT_EQ(Drawn<std::int16_t>(16 | DataTypeSigned, -32768.0), -32767);
    EXPECT_EQ(Drawn<std::int16_t>(16 | DataTypeSigned, 32768.0), 32767);
    EXPECT_EQ(Drawn<std::uint32_t>(32, 4294967295.0), 4294967295u);
    EXPECT_EQ(Drawn<std::uint32_t>(32, 4294967296.0), 4294967295u);
    EXPECT_EQ(Drawn<std::uint32_t>(32, 4294967294.5), 4294967294u);
    EXPECT_EQ(Drawn<std::int32_t>(32 | DataTypeSigned, -2147483648.0), -2147483647);
    EXPECT_EQ(Drawn<std::int32_t>(32 | DataTypeSigned, 2147483648.0), 2147483647);
}

TEST(DrawingValues, IntegersOf64BitsReachTheirLimits) {
    constexpr auto highest = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(Drawn<std::uint64_t>(64, 18446744073709551616.0), highest);
    EXPECT_EQ(Drawn<std::uint64_t>(64, 1e300), highest);
    EXPECT_EQ(Drawn<std::uint64_t>(64, 18446744073709549568.0), 18446744073709549568u);
    EXPECT_EQ(Drawn<std::uint64_t>(64, 9223372036854775808.0), 9223372036854775808u);
    EXPECT_EQ(Drawn<std::uint64_t>(64, -1.0), 0u);
    EXPECT_EQ(Drawn<std::int64_t>(64 | DataTypeSigned, 9223372036854775808.0), Highest64);
    EXPECT_EQ(Drawn<std::int64_t>(64 | DataTypeSigned, -9223372036854775808.0), -Highest64);
    EXPECT_EQ(Drawn<std::int64_t>(64 | DataTypeSigned, -1e300), -Highest64);
    EXPECT_EQ(Drawn<std::int64_t>(64 | DataTypeSigned, 9223372036854774784.0), 9223372036854774784);
    EXPECT_EQ(Drawn<std::int64_t>(64 | DataTypeSigned, -9223372036854774784.0), -9223372036854774784);
}

TEST(DrawingValues, WidthsBetweenAreLimitedByTheirBits) {
    EXPECT_EQ(Drawn<std::uint16_t>(12, 5000.0), 4095);
    EXPECT_EQ(Drawn<std::uint16_t>(12, 4095.0), 4095);
    EXPECT_EQ(Drawn<std::int16_t>(12 | DataTypeSigned, -5000.0), -2047);
    EXPECT_EQ(Drawn<std::int16_t>(12 | DataTypeSigned, 5000.0), 2047);
    EXPECT_EQ(Drawn<std::uint8_t>(1, 2.0), 1);
    EXPECT_EQ(Drawn<std::uint8_t>(1, 0.5), 0);
    EXPECT_EQ(Drawn<std::int8_t>(1 | DataTypeSigned, 5.0), 0);
    EXPECT_EQ(Drawn<std::int8_t>(1 | DataTypeSigned, -5.0), 0);
    EXPECT_EQ(Drawn<std::uint32_t>(31, 1e10), 0x7FFFFFFFu);
    EXPECT_EQ(Drawn<std::uint64_t>(63, 1e30), 0x7FFFFFFFFFFFFFFFu);
}

TEST(DrawingValues, EveryWidthFrom1To64TakesItsOwnLimits) {
    for (TDataType bits = 1; bits <= 64; ++bits)
        for (const TDataType sign : {TDataType{0}, DataTypeSigned})
            for (const double value : {-1e30, -3.0, 0.0, 1.0, 100.7, 1e30}) {
                const Subject subject = PlainSubject(3, 3, bits | sign);
                EXPECT_EQ(DrawLineInImage(subject.Get(), 0, 1, 1, 1, 1, 1, 0, 0, value), 0);
                const std::uint64_t word = WordFor(value, bits | sign);
                EXPECT_EQ(std::memcmp(AccessOf(subject.Get(), 0).At(1, 1), &word, PixelSize(bits)), 0)
                    << bits << ", " << sign << ", " << value;
            }
}

TEST(DrawingValues, PixelsTakeTheNextPowerOfTwoBytes) {
    // Pixels that stand 4 or 8 bytes apart, in evenly spaced and in shuffled tables: all those bytes are the pixel's.
    const auto drawnIn = [](const Subject &subject, auto pixel) {
        EXPECT_EQ(DrawLineInImage(subject.Get(), 0, 1, 1, 1, 1, 1, 0, 0, -3.0), 0);
        EXPECT_EQ(FillEllipseInImage(subject.Get(), 0, 3, 2, 0, 1, 0, 0, 0.0, -3.0), 0);
        EXPECT_EQ(PixelAt<decltype(pixel)>(subject, 1, 1), -3) << subject.Name << TypeOf(subject.Get(), 0);
        EXPECT_EQ(PixelAt<decltype(pixel)>(subject, 3, 2), -3) << subject.Name << TypeOf(subject.Get(), 0);
    };
    for (const TDataType bits : {17u, 20u, 24u, 25u, 32u}) {
        drawnIn(PlainSubject(5, 5, bits | DataTypeSigned), std::int32_t{});
        drawnIn(ScatteredSubject(5, 5, bits | DataTypeSigned), std::int32_t{});
    }
    for (const TDataType bits : {33u, 40u, 48u, 56u, 57u, 64u}) {
        drawnIn(PlainSubject(5, 5, bits | DataTypeSigned), std::int64_t{});
        drawnIn(ScatteredSubject(5, 5, bits | DataTypeSigned), std::int64_t{});
    }
}

TEST(DrawingValues, FloatingPointOf32BitsIsLimitedToItsFiniteRange) {
    constexpr float highest = std::numeric_limits<float>::max();
    EXPECT_EQ(Drawn<float>(32 | DataTypeFloat, 1e39), highest);
    EXPECT_EQ(Drawn<float>(32 | DataTypeFloat, -1e39), -highest);
    EXPECT_EQ(Drawn<float>(32 | DataTypeFloat, Infinity), highest);
    EXPECT_EQ(Drawn<float>(32 | DataTypeFloat, -Infinity), -highest);
    EXPECT_EQ(Drawn<float>(32 | DataTypeFloat, 0.1), 0.1f);
    EXPECT_EQ(Drawn<float>(32 | DataTypeFloat, 1e-60), 0.0f);
    EXPECT_TRUE(std::signbit(Drawn<float>(32 | DataTypeFloat, -0.0)));
}

TEST(DrawingValues, FloatingPointOf64BitsIsTakenAsItIs) {
    for (const double value : {Infinity, -Infinity, 0.1, -0.0, 1e308, 5e-324})
        EXPECT_EQ(std::bit_cast<std::uint64_t>(Drawn<double>(64 | DataTypeFloat, value)),
                  std::bit_cast<std::uint64_t>(value));
    EXPECT_TRUE(std::isnan(Drawn<double>(64 | DataTypeFloat, NotANumber)));
}

TEST(DrawingValues, InfinitiesAreBeyondAllIntegers) {
    EXPECT_EQ(Drawn<std::uint8_t>(8, Infinity), 255);
    EXPECT_EQ(Drawn<std::uint8_t>(8, -Infinity), 0);
    EXPECT_EQ(Drawn<std::int16_t>(16 | DataTypeSigned, -Infinity), -32767);
    EXPECT_EQ(Drawn<std::int64_t>(64 | DataTypeSigned, -Infinity), -Highest64);
    EXPECT_EQ(Drawn<std::uint64_t>(64, Infinity), std::numeric_limits<std::uint64_t>::max());
}

TEST(DrawingValues, WhatIsNoNumberTouchesNoOtherPixel) {
    for (const TDataType type : TenTypes)
        for (const std::uint32_t mode : {0u, 1u, 2u}) {
            const Subject subject = ScatteredSubject(5, 5, type);
            subject.Refill(type);
            const PlaneBytes before = PixelBytes(subject.Get(), 0);
            EXPECT_EQ(DrawLineInImage(subject.Get(), 0, 2, 1, 2, 1, 1, mode, 0, NotANumber), 0);
            const PlaneBytes after = PixelBytes(subject.Get(), 0);
            for (std::size_t i = 0; i < after.size(); ++i)
                if (i / PixelSize(type) != 7) {
                    ASSERT_EQ(after[i], before[i]) << type << ": " << i;
                }
        }
}

TEST(DrawingValues, AndAndOrTakeTheConvertedValue) {
    const Subject subject = ScatteredSubject(3, 3, 16 | DataTypeSigned);
    const auto after = [&](std::uint32_t mode, std::int16_t before, double value) {
        std::memcpy(AccessOf(subject.Get(), 0).At(1, 1), &before, sizeof before);
        EXPECT_EQ(DrawLineInImage(subject.Get(), 0, 1, 1, 1, 1, 1, mode, 0, value), 0);
        return PixelAt<std::int16_t>(subject, 1, 1);
    };
    EXPECT_EQ(after(1, 0x1234, -1.0), 0x1234);
    EXPECT_EQ(after(1, 0x1234, -1e9), 0);       // -32767 is 0x8001
    EXPECT_EQ(after(2, 0x1234, -1e9), -0x6DCB); // 0x9235
    EXPECT_EQ(after(1, -1, 99.9), 99);
}

} // namespace
