// Measuring the gains that make three planes equally bright over an area.
#include <algorithm>

#include "ColorTransforms.h"
#include "Interface/ImageGuard.h"
#include "Scan/PixelSet.h"
#include "Scan/ThreePlanes.h"
#include "Scan/WhiteBalanceSum.h"

namespace Scan {
namespace {

constexpr const char *FunctionName = "CalculateWhiteBalance";
constexpr std::int64_t allPixels = 1000;

std::int32_t Refuse(std::uint32_t code) {
    ReportORVError(code, FunctionName);
    return 0;
}

/// The sums of signed 8-bit pixels are those of signed char, of all others those of the pixel type itself.
template <class T>
using SummedType = std::conditional_t<std::is_same_v<T, char>, signed char, T>;

template <class T>
void SumPlanes(const ThreePlanes &three, const WalkPlan &plan, std::array<double, 3> &sums) {
    std::array<Image::PlaneView, 3> views;
    for (std::size_t i = 0; i < views.size(); ++i)
        views[i] = Image::ViewOf(three.Planes[i], three.Size);
    CWhiteBalanceSum<T> operation(views);
    const PixelBounds bounds = BoundsOf(three.Size.Width, three.Size.Height);
    if constexpr (CWhiteBalanceSum<T>::IsOrderFree)
        VisitPixels(plan, bounds, operation);
    else
        QuickWalk(plan, bounds, operation);
    std::transform(operation.Sums().begin(), operation.Sums().end(), sums.begin(),
                   [](auto sum) { return static_cast<double>(sum); });
}

/// Required: added to each sum once, not per pixel; that of 32-bit pixels is negative.
double BiasOf(TDataType type) {
    const bool isSignedInteger = (type & DataTypeSigned) != 0 && (type & DataTypeFloat) == 0;
    return isSignedInteger ? static_cast<double>(static_cast<std::int32_t>(1u << (Image::BitsOf(type) - 1))) : 0.0;
}

std::array<double, 3> MeasurePlanes(const ThreePlanes &three, const WalkPlan &plan) {
    std::array<double, 3> sums = {};
    if (HasPixels(three.Size))
        ForPixelType(three.Datatype, [&]<class T>() {
            if constexpr (!(std::is_integral_v<T> && sizeof(T) == 8))
                SumPlanes<SummedType<T>>(three, plan, sums);
        });
    for (double &sum : sums)
        sum += BiasOf(three.Datatype);
    return sums;
}

} // namespace
} // namespace Scan

int32_t CalculateWhiteBalance(void *image, double *redGain, double *greenGain, double *blueGain, TArea area) {
    using namespace Scan;
    const Interface::ImageForCall held = Interface::GuardCall(image, FunctionName);
    if (!held.IsValid())
        return 0;
    if (redGain == nullptr || greenGain == nullptr || blueGain == nullptr)
        return Refuse(ErrParameter);
    ThreePlanes three;
    if (const std::uint32_t code = ReadThreePlanes(*held.Get(), three))
        return Refuse(code);
    const auto plan = PlanWalk(area, allPixels);
    if (!plan)
        return Refuse(ErrGeneral);
    const std::array<double, 3> sums = MeasurePlanes(three, *plan);
    const double greatest = std::max({sums[0], sums[1], sums[2]});
    *redGain = greatest / sums[0];
    *greenGain = greatest / sums[1];
    *blueGain = greatest / sums[2];
    return 1;
}
