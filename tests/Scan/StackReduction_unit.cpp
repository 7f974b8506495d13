// Minimum and maximum, mean and deviation of a stack: each quick method at each instruction set level against the
// plain form, byte for byte, in all layouts, for all pixel types and for many numbers of planes.
#include "Image/KernelLevel.h"
#include "Scan/MeanDeviationPlanes.h"
#include "Scan/MinMaxPlanes.h"
#include "Support/TestLayouts.h"

#include <cmath>
#include <limits>
#include <random>

namespace {

using namespace TestSupport;
using Image::PlaneView;
using Scan::DeviationMethod;
using Scan::StackPlanes;

constexpr TDataType AllTypes[] = {0x108, 8, 0x110, 16, 0x120, 32, 0x140, 64, 0x220, 0x240};
constexpr DeviationMethod AllMethods[] = {DeviationMethod::DoubleSums, DeviationMethod::WholeSums,
                                          DeviationMethod::WholeNumbers, DeviationMethod::OneGo};

std::vector<PlaneView> ViewsOf(void *image) {
    const Image::vpat_analyzer analyzer(image);
    std::vector<PlaneView> views;
    for (std::intptr_t plane = 0; plane < analyzer.Planes(); ++plane)
        views.push_back(ViewOf(analyzer, plane));
    return views;
}

/// Two planes for results, and what stands in both of them after a reduction.
class ResultPlanes {
public:
    ResultPlanes(const PlaneView &like, TDataType type)
        : image_(FakeImage::Planar(like.Width, like.Height, 2, type)) {
        const auto views = ViewsOf(image_->Handle());
        results_ = {views[0], views[1]};
    }
    template <class Reduce>
    std::vector<std::uint8_t> After(Reduce &&reduce) {
        std::fill(image_->Pixels.begin(), image_->Pixels.end(), std::uint8_t{0x5B});
        reduce(results_);
        return image_->Pixels;
    }

private:
    std::unique_ptr<FakeImage> image_;
    Scan::Pair<PlaneView> results_;
};

template <class T>
bool Suits(DeviationMethod method, std::size_t planes) {
    if (method == DeviationMethod::WholeNumbers)
        return sizeof(T) <= 2 && Scan::IsToldByWholeNumbers(planes);
    if (method == DeviationMethod::OneGo)
        return std::is_floating_point_v<T> && planes <= Scan::FirstPlanes;
    return method == DeviationMethod::DoubleSums || (sizeof(T) <= 2 && planes <= Scan::MostExactPlanes);
}

/// Makes all that are no number the same one: which of several a sum gives is not promised.
template <class T>
std::vector<std::uint8_t> WithOneNaN(std::vector<std::uint8_t> bytes) {
    if constexpr (std::is_floating_point_v<T>)
        for (std::size_t i = 0; i < bytes.size(); i += sizeof(T)) {
            T value;
            std::memcpy(&value, bytes.data() + i, sizeof value);
            value = std::isnan(value) ? std::numeric_limits<T>::quiet_NaN() : value;
            std::memcpy(bytes.data() + i, &value, sizeof value);
        }
    return bytes;
}

/// Expects the bytes of the plain forms from all that suit, at all levels.
template <class T>
void ExpectPlainBytes(StackPlanes planes, TDataType type, const std::string &what) {
    ResultPlanes results(planes[0], type);
    const auto range = results.After([&](const auto &pair) { Scan::MinMaxPlainly<T>(planes, pair); });
    const auto mean =
        WithOneNaN<T>(results.After([&](const auto &pair) { Scan::MeanDeviationPlainly<T>(planes, pair); }));
    for (const Image::KernelLevel level : Image::AvailableLevels()) {
        const Image::ForcedLevel forced(level);
        ASSERT_EQ(results.After([&](const auto &pair) { Scan::MinMaxByPieces<T>(planes, pair); }), range)
            << what << ", type " << type << ", " << NameOf(level);
        for (const DeviationMethod method : AllMethods) {
            if (!Suits<T>(method, planes.size()))
                continue;
            const auto quick = WithOneNaN<T>(
                results.After([&](const auto &pair) { Scan::MeanDeviationByPieces<T>(method, planes, pair); }));
            ASSERT_EQ(quick, mean) << what << ", type " << type << ", " << NameOf(level) << ", method "
                                   << static_cast<int>(method);
        }
    }
}
void ExpectPlainBytes(StackPlanes planes, TDataType type, const std::string &what) {
    Scan::ForPixelType(type, [&]<class T>() { ExpectPlainBytes<T>(planes, type, what); });
}

/// Dense planes of the test's own values.
template <class T>
class DenseStack {
public:
    DenseStack(std::size_t planes, std::intptr_t width, TDataType type)
        : Type(type), Image(FakeImage::Planar(width, 1, static_cast<std::intptr_t>(planes), type)),
          Views(ViewsOf(Image->Handle())) {}

