// The expected values are computed here in plain double or whole numbers, and the pixels compared with them.
#include "value_proofs.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double halfAGrey = 0.5 + 1e-6; // rounding, and a little for another order of additions

/// Runs holds(x, y) for each pixel; false as soon as one does not hold.
template <class Question>
bool EachPixel(void *image, Question holds) {
    for (intptr_t y = 0; y < ImageHeight(image); ++y)
        for (intptr_t x = 0; x < ImageWidth(image); ++x)
            if (!holds(x, y))
                return false;
    return true;
}

/// target = limited(source * gain + offset), rounded, for all pixels of a plane.
bool LiesOnLine(const TPlaneRec &target, const TPlaneRec &source, void *image, double gain, double offset) {
    return EachPixel(image, [&](intptr_t x, intptr_t y) {
        const double expected = std::clamp(*AddressOf(source, x, y) * gain + offset, 0.0, 255.0);
        return std::abs(*AddressOf(target, x, y) - expected) <= halfAGrey;
    });
}

std::vector<TPlaneRec> PlanesOf(const FrameStack &stack) {
    std::vector<TPlaneRec> planes;
    for (const ImageHandle &frame : stack.frames)
        planes.push_back(PlaneOf(frame.Get(), 0));
    return planes;
}

bool IsSpotted(const FrameStack &stack, intptr_t x, intptr_t y) {
    return std::any_of(stack.spots.begin(), stack.spots.end(), [=](const Spot &spot) { return spot.Covers(x, y); });
}

} // namespace

bool IsBrightness(void *grey, void *picture) {
    const TPlaneRec plane = PlaneOf(grey, 0);
    if (ImageDimension(picture) != 3)
        return LiesOnLine(plane, PlaneOf(picture, 0), grey, 1.0, 0.0);
    const TPlaneRec colours[] = {PlaneOf(picture, 0), PlaneOf(picture, 1), PlaneOf(picture, 2)};
    return EachPixel(grey, [&](intptr_t x, intptr_t y) {
        const double expected = 0.299 * *AddressOf(colours[0], x, y) + 0.587 * *AddressOf(colours[1], x, y) +
                                0.114 * *AddressOf(colours[2], x, y);
        return std::abs(*AddressOf(plane, x, y) - expected) <= halfAGrey;
    });
}

bool IsStretchedToRange(void *stretched, void *picture) {
    for (intptr_t p = 0; p < ImageDimension(picture); ++p) {
        const TPlaneRec plane = PlaneOf(picture, p);
        int least = 255;
        int greatest = 0;
        EachPixel(picture, [&](intptr_t x, intptr_t y) {
            least = std::min<int>(least, *AddressOf(plane, x, y));
            greatest = std::max<int>(greatest, *AddressOf(plane, x, y));
            return true;
        });
        const double gain = least == greatest ? 1.0 : 255.0 / (greatest - least);
        const double offset = 255.0 - gain * greatest; // a plane of one value becomes white
        if (!LiesOnLine(PlaneOf(stretched, p), plane, picture, gain, offset))
            return false;
    }
    return ImageDimension(stretched) == ImageDimension(picture);
}

bool IsStretchedToSpread(void *stretched, void *picture, double mean, double deviation) {
    for (intptr_t p = 0; p < ImageDimension(picture); ++p) {
        const TPlaneRec plane = PlaneOf(picture, p);
        double sum = 0.0;
        double squares = 0.0;
        EachPixel(picture, [&](intptr_t x, intptr_t y) {
            const double value = *AddressOf(plane, x, y);
            sum += value;
            squares += value * value;
            return true;
        });
        const double count = static_cast<double>(plane.Width * plane.Height);
        const double measuredMean = sum / count;
        const double measured = std::sqrt(std::max(squares / count - measuredMean * measuredMean, 0.0));
        const double gain = measured == 0.0 ? 1.0 : deviation / measured;
        if (!LiesOnLine(PlaneOf(stretched, p), plane, picture, gain, mean - gain * measuredMean))
            return false;
    }
    return ImageDimension(stretched) == ImageDimension(picture);
}

bool IsMultipliedByGains(const WhiteBalance &balance) {
    for (intptr_t p = 0; p < 3; ++p) {
        const double gain = balance.gains[static_cast<std::size_t>(p)];
        const TPlaneRec before = PlaneOf(balance.tinted.Get(), p);
        const TPlaneRec after = PlaneOf(balance.balanced.Get(), p);
        const bool holds = EachPixel(balance.tinted.Get(), [&](intptr_t x, intptr_t y) {
            const double value = *AddressOf(before, x, y);
            const double excess = *AddressOf(after, x, y) - std::min(value * gain, 255.0);
            return excess <= value / 512.0 + 1e-9 && excess >= -1.0 - value / 512.0;
        });
        if (!holds)
            return false;
    }
    return true;
}

bool UndoesTheTint(const WhiteBalance &balance) {
    const auto relative = [](const Gains &gains, std::size_t plane) { return gains[plane] / gains[1]; };
    for (std::size_t p = 0; p < balance.gains.size(); ++p) {
        const double expected = relative(balance.untinted, p) / relative(balance.tint, p);
        if (std::abs(relative(balance.gains, p) / expected - 1.0) > 0.02)
            return false;
    }
    return true;
}

