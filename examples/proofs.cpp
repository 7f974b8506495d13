// Plain walks through the tables: nothing here knows how the memory is laid out.
#include "proofs.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

/// True when the square around the mark stays one piece in the view and inside it.
bool LiesWholeIn(const View &view, const Mark &mark, double reach) {
    const Point middle = view.toView({mark.x, mark.y});
    const Point corner = view.toView({mark.x - reach, mark.y - reach});
    const Point opposite = view.toView({mark.x + reach, mark.y + reach});
    const double diagonal = std::hypot(opposite.x - corner.x, opposite.y - corner.y);
    return std::abs(diagonal - std::hypot(2.0 * reach, 2.0 * reach)) < 1e-6 &&
           std::min(middle.x, middle.y) >= reach + 1.0 &&
           middle.x + reach + 2.0 < static_cast<double>(ImageWidth(view.image.Get())) &&
           middle.y + reach + 2.0 < static_cast<double>(ImageHeight(view.image.Get()));
}

/// The mean of the pixels whose distance from a place is at least from and less than to.
double MeanOfRing(const TPlaneRec &plane, Point place, double from, double to) {
    double sum = 0.0;
    double count = 0.0;
    for (intptr_t y = std::lround(place.y - to); y <= std::lround(place.y + to); ++y)
        for (intptr_t x = std::lround(place.x - to); x <= std::lround(place.x + to); ++x) {
            const double distance = std::hypot(static_cast<double>(x) - place.x, static_cast<double>(y) - place.y);
            if (distance >= from && distance < to) {
                sum += *AddressOf(plane, x, y);
                count += 1.0;
            }
        }
    return sum / count;
}

} // namespace

// Halfway between the board and the mark a pixel counts half; a quarter of the way above or below it counts whole or
// not at all, so that neither light nor noise pulls the centre aside.
Point MeasureMark(const TPlaneRec &plane, Point expected, double radius) {
    const double board = MeanOfRing(plane, expected, radius + 4.0, radius + 7.0);
    const double contrast = MeanOfRing(plane, expected, 0.0, radius / 2.0) - board;
    const double reach = radius + 4.0;
    double mass = 0.0;
    double sumX = 0.0;
    double sumY = 0.0;
    for (intptr_t y = std::lround(expected.y - reach); y <= std::lround(expected.y + reach); ++y)
        for (intptr_t x = std::lround(expected.x - reach); x <= std::lround(expected.x + reach); ++x) {
            const double share = (*AddressOf(plane, x, y) - board) / contrast;
            const double weight = std::clamp(2.0 * share - 0.5, 0.0, 1.0);
            mass += weight;
            sumX += weight * static_cast<double>(x);
            sumY += weight * static_cast<double>(y);
        }
    return {sumX / mass, sumY / mass};
}

bool SamePixels(void *first, void *second) {
    const intptr_t planes = ImageDimension(first);
    if (planes != ImageDimension(second) || planes == 0)
        return false;
    for (intptr_t p = 0; p < planes; ++p) {
        const TPlaneRec a = PlaneOf(first, p);
        const TPlaneRec b = PlaneOf(second, p);
        if (a.Width != b.Width || a.Height != b.Height || a.Datatype != b.Datatype)
            return false;
        const std::size_t bytes = static_cast<std::size_t>(BytesPerPixel(a.Datatype));
        for (intptr_t y = 0; y < a.Height; ++y)
            for (intptr_t x = 0; x < a.Width; ++x)
                if (std::memcmp(AddressOf(a, x, y), AddressOf(b, x, y), bytes) != 0)
                    return false;
    }
    return true;
}

bool NoPixelMoved(const View &view, void *source) {
    const intptr_t planes = static_cast<intptr_t>(view.sourcePlanes.size());
    if (ImageDimension(view.image.Get()) != planes || planes == 0)
        return false;
    for (intptr_t p = 0; p < planes; ++p) {
        const TPlaneRec shown = PlaneOf(view.image.Get(), p);
        const TPlaneRec original = PlaneOf(source, view.sourcePlanes[static_cast<std::size_t>(p)]);
        for (intptr_t y = 0; y < shown.Height; ++y)
            for (intptr_t x = 0; x < shown.Width; ++x) {
                const Point place = view.toSource({static_cast<double>(x), static_cast<double>(y)});
                if (AddressOf(shown, x, y) !=
                    AddressOf(original, static_cast<intptr_t>(place.x), static_cast<intptr_t>(place.y)))
                    return false;
            }
    }
    return true;
}

bool WriteShowsInSource(const View &view, void *source, const CallersBuffer &buffer) {
    const intptr_t plane = ImageDimension(view.image.Get()) - 1;
    const intptr_t sourcePlane = view.sourcePlanes.back();
    const intptr_t x = ImageWidth(view.image.Get()) / 3;
    const intptr_t y = ImageHeight(view.image.Get()) / 4;
    const Point place = view.toSource({static_cast<double>(x), static_cast<double>(y)});
    const intptr_t sourceX = static_cast<intptr_t>(place.x);
    const intptr_t sourceY = static_cast<intptr_t>(place.y);
    // The memory begins with the image's last plane.
    const intptr_t byte = (sourceY * buffer.width + sourceX) * buffer.planes + buffer.planes - 1 - sourcePlane;

    uint64_t before = 0;
    uint64_t after = 0;
    if (!GetPixVal(source, sourcePlane, sourceX, sourceY, &before))
        return false;
    const uint64_t written = before ^ 0xFFu;
    const bool done = SetPixVal(view.image.Get(), plane, x, y, &written) &&
                      GetPixVal(source, sourcePlane, sourceX, sourceY, &after) && after == written &&
                      buffer.bytes[static_cast<std::size_t>(byte)] == written;
    return SetPixVal(view.image.Get(), plane, x, y, &before) && done &&
           GetPixVal(source, sourcePlane, sourceX, sourceY, &after) && after == before;
}

bool FileHolds(void *image, const std::string &path) {
    ImageHandle loaded;
    return WriteImageFile(image, path.c_str()) && LoadImageFile(path.c_str(), loaded.Out()) &&
           SamePixels(image, loaded.Get());
}

double LargestMarkError(const View &view, const std::vector<Mark> &marks) {
    const TPlaneRec red = PlaneOf(view.image.Get(), 0);
    double largest = 0.0;
    for (const Mark &mark : marks) {
        if (!LiesWholeIn(view, mark, mark.radius + 8.0))
            continue;
        const Point expected = view.toView({mark.x, mark.y});
        const Point measured = MeasureMark(red, expected, mark.radius);
        largest = std::max(largest, std::hypot(measured.x - expected.x, measured.y - expected.y));
    }
    return largest;
}
