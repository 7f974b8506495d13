// The trees of images that own their memory: layouts, nodes, palettes and counts behind the handles.
#include "Image/TreeBuilder.h"

#include <cstring>
#include <gtest/gtest.h>

#include "CtkExceptionObject.h"
#include "Support/TestImages.h"

namespace {

using Persistence::NodeHolder;

NodeHolder<TSimpleDIB> Bitmap(std::int32_t width, std::int32_t height, std::uint16_t bits) {
    NodeHolder<TDIBInfo> info(new TDIBInfo);
    info->WriteHeader(width, height, bits);
    return Image::BuildBitmap(std::move(info));
}

TEST(TreeBuilder, AThirtyTwoBitBitmapHasThreePlanesOverFourByteSteps) {
    const auto root = Bitmap(5, 3, 32);
    ASSERT_NE(root->PlaneList(), nullptr);
    ASSERT_EQ(root->PlaneList()->GetCount(), 3);
    for (std::intptr_t p = 0; p < 3; ++p) {
        const VPAEntry *table = root->Plane(p)->Table();
        for (std::intptr_t i = 0; i < 5; ++i)
            EXPECT_EQ(table[i].XEntry, 2 * 20 + 2 - p + 4 * i);
        for (std::intptr_t j = 0; j < 3; ++j)
            EXPECT_EQ(table[j].YEntry, -j * 20);
        EXPECT_EQ(table[-4].XEntry, table[0].XEntry);
        EXPECT_EQ(table[8].XEntry, table[4].XEntry);
        EXPECT_EQ(table[6].YEntry, -40);
        EXPECT_EQ(root->Plane(p)->PixelBase(), root->PixelBuffer()->GetData());
    }
    EXPECT_EQ(root->PixelBuffer()->GetSize(), 60u);
}

TEST(TreeBuilder, ANegativeHeightBuildsTopDown) {
    const auto root = Bitmap(5, -3, 8);
    const VPAEntry *table = root->Plane(0)->Table();
    EXPECT_EQ(table[0].XEntry, 0);
    EXPECT_EQ(table[4].XEntry, 4);
    EXPECT_EQ(table[2].YEntry, 16);
    std::intptr_t planes = 0, width = 0, height = 0;
    root->GetDimensions(&planes, &width, &height);
    EXPECT_EQ(height, 3);
}

TEST(TreeBuilder, OtherBitCountsAndEmptySizesEndWithoutATree) {
    for (const std::uint16_t bits : {std::uint16_t{1}, std::uint16_t{4}, std::uint16_t{16}, std::uint16_t{64}})
        EXPECT_EQ(Bitmap(4, 4, bits)->PlaneList(), nullptr) << bits;
    EXPECT_EQ(Bitmap(0, 4, 8)->PlaneList(), nullptr);
    EXPECT_EQ(Bitmap(4, 0, 24)->PlaneList(), nullptr);
}

TEST(TreeBuilder, AnEmptyBitmapRefusesAnOverlayAndItsBitmapInterface) {
    const auto root = Bitmap(0, 4, 8);
    EXPECT_THROW(root->SetOverlay(true), CtkExceptionObject);
    void *out = &out;
    EXPECT_EQ(root->QueryInterface(ORV_IID_IIMAGEDIB, &out), -1);
    EXPECT_EQ(out, nullptr);
}

TEST(TreeBuilder, CountsGoDeepOncePerPath) {
    auto root = Bitmap(4, 4, 24);
    EXPECT_EQ(root->PixelBuffer()->GetRefCount(), 3);
    EXPECT_EQ(root->Plane(1)->GetRefCount(), 1);
    EXPECT_EQ(root->Info()->GetRefCount(), 1);
    root->Share();
    EXPECT_EQ(root->PixelBuffer()->GetRefCount(), 6);
    EXPECT_EQ(root->Plane(1)->GetRefCount(), 2);
    EXPECT_EQ(root->Release(), 1);
    EXPECT_EQ(root->PixelBuffer()->GetRefCount(), 3);
}

TEST(TreeBuilder, ClassesTellTheirNumbersAndBases) {
    const auto root = Bitmap(4, 4, 8);
    EXPECT_EQ(root->GetClassId(), 8u);
    EXPECT_EQ(root->LevelTag(), 31u);
    EXPECT_EQ(root->GetNodeTag(), 21u);
    EXPECT_EQ(root->GetFamily(), 7u);
    for (const unsigned bit : {0u, 1u, 3u, 8u})
        EXPECT_TRUE(root->IsMemberOf(bit)) << bit;
    EXPECT_FALSE(root->IsMemberOf(4));
    TImagePlane *plane = root->Plane(0);
    EXPECT_EQ(plane->GetClassId(), 4u);
    EXPECT_EQ(plane->GetClassTag(), 33u);
    for (const unsigned bit : {0u, 1u, 2u, 4u})
        EXPECT_TRUE(plane->IsMemberOf(bit)) << bit;
    EXPECT_EQ(root->Info()->GetClassId(), 9u);
    EXPECT_EQ(root->Info()->GetClassTag(), 32u);
    EXPECT_EQ(root->Interface()->GetClassId(), 12u);
    EXPECT_EQ(root->Interface()->LevelTag(), 35u);
    EXPECT_TRUE(root->Interface()->IsMemberOf(12));
}

TEST(TreeBuilder, AnInterlaceMovesEverySecondRow) {
    const auto root = Image::BuildTypedPlanes({1, 2, 5}, 16, 1000);
    const VPAEntry *table = root->Plane(0)->Table();
    const std::intptr_t rows[] = {0, 1000, 4, 1004, 8};
    for (std::intptr_t j = 0; j < 5; ++j)
        EXPECT_EQ(table[j].YEntry, rows[j]);
    EXPECT_EQ(table[8].YEntry, 8);
    EXPECT_EQ(table[-1].YEntry, 0);
}

TEST(TreeBuilder, BytesBetweenTheRowsOfABitmapAreZero) {
    const auto root = Bitmap(5, 3, 8);
    const auto *bytes = static_cast<const unsigned char *>(root->PixelBuffer()->GetData());
    for (int row = 0; row < 3; ++row)
        for (int pad = 5; pad < 8; ++pad)
            EXPECT_EQ(bytes[row * 8 + pad], 0);
}

TEST(DIBInfo, TheIndexTableHoldsPaletteIndices) {
    TDIBInfo info;
    EXPECT_EQ(info.GetPaletteMode(), -1);
    info.WriteHeader(2, 2, 8);
    info.SetPaletteMode(TDIBInfo::IndexTable, 3);
    EXPECT_EQ(info.GetSize(), 1064u);
    EXPECT_EQ(info.GetPaletteMode(), 1);
    const auto *block = static_cast<const char *>(info.GetData()) + 40;
    for (std::uint32_t i = 0; i < 256; ++i) {
        std::uint16_t index = 0;
        std::memcpy(&index, block + 2 * i, 2);
        const std::uint32_t expected = (i & 3u) == 0   ? ((63 * i / 255 + 20) & 255)
                                       : (i & 3u) == 1 ? ((31 * i / 255 + 84) & 255)
                                                       : 18;
        EXPECT_EQ(index, expected) << i;
    }
}

TEST(DIBInfo, TheColorTableIsARampWithoutAMask) {
    TDIBInfo info;
    info.WriteHeader(2, 2, 8);
    info.SetPaletteMode(TDIBInfo::ColorTable, 0);
    const auto *block = static_cast<const unsigned char *>(info.GetData()) + 40;
    for (unsigned i = 0; i < 256; ++i) {
        EXPECT_EQ(block[4 * i], i);
        EXPECT_EQ(block[4 * i + 1], i);
        EXPECT_EQ(block[4 * i + 2], i);
        EXPECT_EQ(block[4 * i + 3], 0);
    }
}

TEST(DIBInfo, OverlayEntriesOfTheColorTableRewriteItsFirstFour) {
    TDIBInfo info;
    info.WriteHeader(2, 2, 8);
    info.SetPaletteMode(TDIBInfo::ColorTable, 128);
    const auto *block = static_cast<const unsigned char *>(info.GetData()) + 40;
    const unsigned char patch[16] = {255, 200, 160, 0, 255, 0, 0, 0, 0, 255, 255, 0, 0, 255, 255, 0};
    EXPECT_EQ(std::memcmp(block, patch, 16), 0);
    EXPECT_EQ(block[4 * 127], 127);
    for (unsigned byte = 4 * 128; byte < 1024; ++byte)
        EXPECT_EQ(block[byte], 0) << "an overlay entry wrote its own place";
}

TEST(DIBInfo, TheSameModeAgainAndOtherBitCountsLeaveTheBlock) {
    TDIBInfo info;
    info.WriteHeader(2, 2, 8);
    info.SetPaletteMode(TDIBInfo::ColorTable, 0);
    const std::vector<char> before(static_cast<char *>(info.GetData()), static_cast<char *>(info.GetData()) + 1064);
    info.SetPaletteMode(TDIBInfo::ColorTable, 255);
    EXPECT_EQ(std::memcmp(info.GetData(), before.data(), 1064), 0);
    TDIBInfo color;
    color.WriteHeader(2, 2, 24);
    EXPECT_EQ(color.GetSize(), 40u);
    color.SetPaletteMode(TDIBInfo::ColorTable, 0);
    EXPECT_EQ(color.GetPaletteMode(), 0);
}

TEST(ImageDataExt, AsksItsSourceAtEveryAccessAndKeepsIt) {
    auto source = TestSupport::FakeImage::Planar(4, 3, 2, 8);
    {
        TImageDataExt data(source->Handle(), 1);
        EXPECT_EQ(source->Count(), 2);
        EXPECT_EQ(data.GetClassId(), 11u);
        EXPECT_EQ(data.GetClassTag(), 34u);
        EXPECT_EQ(data.GetData(), source->BaseOf(1));
        EXPECT_EQ(data.GetData(), source->BaseOf(1));
        EXPECT_EQ(source->CallsOf("GetPlaneVPA"), 2);
        source->Fails.VPAStatus = -1;
        EXPECT_EQ(data.GetData(), nullptr);
    }
    EXPECT_EQ(source->Count(), 1);
}

TEST(ImageDataExt, AFailedQueryLeavesItWithoutASource) {
    TestSupport::OnlyUnknown other;
    TImageDataExt data(other.Handle(), 0);
    EXPECT_EQ(data.GetData(), nullptr);
    EXPECT_EQ(other.Count(), 1);
    TImageDataExt none(nullptr, 0);
    EXPECT_EQ(none.GetData(), nullptr);
}

TEST(ImageDataExt, AGoodStatusWithoutAnInterfaceRaises) {
    TestSupport::NullInterfaceUnknown other;
    try {
        TImageDataExt data(other.Handle(), 0);
        FAIL() << "no exception";
    } catch (const CtkExceptionObject &error) {
        EXPECT_STREQ(error.GetText(), "ImageVPA-Interface not supported");
    }
}

} // namespace
