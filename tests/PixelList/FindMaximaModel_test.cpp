/* FindMaxima on random pictures against its plainest form: plateaus of few grey levels, all types and layouts,
 * rectangles, localities and thresholds of every kind. ORV_TEST_CASE runs one case by its number. */
#include "PixelList/MaximaModel.h"
#include "PixelList/RandomPictures.h"

namespace {

using namespace TestSupport;

template <class T>
class FindMaximaModel : public testing::Test {};
using SearchedTypes = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t>;
TYPED_TEST_SUITE(FindMaximaModel, SearchedTypes);

template <class T>
void ExpectAsTheModel(void *image, const PixelRectangle &r, std::int64_t locality, std::int64_t threshold) {
    const auto shown = PixelGrid<T>::Of(image, 1);
    const Spots expected = MaximaModel<T>(shown, r).Search(locality, threshold);
    EXPECT_EQ(Maxima(image, r, locality, threshold, 1), expected)
        << shown.Width << " x " << shown.Height << ", " << testing::PrintToString(r) << ", locality " << locality
        << ", threshold " << threshold;
}

TYPED_TEST(FindMaximaModel, AgreesOnRandomPicturesOfAllLayouts) {
    ForRandomCases(6000, [](int number, RandomPictures &random) {
        const auto grid = random.Picture<TypeParam>(random.Size());
        const auto image = LaidOut(grid, static_cast<std::size_t>(number) % LayoutCount);
        SCOPED_TRACE(image.Name);
        const ImageSize size = SizeOf(image.Get());
        ExpectAsTheModel<TypeParam>(image.Get(), random.Rectangle(size.Width, size.Height), random.Locality(),
                                    random.WholeThreshold<TypeParam>());
    });
}

TYPED_TEST(FindMaximaModel, AgreesOnLargerPicturesOfTwoAndThreeLevels) {
    ForRandomCases(24, [](int number, RandomPictures &random) {
        const PictureSize size{random.Draw(100, 140), random.Draw(60, 100)};
        const auto grid = random.Levels<TypeParam>(size, 2 + number % 2);
        const auto image = LaidOut(grid, static_cast<std::size_t>(number) % LayoutCount);
        SCOPED_TRACE(image.Name);
        ExpectAsTheModel<TypeParam>(image.Get(), Everything, number % 3, Lowest64);
    });
}

TYPED_TEST(FindMaximaModel, AgreesOnWideRowsOfEveryLength) {
    ForRandomCases(150, [](int number, RandomPictures &random) {
        const auto grid = random.Levels<TypeParam>({number + 1, 5}, 6);
        const auto image = LaidOut(grid, number % 2 == 0 ? 3u : 15u);
        SCOPED_TRACE(image.Name);
        const PixelGrid<TypeParam> shown = PixelGrid<TypeParam>::Of(image.Get(), 1);
        ExpectAsTheModel<TypeParam>(image.Get(), Everything, 0, shown.At(number / 2, 2));
    });
}

TEST(FindMaximaWords, AgreeOnPlanesOf12BitsAndWithFlags) {
    ForRandomCases(200, [](int number, RandomPictures &random) {
        const TDataType flags = number % 3 == 0 ? DataTypeOverlay : number % 3 == 1 ? DataTypeComplex : 0;
        const auto wide = LaidOut(random.Picture<std::uint16_t>(random.Size()),
                                  static_cast<std::size_t>(number) % LayoutCount, 12 | flags);
        ExpectAsTheModel<std::uint16_t>(wide.Get(), Everything, random.Locality(),
                                        random.WholeThreshold<std::uint16_t>());
        const auto narrow = LaidOut(random.Picture<std::int8_t>(random.Size()),
                                    static_cast<std::size_t>(number) % LayoutCount, 5 | DataTypeSigned | flags);
        ExpectAsTheModel<std::int8_t>(narrow.Get(), Everything, random.Locality(),
                                      random.WholeThreshold<std::int8_t>());
    });
}

} // namespace
