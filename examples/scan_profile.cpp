// The callbacks only note what they are told; the profiles are made of the notes.
#include "scan_profile.h"

#include <algorithm>

namespace {

unsigned char BeginLine(void *walk, int64_t linesLeft) {
    static_cast<PlaneWalk *>(walk)->lines.push_back({linesLeft});
    return 1;
}

unsigned char NotePixel(void *walk, void *pixel, int32_t x, int32_t y) {
    static_cast<PlaneWalk *>(walk)->lines.back().samples.push_back({static_cast<unsigned char *>(pixel), x, y});
    return 1;
}

unsigned char EndLine(void *walk, int64_t linesLeft) {
    static_cast<PlaneWalk *>(walk)->lines.back().linesLeftAtEnd = linesLeft;
    return 1;
}

Point PlaceOf(void *image, const Sample &sample) {
    Point place{};
    PixelToImage(image, &place.x, &place.y, sample.x, sample.y);
    return place;
}

/// Bits that are set in the pixels of each plane. A pixel that a walk comes by twice looks as if it came once.
using Paint = unsigned char[3];

unsigned char PaintPixel(void *paint, void **pixels, int32_t, int32_t) {
    for (std::size_t plane = 0; pixels[plane] != nullptr; ++plane)
        *static_cast<unsigned char *>(pixels[plane]) |= (*static_cast<Paint *>(paint))[plane];
    return 1;
}

ImageHandle CopyInThreePlanes(void *picture) {
    ImageHandle copy;
    void *const planes[] = {picture, picture, picture};
    Require(ImageDimension(picture) == 3 ? CreateDuplicateImage(picture, copy.Out()) != 0
                                         : CreateConcatenatedImage(planes, 3, 0, copy.Out()) != 0,
            "copying the picture");
    return copy;
}

} // namespace

PlaneWalk WalkOver(void *image, const TArea &area, int64_t density) {
    PlaneWalk walk;
    walk.result = ScanPlaneUnary(image, 0, area, density, 1, NotePixel, BeginLine, EndLine, &walk);
    return walk;
}

Profile AlongTheLine(void *image, const PlaneWalk &walk) {
    Profile profile;
    if (walk.lines.empty())
        return profile;
    for (const Sample &sample : walk.lines.front().samples)
        profile.push_back({PlaceOf(image, sample).x, static_cast<double>(*sample.pixel)});
    return profile;
}

Profile AcrossTheLines(void *image, const PlaneWalk &walk) {
    Profile profile;
    for (const WalkedLine &line : walk.lines) {
        double position = 0.0;
        double grey = 0.0;
        for (const Sample &sample : line.samples) {
            position += PlaceOf(image, sample).y;
            grey += *sample.pixel;
        }
        const double count = static_cast<double>(line.samples.size());
        if (!line.samples.empty())
            profile.push_back({position / count, grey / count});
    }
    return profile;
}

std::vector<double> SharesOfWhite(const Profile &profile, std::size_t columns) {
    std::vector<double> shares;
    for (std::size_t column = 0; column < columns && !profile.empty(); ++column) {
        const std::size_t first = column * profile.size() / columns;
        const std::size_t behind = std::max(first + 1, (column + 1) * profile.size() / columns);
        double sum = 0.0;
        for (std::size_t i = first; i < behind; ++i)
            sum += profile[i].grey;
        shares.push_back(sum / static_cast<double>(behind - first) / 255.0);
    }
    return shares;
}

TArea BandAlong(const TArea &line) {
    return {line.X0, line.Y0 - 2.0, line.X1, line.Y1 - 2.0, line.X0, line.Y0 + 2.0};
}

ImageHandle PaintPlaces(void *picture, const WalkPlaces &places) {
    ImageHandle painted = CopyInThreePlanes(picture);
    Require(SetImageCoordinates(painted.Get(), places.map), "SetImageCoordinates");
    Paint red = {reddish, 0, 0};
    Paint yellow = {255, 255, 0};
    ScanImageUnary(painted.Get(), places.area, places.density, 1, PaintPixel, nullptr, nullptr, &red);
    ScanImageUnary(painted.Get(), BandAlong(places.line), places.density, 1, PaintPixel, nullptr, nullptr, &yellow);
    return painted;
}
