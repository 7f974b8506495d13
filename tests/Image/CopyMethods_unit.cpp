// The numbered methods forced by name: which are refused and how, and that all that are accepted give the same bytes.
#include "Image/CopyMethods.h"

#include <map>
#include <stdexcept>

#include "Image/LinearImages.h"
#include "Image/RandomTables.h"
#include "Image/RectangleModel.h"
#include "Interface/Boundary.h"

namespace {

using namespace TestSupport;
using enum Image::CopyMethod;
using Image::ChooseCopy;
using Image::CopyMethod;
using Image::PixelPosition;
using Image::PixelRectangle;
using Image::RunCopy;
using Image::vpat_analyzer;

constexpr CopyMethod AllMethods[] = {CopyTableToTable,   CopyTableToLinear, CopyLinearToTable,
                                     CopyLinearToLinear, CopyLineByLine,    CopyWhole};

/// A source and target of 5 x 4 whose choice for whole lines is the method's.
struct Pair {
    CopyMethod Method;
    std::unique_ptr<FakeImage> Source, Target;
};

std::vector<Pair> PairsOfEachMethod(TDataType type = 8) {
    const auto b = static_cast<std::intptr_t>(PixelSize(type));
    const auto dense = [=] { return Linear(5, 4, {{0, b, 5 * b, type}}); };
    const auto padded = [=] { return Linear(5, 4, {{0, b, 6 * b, type}}); };
    const auto spread = [=] { return Linear(5, 4, {{0, 3 * b, 40 * b, type}}); };
    const auto scattered = [=] { return Linear(5, 4, {{0, UnevenStep, 280, type}}); };
    std::vector<Pair> pairs;
    pairs.push_back({CopyTableToTable, scattered(), scattered()});
    pairs.push_back({CopyTableToLinear, scattered(), dense()});
    pairs.push_back({CopyLinearToTable, dense(), scattered()});
    pairs.push_back({CopyLinearToLinear, dense(), spread()});
    pairs.push_back({CopyLineByLine, dense(), padded()});
    pairs.push_back({CopyWhole, dense(), dense()});
    return pairs;
}

/// What ValidateCopy throws: "" for nothing, a logic error's text, or "kernel" and the word of a kernel exception.
std::string Refusal(const std::function<void()> &call) {
    try {
        call();
    } catch (const std::out_of_range &) {
        return "out of range";
    } catch (const std::logic_error &error) {
        return error.what();
    } catch (const ErrorHandling::CImageKernelException &error) {
        return "kernel " + std::to_string(error.GetWord());
    }
    return "";
}
std::string Refusal(const Pair &pair, CopyMethod requested, std::intptr_t sourcePlane = 0,
                    std::intptr_t targetPlane = 0, bool wholeLines = true) {
    return Refusal([&] {
        Image::ValidateCopy(vpat_analyzer(pair.Source->Handle()), sourcePlane, vpat_analyzer(pair.Target->Handle()),
                            targetPlane, wholeLines, requested);
    });
}

TEST(ValidateCopy, ThePairsOfTheTestHaveTheirMethods) {
    for (const Pair &pair : PairsOfEachMethod())
        EXPECT_EQ(ChooseCopy(vpat_analyzer(pair.Source->Handle()), 0, vpat_analyzer(pair.Target->Handle()), 0, true),
                  pair.Method);
}

TEST(ValidateCopy, RefusesAStrongerMethodThanTheChoiceAndAcceptsAWeakerOne) {
    const std::map<CopyMethod, std::vector<CopyMethod>> refusedFor = {
        {CopyTableToTable, {CopyLineByLine, CopyWhole}},
        {CopyTableToLinear, {CopyLinearToLinear, CopyLineByLine, CopyWhole}},
        {CopyLinearToTable, {CopyTableToLinear, CopyLinearToLinear, CopyLineByLine, CopyWhole}},
        {CopyLinearToLinear, {CopyLineByLine, CopyWhole}},
        {CopyLineByLine, {CopyWhole}},
        {CopyWhole, {}}};
    for (const Pair &pair : PairsOfEachMethod())
        for (const CopyMethod requested : AllMethods) {
            const auto &refused = refusedFor.at(pair.Method);
            const bool isRefused = std::find(refused.begin(), refused.end(), requested) != refused.end();
            EXPECT_EQ(Refusal(pair, requested), isRefused ? "incompatible copy mode" : "")
                << static_cast<int>(requested) << " for " << static_cast<int>(pair.Method);
        }
}

TEST(ValidateCopy, RefusesTheWholeWhereThereAreNoWholeLines) {
    const auto pairs = PairsOfEachMethod();
    EXPECT_EQ(Refusal(pairs[5], CopyWhole, 0, 0, false), "incompatible copy mode");
    EXPECT_EQ(Refusal(pairs[5], CopyLineByLine, 0, 0, false), "");
}

TEST(ValidateCopy, RefusesThePlaneByPlaneMethodForOnePlane) {
    for (const Pair &pair : PairsOfEachMethod())
        EXPECT_EQ(Refusal(pair, CopyPerPlane), "copy mode does not make sense in this context");
    const Pair unequal{CopyIncompatible, Linear(5, 4, {{0, 1, 5}}), Linear(5, 4, {{0, 2, 10, 16}})};
    EXPECT_EQ(Refusal(unequal, CopyPerPlane), "copy mode does not make sense in this context");
}

TEST(ValidateCopy, RefusesAllMethodsForUnequalTypes) {
    const Pair unequal{CopyIncompatible, Linear(5, 4, {{0, 1, 5}}), Linear(5, 4, {{0, 1, 5, 0x108}})};
    for (const CopyMethod requested : AllMethods)
        EXPECT_EQ(Refusal(unequal, requested), "source and destination are incompatible");
}

TEST(ValidateCopy, RefusesPlaneNumbersOutsideFirst) {
    const auto pairs = PairsOfEachMethod();
    for (const CopyMethod requested : {CopyTableToTable, CopyWhole, CopyPerPlane})
        for (const auto &[from, to] : {std::pair{-1, 0}, {1, 0}, {2, 0}, {0, -1}, {0, 1}, {0, 99}})
            EXPECT_EQ(Refusal(pairs[0], requested, from, to), "kernel 6") << from << " to " << to;
}

// ---- RunCopy

constexpr PixelRectangle Everything = {0, 0, 99, 99};

std::string RunRefusal(const Pair &pair, CopyMethod method, std::intptr_t sourcePlane = 0) {
    return Refusal([&] {
        RunCopy(method, vpat_analyzer(pair.Source->Handle()), sourcePlane, vpat_analyzer(pair.Target->Handle()), 0,
                Everything, {0, 0}, false);
    });
}

TEST(RunCopy, RefusesWhatIsNotAllowedAndWritesNothing) {
    for (const Pair &pair : PairsOfEachMethod())
        for (const CopyMethod method :
             {CopyTableToLinear, CopyLinearToLinear, CopyLineByLine, CopyWhole, CopyPerPlane}) {
            std::fill(pair.Source->Pixels.begin(), pair.Source->Pixels.end(), std::uint8_t{7});
            std::fill(pair.Target->Pixels.begin(), pair.Target->Pixels.end(), std::uint8_t{0});
            const std::string refusal = Refusal(pair, method);
            EXPECT_EQ(RunRefusal(pair, method), refusal);
            EXPECT_EQ(std::count(pair.Target->Pixels.begin(), pair.Target->Pixels.end(), 7),
                      refusal.empty() ? 20 : 0);
        }
}

TEST(RunCopy, RefusesPixelsOfOtherWidthsForTheMethodsThatGoPixelByPixel) {
    for (const TDataType type : {24u, 128u})
        for (const Pair &pair : PairsOfEachMethod(type))
            for (const CopyMethod method : AllMethods) {
                if (!Refusal(pair, method).empty())
                    continue;
                const bool lines = method == CopyLineByLine || method == CopyWhole;
                EXPECT_EQ(RunRefusal(pair, method), lines ? "" : "kernel 28") << static_cast<int>(method);
            }
}

TEST(RunCopy, WhatItThrowsIsReportedAsABareNumberOrAsErrGeneral) {
    const auto pairs = PairsOfEachMethod(), wide = PairsOfEachMethod(24);
    const auto report = [](const Pair &pair, CopyMethod method, std::intptr_t plane) {
        ClearReports();
        const bool result = Interface::KernelWordBoundary("CopyImageRect", [&] {
            RunCopy(method, vpat_analyzer(pair.Source->Handle()), plane, vpat_analyzer(pair.Target->Handle()), 0,
                    Everything, {0, 0}, true);
            return true;
        });
        EXPECT_FALSE(result);
    };
    report(pairs[0], CopyTableToTable, 1);
    ExpectOneReport(6, "CopyImageRect");
    report(wide[0], CopyTableToTable, 0);
    ExpectOneReport(0x1C, "CopyImageRect");
    report(pairs[0], CopyWhole, 0);
    ExpectOneReport(ErrGeneral, "CopyImageRect");
}

TEST(RunCopy, ClipsOnceMore) {
    const auto pairs = PairsOfEachMethod();
    const Pair &pair = pairs[4];
    std::fill(pair.Source->Pixels.begin(), pair.Source->Pixels.end(), std::uint8_t{7});
    for (const PixelRectangle &outside : {PixelRectangle{5, 0, 9, 9}, {0, 4, 9, 9}, {-5, -5, -1, -1}})
        RunCopy(CopyWhole, vpat_analyzer(pair.Source->Handle()), 0, vpat_analyzer(pair.Target->Handle()), 0, outside,
                {0, 0}, false);
    EXPECT_EQ(std::count(pair.Target->Pixels.begin(), pair.Target->Pixels.end(), 7), 0)
        << "and is not refused either";
    RunCopy(CopyTableToTable, vpat_analyzer(pair.Source->Handle()), 0, vpat_analyzer(pair.Target->Handle()), 0,
            {-2, 3, 99, -1}, {2, 2}, false);
    EXPECT_EQ(std::count(pair.Target->Pixels.begin(), pair.Target->Pixels.end(), 7), 1);
    EXPECT_EQ(*pair.Target->PixelAddress(0, 4, 3), 7);
}

/// Forces every accepted method on a rectangle; the plain loop tells what must come out.
void ForceAllMethods(RandomImage &from, RandomImage &to, const ModelRectangle &r, Random &random,
                     std::map<CopyMethod, int> &runs) {
    from.Fill(random);
    to.Fill(random);
    const PlaneBytes before = to.Block;
    const vpat_analyzer source(from.Get()), target(to.Get());
    const ModelImage sourceModel(from.Get()), targetModel(to.Get());
    const ModelPosition at{Draw(random, 0, target.Width() - 1), Draw(random, 0, target.Height() - 1)};
    const std::intptr_t sourcePlane = Draw(random, 0, source.Planes() - 1);
    const std::intptr_t targetPlane = Draw(random, 0, target.Planes() - 1);
    CopyModelPlane(sourceModel, targetModel, sourcePlane, targetPlane, r, at);
    const PlaneBytes expected = to.Block;
    for (const CopyMethod method : AllMethods)
        for (const bool fastest : {false, true}) {
            std::copy(before.begin(), before.end(), to.Block.begin());
            const std::string refusal = Refusal([&] {
                RunCopy(method, source, sourcePlane, target, targetPlane, {r.Left, r.Top, r.Right, r.Bottom},
                        {at.X, at.Y}, fastest);
            });
            if (refusal.empty()) {
                ++runs[method];
                ASSERT_EQ(to.Block, expected) << "method " << static_cast<int>(method);
            } else {
                ASSERT_EQ(to.Block, before) << refusal;
            }
        }
}

TEST(RunCopy, AllAllowedMethodsGiveTheSameBytesForAnyTables) {
    constexpr TDataType types[] = {8, 16, 32, 64};
    std::map<CopyMethod, int> runs;
    for (std::uint64_t number = 0; number < 8000; ++number) {
        Random random(number);
        ImageForm form{
            static_cast<Family>(Draw(random, 0, FamilyCount - 1)), Draw(random, 1, 9), Draw(random, 1, 9), {}};
        if (OneIn(random, 5))
            form.Width = Draw(random, 17, 70);
        form.Types.assign(static_cast<std::size_t>(Draw(random, 1, 3)), types[Draw(random, 0, 3)]);
        RandomImage from(form, random);
        if (OneIn(random, 2))
            form.Kind = static_cast<Family>(Draw(random, 0, FamilyCount - 1));
        RandomImage to(form, random);
        ModelRectangle r{Draw(random, 0, form.Width - 1), Draw(random, 0, form.Height - 1), form.Width - 1, 0};
        r.Bottom = Draw(random, 0, form.Height - 1);
        if (OneIn(random, 2))
            r.Left = 0;
        ASSERT_NO_FATAL_FAILURE(ForceAllMethods(from, to, r, random, runs)) << "case " << number;
    }
    for (const CopyMethod method : AllMethods)
        EXPECT_GT(runs[method], 200) << static_cast<int>(method);
}

TEST(CopyAllPlanesAtOnce, LeavesTheTargetAloneWhereThePlanesDoNotLieTogether) {
    const auto planar = Linear(5, 4, {{0, 1, 5}, {20, 1, 5}, {40, 1, 5}});
    const auto target = Linear(5, 4, {{0, 1, 5}, {20, 1, 5}, {40, 1, 5}});
    const auto mirrored = Linear(5, 4, {{0, -3, 15}, {1, -3, 15}, {2, -3, 15}});
    const auto two = Linear(5, 4, {{0, 2, 10}, {1, 2, 10}});
    std::fill(planar->Pixels.begin(), planar->Pixels.end(), std::uint8_t{7});
    for (FakeImage *other : {target.get(), mirrored.get(), two.get()}) {
        EXPECT_FALSE(Image::CopyAllPlanesAtOnce(vpat_analyzer(planar->Handle()), vpat_analyzer(other->Handle()),
                                                {0, 0, 4, 3}, {0, 0}));
        EXPECT_EQ(std::count(other->Pixels.begin(), other->Pixels.end(), 7), 0);
    }
}

} // namespace
