/* CreateTransformedImage by planes: every type and layout against the model, planes of no pixel type, planes that the
 * source does not give. */
#include "Transformations/TransformChecks.h"

namespace {

using namespace TransformModel;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();

class TransformedImageOfEachType : public testing::TestWithParam<TDataType> {};
INSTANTIATE_TEST_SUITE_P(TenPixelTypes, TransformedImageOfEachType, testing::ValuesIn(PixelTypes), TypeName);

/// Turned, curved, and off the image in places; a few positions are no numbers.
void Curved(double *x, double *y) {
    const double oldX = *x, oldY = *y;
    *x = oldX * 0.9 - oldY * 0.31 + std::sin(oldY) * 2.0 + 1.5;
    *y = oldX * oldX * 0.011 + oldY * 0.8 - 1.25;
    if (oldX == 3.0)
        *y = NaN;
    if (oldY == 4.0)
        *x *= 1e9;
}

TEST_P(TransformedImageOfEachType, EqualsTheModelForEveryLayout) {
    constexpr ImageSize sizes[] = {{1, 1, 1}, {2, 1, 9}, {1, 9, 1}, {3, 7, 5}, {2, 33, 12}};
    std::uint32_t seed = GetParam();
    for (const auto &size : sizes)
        for (const TDataType overlay : {TDataType{0}, DataTypeOverlay})
            for (const auto &layout :
                 MakeLayouts(size.Width, size.Height, size.Planes, GetParam() | overlay, ++seed)) {
                SCOPED_TRACE(testing::Message() << layout.Name << ", " << size.Planes << " planes of " << size.Width
                                                << " x " << size.Height << ", overlay " << overlay);
                const ModelSource source(layout.Get());
                ASSERT_NO_FATAL_FAILURE(ExpectTransformedAsModel(layout.Get(), source, 17, 13, Curved));
                ASSERT_NO_FATAL_FAILURE(ExpectTransformedAsModel(layout.Get(), source, size.Width + 1,
                                                                 size.Height + 1, [](double *, double *) {}));
            }
}

TEST_P(TransformedImageOfEachType, EqualsTheModelForRandomPositions) {
    std::mt19937_64 random(GetParam());
    const auto image = WildImage(31, 9, {GetParam(), GetParam() | DataTypeOverlay}, 5);
    const ModelSource source(image->Handle());
    std::vector<std::pair<double, double>> positions;
    const double corners[] = {-1.0, -0.5, 0.0, 8.0, 9.0, 30.0, 30.5, 31.0, 1e10};
    const auto draw = [&](double extent) {
        const std::uint64_t word = random();
        if (word % 8 == 0)
            return corners[word / 8 % 9];
        return static_cast<double>(word >> 11) * 0x1p-53 * (extent + 3.0) - 1.5;
    };
    for (int i = 0; i < 40 * 40; ++i)
        positions.emplace_back(draw(31.0), draw(9.0));
    ExpectTransformedAsModel(image->Handle(), source, 40, 40, [&](double *x, double *y) {
        std::tie(*x, *y) = positions[static_cast<std::size_t>(*y * 40.0 + *x)];
    });
}

/// One plane of another image, over the same memory and guard entries.
std::unique_ptr<FakeImage> PlaneAlone(FakeImage &image, std::size_t plane, const ImageSize &size) {
    auto alone = std::make_unique<FakeImage>(size.Width, size.Height);
    alone->AddPlane(
        image.BaseOf(plane), 8, [&](std::intptr_t x) { return image.TableOf(plane)[x].XEntry; },
        [&](std::intptr_t y) { return image.TableOf(plane)[y].YEntry; });
    for (std::intptr_t guard = 0; guard < 4; ++guard) {
        alone->TableOf(0)[size.Width + guard].XEntry = image.TableOf(plane)[size.Width + guard].XEntry;
        alone->TableOf(0)[size.Height + guard].YEntry = image.TableOf(plane)[size.Height + guard].YEntry;
    }
    return alone;
}

TEST(CreateMatrixTransformedImage, ReadsBehindTheEdgeByTheTableOfEachPlane) {
    constexpr ImageSize size = {3, 9, 7};
    for (const bool isColumn : {true, false})
        for (std::size_t odd = 0; odd < 3; ++odd) {
            FakeImage image(size.Width, size.Height, 3 * 9 * 7);
            std::mt19937 random(7);
            for (auto &pixel : image.Pixels)
                pixel = static_cast<std::uint8_t>(random());
            for (std::size_t plane = 0; plane < 3; ++plane)
                image.AddPlane(
                    image.Pixels.data() + plane, 8, [](std::intptr_t x) { return 3 * x; },
                    [](std::intptr_t y) { return 27 * y; });
            (isColumn ? image.TableOf(odd)[size.Width].XEntry : image.TableOf(odd)[size.Height].YEntry) = 0;
            for (const TMatrix &matrix : {TMatrix{2.0, 0.0, 0.0, 2.0}, Turned(20.0, 1.5)}) {
                Handle together;
                ASSERT_TRUE(CreateMatrixTransformedImage(image.Handle(), together.Out(), matrix));
                for (std::size_t plane = 0; plane < 3; ++plane) {
                    const auto alone = PlaneAlone(image, plane, size);
                    Handle single;
                    ASSERT_TRUE(CreateMatrixTransformedImage(alone->Handle(), single.Out(), matrix));
                    EXPECT_EQ(PixelBytes(together.Get(), static_cast<std::intptr_t>(plane)),
                              PixelBytes(single.Get(), 0))
                        << "plane " << plane << ", odd entry of plane " << odd << ", of a column " << isColumn;
                }
            }
        }
}

TEST(CreateTransformedImage, CountsTheOverlayOfAnyPlaneForAllPlanesOfMixedTypes) {
    for (std::uint32_t overlays = 0; overlays < 16; ++overlays) {
        const auto image = WildImage(6, 5, WithOverlays({0x8, 0x120, 0x240, 0x10}, overlays), 7);
        const ModelSource source(image->Handle());
        SCOPED_TRACE(testing::Message() << "overlays " << overlays);
        EXPECT_EQ(source.Overlay, overlays != 0);
        ExpectTransformedAsModel(image->Handle(), source, 8, 7, Curved);
    }
}

/// Planes: 8 bits, one of another type, 16 bits. Only the first and last can be transformed.
void ExpectOthersTransformed(TDataType odd, bool countsAsOverlay) {
    FakeImage image(3, 2, 1000);
    std::uint8_t *base = image.Pixels.data();
    for (const TDataType type : {TDataType{8}, odd, TDataType{0x10}}) {
        const auto size = static_cast<std::intptr_t>(PixelSize(type));
        image.AddPlane(
            base, type, [=](std::intptr_t i) { return i * size; }, [=](std::intptr_t j) { return 3 * j * size; });
        base += 300;
    }
    std::iota(image.Pixels.begin(), image.Pixels.end(), std::uint8_t{3});
    ClearReports();
    int calls = 0;
    Handle out;
    ASSERT_TRUE(TransformBy(
        image.Handle(), 3, 2,
        [&calls](double *x, double *) {
            ++calls;
            *x += 0.5;
        },
        out.Out()));
    EXPECT_EQ(calls, 2 * 3 * 2) << "a plane of no pixel type is not walked through";
    ExpectOneReport(0x8000001Cu, "CreateTransformedImage");
    EXPECT_EQ(image.Count(), 1);
    ASSERT_EQ(SizeOf(out.Get()), (ImageSize{3, 3, 2}));
    EXPECT_EQ(TypeOf(out.Get(), 1), odd);
    const auto sampled = [&](auto zero, std::intptr_t plane) {
        using T = decltype(zero);
        const ModelPlane<T> model{ValuesOf<T>(PixelBytes(image.Handle(), plane)), 3, 2, countsAsOverlay};
        for (int i = 0; i < 6; ++i)
            EXPECT_EQ(PixelsOf<T>(out, plane)[static_cast<std::size_t>(i)], SampleReal(model, i % 3 + 0.5, i / 3));
    };
    sampled(std::uint8_t{}, 0);
    sampled(std::uint16_t{}, 2);
}

TEST(CreateTransformedImage, ReportsAPlaneOfNoPixelTypeAndGoesOnWithTheNext) {
    for (const TDataType odd : {24u, 128u, 0x208u, 0x210u, 0x118u})
        ExpectOthersTransformed(odd, false);
}

TEST(CreateTransformedImage, CountsTheOverlayOfAPlaneOfNoPixelType) {
    ExpectOthersTransformed(24u | DataTypeOverlay, true);
}

TEST(CreateTransformedImage, HasNoOverlayFromAPlaneWithoutADataType) {
    ExpectOthersTransformed(DataTypeNone, false);
}

TEST(Transforms, TakeThePixelTypeFromTheBytesOfAPixel) {
    const auto image = WildImage(6, 5, {0x101, 12, 0x820, 0x23A, 3}, 3);
    const ModelSource source(image->Handle());
    ExpectTransformedAsModel(image->Handle(), source, 8, 7, Curved);
    ExpectWholeAsModel(image->Handle(), source, Turned(10.0));
}

TEST(CreateTransformedImage, ReportsEachPlaneThatTheSourceDoesNotGiveAndGivesTrue) {
    const auto image = FakeImage::Planar(3, 2, 2, 8);
    for (const std::int32_t status : {Status(0x80000001u), -1}) {
        image->Fails.VPAStatus = status;
        ClearReports();
        Handle out;
        EXPECT_TRUE(CreateTransformedImage(image->Handle(), 3, 2, SamePosition, nullptr, out.Out()));
        EXPECT_EQ(ReportCount(), 2);
        ExpectNewestReport(0x80000013u, "CreateTransformedImage");
        EXPECT_EQ(SizeOf(out.Get()), (ImageSize{2, 3, 2}));
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(CreateTransformedImage, ReportsAPlaneWithoutABaseAndFillsTheOthers) {
    FakeImage image(2, 1, 2);
    image.Pixels.front() = 7;
    image.Pixels.back() = 9;
    for (std::uint8_t *const base : {image.Pixels.data(), static_cast<std::uint8_t *>(nullptr), image.Pixels.data()})
        image.AddPlane(
            base, 8, [](std::intptr_t i) { return i; }, [](std::intptr_t) { return 0; });
    ClearReports();
    Handle out;
    EXPECT_TRUE(CreateTransformedImage(image.Handle(), 2, 1, SamePosition, nullptr, out.Out()));
    ExpectOneReport(0x80000013u, "CreateTransformedImage");
    EXPECT_EQ(PixelsOf<std::uint8_t>(out, 0), (std::vector<std::uint8_t>{7, 9}));
    EXPECT_EQ(PixelsOf<std::uint8_t>(out, 2), (std::vector<std::uint8_t>{7, 9}));
}

TEST(CreateTransformedImage, ReportsErrGeneralWhereNoCompatibleImageComesAbout) {
    const auto image = FakeImage::Planar(3, 2, 1, 8);
    image->Fails.DatatypeStatus = -1;
    for (const auto &[name, reportName, run] : CallbackExports()) {
        ExpectRefusal(image->Handle(), run);
        ExpectNewestReport(0x80000001u, "CreateTransformedImage");
    }
}

} // namespace
