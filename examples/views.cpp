// Every picture here is another pair of tables over one block of memory.
#include "views.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <numeric>
#include <stdexcept>

namespace {

/// What the callback needs to know; it travels through the library as the user data of the image.
struct Piece {
    CallersBuffer &buffer;
    intptr_t firstColumn;
    intptr_t width;
};

void ReportRelease(void *, void *userData) {
    const std::unique_ptr<Piece> piece(static_cast<Piece *>(userData));
    std::printf("  release callback: the image of columns %td to %td is gone\n", piece->firstColumn,
                piece->firstColumn + piece->width - 1);
    --piece->buffer.imagesAlive;
}

View Turned(void *source, TVPATRotation rotation) {
    const double right = static_cast<double>(ImageWidth(source) - 1);
    const double bottom = static_cast<double>(ImageHeight(source) - 1);
    const auto fromLeftTurn = [=](Point p) { return Point{right - p.y, p.x}; };
    const auto toLeftTurn = [=](Point p) { return Point{p.y, right - p.x}; };
    const auto halfTurn = [=](Point p) { return Point{right - p.x, bottom - p.y}; };
    const auto fromRightTurn = [=](Point p) { return Point{p.y, bottom - p.x}; };
    const auto toRightTurn = [=](Point p) { return Point{bottom - p.y, p.x}; };
    View view;
    if (rotation == VPATRotation90CounterClockwise)
        view = {"turned by 90 degrees", "turned090", fromLeftTurn, toLeftTurn};
    else if (rotation == VPATRotation180)
        view = {"turned by 180 degrees", "turned180", halfTurn, halfTurn};
    else
        view = {"turned by 270 degrees", "turned270", fromRightTurn, toRightTurn};
    view.sourcePlanes = PlanesInOrder(ImageDimension(source));
    Require(CreateRotatedImageMap(source, rotation, view.image.Out()), "CreateRotatedImageMap");
    return view;
}

/// The halves are images of their own over the same memory; only the joined view holds them in the end. A picture of
/// one column is joined with itself.
View HalvesExchanged(CallersBuffer &buffer) {
    const intptr_t cut = buffer.width / 2;
    const intptr_t rest = buffer.width - cut;
    const double cutAt = static_cast<double>(cut);
    const double joint = static_cast<double>(rest);
    const ImageHandle rightHalf = Wrap(buffer, cut, rest);
    const ImageHandle leftHalf = Wrap(buffer, 0, std::max<intptr_t>(cut, 1));
    const auto fromJoined = [=](Point p) { return Point{p.x < joint ? p.x + cutAt : p.x - joint, p.y}; };
    const auto toJoined = [=](Point p) { return Point{p.x < cutAt ? p.x + joint : p.x - cutAt, p.y}; };
    View view{"halves exchanged", "exchanged", fromJoined, toJoined, PlanesInOrder(buffer.planes)};
    Require(CreatePanoramicImageMap(rightHalf.Get(), leftHalf.Get(), PanoramaSideBySide, view.image.Out()),
            "CreatePanoramicImageMap");
    return view;
}

} // namespace

CallersBuffer CopyOut(void *image) {
    CallersBuffer buffer{ImageWidth(image), ImageHeight(image), ImageDimension(image), {}};
    if (!IsAll8Bit(image) || (buffer.planes != 1 && buffer.planes != 3))
        throw std::runtime_error("the demo works on images of one or three 8-bit planes");
    buffer.bytes.resize(static_cast<std::size_t>(buffer.width * buffer.height * buffer.planes));
    for (intptr_t p = 0; p < buffer.planes; ++p) {
        const TPlaneRec plane = PlaneOf(image, p);
        unsigned char *target = buffer.bytes.data() + (buffer.planes - 1 - p);
        for (intptr_t y = 0; y < buffer.height; ++y)
            for (intptr_t x = 0; x < buffer.width; ++x, target += buffer.planes)
                *target = *AddressOf(plane, x, y);
    }
    return buffer;
}

ImageHandle Wrap(CallersBuffer &buffer, intptr_t firstColumn, intptr_t width) {
    static constexpr intptr_t redGreenBlue[] = {2, 1, 0}; // the memory begins with blue, the image with red
    ImageHandle image;
    auto piece = std::make_unique<Piece>(Piece{buffer, firstColumn, width});
    const int32_t status =
        CreateImageFromPointer(buffer.bytes.data() + firstColumn * buffer.planes, buffer.bytes.size(), width,
                               buffer.height, buffer.planes, 8, buffer.planes, buffer.planes * buffer.width, 1,
                               buffer.planes == 3 ? redGreenBlue : nullptr, ReportRelease, piece.get(), image.Out());
    Require(status == 0, "CreateImageFromPointer");
    piece.release(); // the image's now: its callback will delete it
    ++buffer.imagesAlive;
    return image;
}

std::vector<View> MakeViews(void *source, CallersBuffer &buffer) {
    std::vector<View> views;
    for (const TVPATRotation rotation : {VPATRotation90CounterClockwise, VPATRotation180, VPATRotation90Clockwise})
        views.push_back(Timed([&] { return Turned(source, rotation); }));
    views.push_back(Timed([&] { return HalvesExchanged(buffer); }));
    return views;
}

std::vector<intptr_t> PlanesInOrder(intptr_t count) {
    std::vector<intptr_t> planes(static_cast<std::size_t>(count));
    std::iota(planes.begin(), planes.end(), 0);
    return planes;
}

void Require(bool done, const char *what) {
    if (!done)
        throw std::runtime_error(std::string(what) + " failed: " + LastError());
}

std::string LastError() {
    uint32_t code = 0;
    int64_t serial = 0;
    char text[256] = "";
    char function[64] = "";
    uint64_t textSize = sizeof text;
    uint64_t functionSize = sizeof function;
    if (!GetLastORVError(&code, &serial, text, &textSize, function, &functionSize))
        return "no report";
    return std::string(function) + ": " + text;
}
