/* What CreatePolarImage, CreatePolarImageEx, InversePolarTransform and CreateInversePolarImage give when they fail:
 * results, reports, outputs and references. */
#include "Transformations/PolarModel.h"

namespace {

using namespace PolarModel;

constexpr char EmptyTarget[] = "Operation failed because target image would have width and/or height of 0";
constexpr Ring AnyRing{4, 4, 0, 360, 1, 4};
constexpr Roll AnyRoll{5, 5, 0, 2};

/// A call with one image, and the name that it reports under.
struct OneImageCall {
    const char *Name;
    std::function<bool(void *image, void **out)> Call;
};
const OneImageCall Unrollers[] = {
    {"CreatePolarImageEx", [](void *image, void **out) { return Unroll(image, out, AnyRing); }},
    {"CreatePolarImageEx", [](void *image, void **out) { return CreatePolarImage(image, out, 4, 4, 0, 1, 4); }}};
const OneImageCall Roller = {"CreateInversePolarImage",
                             [](void *image, void **out) { return CreateInversePolarImage(image, out, 30, 2); }};

std::vector<OneImageCall> AllMakers() {
    return {Unrollers[0], Unrollers[1], Roller};
}

/// Expects false and an untouched output; the reports are the caller's to look at.
void ExpectRefusal(const OneImageCall &maker, void *image) {
    void *out = UntouchedPointer();
    ClearReports();
    EXPECT_FALSE(maker.Call(image, &out)) << maker.Name;
    EXPECT_EQ(out, UntouchedPointer()) << maker.Name;
}

/// Nothing told may come from the function itself; what failed further inside may have told.
void ExpectNoReportOf(const char *function) {
    const auto report = TakeReport();
    EXPECT_FALSE(report && report->function == function);
    ClearReports();
}

/// Lets the first, second, third ... operation of an image throw until a call succeeds.
template <class Call>
void LetEachOperationThrow(FakeImage &image, Call call) {
    int throwing = 0;
    for (bool finished = false; !finished; ++throwing) {
        ASSERT_LT(throwing, 200) << "the operations never end";
        SCOPED_TRACE(testing::Message() << "operation " << throwing << " throws");
        int left = throwing;
        image.Fails.OnOperation = [&left] {
            if (left-- == 0)
                throw std::length_error("the image's own");
        };
        ClearReports();
        ASSERT_NO_THROW(finished = call([&left] { return left < 0; }));
        EXPECT_EQ(image.Count(), 1);
    }
    EXPECT_GT(throwing, 1);
    image.Fails.OnOperation = nullptr;
}

} // namespace

TEST(CreatePolarImageFailures, ANullImageGivesFalseWithoutAReport) {
    for (const OneImageCall &unroller : Unrollers) {
        ExpectRefusal(unroller, nullptr);
        ExpectNoReport();
        EXPECT_FALSE(unroller.Call(nullptr, nullptr));
        ExpectNoReport();
    }
}

TEST(CreatePolarImageFailures, HandlesThatAreNoImagesAreReportedUnderTheNameOfTheLongerForm) {
    for (const OneImageCall &unroller : Unrollers)
        for (const ForeignHandle &foreign : ForeignHandles()) {
            SCOPED_TRACE(foreign.Name);
            ExpectRefusal(unroller, foreign.Get());
            ExpectOneReport(ErrNotAnImage, "CreatePolarImageEx");
            EXPECT_EQ(foreign.Count(), 1);
        }
}

