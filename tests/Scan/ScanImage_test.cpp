// All planes at once: the list of addresses, where it ends, and planes with tables of their own.
#include "Scan/ScanRecorder.h"
#include "Support/TestLayouts.h"

#include <numeric>

namespace {

using namespace TestSupport;

/// Planes of 4 x 3 pixels one behind the other; a plane of the mask gets the base address 0.
std::unique_ptr<FakeImage> WithNullBases(int planes, unsigned nullPlanes) {
    auto image = std::make_unique<FakeImage>(4, 3, static_cast<std::size_t>(planes) * 12);
    for (int plane = 0; plane < planes; ++plane) {
        const bool isNull = (nullPlanes >> plane & 1u) != 0;
        image->AddPlane(
            isNull ? nullptr : image->Pixels.data() + plane * 12, 8, [](auto x) { return x; },
            [](auto y) { return 4 * y; });
    }
    return image;
}

/// The lists of addresses of a walk over one pixel, each with as many entries as there are planes, and one more.
struct SeenLists {
    std::size_t Count1 = 0, Count2 = 0;
    std::vector<void *> List1, List2;
};
unsigned char SeeOne(void *data, void **pixels, std::int32_t, std::int32_t) {
    auto &seen = *static_cast<SeenLists *>(data);
    seen.List1.assign(pixels, pixels + seen.Count1 + 1);
    return 1;
}
unsigned char SeeTwo(void *data, void **pixels1, void **pixels2, std::int32_t, std::int32_t) {
    auto &seen = *static_cast<SeenLists *>(data);
    seen.List1.assign(pixels1, pixels1 + seen.Count1 + 1);
    seen.List2.assign(pixels2, pixels2 + seen.Count2 + 1);
    return 1;
}

/// What is told: addresses up to the first plane without a base address, then nulls.
std::vector<void *> ListOf(FakeImage &image, int planes, std::intptr_t x, std::intptr_t y) {
    std::vector<void *> list(static_cast<std::size_t>(planes) + 1, nullptr);
    for (std::size_t plane = 0; plane < static_cast<std::size_t>(planes) && image.BaseOf(plane) != nullptr; ++plane)
        list[plane] = image.PixelAddress(plane, x, y);
    return list;
}

constexpr TArea OnePixel{2, 1, 2, 1, 2, 1};

} // namespace

TEST(ScanImageUnary, GivesOneAddressPerPlaneAndANullBehindThem) {
    for (int planes = 0; planes <= 9; ++planes) {
        const auto image = WithNullBases(planes, 0);
        SeenLists seen{static_cast<std::size_t>(planes), 0, {}, {}};
        EXPECT_EQ(ScanImageUnary(image->Handle(), OnePixel, 1000, 0, SeeOne, nullptr, nullptr, &seen), 1);
        EXPECT_EQ(seen.List1, ListOf(*image, planes, 2, 1)) << planes << " planes";
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(ScanImageUnary, EndsTheListAtAPlaneWithoutABaseAddress) {
    for (unsigned nullPlanes = 0; nullPlanes < 16; ++nullPlanes) {
        const auto image = WithNullBases(4, nullPlanes);
        SeenLists seen{4, 0, {}, {}};
        EXPECT_EQ(ScanImageUnary(image->Handle(), OnePixel, 1000, 0, SeeOne, nullptr, nullptr, &seen), 1);
        EXPECT_EQ(seen.List1, ListOf(*image, 4, 2, 1)) << "null planes " << nullPlanes;
    }
}

TEST(ScanImageBinary, BuildsBothListsByTheirOwnPlanes) {
    for (int planes1 = 0; planes1 <= 4; ++planes1)
        for (int planes2 = 0; planes2 <= 4; ++planes2)
            for (unsigned nullPlanes = 0; nullPlanes < 16; ++nullPlanes) {
                const auto first = WithNullBases(planes1, nullPlanes),
                           second = WithNullBases(planes2, 15 - nullPlanes);
                SeenLists seen{static_cast<std::size_t>(planes1), static_cast<std::size_t>(planes2), {}, {}};
                ASSERT_EQ(ScanImageBinary(first->Handle(), second->Handle(), OnePixel, 1000, 1, -1, 0, SeeTwo,
                                          nullptr, nullptr, &seen),
                          1);
                ASSERT_EQ(seen.List1, ListOf(*first, planes1, 2, 1));
                ASSERT_EQ(seen.List2, ListOf(*second, planes2, 3, 0));
                ASSERT_EQ(first->Count() + second->Count(), 2);
            }
}

TEST(ScanImageBinary, HasNoAdditionalColumnAndRow) {
    const auto first = FakeImage::Planar(5, 4, 2, 8), second = FakeImage::Planar(5, 4, 2, 8);
    ScanRequest request;
    request.Image1 = first->Handle();
    request.Image2 = second->Handle();
    request.Area = {0, 0, 6, 0, 0, 5};
    const WalkRecord record = RunScan(Scan::ImageBinary, request);
    EXPECT_EQ(record.Result, -20);
    ExpectSameWalk(record, ModelScan(Scan::ImageBinary, request));
    request.Dx = -1;
    request.Dy = -2;
    EXPECT_EQ(RunScan(Scan::ImageBinary, request).Result, -8);
}

TEST(ScanImageUnary, MakesEachListAnewWhateverTheCallbackWroteIntoTheLast) {
    const auto image = WithNullBases(3, 0);
    const auto onPixel = [](void *data, void **pixels, std::int32_t x, std::int32_t y) -> unsigned char {
        auto &walked = *static_cast<FakeImage *>(data);
        for (std::size_t plane = 0; plane < 3; ++plane) {
            EXPECT_EQ(pixels[plane], walked.PixelAddress(plane, x, y));
            pixels[plane] = nullptr;
        }
        EXPECT_EQ(pixels[3], nullptr);
        return 1;
    };
    EXPECT_EQ(ScanImageUnary(image->Handle(), {0, 0, 3, 0, 0, 2}, 1000, 0, onPixel, nullptr, nullptr, image.get()),
              12);
}

TEST(ScanImageUnary, ReachesEachPlaneByItsOwnTableInAllLayouts) {
    for (const TDataType type : {0x8u, 0x110u, 0x18u, 0x220u, 0x40u, 0x80u, 0xA40u, 0x408u})
        for (const auto &image : MakeLayouts(7, 6, 3, type)) {
            SCOPED_TRACE(testing::Message() << image.Name << " of type " << type);
            ScanRequest request;
            request.Image1 = image.Get();
            request.Area = {1, -2, 8, 3, 0, 6};
            ASSERT_NO_FATAL_FAILURE(ExpectModelWalk(Scan::ImageUnary, request));
            for (request.Plane1 = 0; request.Plane1 < 3; ++request.Plane1)
                ASSERT_NO_FATAL_FAILURE(ExpectModelWalk(Scan::PlaneUnary, request));
        }
}

TEST(ScanImageUnary, LooksAtNoDataType) {
    const auto image = FakeImage::Planar(3, 2, 2, 0x8);
    image->Fails.DatatypeStatus = StatusBadPlane;
    ScanRequest request;
    request.Image1 = request.Image2 = image->Handle();
    request.Area = {0, 0, 2, 0, 0, 1};
    for (const Scan scan : AllScans)
        EXPECT_EQ(RunScan(scan, request).Result, 6) << NameOf(scan);
}
