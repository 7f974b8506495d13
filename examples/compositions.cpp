// Pixels are copied for the strip and its paper only; everything else here is tables.
#include "compositions.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr intptr_t gap = 10;

struct Cut {
    intptr_t left;
    intptr_t top;
    intptr_t width;
    intptr_t height;
};

/// The middle of a picture, as wide and high as a part of its sides.
Cut MiddleOf(void *image, intptr_t part) {
    const intptr_t width = std::max<intptr_t>(ImageWidth(image) / part, 1);
    const intptr_t height = std::max<intptr_t>(ImageHeight(image) / part, 1);
    return {(ImageWidth(image) - width) / 2, (ImageHeight(image) - height) / 2, width, height};
}

/// A cut at such a size that its longer side becomes the given one.
View Thumbnail(void *source, const char *name, const Cut &cut, intptr_t longerSide) {
    const intptr_t longest = std::max(cut.width, cut.height);
    const intptr_t width = std::max<intptr_t>(cut.width * longerSide / longest, 1);
    const intptr_t height = std::max<intptr_t>(cut.height * longerSide / longest, 1);
    const double columnsPerPixel = static_cast<double>(cut.width) / static_cast<double>(width);
    const double rowsPerPixel = static_cast<double>(cut.height) / static_cast<double>(height);
    const auto toSource = [=](Point p) {
        return Point{std::floor(p.x * columnsPerPixel) + static_cast<double>(cut.left),
                     std::floor(p.y * rowsPerPixel) + static_cast<double>(cut.top)};
    };
    View view{name, "", toSource, nullptr, PlanesInOrder(ImageDimension(source))};
    Require(CreateImageMap(source, cut.left, cut.top, cut.left + cut.width - 1, cut.top + cut.height - 1, width,
                           height, view.image.Out()),
            "CreateImageMap");
    return view;
}

View PlanesAsTheyLie(std::string name, std::string fileEnding, std::vector<intptr_t> sourcePlanes) {
    const auto samePlace = [](Point p) { return p; };
    return {std::move(name), std::move(fileEnding), samePlace, samePlace, std::move(sourcePlanes)};
}

/// The first plane becomes the last one: no plane is touched, only their list is another.
View Reversed(const std::vector<View> &split) {
    View view = split.size() == 3 ? PlanesAsTheyLie("red and blue exchanged", "blue_green_red", {2, 1, 0})
                                  : PlanesAsTheyLie("one plane as three", "three_planes", {0, 0, 0});
    void *const planes[] = {split.back().image.Get(), split[split.size() / 2].image.Get(), split.front().image.Get()};
    Require(CreateConcatenatedImage(planes, 3, 1, view.image.Out()), "CreateConcatenatedImage");
    return view;
}

/// The last plane of the reversed picture is taken out and put in again in front.
View LastPlaneToFront(const std::vector<View> &split, const View &reversed) {
    View view = split.size() == 3 ? PlanesAsTheyLie("green and blue exchanged", "red_blue_green", {0, 2, 1})
                                  : PlanesAsTheyLie("the last one to the front", "three_again", {0, 0, 0});
    ImageHandle shorter;
    Require(CreateImageDeleteList(reversed.image.Get(), 2, 1, 1, shorter.Out()), "CreateImageDeleteList");
    Require(CreateImageInsertList(shorter.Get(), split.front().image.Get(), 0, 1, 0, view.image.Out()) != 0,
            "CreateImageInsertList");
    return view;
}

/// Plane first of an image, then planes second and third.
ImageHandle PickThreePlanes(void *image, intptr_t first, intptr_t second, intptr_t third) {
    ImageHandle planes[3], result;
    void *handles[3] = {};
    const intptr_t numbers[] = {first, second, third};
    for (std::size_t i = 0; i < 3; ++i) {
        Require(CreateImageSubList(image, numbers[i], 1, 1, planes[i].Out()), "CreateImageSubList");
        handles[i] = planes[i].Get();
    }
    Require(CreateConcatenatedImage(handles, 3, 1, result.Out()), "CreateConcatenatedImage");
    return result;
}

} // namespace

