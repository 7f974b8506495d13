// Rectangles between images of random tables against the plain loop over the pixels: the result, the reports, and
// every byte of both blocks. Set ORV_TEST_CASE to a number to run that case alone.
#include "Image/RandomTables.h"
#include "Image/RectangleModel.h"
#include "RectangleCopy.h"

#include <array>
#include <cstdlib>

namespace {

using namespace TestSupport;

constexpr std::uint64_t CaseCount = 250'000;
constexpr std::uint64_t CasesPerPair = 10; ///< that use the same two images
constexpr TDataType PixelTypes[] = {0x8,   0x108, 0x10,  0x110, 0x20, 0x120, 0x40,
                                    0x140, 0x220, 0x240, 24,    128}; ///< the last two are never copied by pixels

std::intptr_t RandomExtent(Random &random) {
    switch (Draw(random, 0, 9)) {
    case 0:
        return 1;
    case 1:
        return Draw(random, 17, 70);
    default:
        return Draw(random, 2, 12);
    }
}

ImageForm RandomForm(Random &random) {
    ImageForm form;
    form.Kind = static_cast<Family>(Draw(random, 0, FamilyCount - 1));
    form.Width = RandomExtent(random);
    form.Height = form.Width > 16 ? Draw(random, 1, 4) : RandomExtent(random);
    const std::intptr_t planeCount = OneIn(random, 3) ? 3 : Draw(random, 1, 4);
    const bool narrow = OneIn(random, 3);
    for (std::intptr_t plane = 0; plane < planeCount; ++plane)
        form.Types.push_back(narrow ? 8 : PixelTypes[Draw(random, 0, std::ssize(PixelTypes) - 1)]);
    if (!OneIn(random, 8))
        std::fill(form.Types.begin(), form.Types.end(), form.Types.front());
    return form;
}

/// A partner that agrees with the first image in much, so that every method comes up.
ImageForm FormBeside(const ImageForm &first, Random &random) {
    ImageForm form = RandomForm(random);
    if (OneIn(random, 2))
        form.Kind = first.Kind;
    if (!OneIn(random, 3))
        form.Width = first.Width;
    if (OneIn(random, 2) || form.Width > 16)
        form.Height = first.Height;
    if (!OneIn(random, 6))
        form.Types = first.Types;
    else if (!OneIn(random, 3))
        std::fill(form.Types.begin(), form.Types.end(), first.Types.front());
    return form;
}

struct ImagePair {
    explicit ImagePair(Random &random)
        : Source(RandomForm(random), random), Target(FormBeside(Source.Form, random), random),
          SourceModel(Source.Get()), TargetModel(Target.Get()) {}

