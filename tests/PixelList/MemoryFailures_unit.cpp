/* Every allocation of every function of pixel lists fails in turn. Nothing is thrown out, one report tells of it
 * under the function's name, outputs and lists stay as they were, and no memory is lost. */
#include "ImageCreation.h"
#include "Overlays.h"
#include "PixelList/PixelLists.h"

#include <cstdlib>
#include <new>

namespace {

/// The calling thread's allocations.
struct Allocations {
    bool IsLimited = false;
    long Left = 0; ///< that succeed before one fails; those behind it succeed again, so that it can be told
    bool HasFailed = false;
    long Living = 0;

    void *Take(std::size_t bytes) {
        if (IsLimited && Left-- == 0) {
            HasFailed = true;
            return nullptr;
        }
        void *const memory = std::malloc(bytes == 0 ? 1 : bytes);
        Living += memory != nullptr ? 1 : 0;
        return memory;
    }
    void GiveBack(void *memory) {
        Living -= memory != nullptr ? 1 : 0;
        std::free(memory);
    }
};
thread_local Allocations allocations;

} // namespace

// Not inlined: a compiler that sees the inside of one of a pair only takes them for a mismatch.
[[gnu::noinline]] void *operator new(std::size_t bytes) {
    if (void *const memory = allocations.Take(bytes))
        return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void *operator new(std::size_t bytes, const std::nothrow_t &) noexcept {
    return allocations.Take(bytes);
}
[[gnu::noinline]] void *operator new[](std::size_t bytes) {
    return operator new(bytes);
}
[[gnu::noinline]] void *operator new[](std::size_t bytes, const std::nothrow_t &) noexcept {
    return allocations.Take(bytes);
}
[[gnu::noinline]] void operator delete(void *memory) noexcept {
    allocations.GiveBack(memory);
}
[[gnu::noinline]] void operator delete(void *memory, std::size_t) noexcept {
    allocations.GiveBack(memory);
}
[[gnu::noinline]] void operator delete[](void *memory) noexcept {
    allocations.GiveBack(memory);
}
[[gnu::noinline]] void operator delete[](void *memory, std::size_t) noexcept {
    allocations.GiveBack(memory);
}

namespace {

using namespace TestSupport;

/// What the calls are given.
struct Objects {
    std::vector<std::uint8_t> Bytes;
    Handle List = ListOf(3), Short = ListOf(3, {{4, 5, 6}, {7, 8, 9}}), Flat = ListOf(2, {{1, 1}});
    Handle Image, Overlay;

    Objects() : Bytes(70 * 30) {
        for (std::size_t i = 0; i < Bytes.size(); ++i)
            Bytes[i] = static_cast<std::uint8_t>(i * i * 7 + i / 70 * 31);
        // Long enough for the sorts by keys.
        for (int i = 0; i < 600; ++i) {
            const double components[] = {static_cast<double>(i * 37 % 101), static_cast<double>(i * 53 % 97),
                                         1.0 * i};
            EXPECT_TRUE(AddPixel(List.Get(), components));
        }
        EXPECT_EQ(CreateImageFromPointer(Bytes.data(), Bytes.size(), 70, 30, 1, 8, 1, 70, 70 * 30, nullptr, nullptr,
                                         nullptr, Image.Out()),
                  0);
        EXPECT_TRUE(CreateOverlayFromPixelList(List.Get(), Image.Get(), Overlay.Out()));
        ClearReports();
    }

    std::vector<Points> Contents() const {
        return {PointsOf(List.Get()), PointsOf(Short.Get()), PointsOf(Flat.Get())};
    }
    void ExpectOneReferenceEach() const {
        for (const Handle *const object : {&List, &Short, &Flat, &Image, &Overlay})
            EXPECT_EQ(RefCount(object->Get()), 1u);
    }
};

/// Calls with an output that no failure may touch. Result: success.
using Call = std::function<bool(const Objects &, void **out)>;

/// Runs a call again and again, with one allocation after the other that fails, until none does. failed(n, out) looks
/// at what a failure of the call has left when n allocations went well.
template <class Failed>
void FailInTurn(const Call &call, Failed &&failed) {
    for (long enough = 0;; ++enough) {
        ASSERT_LT(enough, 5000) << "no end of allocations";
        const Objects objects;
        const auto before = objects.Contents();
        void *out = UntouchedPointer();
        allocations.Left = enough;
        allocations.HasFailed = false;
        allocations.IsLimited = true;
        const bool isDone = call(objects, &out);
        allocations.IsLimited = false;
        objects.ExpectOneReferenceEach();
        if (isDone) {
            if (out != UntouchedPointer()) {
                EXPECT_TRUE(ReleaseObject(out));
            }
            if (allocations.HasFailed)
                continue; // it went another way
            EXPECT_GT(enough, 0) << "a call that allocates nothing";
            return;
        }
        ASSERT_TRUE(allocations.HasFailed) << enough;
        failed(enough, out);
        const auto after = objects.Contents();
        for (std::size_t i = 0; i < after.size(); ++i)
            ASSERT_TRUE(SamePoints(after[i], before[i])) << enough << ", list " << i;
        ClearReports();
    }
}

struct NamedCall {
    NamedCall(std::string name, std::uint32_t code, Call run)
        : Name(std::move(name)), Code(code), Run(std::move(run)) {}

    std::string Name;   ///< of the function, which reports under it
    std::uint32_t Code; ///< of the first failure
    Call Run;
};

bool Handed(void *list, void **out) {
    if (list != nullptr)
        *out = list;
    return list != nullptr;
}

std::vector<NamedCall> CallsOfLists() {
    static const double vector[] = {1, 2, 3};
    return {
        {"CreatePixelList", ErrGeneral, [](const Objects &, void **out) { return Handed(CreatePixelList(3), out); }},
        {"ConcatenatePixelLists", ErrGeneral,
         [](const Objects &o, void **out) {
             return Handed(ConcatenatePixelLists(o.Short.Get(), o.Short.Get()), out);
         }},
        {"CopyPixelList", ErrCreateFailed,
         [](const Objects &o, void **out) {
             void *target = nullptr;
             const bool isDone = CopyPixelList(o.Short.Get(), &target);
             EXPECT_EQ(target != nullptr, isDone);
             return isDone && Handed(target, out);
         }},
        {"CreatePixelListFromOverlay", ErrGeneral,
         [](const Objects &o, void **out) {
             return CreatePixelListFromOverlay(o.Overlay.Get(), 3, 0, 0, 9, 9, out);
         }},
        {"SortPixelsEx", ErrGeneral, [](const Objects &o, void **) { return SortPixelsEx(o.List.Get(), vector); }}};
}

std::vector<NamedCall> Searches() {
    std::vector<NamedCall> calls;
    for (const std::uint32_t fit : {FitNone, FitQuadratic, FitParaboloid, FitGaussian})
        for (const std::int64_t left : {0, 40})
            calls.emplace_back("FindSubPixelMaxima", ErrGeneral, [=](const Objects &o, void **out) {
                return FindSubPixelMaxima(o.Image.Get(), 0, left, 0, 69, 29, 4, fit, 2, out, 1.0);
            });
    return calls;
}

void ExpectTold(const std::vector<NamedCall> &calls) {
    for (const NamedCall &call : calls) {
        SCOPED_TRACE(call.Name);
        FailInTurn(call.Run, [&call](long enough, void *out) {
            EXPECT_EQ(out, UntouchedPointer()) << enough;
            EXPECT_EQ(ReportCount(), 1) << enough;
            const auto report = TakeReport();
            ASSERT_TRUE(report.has_value()) << enough;
            // Copies are made by AddPixel, under its own name.
            EXPECT_TRUE(report->function == call.Name ||
                        (call.Name == "CopyPixelList" && report->function == "AddPixel"))
                << report->function << ", " << enough;
            EXPECT_EQ(report->code, enough == 0 ? call.Code : ErrGeneral) << enough;
        });
    }
}

TEST(PixelListMemory, EachFailureIsToldOnceAndTouchesNothing) {
    ExpectTold(CallsOfLists());
}

TEST(MaximaMemory, EachFailureIsToldOnceAndTouchesNothing) {
    ExpectTold(Searches());
}

TEST(MaximaMemory, AFailureOfFindMaximaLeavesNoList) {
    const Call call = [](const Objects &o, void **out) {
        return FindMaxima(o.Image.Get(), 0, 0, 0, 0, 0, 3, 1, out) != 0;
    };
    FailInTurn(call, [](long enough, void *out) {
        EXPECT_EQ(out, enough == 0 ? UntouchedPointer() : nullptr) << "the list itself is the first";
        ExpectOneReport(ErrGeneral, "FindMaxima");
    });
}

TEST(PixelListMemory, APixelThatHasNoMemoryIsNotAdded) {
    const Call call = [](const Objects &o, void **) {
        const double components[] = {1, 2, 3};
        return AddPixel(o.List.Get(), components);
    };
    FailInTurn(call, [](long, void *) { ExpectOneReport(ErrGeneral, "AddPixel"); });
}

TEST(PixelListMemory, ATargetOfACopyKeepsItsPixels) {
    const Call call = [](const Objects &o, void **) {
        void *target = o.Flat.Get();
        const bool isDone = CopyPixelList(o.Short.Get(), &target);
        EXPECT_EQ(target, o.Flat.Get());
        return isDone;
    };
    FailInTurn(call,
               [](long enough, void *) { ExpectOneReport(ErrGeneral, enough == 0 ? "CopyPixelList" : "AddPixel"); });
}

TEST(PixelListMemory, AnOverlayIsMadeWholeOrNotAtAll) {
    const Call call = [](const Objects &o, void **out) {
        return CreateOverlayFromPixelList(o.List.Get(), o.Image.Get(), out);
    };
    bool isListOfPlacesMet = false;
    FailInTurn(call, [&](long enough, void *out) {
        EXPECT_EQ(out, UntouchedPointer()) << enough;
        const auto report = TakeReport();
        ASSERT_TRUE(report.has_value()) << enough;
        EXPECT_EQ(report->function, "CreateOverlayFromPixelList");
        isListOfPlacesMet = isListOfPlacesMet || report->code == ErrCreateFailed;
        EXPECT_TRUE(report->code == ErrCreateFailed || report->code == ErrGeneral) << report->code;
    });
    EXPECT_TRUE(isListOfPlacesMet) << "the array of places has a code of its own";
}

TEST(PixelListMemory, SortingByKeysDoesWithoutMemory) {
    static const double vector[] = {0, 0, 1};
    const Call sorts[] = {[](const Objects &o, void **) { return SortPixelsByValue(o.List.Get()); },
                          [](const Objects &o, void **) { return SortPixelsByPosition(o.List.Get(), 1, 3); },
                          [](const Objects &o, void **) { return SeparatePixels(o.List.Get(), vector, 3.0); }};
    for (const Call &sort : sorts) {
        std::vector<Points> results;
        const Call call = [&](const Objects &o, void **out) {
            const bool isDone = sort(o, out);
            allocations.IsLimited = false;
            if (isDone)
                results.push_back(PointsOf(o.List.Get()));
            return isDone;
        };
        // Only the copy of a vector can fail.
        FailInTurn(call, [](long, void *) {
            ExpectReports(1, ErrGeneral, "SortPixelsEx", "Access violation during access to input pixel data");
        });
        ASSERT_GT(results.size(), 1u);
        for (const Points &result : results)
            EXPECT_TRUE(SamePoints(result, results.back()));
    }
}

TEST(PixelListMemory, NothingIsLostOnAnyWayOut) {
    auto calls = CallsOfLists();
    for (auto &search : Searches())
        calls.push_back(std::move(search));
    for (const NamedCall &call : calls) {
        long living[2] = {};
        for (long &count : living) { // the first round fills what is kept for good
            FailInTurn(call.Run, [](long, void *) {});
            ClearReports();
            count = allocations.Living;
        }
        EXPECT_EQ(living[1], living[0]) << call.Name;
    }
}

} // namespace