ImageHandle BlankPaper(intptr_t planes, intptr_t width, intptr_t height) {
    unsigned char white[] = {255, 255, 255};
    ImageHandle pixel, enlarged, paper;
    Require(CreateImageFromPointer(white, sizeof white, 1, 1, planes, 8, planes, planes, 1, nullptr, nullptr, nullptr,
                                   pixel.Out()) == 0,
            "CreateImageFromPointer");
    Require(CreateImageMap(pixel.Get(), 0, 0, 0, 0, width, height, enlarged.Out()), "CreateImageMap");
    Require(CreateDuplicateImage(enlarged.Get(), paper.Out()) != 0, "CreateDuplicateImage");
    return paper;
}

std::vector<View> MakeThumbnails(void *source) {
    std::vector<View> views;
    const auto add = [&](const char *name, const Cut &cut, intptr_t longerSide) {
        views.push_back(Timed([&] { return Thumbnail(source, name, cut, longerSide); }));
    };
    const Cut whole = MiddleOf(source, 1);
    for (const intptr_t longerSide : {120, 60, 30, 15})
        add("the whole picture", whole, longerSide);
    add("its middle", MiddleOf(source, 2), 120);
    add("a detail", MiddleOf(source, 16), 120);
    return views;
}

Strip CopyIntoStrip(const std::vector<View> &thumbnails) {
    intptr_t width = 0;
    intptr_t height = 0;
    Strip strip;
    for (const View &view : thumbnails) {
        strip.places.push_back({width, 0});
        width += ImageWidth(view.image.Get()) + gap;
        height = std::max(height, ImageHeight(view.image.Get()));
    }
    strip.picture = BlankPaper(ImageDimension(thumbnails.front().image.Get()), width - gap, height);
    for (std::size_t i = 0; i < thumbnails.size(); ++i) {
        void *view = thumbnails[i].image.Get();
        strip.places[i].top = height - ImageHeight(view);
        Require(CopyImageRectPlanes(view, strip.picture.Get(), 0, 0, static_cast<int32_t>(ImageWidth(view) - 1),
                                    static_cast<int32_t>(ImageHeight(view) - 1),
                                    static_cast<int32_t>(strip.places[i].left),
                                    static_cast<int32_t>(strip.places[i].top)),
                "CopyImageRectPlanes");
    }
    return strip;
}

std::vector<View> SplitPlanes(void *source) {
    static const char *const colours[] = {"red", "green", "blue"};
    const intptr_t planes = ImageDimension(source);
    std::vector<View> views;
    for (intptr_t p = 0; p < planes; ++p)
        views.push_back(Timed([&] {
            const std::string name = planes == 3 ? colours[p] : "only";
            View view = PlanesAsTheyLie("the " + name + " plane", name, {p});
            Require(CreateImageSubList(source, p, 1, 1, view.image.Out()), "CreateImageSubList");
            return view;
        }));
    return views;
}

std::vector<View> Recombine(const std::vector<View> &split) {
    std::vector<View> views;
    views.push_back(Timed([&] { return Reversed(split); }));
    views.push_back(Timed([&] { return LastPlaneToFront(split, views.front()); }));
    return views;
}

Overlay LayOverHalfTurn(void *source, Point thing) {
    Overlay overlay;
    const intptr_t planes = ImageDimension(source);
    Require(CreateRotatedImageMap(source, VPATRotation180, overlay.turned.Out()), "CreateRotatedImageMap");
    Require(SetImageOrigin(source, thing.x, thing.y) &&
                SetImageOrigin(overlay.turned.Get(), static_cast<double>(ImageWidth(source) - 1) - thing.x,
                               static_cast<double>(ImageHeight(source) - 1) - thing.y),
            "SetImageOrigin");
    Require(CreateImageInsertList(source, overlay.turned.Get(), planes, 1, 1, overlay.planes.Out()) != 0,
            "CreateImageInsertList");
    overlay.picture = PickThreePlanes(overlay.planes.Get(), 0, planes + planes / 2, 2 * planes - 1);
    return overlay;
}