    RandomImage Source, Target;
    ModelImage SourceModel, TargetModel;
};

/// One call.
struct CopyCase {
    bool AllPlanes = false;
    std::intptr_t SourcePlane = 0, TargetPlane = 0;
    ModelRectangle Rectangle{};
    ModelPosition At{};
};

void RandomAxis(Random &random, std::int64_t count, std::int64_t targetCount, std::int64_t &first, std::int64_t &last,
                std::int64_t &at) {
    at = OneIn(random, 2) ? 0 : Draw(random, 0, targetCount);
    switch (Draw(random, 0, 5)) {
    case 0:
    case 1: // all of it, or more
        first = -Draw(random, 0, 2) * Draw(random, 0, 1);
        last = count - 1 + Draw(random, 0, 3);
        at += std::min<std::int64_t>(first, 0);
        break;
    case 2: // anywhere
        first = Draw(random, -4, count + 2);
        last = Draw(random, -4, count + 2);
        at += std::min<std::int64_t>({first, last, 0}) * Draw(random, 0, 1);
        break;
    default:
        first = Draw(random, 0, count - 1);
        last = Draw(random, 0, count - 1);
    }
    if (OneIn(random, 40))
        at = Draw(random, -6, -1);
}

CopyCase RandomCase(Random &random, const ImagePair &images) {
    CopyCase one;
    const ModelImage &source = images.SourceModel, &target = images.TargetModel;
    one.AllPlanes = OneIn(random, 2);
    one.SourcePlane = Draw(random, 0, source.Count() - 1);
    one.TargetPlane =
        OneIn(random, 2) && one.SourcePlane < target.Count() ? one.SourcePlane : Draw(random, 0, target.Count() - 1);
    if (OneIn(random, 100))
        one.SourcePlane = Draw(random, 0, 1) * (source.Count() + 1) - 1;
    if (OneIn(random, 100))
        one.TargetPlane = Draw(random, 0, 1) * (target.Count() + 1) - 1;
    RandomAxis(random, source.Width, target.Width, one.Rectangle.Left, one.Rectangle.Right, one.At.X);
    RandomAxis(random, source.Height, target.Height, one.Rectangle.Top, one.Rectangle.Bottom, one.At.Y);
    return one;
}

/// The position is left of or above the target when the rectangle has been clipped.
bool ReachesOverTheCorner(const CopyCase &one, const ImagePair &images) {
    ModelRectangle r = one.Rectangle;
    ModelPosition at = one.At;
    return ClipModel(images.SourceModel, images.TargetModel, r, at) && (at.X < 0 || at.Y < 0);
}

ModelOutcome RunModel(const CopyCase &one, const ImagePair &images) {
    if (one.AllPlanes)
        return CopyModelPlanes(images.SourceModel, images.TargetModel, one.Rectangle, one.At);
    return CopyModelPlane(images.SourceModel, images.TargetModel, one.SourcePlane, one.TargetPlane, one.Rectangle,
                          one.At);
}

bool RunLibrary(const CopyCase &one, const ImagePair &images) {
    const auto word = [](std::int64_t value) { return static_cast<std::int32_t>(value); };
    const std::int32_t left = word(one.Rectangle.Left), top = word(one.Rectangle.Top);
    const std::int32_t right = word(one.Rectangle.Right), bottom = word(one.Rectangle.Bottom);
    if (one.AllPlanes)
        return CopyImageRectPlanes(images.Source.Get(), images.Target.Get(), left, top, right, bottom, word(one.At.X),
                                   word(one.At.Y));
    return CopyImageRect(images.Source.Get(), images.Target.Get(), one.SourcePlane, one.TargetPlane, left, top, right,
                         bottom, word(one.At.X), word(one.At.Y));
}

std::string NameOf(const RandomImage &image) {
    std::string name = FamilyNames[static_cast<int>(image.Form.Kind)];
    name += (image.IsExternal() ? " over a pointer, " : ", ") + std::to_string(image.Form.Width) + " x " +
            std::to_string(image.Form.Height) + ", types";
    for (const TDataType type : image.Form.Types)
        name += " " + std::to_string(type);
    return name;
}

/// Empty, or what differs from the model.
std::string FailureOf(const CopyCase &one, ImagePair &images) {
    const PlaneBytes source = images.Source.Block;
    const PlaneBytes before = images.Target.Block;
    const ModelOutcome outcome = RunModel(one, images);
    const PlaneBytes expected = images.Target.Block;
    std::copy(before.begin(), before.end(), images.Target.Block.begin());
    ClearReports();
    const bool result = RunLibrary(one, images);
    if (result != outcome.Result)
        return "result " + std::to_string(result);
    if (ReportCount() != std::ssize(outcome.Reports))
        return std::to_string(ReportCount()) + " reports instead of " + std::to_string(outcome.Reports.size());
    if (const auto report = TakeReport(); !outcome.Reports.empty())
        if (!report || !(ModelReport{report->code, report->function} == outcome.Reports.back()))
            return "another report";
    if (images.Source.Block != source)
        return "the source has changed";
    if (images.Target.Block != expected)
        return "byte " +
               std::to_string(std::mismatch(expected.begin(), expected.end(), images.Target.Block.begin()).first -
                              expected.begin()) +
               " of the target's block differs";
    return {};
}

/// What such a copy writes is open, but for this: nothing that is no pixel of the target.
std::string FailureOverTheCorner(const CopyCase &one, ImagePair &images) {
    const PlaneBytes source = images.Source.Block;
    const PlaneBytes before = images.Target.Block;
    std::vector<bool> isPixel(before.size());
    const ModelImage &target = images.TargetModel;
    for (std::intptr_t plane = 0; plane < target.Count(); ++plane)
        for (std::intptr_t y = 0; y < target.Height && (one.AllPlanes || plane == one.TargetPlane); ++y)
            for (std::intptr_t x = 0; x < target.Width; ++x)
                std::fill_n(isPixel.begin() + (target[plane].Access.At(x, y) - images.Target.Block.data()),
                            target[plane].Bytes, true);
    RunLibrary(one, images);
    for (std::size_t i = 0; i < before.size(); ++i)
        if (!isPixel[i] && images.Target.Block[i] != before[i])
            return "byte " + std::to_string(i) + " of the target's block is no pixel's and has changed";
    return images.Source.Block == source ? "" : "the source has changed";
}

class CopyRandomRectangles : public testing::Test {
protected:
    void TearDown() override { ClearReports(); }

