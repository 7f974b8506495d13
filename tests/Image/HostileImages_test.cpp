// Images of a caller's own that tell sizes no memory holds, other sizes from call to call, or refuse what they told.
#include "Image/MapModel.h"
#include "ImageCopies.h"
#include "ImageMaps.h"
#include "ImageQueries.h"
#include "RectangleCopy.h"

namespace {

using namespace TestSupport;

/// Shows an image, but tells the dimensions itself. Its own query for anything but an image ends as told.
class LyingImage final : public pOLE::IImageVPA {
public:
    LyingImage(FakeImage &shown, std::function<ImageSize()> tell) : image(shown), told(std::move(tell)) {}
    LyingImage(FakeImage &shown, ImageSize size) : LyingImage(shown, [size] { return size; }) {}

    std::int32_t QueryInterface(const char *id, void **out) override {
        references.Take();
        *out = static_cast<pOLE::IImageVPA *>(this);
        return SameInterfaceId(id, ORV_IID_IIMAGEVPA) ? 0 : OtherQueryStatus;
    }
    std::uintptr_t AddRef() override { return references.Take(); }
    std::uintptr_t Release() override { return references.GiveBack(); }
    std::int32_t GetImageDimensions(std::intptr_t *planes, std::intptr_t *width, std::intptr_t *height) override {
        const ImageSize size = told();
        *planes = size.Planes;
        *width = size.Width;
        *height = size.Height;
        return 0;
    }
    std::int32_t GetPlaneDatatype(std::intptr_t plane, TDataType *type) override {
        return image.GetPlaneDatatype(plane, type);
    }
    std::int32_t GetPlaneVPA(std::intptr_t plane, void **base, VPAEntry **table) override {
        const std::int32_t status = image.GetPlaneVPA(plane, base, table);
        if (WithoutTables)
            *table = nullptr;
        return status;
    }
    std::int32_t GetCoordinateMap(TCoordinateMap *map) override { return image.GetCoordinateMap(map); }
    std::int32_t SetCoordinateMap(TCoordinateMap map) override { return image.SetCoordinateMap(map); }

