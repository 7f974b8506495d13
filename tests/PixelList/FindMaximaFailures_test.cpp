// How FindMaxima and FindMaximaEx fail: the checks in their order, what is reported, and what becomes of the output.
#include "PixelList/MaximaSupport.h"

#include <fstream>
#include <sys/resource.h>

namespace {

using namespace TestSupport;

class FindMaximaFailures : public testing::Test {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ClearReports(); }

    /// Expects 0, one report and an output left alone.
    void ExpectRefusal(void *image, std::intptr_t plane, std::uint32_t code) {
        void *list = UntouchedPointer();
        EXPECT_EQ(FindMaxima(image, plane, 0, 0, 0, 0, 0, 1, &list), 0);
        ExpectOneReport(code, "FindMaxima");
        EXPECT_EQ(list, UntouchedPointer());
    }
    /// Expects 0, no report and a null output.
    void ExpectSilence(FakeImage &image) {
        void *list = UntouchedPointer();
        EXPECT_EQ(FindMaxima(image.Handle(), 0, 0, 0, 0, 0, 0, 1, &list), 0);
        ExpectNoReport();
        EXPECT_EQ(list, nullptr);
        EXPECT_EQ(image.Count(), 1);
    }

    std::unique_ptr<FakeImage> image = ImageOf(Digits({".....", ".3.4.", "....."}));
};

TEST_F(FindMaximaFailures, WithoutAnImageReportsErrNotAnImage) {
    ExpectRefusal(nullptr, 0, ErrNotAnImage);
    for (const auto &foreign : ForeignHandles()) {
        ExpectRefusal(foreign.Get(), 0, ErrNotAnImage);
        EXPECT_EQ(foreign.Count(), 1) << foreign.Name;
    }
    image->Fails.QueryThrows = true;
    ExpectRefusal(image->Handle(), 0, ErrNotAnImage);
}

TEST_F(FindMaximaFailures, APixelListIsNoImage) {
    const Handle list(CreatePixelList(3));
    ExpectRefusal(list.Get(), 0, ErrNotAnImage);
    EXPECT_EQ(RefCount(list.Get()), 1u);
}

