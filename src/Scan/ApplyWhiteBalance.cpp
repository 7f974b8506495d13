// ApplyWhiteBalance: planes 0, 1 and 2 multiplied by a gain each, in place.
#include "ColorTransforms.h"
#include "Interface/ImageGuard.h"
#include "Scan/ThreePlanes.h"
#include "Scan/WhiteBalanceGains.h"

int32_t ApplyWhiteBalance(void *image, double redGain, double greenGain, double blueGain) {
    constexpr const char *functionName = "ApplyWhiteBalance";
    const Interface::ImageForCall held = Interface::GuardCall(image, functionName);
    if (!held.IsValid())
        return 0;
    Scan::ThreePlanes three;
    if (const std::uint32_t code = Scan::ReadThreePlanes(*held.Get(), three); code != 0) {
        ReportORVError(code, functionName);
        return 0;
    }
    if (!Scan::HasPixels(three.Size))
        return 1;
    std::array<Image::PlaneView, 3> planes;
    for (std::size_t plane = 0; plane < planes.size(); ++plane)
        planes[plane] = ViewOf(three.Planes[plane], three.Size);
    const double gains[] = {redGain, greenGain, blueGain};
    Scan::ApplyGains(Scan::ChooseGainMethod(planes), three.Datatype, planes, gains);
    return 1;
}