TEST(CreatePolarImageFailures, ANullOutputIsReported) {
    const auto image = FakeImage::Planar(8, 8, 1, 0x8);
    for (const OneImageCall &maker : AllMakers()) {
        ClearReports();
        EXPECT_FALSE(maker.Call(image->Handle(), nullptr));
        ExpectOneReport(ErrParameter, maker.Name);
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(CreatePolarImageFailures, AnEmptyResultIsReportedWithItsText) {
    const auto image = FakeImage::Planar(8, 8, 1, 0x8);
    const Ring empty[] = {{4, 4, 0, 0, 10, 20},      {4, 4, 0, -360, 10, 20},       {4, 4, 0, 1.8, 10, 20},
                          {4, 4, 0, 360, 12, 10},    {4, 4, 0, 360, 11.5, 10},      {4, 4, 0, 360, 0, 0},
                          {4, 4, 0, 360, -5, 5},     {4, 4, 0, 360, -20, -10},      {4, 4, 0, -360, -10, -20},
                          {4, 4, 0, 360, -7, 6.875}, {4, 4, 0, 360, 0.0625, 0.0625}};
    for (const Ring &ring : empty) {
        SCOPED_TRACE(testing::PrintToString(ring));
        ExpectRefusal({"", [&](void *handle, void **out) { return Unroll(handle, out, ring); }}, image->Handle());
        ExpectOneReportWithText(ErrDimension, "CreatePolarImageEx", EmptyTarget);
        EXPECT_EQ(image->Count(), 1);
    }
    ExpectRefusal({"", [](void *handle, void **out) { return CreatePolarImage(handle, out, 4, 4, 0, 12, 10); }},
                  image->Handle());
    ExpectOneReportWithText(ErrDimension, "CreatePolarImageEx", EmptyTarget);
}

TEST(CreatePolarImageFailures, APlaneOfNoPixelTypeGivesFalseWithoutAReport) {
    for (const TDataType odd : {0x18u, 0x80u, 0x210u, 0x118u})
        for (const std::vector<TDataType> &types : {std::vector<TDataType>{odd}, {0x8, odd}, {odd, 0x8}}) {
            const auto image = MixedImage(8, 8, types, std::vector<PlaneBytes>(types.size(), PlaneBytes(64 * 16)));
            for (const OneImageCall &unroller : Unrollers) {
                ExpectRefusal(unroller, image->Handle());
                ExpectNoReport();
                EXPECT_EQ(image->Count(), 1);
            }
        }
}

TEST(CreatePolarImageFailures, APlaneThatRefusesGivesFalseWithoutAReportOfItsOwn) {
    for (const TDataType type : {0x8u, 0x10u, 0x20u, 0x240u})
        for (const auto failure : {&FakeImage::Failures::DatatypeStatus, &FakeImage::Failures::VPAStatus}) {
            const auto image = FakeImage::Planar(8, 8, 2, type);
            image->Fails.*failure = Status(ErrPlaneIndex);
            for (const OneImageCall &unroller : Unrollers) {
                ExpectRefusal(unroller, image->Handle());
                ExpectNoReportOf("CreatePolarImageEx");
                EXPECT_EQ(image->Count(), 1);
            }
        }
}

TEST(CreatePolarImageFailures, ExceptionsOfAnImageGiveFalseWithoutAReport) {
    const auto image = FakeImage::Planar(8, 8, 2, 0x8);
    for (const OneImageCall &unroller : Unrollers)
        LetEachOperationThrow(*image, [&](auto hasThrown) {
            void *out = UntouchedPointer();
            const bool done = unroller.Call(image->Handle(), &out);
            EXPECT_NE(done, hasThrown());
            ExpectNoReport();
            if (done)
                ReleaseObject(out);
            else
                EXPECT_EQ(out, UntouchedPointer());
            return done;
        });
}

TEST(InversePolarTransformFailures, HandlesThatAreNoImagesAreReported) {
    const auto image = FakeImage::Planar(8, 8, 1, 0x8);
    const auto expectRefusal = [](void *polar, void *target) {
        ClearReports();
        EXPECT_FALSE(RollUp(polar, target, AnyRoll));
        ExpectOneReport(ErrNotAnImage, "InversePolarTransform");
    };
    expectRefusal(nullptr, image->Handle());
    expectRefusal(image->Handle(), nullptr);
    expectRefusal(nullptr, nullptr);
    for (const ForeignHandle &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        expectRefusal(foreign.Get(), image->Handle());
        expectRefusal(image->Handle(), foreign.Get());
        EXPECT_EQ(foreign.Count(), 1);
    }
    EXPECT_EQ(image->Count(), 1);
    EXPECT_EQ(image->Pixels, PlaneBytes(64));
}

TEST(InversePolarTransformFailures, TheStatusOfSizesThatCannotBeReadIsReported) {
    for (const std::uint32_t status : {ErrGeneral, ErrPlaneIndex, ErrNotPossible, 0xFFFFFFFFu})
        for (const bool ofSource : {true, false}) {
            const auto polar = FakeImage::Planar(30, 4, 1, 0x8), target = FakeImage::Planar(11, 11, 1, 0x8);
            std::fill(polar->Pixels.begin(), polar->Pixels.end(), std::uint8_t{7});
            (ofSource ? polar : target)->Fails.DimensionsStatus = Status(status);
            ClearReports();
            EXPECT_FALSE(RollUp(polar->Handle(), target->Handle(), AnyRoll));
            EXPECT_EQ(ReportCount(), 1);
            ExpectNewestReport(status, "InversePolarTransform");
            EXPECT_EQ(target->Pixels, PlaneBytes(121));
            EXPECT_EQ(polar->Count(), 1);
            EXPECT_EQ(target->Count(), 1);
        }
}

TEST(InversePolarTransformFailures, APlaneThatRefusesItsTableGivesFalse) {
    for (const TDataType type : PixelTypes)
        for (const bool ofSource : {true, false}) {
            const auto polar = FakeImage::Planar(30, 4, 2, type), target = FakeImage::Planar(11, 11, 2, type);
            const auto before = target->Pixels;
            (ofSource ? polar : target)->Fails.VPAStatus = Status(ErrPlaneIndex);
            ClearReports();
            EXPECT_FALSE(RollUp(polar->Handle(), target->Handle(), AnyRoll));
            ExpectNoReport();
            EXPECT_EQ(target->Pixels, before);
            EXPECT_EQ(polar->Count(), 1);
            EXPECT_EQ(target->Count(), 1);
        }
}

TEST(InversePolarTransformFailures, ExceptionsOfAnImageAreReported) {
    for (const bool ofSource : {true, false}) {
        const auto polar = FakeImage::Planar(30, 4, 2, 0x8), target = FakeImage::Planar(11, 11, 2, 0x8);
        LetEachOperationThrow(ofSource ? *polar : *target, [&](auto hasThrown) {
            const bool done = RollUp(polar->Handle(), target->Handle(), AnyRoll);
            EXPECT_NE(done, hasThrown());
            if (done)
                ExpectNoReport();
            else
                ExpectOneReport(ErrGeneral, "InversePolarTransform");
            EXPECT_EQ(polar->Count(), 1);
            EXPECT_EQ(target->Count(), 1);
            return done;
        });
    }
}

TEST(CreateInversePolarImageFailures, HandlesThatAreNoImagesAreReported) {
    ExpectRefusal(Roller, nullptr);
    ExpectOneReport(ErrNotAnImage, "CreateInversePolarImage");
    EXPECT_FALSE(Roller.Call(nullptr, nullptr));
    ExpectOneReport(ErrNotAnImage, "CreateInversePolarImage");
    for (const ForeignHandle &foreign : ForeignHandles()) {
        SCOPED_TRACE(foreign.Name);
        ExpectRefusal(Roller, foreign.Get());
        ExpectOneReport(ErrNotAnImage, "CreateInversePolarImage");
        EXPECT_EQ(foreign.Count(), 1);
    }
}

TEST(CreateInversePolarImageFailures, TheStatusOfSizesThatCannotBeReadIsReported) {
    for (const std::uint32_t status : {ErrGeneral, ErrPlaneIndex, 0xFFFFFFFFu}) {
        const auto image = FakeImage::Planar(30, 4, 1, 0x8);
        image->Fails.DimensionsStatus = Status(status);
        ExpectRefusal(Roller, image->Handle());
        EXPECT_EQ(ReportCount(), 1);
        ExpectNewestReport(status, "CreateInversePolarImage");
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(CreateInversePolarImageFailures, ASizeThatCannotBeMadeIsReported) {
    const auto image = FakeImage::Planar(30, 4, 1, 0x8);
    for (const double inner : {-4.0, -1000.0, 1e9, -1e9, 1e12, -1e300, 1e300}) {
        SCOPED_TRACE(inner);
        ExpectRefusal({"", [&](void *handle, void **out) { return CreateInversePolarImage(handle, out, 0, inner); }},
                      image->Handle());
        ExpectNewestReport(ErrCreateFailed, "CreateInversePolarImage");
        EXPECT_EQ(image->Count(), 1);
    }
}

TEST(CreateInversePolarImageFailures, APlaneThatCannotBeRolledUpGivesFalseAndNoImage) {
    const auto odd = MixedImage(30, 4, {0x8, 0x18}, {PlaneBytes(120), PlaneBytes(360)});
    ExpectRefusal(Roller, odd->Handle());
    EXPECT_EQ(odd->Count(), 1);
    for (const auto failure : {&FakeImage::Failures::DatatypeStatus, &FakeImage::Failures::VPAStatus}) {
        const auto image = FakeImage::Planar(30, 4, 2, 0x10);
        image->Fails.*failure = Status(ErrPlaneIndex);
        ExpectRefusal(Roller, image->Handle());
        EXPECT_EQ(image->Count(), 1);
    }
    ClearReports();
}

TEST(CreateInversePolarImageFailures, ExceptionsOfAnImageAreReported) {
    const auto image = FakeImage::Planar(30, 4, 2, 0x8);
    LetEachOperationThrow(*image, [&](auto hasThrown) {
        void *out = UntouchedPointer();
        const bool done = CreateInversePolarImage(image->Handle(), &out, 0, 2);
        EXPECT_NE(done, hasThrown());
        if (done) {
            ExpectNoReport();
            ReleaseObject(out);
        } else {
            EXPECT_EQ(out, UntouchedPointer());
            const auto report = TakeReport();
            EXPECT_TRUE(report && report->code == ErrGeneral) << "the newest report";
            EXPECT_TRUE(report && (report->function == "CreateInversePolarImage" ||
                                   report->function == "InversePolarTransform")); // the one calls the other
        }
        return done;
    });
}