TEST_F(FindMaximaFailures, APlaneOutOfRangeReportsErrPlaneIndex) {
    for (const std::intptr_t plane :
         {std::intptr_t{-1}, std::intptr_t{1}, std::intptr_t{2}, Lowest64, Highest64, std::intptr_t{1} << 32}) {
        ExpectRefusal(image->Handle(), plane, ErrPlaneIndex);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST_F(FindMaximaFailures, FloatingPointAndMoreThan4BytesReportErrDataType) {
    for (const TDataType type : {32 | DataTypeFloat, 64 | DataTypeFloat, 64u, 64 | DataTypeSigned, 8 | DataTypeFloat,
                                 16 | DataTypeFloat, 33u, 40u, 128u, 255u, DataTypeNone}) {
        const auto other = FakeImage::Planar(4, 4, 1, type);
        ExpectRefusal(other->Handle(), 0, ErrDataType);
        EXPECT_EQ(other->Count(), 1);
    }
}

TEST_F(FindMaximaFailures, UnsignedPlanesOf32BitsGiveZeroWithoutAReport) {
    ExpectSilence(*ImageOf(PixelGrid<std::uint32_t>(5, 4, 7)));
    ExpectSilence(*ImageOf(PixelGrid<std::uint32_t>(5, 4, 7), 25));
    ExpectSilence(*ImageOf(PixelGrid<std::uint32_t>(5, 4, 7), 32 | DataTypeOverlay));
}

TEST_F(FindMaximaFailures, WidthsWithoutASearchOfTheirOwnGiveZeroWithoutAReport) {
    ExpectSilence(*FakeImage::Planar(4, 4, 1, 24));
    ExpectSilence(*FakeImage::Planar(4, 4, 1, 17 | DataTypeSigned));
    ExpectSilence(*FakeImage::Planar(4, 4, 1, 0));
}

TEST_F(FindMaximaFailures, ANullOutputReportsErrParameter) {
    EXPECT_EQ(FindMaxima(image->Handle(), 0, 0, 0, 0, 0, 0, 1, nullptr), 0);
    ExpectOneReport(ErrParameter, "FindMaxima");
    EXPECT_EQ(image->Count(), 1);
}

TEST_F(FindMaximaFailures, OtherChecksComeBeforeThatOfTheOutput) {
    EXPECT_EQ(FindMaxima(nullptr, 5, 0, 0, 0, 0, 0, 1, nullptr), 0);
    ExpectOneReport(ErrNotAnImage, "FindMaxima");
    const auto real = ImageOf(PixelGrid<float>(4, 4));
    EXPECT_EQ(FindMaxima(real->Handle(), 1, 0, 0, 0, 0, 0, 1, nullptr), 0);
    ExpectOneReport(ErrPlaneIndex, "FindMaxima");
    EXPECT_EQ(FindMaxima(real->Handle(), 0, 0, 0, 0, 0, 0, 1, nullptr), 0);
    ExpectOneReport(ErrDataType, "FindMaxima");
}

TEST_F(FindMaximaFailures, AnImageThatRefusesItsDataTypeReportsErrGeneral) {
    image->Fails.DatatypeStatus = StatusBadPlane;
    ExpectRefusal(image->Handle(), 0, ErrGeneral);
    EXPECT_EQ(image->Count(), 1);
}

TEST_F(FindMaximaFailures, AnImageThatRefusesItsTableGivesZeroWithoutAReport) {
    image->Fails.VPAStatus = StatusBadPlane;
    ExpectSilence(*image);
}

TEST_F(FindMaximaFailures, AnImageThatTellsNoSizeHasNoPlane) {
    image->Fails.DimensionsStatus = StatusBadPlane;
    ExpectRefusal(image->Handle(), 0, ErrPlaneIndex);
    EXPECT_EQ(image->Count(), 1);
}

TEST_F(FindMaximaFailures, AnImageThatThrowsAtAnyOperationReportsErrGeneral) {
    for (const bool throwsAnInt : {false, true})
        for (int good = 0;; ++good) {
            ASSERT_LT(good, 50) << "no end of operations";
            int calls = 0;
            image->Fails.OnOperation = [&] {
                if (calls++ >= good) {
                    if (throwsAnInt)
                        throw 42;
                    throw std::runtime_error("refused");
                }
            };
            void *list = UntouchedPointer();
            const std::int32_t result = FindMaxima(image->Handle(), 0, 0, 0, 0, 0, 0, 1, &list);
            EXPECT_EQ(image->Count(), 1) << good;
            if (calls <= good) {
                EXPECT_GE(good, 3) << "a search asks for size, type and table";
                EXPECT_EQ(result, -1);
                ExpectNoReport();
                EXPECT_TRUE(ReleaseObject(list));
                break;
            }
            EXPECT_EQ(result, 0) << good;
            ExpectOneReport(ErrGeneral, "FindMaxima");
            EXPECT_TRUE(list == UntouchedPointer() || list == nullptr) << good;
        }
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
/// Lets this process take no more than some bytes of addresses beside those it has.
class AddressLimit {
public:
    explicit AddressLimit(rlim_t moreBytes) {
        std::size_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        getrlimit(RLIMIT_AS, &before);
        rlimit lowered = before;
        lowered.rlim_cur = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + moreBytes;
        setrlimit(RLIMIT_AS, &lowered);
    }
    AddressLimit(const AddressLimit &) = delete;
    AddressLimit &operator=(const AddressLimit &) = delete;
    ~AddressLimit() { setrlimit(RLIMIT_AS, &before); }

private:
    rlimit before{};
};

TEST_F(FindMaximaFailures, WithoutMemoryForTheMarksTheListIsGivenBack) {
    // One pixel that shows at 2^32 places, which need as many marks.
    std::uint8_t pixel = 5;
    FakeImage large(1 << 16, 1 << 16);
    large.AddPlane(
        &pixel, 8, [](std::intptr_t) { return 0; }, [](std::intptr_t) { return 0; });
    void *list = UntouchedPointer();
    {
        const AddressLimit limit(rlim_t{64} << 20);
        EXPECT_EQ(FindMaxima(large.Handle(), 0, 1, 1, 1, 1, 0, 1, &list), 0);
    }
    EXPECT_EQ(list, nullptr);
    EXPECT_EQ(large.Count(), 1);
    const auto report = TakeReport();
    EXPECT_NE(report ? report->function : "nobody", "FindMaxima") << "the search itself reports nothing";
}
#endif

TEST_F(FindMaximaFailures, ASuccessLeavesAnEarlierReportInTheSlot) {
    ReportORVError(ErrCreateFailed, "earlier");
    Handle list;
    EXPECT_EQ(FindMaxima(image->Handle(), 0, 0, 0, 0, 0, 0, 1, list.Out()), -1);
    ExpectOneReport(ErrCreateFailed, "earlier");
}

TEST_F(FindMaximaFailures, OfFindMaximaExAreThoseOfFindSubPixelMaxima) {
    const auto refused = [](void *object, std::intptr_t plane, std::uint32_t code) {
        void *list = UntouchedPointer();
        EXPECT_FALSE(FindMaximaEx(object, plane, 0, 0, 9, 9, 0, &list, 1.0));
        ExpectOneReport(code, "FindSubPixelMaxima");
        EXPECT_EQ(list, UntouchedPointer());
    };
    refused(nullptr, 0, ErrNotAnImage);
    refused(image->Handle(), 1, ErrPlaneIndex);
    refused(image->Handle(), -1, ErrPlaneIndex);
    refused(FakeImage::Planar(4, 4, 1, 24)->Handle(), 0, ErrDataType);
    image->Fails.DatatypeStatus = StatusBadPlane;
    refused(image->Handle(), 0, ErrGeneral);
    image->Fails.DatatypeStatus = 0;
    EXPECT_FALSE(FindMaximaEx(image->Handle(), 0, 0, 0, 9, 9, 0, nullptr, 1.0));
    ExpectOneReport(ErrParameter, "FindSubPixelMaxima");
    EXPECT_EQ(image->Count(), 1);
}

} // namespace
