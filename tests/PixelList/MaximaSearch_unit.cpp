// The whole search behind FindMaxima, pixel by pixel and along rows, at every instruction set level and in every
// layout, against its plainest form. Also tables whose guard entries are not those of the edge.
#include "PixelList/MaximaSearch.h"

#include "Image/KernelLevel.h"
#include "Image/VpatAnalyzer.h"
#include "PixelList/MaximaModel.h"
#include "PixelList/RandomPictures.h"

#include <gtest/gtest.h>

namespace {

using namespace PixelList;
using namespace TestSupport;

/// The model's rectangle is told as a caller's, the search's is clipped.
struct Case {
    Rectangle Inside;
    std::int64_t Locality;
    std::int64_t Threshold;
};

std::vector<Candidate> CandidatesOf(const Spots &spots) {
    std::vector<Candidate> candidates;
    for (const Spot &spot : spots)
        candidates.push_back({static_cast<std::int32_t>(spot.X), static_cast<std::int32_t>(spot.Y),
                              static_cast<std::int32_t>(spot.Value)});
    return candidates;
}

template <class T>
void ExpectAsTheModel(void *image, const Case &given) {
    const auto shown = PixelGrid<T>::Of(image, 1);
    const Rectangle &r = given.Inside;
    const auto expected = CandidatesOf(
        MaximaModel<T>(shown, {r.Left, r.Top, r.Right, r.Bottom}).Search(given.Locality, given.Threshold));
    const Image::vpat_analyzer facts(image);
    const Image::PlaneView plane = ViewOf(facts, 1);
    const MaximaRequest request = {r, given.Locality, given.Threshold};
    std::vector<Candidate> found;
    ASSERT_TRUE(SearchMaxima<T>(plane, request, found, MaximumTest::OneByOne));
    ASSERT_EQ(found, expected);
    for (const Image::KernelLevel level : Image::AvailableLevels()) {
        const Image::ForcedLevel forced(level);
        ASSERT_TRUE(SearchMaxima<T>(plane, request, found, MaximumTest::InRegisters));
        ASSERT_EQ(found, expected) << Image::NameOf(level);
    }
}

Case RandomCase(RandomPictures &random, std::intptr_t width, std::intptr_t height) {
    // A right or bottom of 0 stands for the last one before the search.
    const std::int64_t right =
        random.OneIn(2) ? width - 1 : random.Draw(std::min<std::int64_t>(1, width - 1), width - 1);
    const std::int64_t bottom =
        random.OneIn(2) ? height - 1 : random.Draw(std::min<std::int64_t>(1, height - 1), height - 1);
    return {{random.Draw(0, right), random.Draw(0, bottom), right, bottom},
            random.OneIn(8) ? Highest64 : random.Draw(-1, 6),
            random.OneIn(3) ? Lowest64 : random.Draw(-2, 4)};
}

template <class T>
class MaximaSearchTest : public testing::Test {};
using Types = testing::Types<char, unsigned char, short, unsigned short, int>;
TYPED_TEST_SUITE(MaximaSearchTest, Types);

TYPED_TEST(MaximaSearchTest, EveryFormAndLevelFindsTheSameInEveryLayout) {
    using T = TypeParam;
    for (int number = 0; number < 60; ++number) {
        RandomPictures random(number);
        const std::intptr_t width = random.OneIn(2) ? random.Draw(1, 70) : random.Draw(64, 150);
        const std::intptr_t height = random.Draw(1, 24);
        PixelGrid<T> pixels(width, height);
        const std::int64_t levels = random.Draw(1, 5);
        for (T &pixel : pixels.Values)
            pixel = static_cast<T>(random.Draw(0, levels) - (std::is_signed_v<T> ? 2 : 0));
        const std::vector<PlaneBytes> content = {pixels.Bytes(), pixels.Bytes()};
        const TDataType type = WordOf<T>;
        const auto rules = LayoutRules(width, height, 2, type);
        const auto pitches = PitchRules(width, height, 2, type);
        const auto which = static_cast<std::size_t>(number) % (rules.size() + pitches.size());
        const NamedImage image = which < rules.size()
                                     ? MakeFake(rules[which], content, width, height, type)
                                     : MakeExternal(pitches[which - rules.size()], content, width, height, type);
        for (int repeat = 0; repeat < 3; ++repeat)
            ASSERT_NO_FATAL_FAILURE(ExpectAsTheModel<T>(image.Get(), RandomCase(random, width, height)))
                << image.Name << ", case " << number;
    }
}

TEST(MaximaSearch, FindsNothingInARectangleWithSidesInTheWrongOrder) {
    const auto image = FakeImage::Planar(8, 8, 1, 8);
    const Image::vpat_analyzer facts(image->Handle());
    std::vector<Candidate> found = {{1, 2, 3}};
    EXPECT_TRUE(SearchMaxima<unsigned char>(ViewOf(facts, 0), {{9, 0, 7, 7}, 0, 0}, found));
    EXPECT_TRUE(found.empty());
    EXPECT_TRUE(SearchMaxima<unsigned char>(ViewOf(facts, 0), {{0, 9, 7, 7}, 0, 0}, found));
    EXPECT_TRUE(found.empty());
}

TEST(MaximaSearch, ReadsNeighboursOutsideTheImageThroughTheGuardEntries) {
    for (const std::intptr_t width : {6, 80}) {
        const auto image = FakeImage::Planar(width, 8, 1, 8);
        *image->PixelAddress(0, 0, 3) = 50;         // the peak in the first column
        *image->PixelAddress(0, width - 1, 5) = 50; // and that in the last one
        *image->PixelAddress(0, 3, 1) = 90;
        const Image::vpat_analyzer facts(image->Handle());
        const MaximaRequest request = {{0, 0, width - 1, 7}, 0, 10};
        for (const MaximumTest form : {MaximumTest::OneByOne, MaximumTest::InRegisters}) {
            std::vector<Candidate> found;
            ASSERT_TRUE(SearchMaxima<unsigned char>(ViewOf(facts, 0), request, found, form));
            EXPECT_EQ(found, (std::vector<Candidate>{
                                 {0, 3, 50}, {static_cast<std::int32_t>(width - 1), 5, 50}, {3, 1, 90}}));
        }
        // The column in front of the first one now shows that of the greatest pixel, three rows further down.
        image->TableOf(0)[-1].XEntry = 3 - 2 * width;
        *image->PixelAddress(0, 3, 1) = 90;
        for (const MaximumTest form : {MaximumTest::OneByOne, MaximumTest::InRegisters}) {
            std::vector<Candidate> found;
            ASSERT_TRUE(SearchMaxima<unsigned char>(ViewOf(facts, 0), request, found, form));
            EXPECT_EQ(found, (std::vector<Candidate>{{static_cast<std::int32_t>(width - 1), 5, 50}, {3, 1, 90}}));
        }
    }
}

} // namespace
