// How FindSubPixelMaxima fails: the checks in their order, what is reported, and that the output stays.
#include "PixelList/MaximaSupport.h"

namespace {

using namespace TestSupport;

class FindSubPixelMaximaFailures : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ClearReports(); }

    /// Expects false, one report and an output left alone.
    void ExpectRefusal(void *object, std::intptr_t plane, std::uint32_t code, std::int32_t radius = 1,
                       const PixelRectangle &r = Everything) {
        void *list = UntouchedPointer();
        EXPECT_FALSE(FindSubPixelMaxima(object, plane, r.Left, r.Top, r.Right, r.Bottom, 0, FitParaboloid, radius,
                                        &list, 1.0));
        ExpectOneReport(code, "FindSubPixelMaxima");
        EXPECT_EQ(list, UntouchedPointer());
    }

    std::unique_ptr<FakeImage> image = ImageOf(Digits({".....", ".3.4.", "....."}));
};

TEST_F(FindSubPixelMaximaFailures, ARadiusOutOfRangeReportsErrParameter) {
    for (const std::int32_t radius :
         {5, 6, 1000, std::numeric_limits<std::int32_t>::max(), -1, -4, std::numeric_limits<std::int32_t>::min()})
        ExpectRefusal(image->Handle(), 0, ErrParameter, radius);
    EXPECT_EQ(image->Count(), 1);
}

TEST_F(FindSubPixelMaximaFailures, RadiiFrom0To4AreTaken) {
    for (std::int32_t radius = 0; radius <= 4; ++radius)
        EXPECT_EQ(SubPixelMaxima(image->Handle(), Everything, {0, 1.0, FitNone, radius}),
                  (Spots{{3, 1, 4}, {1, 1, 3}}));
}

TEST_F(FindSubPixelMaximaFailures, TheRadiusIsCheckedFirstAndWithEveryFit) {
    ExpectRefusal(nullptr, 9, ErrParameter, 5);
    for (const std::uint32_t fit : {FitNone, FitQuadratic, FitParaboloid, FitGaussian, 4u}) {
        void *list = UntouchedPointer();
        EXPECT_FALSE(FindSubPixelMaxima(image->Handle(), 0, 0, 0, 4, 2, 0, fit, 5, &list, 1.0));
        ExpectOneReport(ErrParameter, "FindSubPixelMaxima");
        EXPECT_EQ(list, UntouchedPointer());
    }
}

TEST_F(FindSubPixelMaximaFailures, WithoutAnImageReportsErrNotAnImage) {
    ExpectRefusal(nullptr, 0, ErrNotAnImage);
    ExpectRefusal(nullptr, 0, ErrNotAnImage, 0);
    for (const auto &foreign : ForeignHandles()) {
        ExpectRefusal(foreign.Get(), 0, ErrNotAnImage);
        EXPECT_EQ(foreign.Count(), 1) << foreign.Name;
    }
    image->Fails.QueryThrows = true;
    ExpectRefusal(image->Handle(), 0, ErrNotAnImage);
}

TEST_F(FindSubPixelMaximaFailures, APixelListIsNoImage) {
    const Handle list(CreatePixelList(3));
    ExpectRefusal(list.Get(), 0, ErrNotAnImage);
    EXPECT_EQ(RefCount(list.Get()), 1u);
}

