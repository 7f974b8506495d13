// CreateMeanVarianceImage: the mean and the standard deviation of all planes at each pixel, as two images of one
// plane.
#include "ImageStatistics.h"
#include "Scan/MeanDeviationPlanes.h"

int32_t CreateMeanVarianceImage(void *image, void **meanImage, void **deviationImage) {
    constexpr const char *functionName = "CreateMeanVarianceImage";
    return Scan::ReduceStack(functionName, image, meanImage, deviationImage,
                             []<class T>(Scan::StackPlanes planes, const Scan::Pair<Image::PlaneView> &results) {
                                 Scan::MeanDeviationByPieces<T>(Scan::ChooseDeviation<T>(planes.size()), planes,
                                                                results);
                             });
}
