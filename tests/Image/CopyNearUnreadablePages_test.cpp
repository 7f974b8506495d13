/* Copies between images that touch an unreadable page, on either side and in any layout: a byte too far is a fault.
 * Positions left of and above the target, and the largest coordinates, stay inside both images as well. */
#include "Image/FencedPiece.h"
#include "Image/RectangleModel.h"
#include "RectangleCopy.h"
#include "Support/TestLayouts.h"

#include <limits>

namespace {

using namespace TestSupport;

constexpr std::int32_t Lowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t Highest = std::numeric_limits<std::int32_t>::max();
constexpr std::intptr_t PlaneCount = 3;

/// An image whose lowest or highest byte of all touches the page.
class FencedImage {
public:
    FencedImage(const LayoutRule &rule, std::intptr_t width, std::intptr_t height, TDataType type,
                FencedBlock::Fence fence)
        : Name(rule.Name), image_(width, height) {
        std::intptr_t lowest = 0, highest = 0;
        for (std::intptr_t plane = 0; plane < PlaneCount; ++plane)
            for (std::intptr_t y = 0; y < height; ++y)
                for (std::intptr_t x = 0; x < width; ++x) {
                    lowest = std::min(lowest, rule.X(plane, x) + rule.Y(plane, y));
                    highest = std::max(highest, rule.X(plane, x) + rule.Y(plane, y));
                }
        length_ = static_cast<std::size_t>(highest - lowest) + PixelSize(type);
        piece_ = std::make_unique<FencedPiece>((length_ / 4096 + 1) * 4096, fence);
        data_ = piece_->Take(length_);
        for (std::intptr_t plane = 0; plane < PlaneCount; ++plane)
            image_.AddPlane(
                data_ - lowest, type, [&](std::intptr_t x) { return rule.X(plane, x); },
                [&](std::intptr_t y) { return rule.Y(plane, y); });
        Model = std::make_unique<ModelImage>(Get());
    }
    void *Get() { return image_.Handle(); }
    std::uint8_t *Data() { return data_; }
    std::vector<std::uint8_t> Content() const { return piece_->Content(); }
    void SetContent(const std::vector<std::uint8_t> &bytes) { std::copy(bytes.begin(), bytes.end(), data_); }
    bool RestIsUnwritten() const { return piece_->RestIsUnwritten(); }
    void Fill(std::minstd_rand &random) {
        std::generate_n(data_, length_, [&random] { return static_cast<std::uint8_t>(random()); });
    }

    std::string Name;
    std::unique_ptr<ModelImage> Model;

private:
    std::unique_ptr<FencedPiece> piece_;
    FakeImage image_;
    std::size_t length_ = 0;
    std::uint8_t *data_ = nullptr;
};

struct CopyCall {
    bool AllPlanes;
    std::int32_t Left, Top, Right, Bottom, X, Y;
    ModelRectangle Rectangle() const { return {Left, Top, Right, Bottom}; }
    ModelPosition At() const { return {X, Y}; }
};

/// One plane means the last of both.
bool RunCall(const CopyCall &call, FencedImage &from, FencedImage &to) {
    if (call.AllPlanes)
        return CopyImageRectPlanes(from.Get(), to.Get(), call.Left, call.Top, call.Right, call.Bottom, call.X,
                                   call.Y);
    return CopyImageRect(from.Get(), to.Get(), PlaneCount - 1, PlaneCount - 1, call.Left, call.Top, call.Right,
                         call.Bottom, call.X, call.Y);
}

/// The bytes that a copy may write: the pixels of the planes it is for.
std::vector<bool> MayChange(const CopyCall &call, FencedImage &to) {
    std::vector<bool> mayChange(to.Content().size());
    const ModelImage &model = *to.Model;
    for (std::intptr_t plane = call.AllPlanes ? 0 : PlaneCount - 1; plane < PlaneCount; ++plane)
        for (std::intptr_t y = 0; y < model.Height; ++y)
            for (std::intptr_t x = 0; x < model.Width; ++x)
                std::fill_n(mayChange.begin() + (model[plane].Access.At(x, y) - to.Data()), model[plane].Bytes, true);
    return mayChange;
}

class CopyNearUnreadablePages : public testing::TestWithParam<FencedBlock::Fence> {
protected:
    void SetUp() override { ClearReports(); }
    void TearDown() override { ClearReports(); }

    void Check(const CopyCall &call, FencedImage &from, FencedImage &to);

    /// Runs calls on images of each two layouts.
    void CheckLayouts(const std::vector<CopyCall> &calls, std::intptr_t width, std::intptr_t height,
                      const std::vector<TDataType> &types) {
        for (const TDataType type : types)
            for (const LayoutRule &from : LayoutRules(width, height, PlaneCount, type))
                for (const LayoutRule &to : LayoutRules(width - 2, height + 1, PlaneCount, type)) {
                    FencedImage source(from, width, height, type, GetParam());
                    FencedImage target(to, width - 2, height + 1, type, GetParam());
                    for (const CopyCall &call : calls)
                        ASSERT_NO_FATAL_FAILURE(Check(call, source, target)) << "type " << type;
                }
    }

