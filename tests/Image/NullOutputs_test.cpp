// Functions that fill an output take a null one as a failure of their own kind: nothing is written, nothing breaks.
#include "ImageCoordinates.h"
#include "ImageCopies.h"
#include "ImageCreation.h"
#include "ImageMaps.h"
#include "ImageQueries.h"
#include "ImageViews.h"
#include "Support/TestImages.h"

namespace {

using namespace TestSupport;

class NullOutputs : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(CreateGenericImage(1, 4, 3, false, image.Out())); }
    void TearDown() override { EXPECT_EQ(RefCount(image.Get()), 1u); }
    Handle image;
};

TEST_F(NullOutputs, OfQueriesGiveFalse) {
    void *base = nullptr;
    VPAEntry *table = nullptr;
    EXPECT_FALSE(GetImageVPA(image.Get(), 0, nullptr, &table));
    EXPECT_FALSE(GetImageVPA(image.Get(), 0, &base, nullptr));
    EXPECT_EQ(base, nullptr);
    EXPECT_EQ(table, nullptr);
    EXPECT_FALSE(GetPixVal(image.Get(), 0, 0, 0, nullptr));
    EXPECT_FALSE(SetPixVal(image.Get(), 0, 0, 0, nullptr));
    int64_t limit = 7;
    EXPECT_FALSE(GetDatatypeMinMaxVal(8, &limit, nullptr));
    EXPECT_FALSE(GetDatatypeMinMaxVal(8, nullptr, &limit));
    EXPECT_EQ(limit, 7);
}

TEST_F(NullOutputs, OfCoordinatesGiveFalseOrNothing) {
    double value = 7.0;
    EXPECT_FALSE(MaxImageArea(image.Get(), nullptr));
    EXPECT_FALSE(GetImageCoordinates(image.Get(), nullptr));
    EXPECT_FALSE(GetImageOrigin(image.Get(), &value, nullptr));
    EXPECT_FALSE(GetImageOrigin(image.Get(), nullptr, &value));
    PixelToImage(image.Get(), &value, nullptr, 1.0, 2.0);
    ImageToPixel(image.Get(), nullptr, &value, 1.0, 2.0);
    PixelAreaToImage(image.Get(), nullptr, {});
    ImageAreaToPixel(image.Get(), nullptr, {});
    EXPECT_EQ(value, 7.0);
}

TEST_F(NullOutputs, OfCreatorsGiveTheirFailure) {
    EXPECT_FALSE(CreateGenericImage(1, 4, 3, false, nullptr));
    EXPECT_FALSE(CreateGenericImageDT(1, 4, 3, 16, nullptr));
    EXPECT_FALSE(CreateCompatibleImage(image.Get(), 0, 0, 0, nullptr));
    EXPECT_EQ(CreateDuplicateImage(image.Get(), nullptr), 0);
    EXPECT_FALSE(CreateDuplicateImageEx(image.Get(), nullptr));
    EXPECT_FALSE(CreateRotatedImageMap(image.Get(), 1, nullptr));
    EXPECT_FALSE(CreatePanoramicImageMap(image.Get(), image.Get(), 0, nullptr));
    EXPECT_FALSE(CreateImageMap(image.Get(), 0, 0, 3, 2, 4, 3, nullptr));
    EXPECT_FALSE(CreateImageSubList(image.Get(), 0, 1, 1, nullptr));
    EXPECT_FALSE(CreateImageDeleteList(image.Get(), 0, 1, 1, nullptr));
    EXPECT_EQ(CreateImageInsertList(image.Get(), image.Get(), 0, 1, 0, nullptr), 0);
    char byte = 0;
    EXPECT_EQ(CreateImageFromPointer(&byte, 1, 1, 1, 1, 8, 1, 1, 1, nullptr, nullptr, nullptr, nullptr), 2);
}

} // namespace
