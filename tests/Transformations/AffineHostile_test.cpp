/* Affine transforms of what is no image, fails, throws or is no number, and results that no memory holds. */
#include "Transformations/TransformChecks.h"

#include <sys/resource.h>

namespace {

using namespace TransformModel;

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double Infinity = std::numeric_limits<double>::infinity();

TEST(Transforms, ReportWhatIsNoImageUnderTheNameOfTheFunctionCalled) {
    for (const auto &[name, reportName, run] : AllExports()) {
        SCOPED_TRACE(name);
        ExpectRefusal(nullptr, run);
        ExpectOneReport(0x80000010u, reportName);
        for (const auto &foreign : ForeignHandles()) {
            SCOPED_TRACE(foreign.Name);
            ClearReports();
            void *out = UntouchedPointer();
            EXPECT_FALSE(run(foreign.Get(), &out));
            EXPECT_EQ(out, UntouchedPointer());
            ExpectOneReport(0x80000010u, reportName);
            EXPECT_EQ(foreign.Count(), 1);
        }
    }
}

TEST(Transforms, ReportAnImageThatRefusesItsInterface) {
    for (const auto &[name, reportName, run] : AllExports())
        for (int way = 0; way < 3; ++way) {
            SCOPED_TRACE(testing::Message() << name << ", way " << way);
            const auto image = FakeImage::Planar(6, 5, 1, 8);
            image->Fails.QueryThrows = way == 0;
            image->Fails.QueryGivesNull = way == 1;
            image->Fails.QueryStatus = way == 2 ? -1 : 0;
            ClearReports();
            void *out = UntouchedPointer();
            EXPECT_FALSE(run(image->Handle(), &out));
            EXPECT_EQ(out, UntouchedPointer());
            ExpectOneReport(0x80000010u, reportName);
            EXPECT_EQ(image->Count(), 1);
        }
}

TEST(Transforms, ReportANullOutputAsAParameterBehindTheImage) {
    const auto image = FakeImage::Planar(6, 5, 1, 8);
    for (const auto &[name, reportName, run] : AllExports()) {
        SCOPED_TRACE(name);
        ClearReports();
        EXPECT_FALSE(run(image->Handle(), nullptr));
        ExpectOneReport(0x80000002u, reportName);
        EXPECT_EQ(image->Count(), 1);
        EXPECT_FALSE(run(nullptr, nullptr));
        ExpectOneReport(0x80000010u, reportName);
    }
}

TEST(Transforms, ReportANullMapOrAreaAsAParameter) {
    const auto image = FakeImage::Planar(6, 5, 1, 8);
    ExpectRefusal(image->Handle(),
                  [](void *from, void **out) { return CreateAffineTransformedImage(from, nullptr, out); });
    ExpectOneReport(0x80000002u, "CreateAffineTransformedImage");
    for (const bool hasMap : {false, true})
        for (const bool hasArea : {false, true}) {
            if (hasMap && hasArea)
                continue;
            ExpectRefusal(image->Handle(), [=](void *from, void **out) {
                return CreateAreaAffineTransformedImage(from, hasMap ? &SlightlyTurned : nullptr,
                                                        hasArea ? &SmallArea : nullptr, out);
            });
            ExpectOneReport(0x80000002u, "CreateAreaAffineTransformedImage");
        }
}

TEST(AffineTransforms, GiveFalseWithoutAReportForPlanesOfNoPixelType) {
    for (const TDataType odd : {24u, 128u, 0x210u}) {
        const auto image = FakeImage::Planar(6, 5, 2, odd);
        for (const auto &[name, reportName, run] : AffineExports()) {
            SCOPED_TRACE(testing::Message() << name << ", type " << odd);
            ExpectRefusal(image->Handle(), run);
            ExpectNoReport();
        }
    }
}

TEST(AffineTransforms, GiveFalseWithoutAReportForOnePlaneOfNoPixelTypeAmongOthers) {
    FakeImage image(6, 5, 90);
    for (const TDataType type : {8u, 24u, 8u})
        image.AddPlane(
            image.Pixels.data(), type, [](std::intptr_t i) { return 3 * i; }, [](std::intptr_t j) { return 18 * j; });
    for (const auto &[name, reportName, run] : AffineExports()) {
        SCOPED_TRACE(name);
        ExpectRefusal(image.Handle(), run);
        ExpectNoReport();
    }
}

TEST(AffineTransforms, GiveFalseWithoutAReportForPlanesThatTheSourceDoesNotGive) {
    const auto image = FakeImage::Planar(6, 5, 2, 8);
    image->Fails.VPAStatus = -1;
    FakeImage empty(6, 5);
    empty.AddPlane(
        nullptr, 8, [](std::intptr_t i) { return i; }, [](std::intptr_t j) { return 6 * j; });
    for (const auto &[name, reportName, run] : AffineExports())
        for (FakeImage *const source : {image.get(), &empty}) {
            SCOPED_TRACE(name);
            ExpectRefusal(source->Handle(), run);
            ExpectNoReport();
        }
}

TEST(AffineTransforms, GiveFalseWithoutAReportOfTheirOwnForDimensionsOrTypesThatCanNotBeRead) {
    const auto image = FakeImage::Planar(6, 5, 2, 8);
    for (const auto &[name, reportName, run] : AffineExports())
        for (std::int32_t FakeImage::Failures::*failure :
             {&FakeImage::Failures::DatatypeStatus, &FakeImage::Failures::DimensionsStatus}) {
            SCOPED_TRACE(name);
            image->Fails = {};
            image->Fails.*failure = -1;
            ExpectRefusal(image->Handle(), run);
            const auto report = TakeReport();
            EXPECT_TRUE(!report || report->function != reportName);
        }
}

/// Lets the first, second, third ... operation of the image throw until a call gets through.
void ExpectEveryExceptionCaught(const AffineExport &tested, const std::function<void()> &expectReport) {
    const auto image = FakeImage::Planar(6, 5, 2, 8);
    bool finished = false;
    int throwing = 0;
    for (; !finished; ++throwing) {
        ASSERT_LT(throwing, 200) << "the operations never end";
        SCOPED_TRACE(testing::Message() << tested.Name << ", operation " << throwing << " throws");
        int left = throwing;
        image->Fails.OnOperation = [&left, throwing] {
            if (left-- != 0)
                return;
            if (throwing % 2 == 0)
                throw std::length_error("the image's own");
            throw 7;
        };
        ClearReports();
        void *out = UntouchedPointer();
        finished = tested.Run(image->Handle(), &out);
        EXPECT_EQ(image->Count(), 1);
        if (finished) {
            EXPECT_GE(left, 0) << "an exception was swallowed";
            ReleaseObject(out);
        } else {
            EXPECT_EQ(out, UntouchedPointer());
            expectReport();
        }
    }
    EXPECT_GT(throwing, 3);
    ClearReports();
}

TEST(AffineTransforms, GiveFalseWithoutAReportOfTheirOwnForWhatTheImageThrows) {
    for (const auto &tested : AffineExports())
        ExpectEveryExceptionCaught(tested, [&] {
            const auto report = TakeReport();
            EXPECT_TRUE(!report || report->function != tested.ReportName);
        });
}

TEST(CallbackTransforms, ReportErrGeneralForWhatTheImageThrows) {
    for (const auto &tested : CallbackExports())
        ExpectEveryExceptionCaught(tested, [&] {
            const auto report = TakeReport();
            ASSERT_TRUE(report.has_value());
            EXPECT_EQ(report->code, 0x80000001u);
            EXPECT_TRUE(report->function == tested.ReportName || report->function == "CreateTransformedImage");
        });
}

TEST(AffineTransforms, TellOfAResultThatNoMemoryHoldsBeforeTheyTakeMemoryForIt) {
    const auto image = FakeImage::Planar(10, 10, 2, 8);
    const auto peak = [] {
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        return usage.ru_maxrss;
    };
    const auto before = peak();
    for (const double scale : {1e8, 1e9, 1e12, 1e17, 1e20, 1e300}) {
        SCOPED_TRACE(testing::Message() << "scale " << scale);
        const TCoordinateMap map{0.0, 0.0, {scale, 0.0, 0.0, scale}};
        const TArea area = RectArea(0.0, 0.0, scale, scale);
        ExpectRefusal(image->Handle(),
                      [&](void *from, void **out) { return CreateMatrixTransformedImage(from, out, map.Matrix); });
        ExpectRefusal(image->Handle(),
                      [&](void *from, void **out) { return CreateAffineTransformedImage(from, &map, out); });
        ExpectRefusal(image->Handle(), [&](void *from, void **out) {
            return CreateAreaAffineTransformedImage(from, &IdentityMap, &area, out);
        });
        ExpectRefusal(image->Handle(), [&](void *from, void **out) { return CreateSubImage(from, out, area); });
        ExpectRefusal(image->Handle(), [&](void *from, void **out) { return CreateAreaSubImage(from, out, area); });
    }
    EXPECT_LT(peak() - before, 100'000) << "kilobytes taken for nothing";
    ClearReports();
}

TEST(AffineTransforms, TakeNoMemoryForWhatLiesOutsideASmallAreaOfALargeResult) {
    const auto image = FakeImage::Planar(100, 100, 1, 8);
    for (const double scale : {1e3, 1e5}) {
        const TCoordinateMap map{0.0, 0.0, {scale, 0.0, 0.0, scale}};
        ExpectAreaAsModel(image->Handle(), ModelSource(image->Handle()),
                          RectArea(50.0, 50.0, 50.0 + 8.0 / scale, 50.0 + 5.0 / scale), map);
    }
}

TEST(AffineTransforms, RefuseOriginsThatAreNoNumbers) {
    const auto image = WildImage(5, 4, {8, 0x240}, 1);
    for (const double wild : {NaN, Infinity, -Infinity, 1e300, -1e300})
        for (const auto &[x, y] : {std::pair{wild, 0.0}, std::pair{0.0, wild}, std::pair{wild, wild}}) {
            const TCoordinateMap map{x, y, IdentityMatrix};
            SCOPED_TRACE(testing::Message() << x << ", " << y);
            ExpectRefusal(image->Handle(),
                          [&](void *from, void **out) { return CreateAffineTransformedImage(from, &map, out); });
            ExpectRefusal(image->Handle(), [&](void *from, void **out) {
                return CreateAreaAffineTransformedImage(from, &map, &SmallArea, out);
            });
        }
    ClearReports();
}

TEST(AffineTransforms, RefuseAResultOfANegativeSizeAsACompatibleImageDoes) {
    const auto image = FakeImage::Planar(5, 4, 1, 8);
    const TCoordinateMap map{NaN, 0.0, IdentityMatrix};
    ExpectRefusal(image->Handle(),
                  [&](void *from, void **out) { return CreateAffineTransformedImage(from, &map, out); });
    ExpectOneReport(0x8000001Au, "CreateCompatibleImage");
}

TEST(AffineTransforms, GiveFalseWithoutAReportForAMatrixThatIsNoNumber) {
    const auto image = WildImage(5, 4, {8, 0x240}, 1);
    for (int k = 0; k < 4; ++k) {
        double entries[] = {1.0, 0.5, 0.25, 1.0};
        entries[k] = NaN;
        const TMatrix matrix{entries[0], entries[1], entries[2], entries[3]};
        ExpectRefusal(image->Handle(),
                      [&](void *from, void **out) { return CreateMatrixTransformedImage(from, out, matrix); });
        ExpectNoReport();
        image->Coordinates = {0.0, 0.0, matrix};
        ExpectRefusal(image->Handle(), [](void *from, void **out) { return CreateSubImage(from, out, SmallArea); });
        ExpectNoReport();
        image->Coordinates = IdentityMap;
    }
}

TEST(AffineTransforms, StandMatricesOfInfiniteAndHugeEntries) {
    const auto image = WildImage(5, 4, {8, 0x110, 0x20, 0x240}, 1);
    for (const double wild : {Infinity, -Infinity, 1e155, 1e300, 1e-300})
        for (int k = 0; k < 16; ++k) {
            double entries[] = {1.0, 0.5, 0.25, 1.0};
            for (int bit = 0; bit < 4; ++bit)
                entries[bit] = (k >> bit & 1) != 0 ? wild : entries[bit];
            const TMatrix matrix{entries[0], entries[1], entries[2], entries[3]};
            void *out = UntouchedPointer();
            const bool made = CreateMatrixTransformedImage(image->Handle(), &out, matrix);
            EXPECT_EQ(made, out != UntouchedPointer()) << wild << ", entries " << k;
            if (made)
                ReleaseObject(out);
            EXPECT_EQ(image->Count(), 1);
        }
    ClearReports();
}

TEST(AffineTransforms, StandAreasThatAreNoNumbersOrInfinite) {
    const auto image = WildImage(5, 4, {8, 0x110, 0x20, 0x240}, 1);
    for (const double wild : {NaN, Infinity, -Infinity, 1e300, -1e18})
        for (int k = 1; k < 64; ++k) {
            double c[] = {1.0, 0.5, 3.0, 1.0, 2.0, 3.0};
            for (int bit = 0; bit < 6; ++bit)
                c[bit] = (k >> bit & 1) != 0 ? wild : c[bit];
            const TArea area{c[0], c[1], c[2], c[3], c[4], c[5]};
            const Call calls[] = {[&](void *from, void **out) { return CreateSubImage(from, out, area); },
                                  [&](void *from, void **out) { return CreateAreaSubImage(from, out, area); },
                                  [&](void *from, void **out) {
                                      return CreateAreaAffineTransformedImage(from, &SlightlyTurned, &area, out);
                                  }};
            for (const auto &call : calls) {
                void *out = UntouchedPointer();
                const bool made = call(image->Handle(), &out);
                EXPECT_EQ(made, out != UntouchedPointer()) << wild << ", coordinates " << k;
                if (made)
                    ReleaseObject(out);
                EXPECT_EQ(image->Count(), 1);
            }
        }
    ClearReports();
}

} // namespace