    template <class Value>
    void Fill(Value &&value) {
        for (const PlaneView &view : Views)
            for (std::intptr_t x = 0; x < view.Width; ++x) {
                const T pixel = value();
                std::memcpy(view.Pixel(x, 0), &pixel, sizeof pixel);
            }
    }
    void ExpectPlainBytes(const std::string &what) const {
        ::ExpectPlainBytes<T>(Views, Type, std::to_string(Views.size()) + " planes, " + what);
    }

    const TDataType Type;
    const std::unique_ptr<FakeImage> Image;
    const std::vector<PlaneView> Views;
};

/// 8-bit and 16-bit values of many kinds of pictures, the i-th of them.
template <class T>
std::function<T()> ValuesOfKind(int kind, std::mt19937 &random) {
    constexpr int lowest = std::numeric_limits<T>::min(), highest = std::numeric_limits<T>::max();
    return [=, &random]() -> T {
        const auto word = static_cast<int>(random() & 0x7FFFFFFF);
        switch (kind) {
        case 0: // anything
            return static_cast<T>(lowest + word % (highest - lowest + 1));
        case 1: // as far from each other as can be
            return static_cast<T>(word % 2 == 0 ? lowest : highest);
        case 2: // weak noise, where rounding edges are met exactly
            return static_cast<T>(highest - word % 2);
        case 3:
            return static_cast<T>(word % 4);
        case 4:
            return static_cast<T>(lowest + word % 11);
        default: // all alike
            return static_cast<T>(highest);
        }
    };
}

template <class T>
void TryAllPlaneCounts(TDataType type) {
    std::mt19937 random(63);
    for (std::size_t planes = 1; planes <= Scan::MostExactPlanes + 2; ++planes) {
        DenseStack<T> stack(planes, 150, type);
        for (int kind = 0; kind < 6; ++kind) {
            stack.Fill(ValuesOfKind<T>(kind, random));
            stack.ExpectPlainBytes("kind " + std::to_string(kind));
        }
    }
}

TEST(StackReduction, QuickMethodsGiveThePlainBytesInAllLayouts) {
    for (const TDataType type : AllTypes)
        for (const std::intptr_t planes : {1, 2, 5, 6, 11})
            for (const NamedImage &image : MakeLayouts(19, 3, planes, type))
                ExpectPlainBytes(ViewsOf(image.Get()), type, image.Name + ", " + std::to_string(planes) + " planes");
}

TEST(StackReduction, QuickMethodsGiveThePlainBytesInRowsLongerThanAPiece) {
    for (const TDataType type : AllTypes)
        for (const std::intptr_t width : {1, 511, 512, 513, 1025})
            ExpectPlainBytes(ViewsOf(FakeImage::Planar(width, 2, 3, type)->Handle()), type, "zeros");
    for (const TDataType type : AllTypes)
        for (const NamedImage &image : MakeLayouts(1031, 2, 7, type))
            ExpectPlainBytes(ViewsOf(image.Get()), type, image.Name);
}

TEST(StackReduction, AnyNumberOfPlanesOfSigned8BitsGivesThePlainBytes) {
    TryAllPlaneCounts<char>(0x108);
}
TEST(StackReduction, AnyNumberOfPlanesOfUnsigned8BitsGivesThePlainBytes) {
    TryAllPlaneCounts<unsigned char>(8);
}
TEST(StackReduction, AnyNumberOfPlanesOfSigned16BitsGivesThePlainBytes) {
    TryAllPlaneCounts<short>(0x110);
}
TEST(StackReduction, AnyNumberOfPlanesOfUnsigned16BitsGivesThePlainBytes) {
    TryAllPlaneCounts<unsigned short>(16);
}

TEST(StackReduction, PairsOf8BitValuesGiveThePlainBytesInEachPossibleSplit) {
    // k planes of one value and the others of another: the deviation runs through all that it can be.
    std::mt19937 random(1);
    for (const std::size_t planes : {2u, 3u, 4u, 5u, 7u, 8u, 16u, 31u, 32u, 63u, 64u})
        for (std::size_t k = 1; k < planes; k += 1 + planes / 8) {
            DenseStack<unsigned char> stack(planes, 256, 8);
            for (std::size_t plane = 0; plane < planes; ++plane)
                for (std::intptr_t x = 0; x < 256; ++x)
                    *stack.Views[plane].Pixel(x, 0) = static_cast<char>(plane < k ? x : 0);
            stack.ExpectPlainBytes(std::to_string(k) + " of a value");
        }
}

TEST(StackReduction, FloatsThatAreNoNumbersOrInfiniteGiveThePlainBytes) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const double values[] = {0.0,       -0.0,     1.5,  -2.25, std::numeric_limits<double>::quiet_NaN(),
                             -infinite, infinite, 3e38, -3e38, 1e-40};
    std::mt19937 random(2);
    for (const std::size_t planes : {1u, 2u, 3u, 5u, 8u}) {
        DenseStack<float> stack(planes, 700, 0x220);
        stack.Fill([&] { return static_cast<float>(values[random() % std::size(values)]); });
        stack.ExpectPlainBytes("floats");
        DenseStack<double> wide(planes, 700, 0x240);
        wide.Fill([&] { return values[random() % std::size(values)]; });
        wide.ExpectPlainBytes("doubles");
    }
}