    std::minstd_rand random{9};
};

void CopyNearUnreadablePages::Check(const CopyCall &call, FencedImage &from, FencedImage &to) {
    from.Fill(random);
    to.Fill(random);
    const auto source = from.Content();
    const auto before = to.Content();
    ModelRectangle r = call.Rectangle();
    ModelPosition at = call.At();
    const bool overTheCorner = ClipModel(*from.Model, *to.Model, r, at) && (at.X < 0 || at.Y < 0);
    if (!overTheCorner) {
        if (call.AllPlanes)
            CopyModelPlanes(*from.Model, *to.Model, call.Rectangle(), call.At());
        else
            CopyModelPlane(*from.Model, *to.Model, PlaneCount - 1, PlaneCount - 1, call.Rectangle(), call.At());
    }
    const auto expected = to.Content();
    to.SetContent(before);
    SCOPED_TRACE(testing::Message() << from.Name << " to " << to.Name << (call.AllPlanes ? ", all planes, " : ", ")
                                    << call.Rectangle() << ", " << call.At());
    ASSERT_TRUE(RunCall(call, from, to));
    ASSERT_EQ(ReportCount(), 0);
    ASSERT_EQ(from.Content(), source);
    ASSERT_TRUE(from.RestIsUnwritten());
    ASSERT_TRUE(to.RestIsUnwritten());
    const auto after = to.Content();
    ASSERT_TRUE(overTheCorner || after == expected) << "other bytes than a plain loop writes";
    // Which pixels a copy over the corner writes is open.
    const auto mayChange = MayChange(call, to);
    for (std::size_t i = 0; i < after.size(); ++i)
        ASSERT_TRUE(mayChange[i] || after[i] == before[i]) << "byte " << i;
}

INSTANTIATE_TEST_SUITE_P(AtAPage, CopyNearUnreadablePages,
                         testing::Values(FencedBlock::Fence::Behind, FencedBlock::Fence::Before),
                         [](const auto &where) {
                             return where.param == FencedBlock::Fence::Behind ? "EndsAtIt" : "BeginsBehindIt";
                         });

TEST_P(CopyNearUnreadablePages, WholeImagesCornersAndEdges) {
    std::vector<CopyCall> calls;
    for (const bool allPlanes : {false, true}) {
        calls.push_back({allPlanes, 0, 0, 99, 99, 0, 0});
        calls.push_back({allPlanes, 36, 4, 36, 4, 34, 5});
        calls.push_back({allPlanes, 1, 1, 99, 99, 0, 3});
        calls.push_back({allPlanes, 20, 4, 36, 0, 18, 1});
        calls.push_back({allPlanes, -1, -1, 99, 99, 0, 0});
    }
    CheckLayouts(calls, 37, 5, {8, 0x110, 0x220, 0x240});
}

TEST_P(CopyNearUnreadablePages, PositionsLeftOfAndAboveTheTarget) {
    std::vector<CopyCall> calls;
    for (const bool allPlanes : {false, true})
        for (std::int32_t step = -12; step <= -1; ++step) {
            calls.push_back({allPlanes, 0, 0, 99, 99, step, 0});
            calls.push_back({allPlanes, 0, 0, 99, 99, 0, step});
            calls.push_back({allPlanes, 0, 0, 99, 99, step, -13 - step});
            calls.push_back({allPlanes, 2, 1, 6, 4, step, step});
        }
    CheckLayouts(calls, 13, 9, {8, 0x240});
}

TEST_P(CopyNearUnreadablePages, PositionsLeftOfTheTargetForPixelsThatGoLineByLineOnly) {
    for (const TDataType type : {24u, 128u})
        for (const char *name : {"planar", "padded", "interleaved"}) {
            const auto rules = LayoutRules(13, 9, PlaneCount, type),
                       targetRules = LayoutRules(11, 9, PlaneCount, type);
            const auto hasName = [name](const LayoutRule &rule) { return rule.Name == name; };
            const auto rule = std::find_if(rules.begin(), rules.end(), hasName);
            const auto targetRule = std::find_if(targetRules.begin(), targetRules.end(), hasName);
            FencedImage source(*rule, 13, 9, type, GetParam()), target(*targetRule, 11, 9, type, GetParam());
            const bool areLines = name != std::string("interleaved");
            for (std::int32_t step = -10; step <= 0; ++step) {
                for (const CopyCall &call : {CopyCall{false, 0, 0, 99, 99, step, 0}, {true, 0, 0, 99, 99, 0, step}})
                    if (areLines || (call.AllPlanes && step == 0)) {
                        ASSERT_NO_FATAL_FAILURE(Check(call, source, target));
                    }
            }
        }
}

TEST_P(CopyNearUnreadablePages, TheLargestCoordinates) {
    constexpr std::int32_t values[] = {Lowest, Lowest + 1, -1, 0, 3, Highest};
    const auto rules = LayoutRules(5, 4, PlaneCount, 8);
    std::minstd_rand choice(3);
    const auto draw = [&] { return values[choice() % std::size(values)]; };
    for (int i = 0; i < 6'000; ++i) {
        FencedImage source(rules[choice() % rules.size()], 5, 4, 8, GetParam());
        FencedImage target(rules[choice() % rules.size()], 5, 4, 8, GetParam());
        for (int j = 0; j < 4; ++j)
            ASSERT_NO_FATAL_FAILURE(
                Check({j % 2 == 0, draw(), draw(), draw(), draw(), draw(), draw()}, source, target));
    }
}

TEST_P(CopyNearUnreadablePages, OneRowOrOneColumn) {
    std::vector<CopyCall> calls;
    for (const bool allPlanes : {false, true}) {
        calls.push_back({allPlanes, 0, 0, 99, 99, 0, 0});
        calls.push_back({allPlanes, 0, 0, 99, 99, 0, 1});
        calls.push_back({allPlanes, 0, 0, 99, 99, -1, -1});
    }
    CheckLayouts(calls, 40, 1, {8, 0x110});
    CheckLayouts(calls, 3, 40, {8, 0x110});
}

} // namespace
