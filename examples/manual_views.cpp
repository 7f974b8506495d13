// Code that the pages under docs quote about views that are cut out, rescaled and composed of planes; see manual.cpp.
#include "expect.h"
#include "image_handle.h"

#include <vector>

namespace {

// quoted: HalveWithItsCoordinates
/// Shows an image at half its size and its coordinate system with it: a thing in the picture keeps its coordinates.
bool HalveWithItsCoordinates(void *image, void **out) {
    const intptr_t width = ImageWidth(image);
    const intptr_t height = ImageHeight(image);
    TCoordinateMap map;
    if (!CreateImageMap(image, 0, 0, width - 1, height - 1, width / 2, height / 2, out) ||
        !GetImageCoordinates(*out, &map)) // moved with the cut already, but not scaled
        return false;
    TCoordinateMap half = {0.0, 0.0, {}};
    SetMatrix(&half.Matrix, 0.5, 0.0, 0.0, 0.5); // from the pixels of the cut to the pixels of the view
    TCoordinateMap halvedMap;
    ComposeCoordinateMaps(&halvedMap, map, half);
    return SetImageCoordinates(*out, halvedMap);
}
// end of quote

// quoted: ExchangeRedAndBlue
/// Shows the planes of a colour image in the opposite order. No pixel is touched.
bool ExchangeRedAndBlue(void *image, void **out) {
    void *planes[3] = {};
    bool done = true;
    for (intptr_t i = 0; i < 3; ++i)
        done = CreateImageSubList(image, 2 - i, 1, 1, &planes[i]) && done;
    done = done && CreateConcatenatedImage(planes, 3, 1, out);
    for (void *&plane : planes)
        ReleaseObject(plane); // the result keeps what it needs
    return done;
}
// end of quote

// quoted: LayOver
/// Shows the planes of two images over each other, origin on origin. False also when they have no pixel in common:
/// the library raises an exception then.
bool LayOver(void *image, void *other, void **out) {
    try {
        return CreateImageInsertList(image, other, ImageDimension(image), 1, 1, out) != 0;
    } catch (...) {
        return false;
    }
}
// end of quote

// quoted: ReferencesOfAView
/// The references that a view of the upper left pixel takes of its source: one for each plane.
uintptr_t ReferencesOfAView(void *image) {
    const uintptr_t before = RefCount(image);
    void *pixel = nullptr;
    if (!CreateImageMap(image, 0, 0, 0, 0, 1, 1, &pixel))
        return 0;
    const uintptr_t taken = RefCount(image) - before; // 3 for red, green and blue
    ReleaseObject(pixel);                             // gives them back
    return taken;
}
// end of quote

uint64_t Pixel(const ImageHandle &image, intptr_t plane, intptr_t x, intptr_t y) {
    uint64_t value = 0;
    Expect(GetPixVal(image.Get(), plane, x, y, &value), "the pixel exists");
    return value;
}

/// Pixel (x, y) of plane p has the value 100 p + 10 y + x.
ImageHandle NumberedImage(intptr_t planes, intptr_t width, intptr_t height) {
    ImageHandle image;
    Expect(CreateGenericImage(planes, width, height, false, image.Out()), "an image can be made");
    for (intptr_t p = 0; p < planes; ++p)
        for (intptr_t y = 0; y < height; ++y)
            for (intptr_t x = 0; x < width; ++x)
                *AddressOf(PlaneOf(image.Get(), p), x, y) = static_cast<unsigned char>(100 * p + 10 * y + x);
    return image;
}

void TryHalf() {
    const ImageHandle image = NumberedImage(1, 8, 6);
    ImageHandle half, cut;
    Expect(SetImageOrigin(image.Get(), 4.0, 2.0) && HalveWithItsCoordinates(image.Get(), half.Out()), "it is halved");
    Expect(ImageWidth(half.Get()) == 4 && ImageHeight(half.Get()) == 3, "half as wide and high");
    double x = 0.0;
    double y = 0.0;
    ImageToPixel(half.Get(), &x, &y, 2.0, 2.0); // pixel (6, 4) of the image
    Expect(x == 3.0 && y == 2.0 && Pixel(half, 0, 3, 2) == 46, "the same thing has the same coordinates");

    Expect(CreateImageMap(image.Get(), 2, 1, 5, 4, 2, 2, cut.Out()), "a part can be cut out and shrunk");
    TCoordinateMap map;
    Expect(GetImageCoordinates(cut.Get(), &map) && map.X == 2.0 && map.Y == 1.0 && map.Matrix.A11 == 1.0 &&
               map.Matrix.A22 == 1.0,
           "the origin moves by (left, top), and nothing is scaled");
}

void TryPlanes() {
    const ImageHandle image = NumberedImage(3, 4, 3);
    ImageHandle exchanged;
    Expect(ExchangeRedAndBlue(image.Get(), exchanged.Out()) && ImageDimension(exchanged.Get()) == 3, "three planes");
    Expect(Pixel(exchanged, 0, 1, 2) == 221 && Pixel(exchanged, 1, 1, 2) == 121 && Pixel(exchanged, 2, 1, 2) == 21,
           "in the opposite order");
    const uint64_t white = 255;
    Expect(SetPixVal(exchanged.Get(), 0, 0, 0, &white) && Pixel(image, 2, 0, 0) == 255, "over the same pixels");
}

void TryOverlay() {
    const ImageHandle image = NumberedImage(1, 8, 6);
    ImageHandle cut, both, none;
    Expect(CreateImageMap(image.Get(), 3, 2, 7, 4, 5, 3, cut.Out()), "a part can be cut out");
    Expect(LayOver(image.Get(), cut.Get(), both.Out()) && ImageDimension(both.Get()) == 2, "it lies on its image");
    Expect(ImageWidth(both.Get()) == 5 && ImageHeight(both.Get()) == 3, "where both have pixels");
    Expect(Pixel(both, 0, 1, 1) == 34 && Pixel(both, 1, 1, 1) == 34, "and both show the same there");
    double x = 0.0;
    double y = 0.0;
    Expect(GetImageOrigin(both.Get(), &x, &y) && x == -3.0 && y == -2.0, "with its origin where theirs lie");
    Expect(SetImageOrigin(cut.Get(), 100.0, 0.0) && !LayOver(image.Get(), cut.Get(), none.Out()) &&
               none.Get() == nullptr,
           "images without a common pixel can't be laid over each other");
}

void TryReferences() {
    const ImageHandle colour = NumberedImage(3, 4, 3);
    Expect(ReferencesOfAView(colour.Get()) == 3 && RefCount(colour.Get()) == 1, "three planes add three references");

    ImageHandle picture = NumberedImage(3, 4, 3);
    ImageHandle half, pixel, copy;
    Expect(CreateImageMap(picture.Get(), 0, 0, 3, 2, 2, 1, half.Out()) &&
               CreateImageMap(half.Get(), 1, 0, 1, 0, 1, 1, pixel.Out()) && RefCount(picture.Get()) == 4 &&
               RefCount(half.Get()) == 4,
           "a view of a view holds the view, and that one the picture");
    Expect(CreateImageSubList(picture.Get(), 0, 3, 0, copy.Out()) && RefCount(picture.Get()) == 4,
           "a deep copy holds nothing");
    Expect(!picture.GiveBack() && !half.GiveBack() && Pixel(pixel, 2, 0, 0) == 202,
           "the last view keeps the pixels of all that it shows");

    ImageHandle single = NumberedImage(1, 2, 2);
    void *const one[] = {single.Get()};
    void *same = nullptr;
    Expect(CreateConcatenatedImage(one, 1, 0, &same) && same == single.Get() && RefCount(same) == 2,
           "a single image comes back itself");
    ReleaseObject(same);
}

} // namespace

int main() {
    TryHalf();
    TryPlanes();
    TryOverlay();
    TryReferences();
    return Conclude();
}