TEST_F(FindSubPixelMaximaFailures, APlaneOutOfRangeReportsErrPlaneIndex) {
    for (const std::intptr_t plane :
         {std::intptr_t{-1}, std::intptr_t{1}, Lowest64, Highest64, std::intptr_t{1} << 32}) {
        ExpectRefusal(image->Handle(), plane, ErrPlaneIndex);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST_F(FindSubPixelMaximaFailures, ADataTypeOutsideTheTenReportsErrDataType) {
    for (const TDataType type :
         {0u, 24u, 24 | DataTypeSigned, 40u, 56u, 72u, 128u, 255u, 8 | DataTypeFloat, 16 | DataTypeFloat,
          24 | DataTypeFloat, 48 | DataTypeFloat, 80 | DataTypeFloat, DataTypeNone}) {
        const auto other = FakeImage::Planar(4, 4, 1, type);
        ExpectRefusal(other->Handle(), 0, ErrDataType);
        EXPECT_EQ(other->Count(), 1) << type;
    }
}

TEST_F(FindSubPixelMaximaFailures, ARectangleOutsideTheImageReportsErrGeneral) {
    const PixelRectangle outside[] = {{5, 0, 9, 2},
                                      {9, 0, 5, 2},
                                      {0, 3, 4, 9},
                                      {0, 9, 4, 3},
                                      {-9, 0, -1, 2},
                                      {-1, 0, -9, 2},
                                      {0, -9, 4, -1},
                                      {0, -1, 4, -9},
                                      {-9, -9, -1, -1},
                                      {Highest64, 0, Highest64, 2},
                                      {Lowest64, 0, Lowest64, 2},
                                      {0, Lowest64, 4, Lowest64},
                                      {5, 3, 5, 3}};
    for (const PixelRectangle &r : outside) {
        ExpectRefusal(image->Handle(), 0, ErrGeneral, 1, r);
        EXPECT_EQ(image->Count(), 1) << testing::PrintToString(r);
    }
}

TEST_F(FindSubPixelMaximaFailures, OtherChecksComeBeforeThatOfTheRectangle) {
    const PixelRectangle outside{9, 9, 9, 9};
    ExpectRefusal(image->Handle(), 1, ErrPlaneIndex, 1, outside);
    ExpectRefusal(FakeImage::Planar(4, 4, 1, 24)->Handle(), 0, ErrDataType, 1, outside);
    ExpectRefusal(nullptr, 0, ErrNotAnImage, 1, outside);
}

TEST_F(FindSubPixelMaximaFailures, ANullOutputReportsErrParameterBehindTheOtherChecks) {
    const auto refused = [](void *object, std::intptr_t plane, std::uint32_t code) {
        EXPECT_FALSE(FindSubPixelMaxima(object, plane, 0, 0, 4, 2, 0, FitNone, 1, nullptr, 1.0));
        ExpectOneReport(code, "FindSubPixelMaxima");
    };
    refused(image->Handle(), 0, ErrParameter);
    refused(nullptr, 0, ErrNotAnImage);
    refused(image->Handle(), 1, ErrPlaneIndex);
    refused(FakeImage::Planar(5, 3, 1, 24)->Handle(), 0, ErrDataType);
    EXPECT_EQ(image->Count(), 1);
}

TEST_F(FindSubPixelMaximaFailures, AnImageThatRefusesItsDataTypeReportsErrGeneral) {
    image->Fails.DatatypeStatus = StatusBadPlane;
    ExpectRefusal(image->Handle(), 0, ErrGeneral);
    EXPECT_EQ(image->Count(), 1);
}

TEST_F(FindSubPixelMaximaFailures, AnImageThatRefusesItsTableReportsErrDataType) {
    image->Fails.VPAStatus = StatusBadPlane;
    ExpectRefusal(image->Handle(), 0, ErrDataType);
    EXPECT_EQ(image->Count(), 1);
}

TEST_F(FindSubPixelMaximaFailures, AnImageThatTellsNoSizeHasNoPlane) {
    image->Fails.DimensionsStatus = StatusBadPlane;
    ExpectRefusal(image->Handle(), 0, ErrPlaneIndex);
    EXPECT_EQ(image->Count(), 1);
}

TEST_F(FindSubPixelMaximaFailures, AnImageThatThrowsAtAnyOperationReportsErrGeneral) {
    for (const PixelRectangle &r : {Everything, PixelRectangle{1, 0, 3, 2}})
        for (int good = 0;; ++good) {
            ASSERT_LT(good, 50) << "no end of operations";
            int calls = 0;
            image->Fails.OnOperation = [&] {
                if (calls++ >= good)
                    throw std::runtime_error("refused");
            };
            void *list = UntouchedPointer();
            const bool result = FindSubPixelMaxima(image->Handle(), 0, r.Left, r.Top, r.Right, r.Bottom, 0,
                                                   FitParaboloid, 2, &list, 1.0);
            EXPECT_EQ(image->Count(), 1) << good;
            if (calls <= good) {
                EXPECT_GE(good, 3) << "a search asks for size, type and table";
                EXPECT_TRUE(result);
                ExpectNoReport();
                EXPECT_TRUE(ReleaseObject(list));
                break;
            }
            EXPECT_FALSE(result) << good;
            ExpectOneReport(ErrGeneral, "FindSubPixelMaxima");
            EXPECT_EQ(list, UntouchedPointer()) << good;
        }
}

TEST_F(FindSubPixelMaximaFailures, ASuccessLeavesAnEarlierReportInTheSlot) {
    ReportORVError(ErrCreateFailed, "earlier");
    Handle list;
    EXPECT_TRUE(FindSubPixelMaxima(image->Handle(), 0, 1, 0, 3, 2, 0, FitNone, 1, list.Out(), 1.0));
    ExpectOneReport(ErrCreateFailed, "earlier");
}

} // namespace