bool IsRefusedForItsPlanes(void *picture) {
    Gains gains{-1.0, -1.0, -1.0};
    uint32_t code = 0;
    int64_t serial = 0;
    uint64_t noText = 1;
    uint64_t noName = 1;
    const TArea area = {0.0, 0.0, 0.0, 0.0, 0.0, 0.0};
    FlushORVErrorCache();
    return CalculateWhiteBalance(picture, &gains[0], &gains[1], &gains[2], area) == 0 && gains[0] == -1.0 &&
           GetLastORVError(&code, &serial, nullptr, &noText, nullptr, &noName) && code == ErrIndexRange;
}

bool HasLeastAndGreatest(const FrameStack &stack) {
    const std::vector<TPlaneRec> frames = PlanesOf(stack);
    const TPlaneRec minimum = PlaneOf(stack.minimum.Get(), 0);
    const TPlaneRec maximum = PlaneOf(stack.maximum.Get(), 0);
    return EachPixel(stack.minimum.Get(), [&](intptr_t x, intptr_t y) {
        int least = 255;
        int greatest = 0;
        for (const TPlaneRec &frame : frames) {
            least = std::min<int>(least, *AddressOf(frame, x, y));
            greatest = std::max<int>(greatest, *AddressOf(frame, x, y));
        }
        return *AddressOf(minimum, x, y) == least && *AddressOf(maximum, x, y) == greatest;
    });
}

bool HasMeanAndDeviation(const FrameStack &stack) {
    const std::vector<TPlaneRec> frames = PlanesOf(stack);
    const TPlaneRec mean = PlaneOf(stack.mean.Get(), 0);
    const TPlaneRec deviation = PlaneOf(stack.deviation.Get(), 0);
    const int count = static_cast<int>(frames.size());
    return EachPixel(stack.mean.Get(), [&](intptr_t x, intptr_t y) {
        int sum = 0;
        int squares = 0;
        for (const TPlaneRec &frame : frames) {
            const int value = *AddressOf(frame, x, y);
            sum += value;
            squares += value * value;
        }
        // d is the deviation rounded when d - 1/2 <= deviation < d + 1/2; all of it times 2 count, and squared.
        const int doubled = 4 * (count * squares - sum * sum);
        const int d = *AddressOf(deviation, x, y);
        const int low = std::max(2 * d - 1, 0) * count;
        const int high = (2 * d + 1) * count;
        return *AddressOf(mean, x, y) == sum / count && low * low <= doubled && doubled < high * high;
    });
}

bool OnlyMaximumShowsTheSpot(const FrameStack &stack) {
    const TPlaneRec thing = PlaneOf(stack.thing.Get(), 0);
    const TPlaneRec minimum = PlaneOf(stack.minimum.Get(), 0);
    const TPlaneRec maximum = PlaneOf(stack.maximum.Get(), 0);
    return EachPixel(stack.thing.Get(), [&](intptr_t x, intptr_t y) {
        const int value = *AddressOf(thing, x, y);
        const bool rises = *AddressOf(maximum, x, y) >= value + spotBrightness - mostNoise;
        return std::abs(*AddressOf(minimum, x, y) - value) <= mostNoise && rises == IsSpotted(stack, x, y);
    });
}

bool MapsInProportion(const FrameStack &stack) {
    const TPlaneRec sum = PlaneOf(stack.sum.Get(), 0);
    const TPlaneRec mapped = PlaneOf(stack.mapped.Get(), 0);
    const auto at = [&sum](intptr_t x, intptr_t y) {
        return int{*reinterpret_cast<const uint16_t *>(AddressOf(sum, x, y))};
    };
    int greatest = 0;
    EachPixel(stack.sum.Get(), [&](intptr_t x, intptr_t y) {
        greatest = std::max(greatest, at(x, y));
        return true;
    });
    return greatest > 0 && IsAll8Bit(stack.mapped.Get()) && EachPixel(stack.sum.Get(), [&](intptr_t x, intptr_t y) {
               return *AddressOf(mapped, x, y) == at(x, y) * 255 / greatest;
           });
}

NoiseLeft MeasureNoise(const FrameStack &stack) {
    const TPlaneRec thing = PlaneOf(stack.thing.Get(), 0);
    const TPlaneRec frame = PlaneOf(stack.frames.front().Get(), 0);
    const TPlaneRec mean = PlaneOf(stack.mean.Get(), 0);
    double squaresOfFrame = 0.0;
    double squaresOfMean = 0.0;
    intptr_t pixels = 0;
    EachPixel(stack.thing.Get(), [&](intptr_t x, intptr_t y) {
        if (!IsSpotted(stack, x, y)) {
            ++pixels;
            squaresOfFrame += std::pow(*AddressOf(frame, x, y) - *AddressOf(thing, x, y), 2.0);
            squaresOfMean += std::pow(*AddressOf(mean, x, y) - *AddressOf(thing, x, y), 2.0);
        }
        return true;
    });
    const double count = static_cast<double>(pixels);
    return {std::sqrt(squaresOfFrame / count), std::sqrt(squaresOfMean / count), pixels};
}
