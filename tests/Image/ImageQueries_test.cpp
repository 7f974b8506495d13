// Sizes, types, flags, colour model and plane access of any image, and the functions of the data type word alone.
// Handles that are no image are tried on every query.
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "ImageQueries.h"
#include "Support/ImageAccess.h"

#include <limits>

namespace {

using namespace TestSupport;

constexpr std::intptr_t Highest = std::numeric_limits<std::intptr_t>::max();
constexpr std::intptr_t Lowest = std::numeric_limits<std::intptr_t>::min();

/// A query over a handle: its reporting name, and a call that tells whether the failure value came back untouched.
struct Query {
    const char *Name;
    std::function<bool(void *)> Fails;
};

const Query Queries[] = {
    {"ImageDimension", [](void *image) { return ImageDimension(image) == 0; }},
    {"ImageWidth", [](void *image) { return ImageWidth(image) == 0; }},
    {"ImageHeight", [](void *image) { return ImageHeight(image) == 0; }},
    {"ImageDatatype", [](void *image) { return ImageDatatype(image, 0) == 0xFFFFFFFFu; }},
    {"HasOverlay", [](void *image) { return !HasOverlay(image); }},
    {"HasOverlay", [](void *image) { return !IsOverlayImage(image); }},
    {"IsAll8Bit", [](void *image) { return !IsAll8Bit(image); }},
    {"GetImageVPA",
     [](void *image) {
         void *base = UntouchedPointer();
         auto *table = static_cast<VPAEntry *>(UntouchedPointer());
         const bool result = GetImageVPA(image, 0, &base, &table);
         return !result && base == UntouchedPointer() && table == UntouchedPointer();
     }},
    {"MaxImageArea",
     [](void *image) {
         TArea area{1, 2, 3, 4, 5, 6};
         const TArea before = area;
         return !MaxImageArea(image, &area) && std::memcmp(&area, &before, sizeof area) == 0;
     }},
    {"ImageColorModel", [](void *image) { return ImageColorModel(image) == 0; }},
};

/// Answers every query with a status of its own and with a pointer that carries no reference.
class OddStatusImage final : public ForeignObject {
public:
    OddStatusImage(std::int32_t queryStatus, bool givesPointer) : status(queryStatus), pointer(givesPointer) {}
    std::int32_t QueryInterface(const char *, void **out) override {
        *out = pointer ? Handle() : nullptr;
        return status;
    }

private:
    std::int32_t status;
    bool pointer;
};

TEST(ImageQueries, ReportANullHandleUnderTheirOwnNames) {
    for (const auto &query : Queries) {
        SCOPED_TRACE(query.Name);
        ClearReports();
        EXPECT_TRUE(query.Fails(nullptr));
        ExpectOneReport(0x80000010u, query.Name);
    }
}

TEST(ImageQueries, ReportForeignHandlesUnderTheirOwnNames) {
    for (const auto &foreign : ForeignHandles())
        for (const auto &query : Queries) {
            SCOPED_TRACE(foreign.Name + " " + query.Name);
            ClearReports();
            EXPECT_TRUE(query.Fails(foreign.Get()));
            ExpectOneReport(0x80000010u, query.Name);
            EXPECT_EQ(foreign.Count(), 1);
        }
}

TEST(ImageQueries, ReportAnImageWhoseQueryGivesAnyStatusButZero) {
    OddStatusImage positive(1, false), negative(-1, false), refusedWithPointer(Status(0x80000011u), true);
    const auto throwing = FakeImage::Planar(2, 2, 1, 8);
    throwing->Fails.QueryThrows = true;
    for (void *handle : {positive.Handle(), negative.Handle(), refusedWithPointer.Handle(), throwing->Handle()})
        for (const auto &query : Queries) {
            SCOPED_TRACE(query.Name);
            ClearReports();
            EXPECT_TRUE(query.Fails(handle));
            ExpectOneReport(0x80000010u, query.Name);
        }
    EXPECT_EQ(throwing->Count(), 1);
    EXPECT_EQ(refusedWithPointer.Count(), 1) << "a refused query hands no reference out";
}

TEST(ImageQueries, GiveTheInterfaceBackAndReportNothing) {
    const auto fake = FakeImage::Planar(3, 2, 1, 8);
    Handle generic;
    ASSERT_TRUE(CreateGenericImage(3, 3, 2, false, generic.Out()));
    ClearReports();
    for (const auto &query : Queries)
        for (void *handle : {fake->Handle(), generic.Get()}) {
            query.Fails(handle);
            EXPECT_EQ(RefCount(handle), 1u) << query.Name;
        }
    ExpectNoReport();
}

TEST(ImageQueries, TellTheSizeOfAnyImage) {
    const auto fake = FakeImage::Planar(5, 3, 2, 16);
    Handle generic, external, view;
    std::vector<std::uint8_t> pixels(2 * 5 * 3 * 2);
    ASSERT_TRUE(CreateGenericImage(2, 5, 3, false, generic.Out()));
    ASSERT_EQ(
        CreateImageFromPointer(pixels.data(), 0, 5, 3, 2, 16, 2, 10, 30, nullptr, nullptr, nullptr, external.Out()),
        0);
    ASSERT_TRUE(CreateRotatedImageMap(fake->Handle(), VPATRotation180, view.Out()));
    for (void *image : {fake->Handle(), generic.Get(), external.Get(), view.Get()}) {
        EXPECT_EQ(ImageDimension(image), 2);
        EXPECT_EQ(ImageWidth(image), 5);
        EXPECT_EQ(ImageHeight(image), 3);
    }
}

TEST(ImageDatatype, TellsEachPlanesWord) {
    FakeImage image(1, 1, 8);
    const auto zero = [](std::intptr_t) { return std::intptr_t{0}; };
    for (const TDataType type : {0x8u, 0x110u, 0x240u, 0x408u})
        image.AddPlane(image.Pixels.data(), type, zero, zero);
    EXPECT_EQ(ImageDatatype(image.Handle(), 0), 0x8u);
    EXPECT_EQ(ImageDatatype(image.Handle(), 1), 0x110u);
    EXPECT_EQ(ImageDatatype(image.Handle(), 2), 0x240u);
    EXPECT_EQ(ImageDatatype(image.Handle(), 3), 0x408u);
}

TEST(ImageDatatype, ReportsAPlaneOutOfRange) {
    Handle generic, empty, external;
    std::uint8_t pixel = 0;
    ASSERT_TRUE(CreateGenericImage(3, 2, 2, false, generic.Out()));
    ASSERT_TRUE(CreateGenericImage(0, 2, 2, false, empty.Out()));
    ASSERT_EQ(CreateImageFromPointer(&pixel, 1, 1, 1, 1, 8, 1, 1, 0, nullptr, nullptr, nullptr, external.Out()), 0);
    for (void *image : {generic.Get(), empty.Get(), external.Get()})
        for (const std::intptr_t plane : {std::intptr_t{-1}, std::intptr_t{3}, Lowest, Highest}) {
            ClearReports();
            EXPECT_EQ(ImageDatatype(image, plane), 0xFFFFFFFFu);
            ExpectOneReport(0x80000006u, "ImageDatatype");
        }
}

TEST(ImageDatatype, LeavesAComposedTextWithItsClosingNul) {
    ClearReports();
    EXPECT_EQ(ImageDatatype(nullptr, 0), 0xFFFFFFFFu);
    const std::string expected =
        "Error code 16 (no extended information) occured. Error from Sub-Facility Nr. 0 of Facility Nr. 0";
    EXPECT_EQ(StoredReportText(), expected + '\0');
}

FakeImage &WithPlanes(FakeImage &image, std::initializer_list<TDataType> types) {
    const auto zero = [](std::intptr_t) { return std::intptr_t{0}; };
    for (const TDataType type : types)
        image.AddPlane(image.Pixels.data(), type, zero, zero);
    return image;
}

TEST(HasOverlay, IsTrueWhenAnyPlaneHasTheBit) {
    FakeImage none(1, 1, 8), last(1, 1, 8), all(1, 1, 8), empty(1, 1, 8);
    EXPECT_FALSE(HasOverlay(WithPlanes(none, {0x8, 0x208, 0x808, 0x108}).Handle()));
    EXPECT_TRUE(HasOverlay(WithPlanes(last, {0x8, 0x8, 0x408}).Handle()));
    EXPECT_TRUE(HasOverlay(WithPlanes(all, {0x510}).Handle()));
    EXPECT_FALSE(HasOverlay(empty.Handle()));
    EXPECT_TRUE(IsOverlayImage(last.Handle()));
    EXPECT_FALSE(IsOverlayImage(none.Handle()));
}

TEST(IsAll8Bit, LooksAtTheBitsOfEveryPlaneAndNothingElse) {
    FakeImage plain(1, 1, 8), flagged(1, 1, 8), last(1, 1, 8), first(1, 1, 8), empty(1, 1, 8);
    EXPECT_TRUE(IsAll8Bit(WithPlanes(plain, {0x8, 0x8, 0x8}).Handle()));
    EXPECT_TRUE(IsAll8Bit(WithPlanes(flagged, {0x108, 0x408, 0x208, 0x808}).Handle()));
    EXPECT_FALSE(IsAll8Bit(WithPlanes(last, {0x8, 0x8, 0x10}).Handle()));
    EXPECT_FALSE(IsAll8Bit(WithPlanes(first, {0x7, 0x8}).Handle()));
    EXPECT_FALSE(IsAll8Bit(empty.Handle())) << "an image without planes";
}

TEST(GetImageVPA, GivesBaseAndEntryZeroOfThePlane) {
    const auto image = FakeImage::Planar(4, 2, 3, 8);
    for (std::intptr_t plane = 0; plane < 3; ++plane) {
        void *base = nullptr;
        VPAEntry *table = nullptr;
        EXPECT_TRUE(GetImageVPA(image->Handle(), plane, &base, &table));
        EXPECT_EQ(base, image->BaseOf(static_cast<std::size_t>(plane)));
        EXPECT_EQ(table, image->TableOf(static_cast<std::size_t>(plane)));
    }
}

TEST(GetImageVPA, GivesFalseWithoutAReportWhenTheImageRefusesThePlane) {
    Handle generic, external;
    std::uint8_t pixel = 0;
    ASSERT_TRUE(CreateGenericImage(3, 2, 2, false, generic.Out()));
    ASSERT_EQ(CreateImageFromPointer(&pixel, 1, 1, 1, 1, 8, 1, 1, 0, nullptr, nullptr, nullptr, external.Out()), 0);
    ClearReports();
    for (void *image : {generic.Get(), external.Get()})
        for (const std::intptr_t plane : {std::intptr_t{-1}, std::intptr_t{3}}) {
            void *base = UntouchedPointer();
            auto *table = static_cast<VPAEntry *>(UntouchedPointer());
            EXPECT_FALSE(GetImageVPA(image, plane, &base, &table));
            EXPECT_EQ(base, UntouchedPointer());
            EXPECT_EQ(table, UntouchedPointer());
        }
    ExpectNoReport();
}

TEST(GetImageVPA, TakesEveryStatusThatIsNotNegativeForSuccess) {
    const auto image = FakeImage::Planar(2, 2, 1, 8);
    void *base = nullptr;
    VPAEntry *table = nullptr;
    image->Fails.VPAStatus = 1;
    EXPECT_TRUE(GetImageVPA(image->Handle(), 0, &base, &table));
    image->Fails.VPAStatus = -1;
    EXPECT_FALSE(GetImageVPA(image->Handle(), 0, &base, &table));
}

TEST(MaxImageArea, EndsAtTheLastPixelCentres) {
    const auto image = FakeImage::Planar(640, 480, 1, 8);
    TArea area{};
    EXPECT_TRUE(MaxImageArea(image->Handle(), &area));
    const TArea expected{0, 0, 639, 0, 0, 479};
    EXPECT_EQ(std::memcmp(&area, &expected, sizeof area), 0);
    image->Coordinates = {10.0, 20.0, {2.0, 0.0, 0.0, 2.0}};
    EXPECT_TRUE(MaxImageArea(image->Handle(), &area));
    EXPECT_EQ(std::memcmp(&area, &expected, sizeof area), 0) << "the coordinate system takes no part";
}

TEST(MaxImageArea, OfAnEmptyImageEndsAtMinusOne) {
    Handle image;
    ASSERT_TRUE(CreateGenericImage(0, 0, 0, false, image.Out()));
    TArea area{};
    EXPECT_TRUE(MaxImageArea(image.Get(), &area));
    EXPECT_EQ(area.X1, -1.0);
    EXPECT_EQ(area.Y2, -1.0);
}

/// An image that also tells a colour model, by an object of its own with a count of its own.
class ColouredImage final : public pOLE::IImageVPA, public pOLE::IColorModelInfo {
public:
    explicit ColouredImage(std::int32_t colourModel) : model(colourModel) {}
    std::int32_t QueryInterface(const char *id, void **out) override {
        if (SameInterfaceId(id, ORV_IID_ICOLORMODELINFO))
            *out = GivesNull ? nullptr : static_cast<pOLE::IColorModelInfo *>(this);
        else
            *out = static_cast<pOLE::IImageVPA *>(this);
        if (*out != nullptr)
            references.Take();
        return 0;
    }
    std::uintptr_t AddRef() override { return references.Take(); }
    std::uintptr_t Release() override { return references.GiveBack(); }
    std::int32_t GetColorModel() override { return model; }
    std::int32_t GetImageDimensions(std::intptr_t *planes, std::intptr_t *width, std::intptr_t *height) override {
        *planes = 3;
        *width = *height = 1;
        return 0;
    }
    std::int32_t GetPlaneDatatype(std::intptr_t, TDataType *type) override {
        *type = 8;
        return 0;
    }
    std::int32_t GetPlaneVPA(std::intptr_t, void **, VPAEntry **) override { return -1; }
    std::int32_t GetCoordinateMap(TCoordinateMap *) override { return 0; }
    std::int32_t SetCoordinateMap(TCoordinateMap) override { return 0; }
    void *Handle() { return static_cast<pOLE::IImageVPA *>(this); }
    std::intptr_t Count() const { return references.Count(); }
    bool GivesNull = false;

private:
    CountedReferences references;
    std::int32_t model;
};

TEST(ImageColorModel, AsksTheImageFirst) {
    for (const std::int32_t model : {0, 5, 11, -1, -7, std::numeric_limits<std::int32_t>::min()}) {
        ColouredImage image(model);
        EXPECT_EQ(ImageColorModel(image.Handle()), model);
        EXPECT_EQ(image.Count(), 1);
    }
}

TEST(ImageColorModel, GoesByThePlaneCountWhenTheImageTellsNone) {
    ColouredImage image(5);
    image.GivesNull = true;
    EXPECT_EQ(ImageColorModel(image.Handle()), -2);
    for (const auto &[planes, model] :
         {std::pair{0, 0}, std::pair{1, -1}, std::pair{2, 0}, std::pair{3, -2}, std::pair{4, 0}}) {
        Handle generic;
        ASSERT_TRUE(CreateGenericImage(planes, 2, 2, false, generic.Out()));
        EXPECT_EQ(ImageColorModel(generic.Get()), model);
        EXPECT_EQ(RefCount(generic.Get()), 1u);
    }
}

} // namespace
