// CreateMinMaxImage: the least and the greatest value of all planes at each pixel, as two images of one plane.
#include "ImageStatistics.h"
#include "Scan/MinMaxPlanes.h"

int32_t CreateMinMaxImage(void *image, void **minimumImage, void **maximumImage) {
    constexpr const char *functionName = "CreateMinMaxImage";
    return Scan::ReduceStack(functionName, image, minimumImage, maximumImage,
                             []<class T>(Scan::StackPlanes planes, const Scan::Pair<Image::PlaneView> &results) {
                                 Scan::MinMaxByPieces<T>(planes, results);
                             });
}
