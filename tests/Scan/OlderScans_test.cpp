// The older entry points refuse whatever they are given, under their own names and with texts of their own.
#include "ImageScan.h"
#include "Support/ImageAccess.h"

namespace {

using namespace TestSupport;

const std::string OnlyOnWindows = "Only supported on the Windows 32 Bit platform";
const std::string NoLonger = "The function you called is no longer implemented in the current build";

struct OlderScan {
    const char *Name;
    std::uint32_t Code;
    std::string Text;
    std::int64_t Result;
    std::function<std::int64_t()> CallEmpty;
    std::function<std::int64_t(void *image)> CallWithImage;
};

unsigned char TakeAnything(void *, void *, std::int32_t, std::int32_t) {
    ADD_FAILURE() << "an older scan called back";
    return 1;
}

#define ORV_OLDER_SCAN(function, code, text, result)                                                                 \
    {                                                                                                                \
#function, code, text, result, [] { return function(); }, [](void *image) {                                      \
         return function(image, image, 0, TArea{0, 0, 1, 0, 0, 1}, 1000, 3.5, &TakeAnything, nullptr);                \
     }   \
    }

std::vector<OlderScan> OlderScans() {
    return {ORV_OLDER_SCAN(Iterate, ErrNotPossible, OnlyOnWindows, 0),
            ORV_OLDER_SCAN(Scan1_Area, ErrNotPossible, OnlyOnWindows, -1),
            ORV_OLDER_SCAN(Scan1_All, ErrNotPossible, OnlyOnWindows, -1),
            ORV_OLDER_SCAN(Scan2_All, ErrNotPossible, OnlyOnWindows, -1),
            ORV_OLDER_SCAN(BinaryImageOperator, ErrNotPossible, OnlyOnWindows, 0),
            ORV_OLDER_SCAN(FillPlane, ErrGeneral, NoLonger, 0)};
}
#undef ORV_OLDER_SCAN

void ExpectRefusal(const OlderScan &scan) {
    EXPECT_EQ(ReportCount(), 1) << scan.Name;
    const auto report = TakeReport();
    ASSERT_TRUE(report.has_value()) << scan.Name;
    EXPECT_EQ(report->code, scan.Code) << scan.Name;
    EXPECT_EQ(report->text, scan.Text);
    EXPECT_EQ(report->function, scan.Name);
    ClearReports();
}

} // namespace

TEST(OlderScans, RefuseACallWithoutArguments) {
    for (const OlderScan &scan : OlderScans()) {
        ClearReports();
        EXPECT_EQ(scan.CallEmpty(), scan.Result) << scan.Name;
        ExpectRefusal(scan);
    }
}

TEST(OlderScans, RefuseValidArgumentsToo) {
    const auto image = FakeImage::Planar(4, 3, 1, 8);
    for (const OlderScan &scan : OlderScans()) {
        ClearReports();
        EXPECT_EQ(scan.CallWithImage(image->Handle()), scan.Result) << scan.Name;
        ExpectRefusal(scan);
    }
    EXPECT_TRUE(image->Calls().empty()) << "the image is not even asked";
    EXPECT_EQ(image->Count(), 1);
}

TEST(OlderScans, RefuseAgainEachTime) {
    ClearReports();
    for (int round = 0; round < 3; ++round)
        for (const OlderScan &scan : OlderScans())
            EXPECT_EQ(scan.CallEmpty(), scan.Result);
    EXPECT_EQ(ReportCount(), 18);
    ClearReports();
}
