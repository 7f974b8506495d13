// Positions that are worked out for being cut off to sixteenths, against the exact ones, at each instruction set
// level: the same sixteenths, the same rows to the last bit, and the same pixels kept.
#include <gtest/gtest.h>
#include <random>

#include "Scan/LaidOutPlane.h"
#include "Transformations/PolarRows.h"
#include "TruncateTo.h"

namespace {

using namespace Transformations;
using namespace TestSupport;

std::int32_t CutOff(double position) {
    return orvBase::TruncateTo<std::int32_t>(16 * position);
}

/// Compares pixels first to first + count - 1 of row y, all of them in the ring.
void ExpectExactSixteenths(const InversePolarRing &ring, std::intptr_t first, std::intptr_t y, std::intptr_t count) {
    PolarPiece exact, cut;
    FindInversePositions(ring, first, y, count, PositionUse::Exact, exact);
    FindInversePositions(ring, first, y, count, PositionUse::Sixteenths, cut);
    ASSERT_EQ(cut.KeepsSome, exact.KeepsSome);
    for (std::intptr_t i = 0; i < count; ++i) {
        const bool isKept = exact.KeepsSome && exact.Kept[i] != 0;
        ASSERT_EQ(cut.KeepsSome && cut.Kept[i] != 0, isKept) << "pixel " << first + i << ", " << y;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(cut.Y[i]), std::bit_cast<std::uint64_t>(exact.Y[i]));
        if (!isKept) {
            ASSERT_EQ(CutOff(cut.X[i]), CutOff(exact.X[i]))
                << "pixel " << first + i << ", " << y << ": " << cut.X[i] << " and not " << exact.X[i];
        }
    }
}

void ExpectExactSixteenthsOfWhole(const InversePolarRing &ring, std::intptr_t side, std::intptr_t step) {
    AtAllLevels([&](const char *level) {
        SCOPED_TRACE(level);
        for (std::intptr_t y = -2; y < side; y += step) {
            const RingColumns columns = FindRingColumns(ring, y, {-2, side});
            for (const ColumnRange &range : {columns.Left, columns.Right})
                for (std::intptr_t x = range.Begin; x < range.End; x += PolarPiece::Capacity)
                    ASSERT_NO_FATAL_FAILURE(
                        ExpectExactSixteenths(ring, x, y, std::min(PolarPiece::Capacity, range.End - x)));
        }
    });
}

TEST(InverseSixteenths, AreThoseOfTheExactPositionsInWholeTurns) {
    for (const double start : {0.0, 90.0, 180.0, 45.0, 359.9999999, -1e-13, 17.3})
        for (const double centre : {150.0, 149.5, 150.0000001})
            ASSERT_NO_FATAL_FAILURE(
                ExpectExactSixteenthsOfWhole(InverseRingOf(2000, 140, centre, 150, start, 5), 300, 1))
                << "start " << start << ", centre " << centre;
}

TEST(InverseSixteenths, AreThoseOfTheExactPositionsInSectors) {
    for (const double start : {0.0, 90.0, 270.0, 123.4})
        for (const double width : {100.0, 471.2, 700.0})
            ASSERT_NO_FATAL_FAILURE(
                ExpectExactSixteenthsOfWhole(InverseRingOf(width, 140, 150, 150, start, 5), 300, 1))
                << "start " << start << ", width " << width;
}

/// Rings whose sixteenths of columns fall on the angles of the axes and of the diagonals.
TEST(InverseSixteenths, DoubtsAtWholeSixteenthsAreSettledExactly) {
    for (const double eighths : {1.0, 8.0, 1000.0, 40000.0}) {
        InversePolarRing ring = InverseRingOf(1e6, 200, 150, 150, 0, 0);
        ring.ColumnScale = eighths / 16 * 8;
        ASSERT_NO_FATAL_FAILURE(ExpectExactSixteenthsOfWhole(ring, 300, 1)) << eighths << " eighths";
    }
}

TEST(InverseSixteenths, AreExactForRingsFarAwayAndForManyColumns) {
    for (const double scale : {1e5, 9.9e5, 1.1e6, 1e9, -300.0})
        for (const double centreX : {150.5, -1e5, 1e12}) {
            InversePolarRing ring = InverseRingOf(1e6, 200, centreX, -77.25, 33, 0);
            ring.ColumnScale = scale;
            ring.InnerSquared = 0;
            ring.OuterSquared = 1e30;
            ASSERT_NO_FATAL_FAILURE(ExpectExactSixteenthsOfWhole(ring, 300, 7)) << scale << ", " << centreX;
        }
}

TEST(InverseSixteenths, PositionsThatAreNoNumbersStayNone) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    InversePolarRing ring = InverseRingOf(1000, 200, 150, 150, none, 0);
    ASSERT_NO_FATAL_FAILURE(ExpectExactSixteenthsOfWhole(ring, 300, 5));
    ring = InverseRingOf(1000, 200, 150, 150, 0, 0);
    ring.ColumnScale = none;
    ASSERT_NO_FATAL_FAILURE(ExpectExactSixteenthsOfWhole(ring, 300, 5));
}

TEST(InverseSixteenths, ThoseOfRandomRingsAreTheExactOnes) {
    std::mt19937_64 random(31);
    const auto between = [&](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    for (int number = 0; number < 40; ++number) {
        const double height = between(3, 400), inner = between(-5, 100), width = between(10, 4000);
        const InversePolarRing ring =
            InverseRingOf(width, height, between(-100, 400), between(-100, 400), between(-400, 400), inner);
        ASSERT_NO_FATAL_FAILURE(ExpectExactSixteenthsOfWhole(ring, 300, 11)) << "case " << number;
    }
}

} // namespace