    /// Runs a case on its pair of images.
    void Run(std::uint64_t number) {
        if (!images || pairNumber != number / CasesPerPair) {
            pairNumber = number / CasesPerPair;
            Random random(pairNumber * 2 + 1);
            images = std::make_unique<ImagePair>(random);
        }
        Random random(number * 2);
        images->Source.Fill(random);
        images->Target.Fill(random);
        const CopyCase one = RandomCase(random, *images);
        Count(one);
        const std::string failure =
            ReachesOverTheCorner(one, *images) ? FailureOverTheCorner(one, *images) : FailureOf(one, *images);
        if (!failure.empty())
            FAIL() << "case " << number << ": " << failure << "\nfrom " << NameOf(images->Source) << "\nto "
                   << NameOf(images->Target) << "\n"
                   << (one.AllPlanes ? "all planes"
                                     : "plane " + std::to_string(one.SourcePlane) + " to plane " +
                                           std::to_string(one.TargetPlane))
                   << ", " << one.Rectangle << ", " << one.At;
    }

    std::array<int, 8> methodsOfOne{}, methodsOfAll{};

private:
    /// Which methods the cases have called for.
    void Count(const CopyCase &one) {
        const ModelImage &source = images->SourceModel, &target = images->TargetModel;
        ModelRectangle r = one.Rectangle;
        ModelPosition at = one.At;
        if (!ClipModel(source, target, r, at) || at.X < 0 || at.Y < 0)
            return;
        const bool wholeLines = r.Right - r.Left + 1 == source.Width;
        if (one.AllPlanes && source.Count() == target.Count())
            ++methodsOfAll[static_cast<std::size_t>(MethodModelOfAll(source, target, wholeLines))];
        else if (one.SourcePlane >= 0 && one.SourcePlane < source.Count() && one.TargetPlane >= 0 &&
                 one.TargetPlane < target.Count())
            ++methodsOfOne[static_cast<std::size_t>(
                MethodModel(source, one.SourcePlane, target, one.TargetPlane, wholeLines))];
    }

    std::uint64_t pairNumber = 0;
    std::unique_ptr<ImagePair> images;
};

TEST_F(CopyRandomRectangles, WriteThePixelsOfTheRectangleAndNotOneByteElse) {
    const char *const only = std::getenv("ORV_TEST_CASE");
    if (only != nullptr)
        return Run(std::strtoull(only, nullptr, 10));
    for (std::uint64_t number = 0; number < CaseCount; ++number)
        ASSERT_NO_FATAL_FAILURE(Run(number));
    for (const int method : {0, 1, 2, 3, 4, 5, 6}) {
        EXPECT_GT(methodsOfOne[static_cast<std::size_t>(method)], 500) << "cases of method " << method;
        EXPECT_GT(methodsOfAll[static_cast<std::size_t>(method)], 100) << "cases of method " << method;
    }
    EXPECT_GT(methodsOfAll[7], 1000);
}

} // namespace
