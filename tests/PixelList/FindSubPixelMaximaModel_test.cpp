/* FindSubPixelMaxima on random pictures against its plainest form: all ten pixel types, all layouts, every fit,
 * rectangles, localities and thresholds of every kind. ORV_TEST_CASE runs one case by its number. */
#include "PixelList/RandomPictures.h"
#include "PixelList/SubPixelModel.h"

namespace {

using namespace TestSupport;

template <class T>
class FindSubPixelMaximaModel : public testing::Test {};
using AllTypes = testing::Types<std::int8_t, std::uint8_t, std::int16_t, std::uint16_t, std::int32_t, std::uint32_t,
                                std::int64_t, std::uint64_t, float, double>;
TYPED_TEST_SUITE(FindSubPixelMaximaModel, AllTypes);

/// A rectangle that has no pixel in common with the image is refused; every other one is searched as the model does.
template <class T>
void ExpectAsTheModel(void *image, const PixelRectangle &told, const SubPixelChoice &choice) {
    const auto shown = PixelGrid<T>::Of(image, 1);
    SCOPED_TRACE(std::to_string(shown.Width) + " x " + std::to_string(shown.Height) + ", " +
                 testing::PrintToString(told) + ", locality " + std::to_string(choice.Locality) + ", threshold " +
                 std::to_string(choice.Threshold) + ", fit " + std::to_string(choice.Fit) + ", radius " +
                 std::to_string(choice.Radius));
    PixelRectangle r = told;
    ClipToImage(shown.Width, shown.Height, r, false);
    const bool hasPixels = r.Left >= 0 && r.Left <= r.Right && r.Right < shown.Width && r.Top >= 0 &&
                           r.Top <= r.Bottom && r.Bottom < shown.Height;
    if (hasPixels) {
        EXPECT_EQ(SubPixelMaxima(image, told, choice, 1), SubPixelModel<T>(shown, r).Search(choice));
        return;
    }
    void *list = UntouchedPointer();
    ClearReports();
    EXPECT_FALSE(FindSubPixelMaxima(image, 1, told.Left, told.Top, told.Right, told.Bottom, choice.Locality,
                                    choice.Fit, choice.Radius, &list, choice.Threshold));
    ExpectOneReport(ErrGeneral, "FindSubPixelMaxima");
    EXPECT_EQ(list, UntouchedPointer());
}

template <class T>
void ExpectAgreement(int cases, const std::vector<std::uint32_t> &fits) {
    ForRandomCases(cases, [&](int number, RandomPictures &random) {
        const auto grid = random.Picture<T>(random.Size());
        const auto image = LaidOut(grid, static_cast<std::size_t>(number) % LayoutCount);
        SCOPED_TRACE(image.Name);
        const ImageSize size = SizeOf(image.Get());
        const auto radius = static_cast<std::int32_t>(random.Draw(0, 4));
        const SubPixelChoice choice{random.Locality(), random.RealThreshold<T>(), random.OneOf(fits), radius};
        ExpectAsTheModel<T>(image.Get(), random.Rectangle(size.Width, size.Height), choice);
    });
}

TYPED_TEST(FindSubPixelMaximaModel, SelectsTheSamePixels) {
    ExpectAgreement<TypeParam>(25000, {FitNone});
}

TYPED_TEST(FindSubPixelMaximaModel, FitQuadraticGivesTheSameBits) {
    ExpectAgreement<TypeParam>(2500, {FitQuadratic});
}

TYPED_TEST(FindSubPixelMaximaModel, FitParaboloidGivesTheSameBits) {
    ExpectAgreement<TypeParam>(1500, {FitParaboloid});
}

TYPED_TEST(FindSubPixelMaximaModel, FitGaussianGivesTheSameBits) {
    ExpectAgreement<TypeParam>(1500, {FitGaussian});
}

TYPED_TEST(FindSubPixelMaximaModel, SelectsTheSamePixelsOfLargerPictures) {
    ForRandomCases(6, [](int number, RandomPictures &random) {
        const PictureSize size{random.Draw(60, 90), random.Draw(40, 60)};
        const auto image = LaidOut(random.Levels<TypeParam>(size, number % 2 == 0 ? 30 : 3),
                                   static_cast<std::size_t>(random.Draw(0, LayoutCount - 1)));
        SCOPED_TRACE(image.Name);
        ExpectAsTheModel<TypeParam>(image.Get(), Everything, {number, -Infinity, FitNone, 1});
    });
}

/// Every number of maxima from none to some dozens, refined in one search.
template <class T>
void ExpectAgreementOnManyMaxima(double brightness) {
    ForRandomCases(96, [&](int number, RandomPictures &random) {
        PixelGrid<T> grid(33, 29);
        for (T &pixel : grid.Values)
            pixel = static_cast<T>(random.Draw(0, 9));
        for (int peak = 0; peak < number; ++peak)
            grid.At(random.Draw(0, 32), random.Draw(0, 28)) =
                static_cast<T>(brightness + static_cast<double>(random.Draw(0, 20)));
        const auto image = LaidOut(grid, static_cast<std::size_t>(random.Draw(0, LayoutCount - 5)));
        SCOPED_TRACE(image.Name);
        const SubPixelChoice choice{number % 5, brightness, static_cast<std::uint32_t>(1 + number % 3),
                                    static_cast<std::int32_t>(random.Draw(1, 4))};
        ExpectAsTheModel<T>(image.Get(), number % 2 == 0 ? Everything : PixelRectangle{3, 2, 30, 27}, choice);
    });
}

TEST(FindSubPixelMaximaFits, AgreeOnManyMaximaAtOnce) {
    ExpectAgreementOnManyMaxima<std::uint8_t>(200);
    ExpectAgreementOnManyMaxima<std::int32_t>(1e6);
    ExpectAgreementOnManyMaxima<float>(77.75);
    ExpectAgreementOnManyMaxima<double>(1e9);
}

TEST(FindSubPixelMaximaWords, AgreeOnPlanesOf12BitsAndWithFlags) {
    ForRandomCases(150, [](int number, RandomPictures &random) {
        const TDataType flags = number % 3 == 0 ? DataTypeOverlay : number % 3 == 1 ? DataTypeComplex : 0;
        const auto layout = static_cast<std::size_t>(number) % LayoutCount;
        const SubPixelChoice choice{number % 4, 1.0, static_cast<std::uint32_t>(number % 6), 1 + number % 4};
        const auto wide = LaidOut(random.Picture<std::uint16_t>(random.Size()), layout, 12 | flags);
        ExpectAsTheModel<std::uint16_t>(wide.Get(), Everything, choice);
        const auto narrow = LaidOut(random.Picture<std::int64_t>(random.Size()), layout, 57 | DataTypeSigned | flags);
        ExpectAsTheModel<std::int64_t>(narrow.Get(), Everything, choice);
    });
}

TEST(FindMaximaExModel, GivesTheListOfFindSubPixelMaximaWithoutAFit) {
    ForRandomCases(300, [](int number, RandomPictures &random) {
        const auto grid = random.Picture<std::int16_t>(random.Size());
        const auto image = LaidOut(grid, static_cast<std::size_t>(number) % LayoutCount);
        const auto shown = PixelGrid<std::int16_t>::Of(image.Get(), 1);
        const PixelRectangle whole{0, 0, shown.Width - 1, shown.Height - 1};
        const SubPixelChoice choice{random.Locality(), random.RealThreshold<std::int16_t>(), FitNone, 1};
        Handle list;
        ASSERT_TRUE(FindMaximaEx(image.Get(), 1, 0, 0, whole.Right, whole.Bottom, choice.Locality, list.Out(),
                                 choice.Threshold));
        EXPECT_EQ(ReadSpots(list.Get()), SubPixelModel<std::int16_t>(shown, whole).Search(choice));
        EXPECT_EQ(ReadSpots(list.Get()), SubPixelMaxima(image.Get(), Everything, choice, 1));
    });
}

} // namespace