TEST(StackReduction, WiderPlanesAreReadAsTheNarrowType) {
    const auto narrow = RandomContent(40, 3, 1, 8, 5);
    const auto images = MakeLayouts(40, 3, 2, 16, 6);
    for (const NamedImage &image : images) {
        std::vector<PlaneView> views = ViewsOf(image.Get());
        const auto first = FakeImage::Planar(40, 3, 1, 8);
        WriteContent(*first, narrow, 40, 3, 8);
        views.insert(views.begin(), ViewsOf(first->Handle())[0]);
        ExpectPlainBytes(views, 8, image.Name);
    }
}

TEST(StackReduction, TheChoiceOfAMethodSuitsItsPlanes) {
    for (std::size_t planes = 1; planes < 200; ++planes) {
        EXPECT_TRUE(Suits<char>(Scan::ChooseDeviation<char>(planes), planes)) << planes;
        EXPECT_TRUE(Suits<unsigned short>(Scan::ChooseDeviation<unsigned short>(planes), planes)) << planes;
        EXPECT_EQ(Scan::ChooseDeviation<int>(planes), DeviationMethod::DoubleSums) << planes;
        EXPECT_TRUE(Suits<float>(Scan::ChooseDeviation<float>(planes), planes)) << planes;
    }
    EXPECT_EQ(Scan::ChooseDeviation<unsigned char>(5), DeviationMethod::WholeNumbers);
    EXPECT_EQ(Scan::ChooseDeviation<unsigned char>(6), DeviationMethod::WholeSums);
    EXPECT_EQ(Scan::ChooseDeviation<unsigned char>(65), DeviationMethod::DoubleSums);
    EXPECT_EQ(Scan::ChooseDeviation<float>(5), DeviationMethod::OneGo);
    EXPECT_EQ(Scan::ChooseDeviation<float>(6), DeviationMethod::DoubleSums);
}

} // namespace
