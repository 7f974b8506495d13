/* What is no image, given to every exported function that takes an image: null, objects of foreign classes, and
 * images that refuse their interface. Each gives the told failure, the told report or silence, and the reference
 * back. */
#include "Interface/ImageFunctions.h"

#include <filesystem>
#include <thread>

using namespace TestSupport;

namespace {

void ExpectReports(const Expected &expected, const std::string &where) {
    EXPECT_EQ(ReportCount(), expected.Reports) << where;
    const auto report = TakeReport();
    EXPECT_EQ(report.has_value(), expected.Reports > 0) << where;
    if (!report)
        return;
    EXPECT_EQ(report->code, expected.Code) << where;
    EXPECT_EQ(report->function, expected.Function) << where;
}

Expected OnObject(const ImageFunction &function, bool offersUnknown) {
    Expected expected = function.OnForeign;
    if (offersUnknown)
        expected.Result = function.OnUnknown.value_or(expected.Result);
    return expected;
}

/// Calls a function with what is no image and checks all that it leaves behind.
void CallAndExpect(const ImageFunction &function, void *object, const Expected &expected, bool throws,
                   const std::string &name) {
    const std::string where = function.Name + " of " + name;
    ClearReports();
    Outputs out;
    if (throws) {
        EXPECT_ANY_THROW(function.Call(object, out)) << where;
    } else {
        EXPECT_NO_THROW(EXPECT_EQ(function.Call(object, out), expected.Result) << where) << where;
    }
    EXPECT_TRUE(out.Untouched()) << where;
    ExpectReports(expected, where);
    EXPECT_FALSE(std::filesystem::exists(PathOfNoFile())) << where;
    ClearReports();
}

class ForeignHandlesTest : public testing::Test {
protected:
    void SetUp() override { std::filesystem::remove(PathOfNoFile()); }
    void TearDown() override {
        std::filesystem::remove(PathOfNoFile());
        ClearReports();
    }
};

TEST_F(ForeignHandlesTest, NullGivesTheToldFailure) {
    for (const auto &function : AllImageFunctions())
        CallAndExpect(function, nullptr, function.OnNull, false, "null");
}

TEST_F(ForeignHandlesTest, AnObjectOfAForeignClassGivesTheToldFailureAndKeepsItsCount) {
    for (const auto &foreign : ForeignHandles())
        for (const auto &function : AllImageFunctions()) {
            CallAndExpect(function, foreign.Get(), OnObject(function, foreign.OffersUnknown),
                          foreign.QueryThrows && function.PassesExceptions, foreign.Name);
            EXPECT_EQ(foreign.Count(), 1) << function.Name << " of " << foreign.Name;
        }
}

TEST_F(ForeignHandlesTest, AnImageThatRefusesItsInterfaceGivesTheToldFailureAndKeepsItsCount) {
    const std::pair<const char *, std::function<void(FakeImage::Failures &)>> refusals[] = {
        {"a null interface", [](auto &fails) { fails.QueryGivesNull = true; }},
        {"a negative status", [](auto &fails) { fails.QueryStatus = StatusNoInterface; }},
        {"a positive status", [](auto &fails) { fails.QueryStatus = 1; }},
        {"a throw", [](auto &fails) { fails.QueryThrows = true; }}};
    for (const auto &[name, refuse] : refusals)
        for (const auto &function : AllImageFunctions()) {
            const auto image = FakeImage::Planar(2, 2, 1, 8);
            refuse(image->Fails);
            CallAndExpect(function, image->Handle(), OnObject(function, true),
                          image->Fails.QueryThrows && function.PassesExceptions, name);
            EXPECT_EQ(image->Count(), 1) << function.Name << " of " << name;
        }
}

TEST_F(ForeignHandlesTest, AnExceptionOutOfAPixelReadLeavesTheReadFreeForOtherThreads) {
    ThrowingUnknown foreign;
    std::uint64_t value = 0;
    EXPECT_THROW(GetPixVal(foreign.Handle(), 0, 0, 0, &value), std::runtime_error);
    const auto image = FakeImage::Planar(2, 2, 1, 8);
    image->Pixels[3] = 77;
    std::thread([&] { EXPECT_TRUE(GetPixVal(image->Handle(), 0, 1, 1, &value)); }).join();
    EXPECT_EQ(value, 77u);
}

/// Calls every function with an image whose operations fail, and watches its count only.
void ExpectReferencesGivenBack(const std::function<void(FakeImage::Failures &)> &spoil, const std::string &name) {
    for (const auto &function : AllImageFunctions()) {
        const auto image = FakeImage::Planar(2, 2, 3, 8);
        spoil(image->Fails);
        Outputs out;
        try {
            function.Call(image->Handle(), out);
        } catch (...) {
        }
        image->Fails = {};
        out.ReleaseResult();
        EXPECT_EQ(image->Count(), 1) << function.Name << " with " << name;
    }
}

TEST_F(ForeignHandlesTest, AnImageWhoseOperationsFailGetsItsReferencesBack) {
    ExpectReferencesGivenBack([](auto &) {}, "no failure");
    ExpectReferencesGivenBack([](auto &fails) { fails.DimensionsStatus = StatusBadPlane; }, "no dimensions");
    ExpectReferencesGivenBack([](auto &fails) { fails.DatatypeStatus = StatusBadPlane; }, "no data type");
    ExpectReferencesGivenBack([](auto &fails) { fails.VPAStatus = StatusBadPlane; }, "no table");
    ExpectReferencesGivenBack([](auto &fails) { fails.CoordinatesStatus = StatusBadPlane; }, "no coordinates");
}

TEST_F(ForeignHandlesTest, AnImageWhoseOperationsThrowGetsItsReferencesBack) {
    for (int good = 0; good < 6; ++good) {
        const auto throwAfterSome = [good](auto &fails) {
            fails.OnOperation = [left = good]() mutable {
                if (left-- <= 0)
                    throw std::runtime_error("refused");
            };
        };
        ExpectReferencesGivenBack(throwAfterSome, "a throw behind " + std::to_string(good) + " operations");
    }
    ExpectReferencesGivenBack([](auto &fails) { fails.OnOperation = [] { throw 5; }; }, "a thrown int");
}

} // namespace
