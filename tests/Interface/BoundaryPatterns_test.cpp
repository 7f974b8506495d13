/* What reaches the caller when something fails inside a function: the patterns of catching and reporting, each seen
 * on a function that images of the tests' own can make fail. */
#include "ImageMaps.h"
#include "Support/TestImages.h"

#include <new>

using namespace TestSupport;

namespace {

class BoundaryPatterns : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ClearReports(); }

    /// Joins the two images. The result must not reach out.
    bool Join() {
        void *out = &mark;
        const bool result = CreatePanoramicImageMap(first->Handle(), second->Handle(), PanoramaSideBySide, &out);
        EXPECT_EQ(out, &mark);
        EXPECT_EQ(first->Count(), 1);
        EXPECT_EQ(second->Count(), 1);
        return result;
    }
    bool Turn(std::uint32_t rotation) {
        void *out = &mark;
        const bool result = CreateRotatedImageMap(first->Handle(), rotation, &out);
        EXPECT_EQ(out, &mark);
        EXPECT_EQ(first->Count(), 1);
        return result;
    }
    static std::int32_t Status(std::uint32_t word) { return static_cast<std::int32_t>(word); }

    const std::unique_ptr<FakeImage> first = FakeImage::Planar(3, 2, 1, 8);
    const std::unique_ptr<FakeImage> second = FakeImage::Planar(4, 2, 1, 8);
    int mark = 0;
};

/// A status word that an image fails with, and the number that is reported for it.
struct StatusCase {
    std::uint32_t Word;
    std::uint32_t Reported;
};
constexpr StatusCase StatusCases[] = {{0x80000016u, 0x16},  {0x80000001u, 1},     {0xFFFFFFFFu, 0xFFF},
                                      {0x8000F016u, 0x016}, {0x80018ABCu, 0xABC}, {0x80007FFFu, 0xFFF}};

TEST_F(BoundaryPatterns, AFailingStatusIsReportedAsItsNumber) {
    for (const auto &status : StatusCases)
        for (FakeImage *image : {first.get(), second.get()})
            for (std::int32_t FakeImage::Failures::*failure :
                 {&FakeImage::Failures::DimensionsStatus, &FakeImage::Failures::VPAStatus}) {
                ClearReports();
                image->Fails.*failure = Status(status.Word);
                EXPECT_FALSE(Join());
                image->Fails = {};
                EXPECT_EQ(ReportCount(), 1);
                const auto report = TakeReport();
                ASSERT_TRUE(report);
                EXPECT_EQ(report->code, status.Reported);
                EXPECT_EQ(report->function, "CreatePanoramicImageMap");
                EXPECT_EQ(report->text, "Error code " + std::to_string(status.Reported) +
                                            " (no extended information) occured. Error from Sub-Facility Nr. 0 of "
                                            "Facility Nr. 0");
            }
}

TEST_F(BoundaryPatterns, ACodeOfZeroGivesTrueWithoutAReportAndWithoutAnImage) {
    // Required: what is left of the word after the cut decides, so that these failures count as none.
    for (const std::uint32_t word : {0x80000000u, 0x80010000u, 0xFFFF0000u, 0x8000F000u, 0x80001000u}) {
        first->Fails.DimensionsStatus = Status(word);
        EXPECT_TRUE(Join()) << word;
        EXPECT_EQ(ReportCount(), 0) << word;
        EXPECT_FALSE(TakeReport()) << word;
    }
}

TEST_F(BoundaryPatterns, AnythingElseThatIsThrownIsReportedAsErrGeneral) {
    const std::function<void()> throws[] = {[] { throw std::runtime_error("refused"); }, [] { throw 5; },
                                            [] { throw std::bad_alloc(); },
                                            [] { throw std::out_of_range("refused"); }};
    for (const auto &fail : throws)
        for (FakeImage *image : {first.get(), second.get()}) {
            ClearReports();
            image->Fails.OnOperation = fail;
            EXPECT_NO_THROW(EXPECT_FALSE(Join()));
            image->Fails = {};
            EXPECT_EQ(ReportCount(), 1);
            const auto report = TakeReport();
            ASSERT_TRUE(report);
            EXPECT_EQ(report->code, ErrGeneral) << "the whole code, with its failure bit";
            EXPECT_EQ(report->function, "CreatePanoramicImageMap");
        }
}

TEST_F(BoundaryPatterns, ThrownImageCodesLoseTheirFailureBit) {
    const auto higher = FakeImage::Planar(4, 3, 1, 8);
    const auto wider = FakeImage::Planar(4, 2, 1, 16);
    const auto morePlanes = FakeImage::Planar(4, 2, 2, 8);
    const struct {
        FakeImage *Other;
        std::uint32_t Direction;
        std::uint32_t Code;
    } cases[] = {{second.get(), 2, 0x02},     {second.get(), 0xFFFFFFFFu, 0x02}, {higher.get(), 0, 0x1A},
                 {morePlanes.get(), 0, 0x1A}, {second.get(), 1, 0x1A},           {wider.get(), 0, 0x1C}};
    for (const auto &one : cases) {
        ClearReports();
        void *out = &mark;
        EXPECT_FALSE(CreatePanoramicImageMap(first->Handle(), one.Other->Handle(), one.Direction, &out));
        EXPECT_EQ(out, &mark);
        EXPECT_EQ(one.Other->Count(), 1);
        EXPECT_EQ(ReportCount(), 1);
        const auto report = TakeReport();
        ASSERT_TRUE(report);
        EXPECT_EQ(report->code, one.Code);
    }
    EXPECT_EQ(first->Count(), 1);
}

TEST_F(BoundaryPatterns, ASilentFunctionSwallowsEverything) {
    const std::function<void()> throws[] = {[] { throw std::runtime_error("refused"); }, [] { throw 5; },
                                            [] { throw std::bad_alloc(); }};
    for (const std::uint32_t rotation : {1u, 2u, 3u}) {
        for (const auto &fail : throws) {
            first->Fails.OnOperation = fail;
            EXPECT_NO_THROW(EXPECT_FALSE(Turn(rotation)));
            first->Fails = {};
        }
        first->Fails.VPAStatus = StatusBadPlane;
        EXPECT_FALSE(Turn(rotation));
        first->Fails = {};
        EXPECT_EQ(ReportCount(), 0);
        EXPECT_FALSE(TakeReport());
    }
}

TEST_F(BoundaryPatterns, ASilentFunctionRefusesAnImageWithoutABaseWithoutAReport) {
    FakeImage baseless(3, 2);
    baseless.AddPlane(
        nullptr, 8, [](std::intptr_t i) { return i; }, [](std::intptr_t j) { return j * 3; });
    void *out = &mark;
    EXPECT_FALSE(CreateRotatedImageMap(baseless.Handle(), VPATRotation180, &out));
    EXPECT_EQ(out, &mark);
    EXPECT_EQ(baseless.Count(), 1);
    EXPECT_EQ(ReportCount(), 0);
}

} // namespace
