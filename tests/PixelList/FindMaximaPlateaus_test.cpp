/* Areas of equal pixels: each is one maximum at most. What the walk over such an area compares, where it may go, and
 * that a picture of one value costs neither a deep stack nor much memory. */
#include "PixelList/MaximaSupport.h"

#include <chrono>
#include <pthread.h>
#include <sys/resource.h>

namespace {

using namespace TestSupport;

TEST(FindMaximaPlateau, IsFoundAtItsFirstPixelInScanOrder) {
    EXPECT_EQ(Maxima(Digits({"......", ".666..", ".666..", "......"}), Everything), (Spots{{1, 1, 6}}));
    EXPECT_EQ(Maxima(Digits({"......", "...6..", ".666..", "......"}), Everything), (Spots{{3, 1, 6}}));
    EXPECT_EQ(Maxima(Digits({".......", "....6..", "...6...", "..6....", ".6.....", "......."}), Everything),
              (Spots{{4, 1, 6}}))
        << "pixels that touch by their corners are one area";
    EXPECT_EQ(
        Maxima(Digits({".......", ".66666.", ".6...6.", ".6.3.6.", ".6...6.", ".66666.", "......."}), Everything),
        (Spots{{3, 3, 3}, {1, 1, 6}}));
}

TEST(FindMaximaPlateau, TwoArmsThatMeetBelowAreOneMaximum) {
    EXPECT_EQ(Maxima(Digits({".......", ".6...6.", ".6...6.", ".66666.", "......."}), Everything),
              (Spots{{1, 1, 6}}));
}

TEST(FindMaximaPlateau, IsNoMaximumWithAGreaterPixelAttachedAnywhereFurtherOn) {
    const std::vector<std::string> picture = {".........", ".........", "...666...", "...666...",
                                              "...666...", ".........", "........."};
    // All around but for the row above and the pixel in front, which are searched before.
    for (std::intptr_t y = 2; y <= 5; ++y)
        for (std::intptr_t x = 2; x <= 6; ++x) {
            const bool ofTheArea = y < 5 && x >= 3 && x <= 5, searchedBefore = x == 2 && y == 2;
            if (ofTheArea || searchedBefore)
                continue;
            auto grid = Digits(picture);
            grid.At(x, y) = 7;
            EXPECT_EQ(Maxima(grid, Everything), (Spots{{static_cast<double>(x), static_cast<double>(y), 7}}))
                << x << ", " << y;
        }
}

TEST(FindMaximaPlateau, IsNoMaximumWithAGreaterPixelOfASlopeAbove) {
    // The 7 is no maximum itself, so nothing has marked it.
    EXPECT_EQ(Maxima(Digits({".....9.", ".....7.", ".6666..", "......."}), Everything), Spots{});
}

// Required: marked pixels are not compared at all, also where the mark is that of a maximum found before.
TEST(FindMaximaPlateau, IsNotComparedWithAMaximumThatWasFoundBefore) {
    EXPECT_EQ(Maxima(Digits({".......", ".....9.", ".6666..", "......."}), Everything),
              (Spots{{1, 2, 6}, {5, 1, 9}}));
    EXPECT_EQ(Maxima(Digits({".......", ".6666..", ".....9.", "......."}), Everything), (Spots{{5, 2, 9}}));
    // The first pixel sees the 9 beside it; the walk then starts from the second.
    EXPECT_EQ(Maxima(Digits({".......", ".9666..", "......."}), Everything), (Spots{{3, 1, 6}, {1, 1, 9}}));
}

TEST(FindMaximaPlateau, ThatIsRuledOutIsNotStartedAgain) {
    // Only one pixel at an end of the area sees the 9; all others would pass for maxima.
    EXPECT_EQ(Maxima(Digits({".........", ".666666..", ".......9.", "........."}), Everything), (Spots{{7, 2, 9}}));
    EXPECT_EQ(Maxima(Digits({".........", ".666666..", "9........", "........."}), Everything), (Spots{{0, 2, 9}}));
}

TEST(FindMaximaPlateau, TheGreaterPixelThatRulesItOutIsStillFound) {
    EXPECT_EQ(Maxima(Digits({"......", ".66...", "..67..", "......", "......"}), Everything), (Spots{{3, 2, 7}}));
}

TEST(FindMaximaPlateau, IsFollowedThroughColumnsLeftAndRightOfTheRectangle) {
    const PixelRectangle middle{3, 0, 6, 4};
    EXPECT_EQ(Maxima(Digits({"..........", "..........", "..6666....", "..........", ".........."}), middle),
              (Spots{{3, 2, 6}}));
    for (const auto &row : {"6666......", "...6666666", "6666666666", "..66......", "......666."})
        EXPECT_EQ(std::ssize(Maxima(Digits({"..........", "..........", row, "..........", ".........."}), middle)),
                  1)
            << row;
    EXPECT_EQ(Maxima(Digits({"..........", "..........", "7666......", "..........", ".........."}), middle),
              Spots{});
    EXPECT_EQ(Maxima(Digits({"..........", "..........", "...6666667", "..........", ".........."}), middle),
              Spots{});
    EXPECT_EQ(Maxima(Digits({"..........", "7.........", ".666......", "..........", ".........."}), middle),
              Spots{});
}

TEST(FindMaximaPlateau, IsFollowedPastTheEndsOfTheMarkedRows) {
    const PixelRectangle middle{2, 2, 5, 5};
    // Up through column right of row top; then the same through the column before left.
    EXPECT_EQ(
        Maxima(Digits({".......7.", "......6..", ".....6...", "...66....", ".........", ".........", "........."}),
               middle),
        Spots{});
    EXPECT_EQ(
        Maxima(Digits({"7........", "6........", ".6.......", "..666....", ".........", ".........", "........."}),
               middle),
        Spots{});
    // Down through column right of row bottom.
    EXPECT_EQ(
        Maxima(Digits({".........", ".........", ".........", ".........", "...66....", ".....6...", "......7.."}),
               middle),
        Spots{});
}

TEST(FindMaximaPlateau, TheMarkedRowsAreAWall) {
    const PixelRectangle middle{1, 1, 6, 4};
    // Greater pixels in the marked rows and behind them rule nothing out, but for neighbours of the first pixel.
    EXPECT_EQ(Maxima(Digits({"........", "....9...", ".666....", "........", "........", "........"}), middle),
              (Spots{{1, 2, 6}}));
    EXPECT_EQ(Maxima(Digits({"....9...", "...6....", ".666....", "........", "........", "........"}), middle),
              (Spots{{1, 2, 6}}));
    EXPECT_EQ(Maxima(Digits({"........", "........", "........", ".666....", "...69...", "....9..."}), middle),
              (Spots{{1, 3, 6}}));
    EXPECT_EQ(Maxima(Digits({"........", "..9.....", ".666....", "........", "........", "........"}), middle),
              Spots{});
    // Column right of these rows is no wall.
    EXPECT_EQ(Maxima(Digits({"........", "......9.", "...666..", "........", "........", "........"}), middle),
              (Spots{{3, 2, 6}, {6, 1, 9}}))
        << "the 9 is a maximum found before";
    EXPECT_EQ(Maxima(Digits({"........", "........", "........", "...666..", "......9.", "........"}), middle),
              (Spots{{6, 4, 9}}));
}

TEST(FindMaximaPlateau, EndsAtTheEdgesOfTheImage) {
    EXPECT_EQ(Maxima(Digits({"....", "6...", "6...", "...."}), Everything), (Spots{{0, 1, 6}}));
    EXPECT_EQ(Maxima(Digits({"....", "...6", "..66", "...6"}), Everything), (Spots{{3, 1, 6}}));
    EXPECT_EQ(Maxima(Digits({"6", "6", "5", "6"}), Everything), (Spots{{0, 0, 6}, {0, 3, 6}}));
    // A diagonal of the area along an edge, and a greater pixel that only the pixels inside see.
    EXPECT_EQ(Maxima(Digits({".....", "....6", "...66", "..7.6", "....."}), Everything), (Spots{{2, 3, 7}}));
}

TEST(FindMaximaPlateau, AFlatPictureIsOneMaximumInTheLastColumnOfRowTop) {
    for (const auto &[width, height] : {std::pair{2, 2}, std::pair{3, 5}, std::pair{17, 9}, std::pair{64, 3}})
        EXPECT_EQ(Maxima(PixelGrid<std::int16_t>(width, height, -7), Everything, 0, Lowest64),
                  (Spots{{width - 1.0, 0, -7}}));
}

TEST(FindMaximaPlateau, ALongWindingAreaIsWalkedToItsEnd) {
    // One line that winds through the picture; the greater pixel stands at its far end.
    PixelGrid<std::uint8_t> grid(101, 101);
    for (std::intptr_t y = 1; y < 100; y += 2)
        for (std::intptr_t x = 1; x < 100; ++x)
            grid.At(x, y) = 6;
    for (std::intptr_t y = 2; y < 99; y += 2)
        grid.At(y % 4 == 2 ? 99 : 1, y) = 6;
    EXPECT_EQ(Maxima(grid, Everything), (Spots{{1, 1, 6}}));
    grid.At(1, 99) = 7;
    EXPECT_EQ(Maxima(grid, Everything), (Spots{{1, 99, 7}}));
}

constexpr std::intptr_t LargeWidth = 4096, LargeHeight = 3072;

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr std::size_t SmallStackBytes = 1 << 20;
#else
constexpr std::size_t SmallStackBytes = 1 << 17;
#endif

/// Runs in a thread whose stack is far smaller than a call per pixel would need.
void *SearchLargePlateau(void *found) {
    const PixelGrid<std::uint8_t> grid(LargeWidth, LargeHeight, 7);
    *static_cast<Spots *>(found) = Maxima(grid, Everything, 1);
    return nullptr;
}

TEST(FindMaximaPlateau, ALargeOneNeedsNoDeepStackAndEndsQuickly) {
    Spots found;
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, SmallStackBytes), 0);
    pthread_t thread{};
    const auto start = std::chrono::steady_clock::now();
    ASSERT_EQ(pthread_create(&thread, &attributes, SearchLargePlateau, &found), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
    EXPECT_EQ(found, (Spots{{LargeWidth - 1, 0, 7}}));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
std::int64_t PeakMemoryBytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return std::int64_t{usage.ru_maxrss} * 1024;
}

TEST(FindMaximaPlateau, ALargeOneCostsAFewBytesPerPixel) {
    const auto image = ImageOf(PixelGrid<std::uint8_t>(LargeWidth, LargeHeight, 7));
    const std::int64_t before = PeakMemoryBytes();
    EXPECT_EQ(Maxima(image->Handle(), Everything), (Spots{{LargeWidth - 1, 0, 7}}));
    EXPECT_LE(PeakMemoryBytes() - before, 8 * LargeWidth * LargeHeight);
}
#endif

} // namespace