    void *Handle() { return static_cast<pOLE::IImageVPA *>(this); }
    std::intptr_t Count() const { return references.Count(); }
    std::int32_t OtherQueryStatus = 0;
    bool WithoutTables = false;

private:
    CountedReferences references;
    FakeImage &image;
    std::function<ImageSize()> told;
};

constexpr unsigned char NoAndYes[] = {0, 1};
constexpr std::intptr_t TooManyPlanes[] = {std::intptr_t{1} << 31, std::intptr_t{1} << 60, Highest};

TEST(PlanesThatAreNotThere, AreNoReasonToTakeMemoryForACompatibleImage) {
    const auto two = FakeImage::Planar(3, 2, 2, 8);
    for (const std::intptr_t planes : TooManyPlanes) {
        LyingImage image(*two, {planes, 3, 2});
        ClearReports();
        void *out = UntouchedPointer();
        EXPECT_FALSE(CreateCompatibleImage(image.Handle(), 0, 0, 0, &out));
        EXPECT_EQ(out, UntouchedPointer());
        ExpectOneReport(0x80000001u, "CreateCompatibleImage");
        EXPECT_EQ(image.Count(), 1);
    }
}

TEST(PlanesThatAreNotThere, AreNoReasonToTakeMemoryForACopy) {
    const auto two = FakeImage::Planar(3, 2, 2, 8);
    for (const std::intptr_t planes : TooManyPlanes) {
        LyingImage image(*two, {planes, 3, 2});
        ClearReports();
        void *out = UntouchedPointer();
        EXPECT_EQ(CreateDuplicateImage(image.Handle(), &out), 0);
        EXPECT_EQ(ReportCount(), 2) << "of the compatible image, and of the copy itself";
        EXPECT_THROW(CreateDuplicateImageEx(image.Handle(), &out), std::runtime_error);
        EXPECT_EQ(out, UntouchedPointer());
        ClearReports();
        EXPECT_FALSE(CopyImageRect(image.Handle(), two->Handle(), 0, 0, 0, 0, 1, 1, 0, 0));
        ExpectOneReport(0x80000001u, "CopyImageRect");
        EXPECT_FALSE(CopyImageRectPlanes(two->Handle(), image.Handle(), 0, 0, 1, 1, 0, 0));
        ExpectOneReport(0x80000001u, "CopyImageRectPlanes");
        EXPECT_EQ(image.Count(), 1);
    }
}

TEST(SizesBeyondMemory, AreReadByPixValWithinTheBandInFrontOnly) {
    const auto small = FakeImage::Planar(3, 2, 1, 8);
    small->Pixels.front() = 7;
    for (const ImageSize size : {ImageSize{1, Highest, 2}, ImageSize{1, 3, Highest}}) {
        LyingImage image(*small, size);
        EXPECT_EQ(PixVal(image.Handle(), 0, -4, -4), 7);
        EXPECT_EQ(PixVal(image.Handle(), 0, -5, 0), 0x80000002);
        EXPECT_EQ(PixVal(image.Handle(), 0, 0, Lowest), 0x80000002);
        EXPECT_EQ(image.Count(), 1);
    }
}

TEST(SizesBeyondMemory, AreNotInserted) {
    for (const double origin : {0.0, -2147483648.0, 2147483647.0, 1e300})
        for (const ImageSize size : {ImageSize{1, Highest, 2}, ImageSize{1, 3, Highest}})
            for (const unsigned char align : NoAndYes) {
                const auto small = FakeImage::Planar(3, 2, 1, 8);
                const auto shown = FakeImage::Planar(3, 2, 1, 8);
                shown->Coordinates.X = shown->Coordinates.Y = origin;
                LyingImage image(*shown, size);
                for (const auto &[first, second] :
                     {std::pair{image.Handle(), small->Handle()}, std::pair{small->Handle(), image.Handle()}})
                    ExpectSilentRefusal(UntouchedPointer(), nullptr, [&, a = first, b = second](void **out) {
                        return CreateImageInsertList(a, b, 0, 1, align, out) != 0;
                    });
                EXPECT_EQ(image.Count(), 1);
            }
}

TEST(SizesBeyondMemory, AreNotMappedWherePositionsDoNotFit31Bits) {
    const auto small = FakeImage::Planar(3, 3, 1, 8);
    constexpr std::intptr_t wide = std::intptr_t{1} << 33;
    LyingImage image(*small, {1, wide, wide});
    for (const PixelRectangle &part : {PixelRectangle{0, 0, wide - 1, 0}, PixelRectangle{0, 0, 0, wide - 1}})
        ExpectSilentRefusal(UntouchedPointer(), nullptr, [&](void **out) {
            return CreateImageMap(image.Handle(), part.Left, part.Top, part.Right, part.Bottom, 2, 2, out);
        });
    Handle view;
    ASSERT_TRUE(CreateImageMap(image.Handle(), 1, 1, 2, 2, 2, 2, view.Out()));
    EXPECT_EQ(AccessOf(view.Get(), 0).At(1, 1), small->PixelAddress(0, 2, 2));
}

TEST(CreateDuplicateImage, FailsForAnImageThatTellsAnotherSizeWhenItsPixelsAreRead) {
    const auto shown = FakeImage::Planar(64, 64, 4, 8);
    for (const ImageSize later : {ImageSize{3, 64, 4}, ImageSize{3, 4, 64}, ImageSize{4, 4, 4}, ImageSize{3, 1, 1}})
        for (const std::intptr_t change : {1, 2, 3}) {
            std::intptr_t asked = 0;
            LyingImage image(*shown, [&] { return asked++ < change ? ImageSize{3, 4, 4} : later; });
            ClearReports();
            void *out = UntouchedPointer();
            const bool copied = CreateDuplicateImage(image.Handle(), &out) != 0;
            EXPECT_EQ(copied, out != UntouchedPointer());
            if (copied) {
                EXPECT_GE(change, asked) << "the other size was told and not noticed";
                ReleaseObject(out);
            } else {
                EXPECT_EQ(TakeReport()->code, 0x80000001u);
            }
            EXPECT_EQ(image.Count(), 1);
        }
}

TEST(CreateDuplicateImage, ReportsErrGeneralForWhatAnyOperationOfTheSourceThrows) {
    for (const TDataType type : {0x8u, 0x10u}) {
        const auto image = FakeImage::Planar(3, 2, 3, type);
        bool finished = false;
        for (int failing = 0; !finished; ++failing) {
            ASSERT_LT(failing, 1000);
            int number = 0;
            image->Fails.OnOperation = [&] {
                if (number++ == failing)
                    throw failing; // not a std::exception
            };
            ClearReports();
            void *out = UntouchedPointer();
            finished = CreateDuplicateImage(image->Handle(), &out) != 0;
            if (finished) {
                EXPECT_GE(failing, number) << "operation " << failing << " was swallowed";
                ReleaseObject(out);
            } else {
                EXPECT_EQ(out, UntouchedPointer());
                ExpectOneReport(0x80000001u, "CreateDuplicateImage");
            }
            EXPECT_EQ(image->Count(), 1);
        }
    }
}

/// Checks that every function that needs pixels fails in its own way for an image of 3 by 2 pixels with 2 planes.
void ExpectNoPixels(void *image, void *other) {
    ClearReports();
    EXPECT_EQ(PixVal(image, 1, 2, 1), 0x80000001);
    ExpectOneReport(0x80000001u, "PixVal");
    std::uint64_t value = 77;
    EXPECT_FALSE(GetPixVal(image, 1, 2, 1, &value));
    EXPECT_FALSE(SetPixVal(image, 1, 2, 1, &value));
    EXPECT_EQ(value, 77u);
    for (const std::uint32_t rotation : {1u, 2u, 3u})
        ExpectSilentRefusal(UntouchedPointer(), UntouchedPointer(),
                            [=](void **out) { return CreateRotatedImageMap(image, rotation, out); });
    void *out = UntouchedPointer();
    for (const std::uint32_t direction : {0u, 1u}) {
        EXPECT_FALSE(CreatePanoramicImageMap(image, other, direction, &out));
        ExpectOneReport(1, "CreatePanoramicImageMap");
        EXPECT_FALSE(CreatePanoramicImageMap(other, image, direction, &out));
        ExpectOneReport(1, "CreatePanoramicImageMap");
    }
    EXPECT_EQ(CreateDuplicateImage(image, &out), 0);
    ExpectOneReport(0x80000001u, "CreateDuplicateImage");
    EXPECT_THROW(CreateDuplicateImageEx(image, &out), std::runtime_error);
    EXPECT_FALSE(CopyImageRect(image, other, 1, 1, 0, 0, 2, 1, 0, 0));
    ExpectOneReport(0x80000001u, "CopyImageRect");
    EXPECT_FALSE(CopyImageRectPlanes(other, image, 0, 0, 2, 1, 0, 0));
    ExpectOneReport(0x80000001u, "CopyImageRectPlanes");
    EXPECT_EQ(out, UntouchedPointer());
}

TEST(PlanesWithoutATable, HaveNoPixels) {
    const auto two = FakeImage::Planar(3, 2, 2, 8);
    LyingImage image(*two, {2, 3, 2});
    image.WithoutTables = true;
    ExpectNoPixels(image.Handle(), two->Handle());
    for (const unsigned char share : NoAndYes) {
        ExpectSilentRefusal(UntouchedPointer(), nullptr,
                            [&](void **out) { return CreateImageSubList(image.Handle(), 0, 1, share, out); });
        ExpectSilentRefusal(UntouchedPointer(), nullptr,
                            [&](void **out) { return CreateImageDeleteList(image.Handle(), 0, 1, share, out); });
    }
    ExpectSilentRefusal(UntouchedPointer(), nullptr,
                        [&](void **out) { return CreateImageMap(image.Handle(), 0, 0, 1, 1, 2, 2, out); });
    EXPECT_EQ(image.Count(), 1);
}

TEST(PlanesWithoutABase, HaveNoPixelsAlsoInAView) {
    const auto other = FakeImage::Planar(3, 2, 2, 8);
    FakeImage image(3, 2);
    for (int plane = 0; plane < 2; ++plane)
        image.AddPlane(
            nullptr, 8, [](std::intptr_t i) { return i; }, [](std::intptr_t j) { return 3 * j; });
    ExpectNoPixels(image.Handle(), other->Handle());
    Handle view;
    ASSERT_TRUE(CreateImageSubList(image.Handle(), 0, 2, 1, view.Out()));
    ExpectNoPixels(view.Get(), other->Handle());
    view.Reset();
    EXPECT_EQ(image.Count(), 1);
}

TEST(PixVal, ReportsAPixelOfNoBitsAsItsDataType) {
    const auto image = FakeImage::Planar(2, 2, 1, 0x100);
    ClearReports();
    EXPECT_EQ(PixVal(image->Handle(), 0, 0, 0), 0x8000001C);
    ExpectOneReport(0x8000001Cu, "PixVal");
}

TEST(IsAll8Bit, IsFalseWhenAPlaneIsRefused) {
    const auto two = FakeImage::Planar(3, 2, 2, 8);
    LyingImage image(*two, {3, 3, 2});
    EXPECT_TRUE(IsAll8Bit(two->Handle()));
    EXPECT_FALSE(IsAll8Bit(image.Handle()));
    EXPECT_FALSE(HasOverlay(image.Handle()));
}

TEST(ImageColorModel, GivesBackAnInterfaceThatComesWithAnotherStatusThanZero) {
    const auto three = FakeImage::Planar(3, 2, 3, 8);
    LyingImage image(*three, {3, 3, 2});
    image.OtherQueryStatus = 1;
    EXPECT_EQ(ImageColorModel(image.Handle()), -2);
    EXPECT_EQ(image.Count(), 1);
}

} // namespace
