// Code that the page docs/drawing.md quotes, and trials of what the page says; see manual.cpp.
#include "expect.h"
#include "image_handle.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>
#include <vector>

namespace {

// quoted: MarkPlace
/// A cross of one pixel's thickness with the same value in all planes.
bool MarkPlace(void *image, intptr_t x, intptr_t y, intptr_t arm, double value) {
    bool done = true;
    for (intptr_t plane = 0; plane < ImageDimension(image);
         ++plane) // one more pixel: thin lines leave their last out
        done = done && DrawLineInImage(image, plane, x - arm, y, x + arm + 1, y, 1, 0, 0, value) == 0 &&
               DrawLineInImage(image, plane, x, y - arm, x, y + arm + 1, 1, 0, 0, value) == 0;
    return done;
}
// end of quote

// quoted: OverlayCircle
/// A circle in the overlay of an image: bit 0 of its first plane. The picture in the other bits stays as it is.
bool DrawOverlayCircle(void *overlay, intptr_t x, intptr_t y, intptr_t radius) {
    return DrawCircleInImage(overlay, 0, x, y, radius, 1, 2, 0, 1.0) == 0; // 2: pixel OR 1
}

bool EraseOverlayCircle(void *overlay, intptr_t x, intptr_t y, intptr_t radius) {
    return DrawCircleInImage(overlay, 0, x, y, radius, 1, 1, 0, 254.0) == 0; // 1: pixel AND 254
}
// end of quote

// quoted: MaskOfEllipse
/// White where an ellipse is, outline included, in a black 8-bit plane. Its outline is drawn first, then filled from
/// its middle.
bool MaskOfEllipse(void *black, intptr_t x, intptr_t y, intptr_t halfA, intptr_t halfB, double angleDegrees) {
    const double radians = angleDegrees * M_PI / 180.0;
    return DrawEllipseInImage(black, 0, x, y, halfA, halfB, 1, 0, 0, radians, 255.0) == 0 &&
           FloodFillMono(black, 0, x, y, 255.0, 0.0) == 0;
}
// end of quote

/// An image of one plane whose pixels are all 0.
ImageHandle Dark(intptr_t width, intptr_t height, TDataType type = 8) {
    ImageHandle image;
    TArea all{};
    Expect(CreateGenericImageDT(1, width, height, type, image.Out()) && MaxImageArea(image.Get(), &all) &&
               InitializeImageAreaEx(image.Get(), 0, 0.0, all) != 0,
           "an image can be made");
    return image;
}

int Pixel(const ImageHandle &image, intptr_t x, intptr_t y) {
    return *AddressOf(PlaneOf(image.Get(), 0), x, y);
}

/// The place of all pixels that are not 0, in one line per row.
std::string Shown(const ImageHandle &image) {
    std::string text;
    for (intptr_t y = 0; y < ImageHeight(image.Get()); ++y) {
        for (intptr_t x = 0; x < ImageWidth(image.Get()); ++x)
            text += Pixel(image, x, y) != 0 ? '#' : '.';
        text += '\n';
    }
    return text;
}

int CountOf(const ImageHandle &image, int value) {
    int count = 0;
    for (intptr_t y = 0; y < ImageHeight(image.Get()); ++y)
        for (intptr_t x = 0; x < ImageWidth(image.Get()); ++x)
            count += Pixel(image, x, y) == value ? 1 : 0;
    return count;
}

bool Line(const ImageHandle &image, intptr_t x0, intptr_t y0, intptr_t x1, intptr_t y1, intptr_t thickness = 1,
          double value = 255.0, uint32_t mode = 0) {
    return DrawLineInImage(image.Get(), 0, x0, y0, x1, y1, thickness, mode, 0, value) == 0;
}

/// Columns and rows of the pixels that are not 0.
struct Box {
    intptr_t left = 1000, top = 1000, right = -1, bottom = -1;
    bool operator==(const Box &) const = default;
};
Box BoxOf(const ImageHandle &image) {
    Box box;
    for (intptr_t y = 0; y < ImageHeight(image.Get()); ++y)
        for (intptr_t x = 0; x < ImageWidth(image.Get()); ++x)
            if (Pixel(image, x, y) != 0)
                box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x), std::max(box.bottom, y)};
    return box;
}

void TryThinLines() {
    ImageHandle image = Dark(6, 3);
    Expect(Line(image, 0, 0, 3, 0) && Shown(image) == "###...\n......\n......\n", "the last pixel is left out");
    Expect(Line(image, 5, 2, 5, 2) && Pixel(image, 5, 2) == 255, "but for a line of one point");
    image = Dark(6, 3);
    Expect(MarkPlace(image.Get(), 2, 1, 1, 9.0) && Shown(image) == "..#...\n.###..\n..#...\n", "a whole cross");
    image = Dark(6, 3);
    Expect(Line(image, 4, 0, 8, 0) && Shown(image) == "....##\n##....\n......\n", "it goes on in the next row");
    ImageHandle uneven;
    Expect(CreateImageMap(image.Get(), 0, 0, 5, 2, 4, 3, uneven.Out()) && Line(uneven, 2, 2, 9, 2) &&
               Pixel(image, 0, 2) == 0 && Pixel(image, 5, 2) == 0 && Pixel(image, 3, 2) == 255 &&
               Pixel(image, 4, 2) == 255,
           "where columns have unequal steps it ends at the side");
}

void TryThickLines() {
    const struct {
        intptr_t thickness;
        Box box;
    } rows[] = {{1, {10, 10, 19, 10}}, {2, {9, 10, 21, 11}}, {3, {9, 9, 22, 11}}, {4, {8, 9, 22, 12}}};
    for (const auto &row : rows) {
        const ImageHandle image = Dark(40, 40);
        Expect(Line(image, 10, 10, 20, 10, row.thickness) && BoxOf(image) == row.box, "as the table says");
    }
    const ImageHandle side = Dark(12, 8);
    Expect(Line(side, 8, 4, 20, 4, 3) && Pixel(side, 11, 4) == 255 && Pixel(side, 0, 5) == 0 &&
               Pixel(side, 0, 6) == 0,
           "thick lines are cut at the side");
    const ImageHandle point = Dark(12, 8);
    Expect(Line(point, 5, 5, 5, 5, 3) && CountOf(point, 255) == 0, "a thick line of one point draws nothing");
    Expect(DrawLineInImage(point.Get(), 0, 1, 1, 2, 2, 0, 0, 0, 1.0) == static_cast<int32_t>(ErrParameter),
           "thickness 0 is refused");
}

void TryValues() {
    const ImageHandle image = Dark(4, 1);
    const auto drawn = [&](double value, uint32_t mode = 0) {
        return Line(image, 1, 0, 1, 0, 1, value, mode) ? Pixel(image, 1, 0) : -1;
    };
    Expect(drawn(300.0) == 255 && drawn(-1.0) == 0 && drawn(3.7) == 3, "limited, fractions dropped");
    Expect(drawn(200.0) == 200 && drawn(254.0, 1) == 200 && drawn(15.0, 1) == 8 && drawn(3.0, 2) == 11, "AND and OR");
    Expect(drawn(1.0, 3) == -1, "there is no mode 3");
    const ImageHandle signedImage = Dark(4, 1, 8 | DataTypeSigned);
    Expect(Line(signedImage, 1, 0, 1, 0, 1, -128.0) && Pixel(signedImage, 1, 0) == 256 - 127,
           "the lowest integer can't be drawn");
    const ImageHandle real = Dark(4, 1, 32 | DataTypeFloat);
    float pixel = 0.0f;
    Expect(Line(real, 1, 0, 1, 0, 1, 2.5, 2), "floats can be drawn");
    std::memcpy(&pixel, AddressOf(PlaneOf(real.Get(), 0), 1, 0), sizeof pixel);
    Expect(pixel == 2.5f, "and are replaced in any mode");
    Expect(DrawLineInImage(image.Get(), 1, 0, 0, 1, 0, 1, 0, 0, 1.0) == static_cast<int32_t>(ErrIndexRange),
           "a plane that is not there");
    Expect(DrawLineInImage(image.Get(), 0, 0, 0, 1, 0, 1, 0, 1, 1.0) == static_cast<int32_t>(ErrUnsupportedMode),
           "there is no anti-aliasing");
}

void TryEllipses() {
    const ImageHandle lying = Dark(101, 101), turned = Dark(101, 101), thin = Dark(101, 101), dot = Dark(9, 9);
    Expect(DrawEllipseInImage(lying.Get(), 0, 50, 50, 30, 12, 1, 0, 0, 0.0, 255.0) == 0 &&
               BoxOf(lying) == Box{20, 38, 80, 62},
           "axis A lies along x");
    Expect(DrawEllipseInImage(turned.Get(), 0, 50, 50, 30, 12, 1, 0, 0, 0.5, 255.0) == 0 &&
               Pixel(turned, 50 + std::lround(30.0 * std::cos(0.5)), 50 + std::lround(30.0 * std::sin(0.5))) == 255,
           "it turns from x towards y");
    Expect(DrawEllipseInImage(thin.Get(), 0, 50, 50, 40, 1, 1, 0, 0, 0.0, 255.0) == 0 && BoxOf(thin).right == 90 &&
               BoxOf(thin).left == 11,
           "a flat ellipse is a polygon of few corners");
    Expect(FillCircleInImage(dot.Get(), 0, 4, 4, 0, 0, 0, 255.0) == 0, "a radius of 0 is allowed");
    Expect(DrawEllipseInImage(dot.Get(), 0, 4, 4, -1, -1, 1, 0, 0, 0.0, 1.0) == static_cast<int32_t>(ErrParameter),
           "two negative radii are not");
    const ImageHandle above = Dark(20, 20), beside = Dark(20, 20);
    Expect(FillCircleInImage(above.Get(), 0, 10, -5, 5, 0, 0, 255.0) == 0 && CountOf(above, 255) == 0 &&
               FillCircleInImage(beside.Get(), 0, -5, 10, 5, 0, 0, 255.0) == 0 && CountOf(beside, 255) == 0,
           "what ends in row 0 or column 0 is not filled there");
}

void TryOverlays() {
    const ImageHandle image = Dark(40, 40);
    Expect(FillCircleInImage(image.Get(), 0, 20, 20, 15, 0, 0, 77.0) == 0, "a picture");
    ImageHandle overlay, list;
    Expect(CreateOverlayImage(image.Get(), overlay.Out()) && DrawOverlayCircle(overlay.Get(), 20, 20, 10) &&
               Pixel(overlay, 30, 20) == 77 && Pixel(overlay, 29, 20) == 76,
           "bit 0 is set, the rest stays");
    Expect(CreatePixelListFromOverlay(overlay.Get(), 3, 0, 0, 0, 0, list.Out()) && PixelListCount(list.Get()) > 50,
           "what was drawn can be had as a list");
    Expect(EraseOverlayCircle(overlay.Get(), 20, 20, 10) && CountOf(overlay, 77) == 0 && CountOf(overlay, 76) > 0,
           "and be erased");
}

void TryFloodFill() {
    ImageHandle mask = Dark(60, 60);
    Expect(MaskOfEllipse(mask.Get(), 30, 30, 20, 8, 30.0) && Pixel(mask, 30, 30) == 255 &&
               Pixel(mask, 40, 36) == 255 && Pixel(mask, 0, 0) == 0 && CountOf(mask, 255) > 500,
           "filled inside, and not beyond");
    ImageHandle ring = Dark(5, 5);
    for (const auto &[x, y] : {std::pair(2, 1), std::pair(1, 2), std::pair(3, 2), std::pair(2, 3)})
        Expect(Line(ring, x, y, x, y), "a diamond");
    Expect(FloodFillMono(ring.Get(), 0, 2, 2, 255.0, 0.0) == 0 && CountOf(ring, 255) == 5, "corners do not leak");
    Expect(FloodFillMono(ring.Get(), 0, 2, 2, 255.0, 0.0) == 0 &&
               FloodFillMono(ring.Get(), 0, 9, 9, 255.0, 0.0) == 0 && CountOf(ring, 255) == 5,
           "on the boundary and outside there is nothing to do");
    Expect(FloodFillMono(ring.Get(), 0, 0, 0, 255.0, 2.0) == 0 && CountOf(ring, 255) == 5,
           "with a positive tolerance all pixels bound");
    ImageHandle steps = Dark(6, 1);
    for (intptr_t x = 0; x < 6; ++x)
        *AddressOf(PlaneOf(steps.Get(), 0), x, 0) = static_cast<unsigned char>(250 - 10 * x);
    Expect(FloodFillMono(steps.Get(), 0, 0, 0, 255.0, -30.0) == 0 && Pixel(steps, 2, 0) == 255 &&
               Pixel(steps, 3, 0) == 220,
           "with a negative one those that are as far from the value");
}

/// In a type of its own: no other trial fills 16-bit pixels.
void TryFillWord() {
    const ImageHandle first = Dark(3, 1, 16), second = Dark(3, 1, 16);
    const auto at = [](const ImageHandle &image, intptr_t x) {
        uint64_t value = 0;
        Expect(GetPixVal(image.Get(), 0, x, 0, &value), "a pixel can be read");
        return value;
    };
    Expect(FloodFillMono(first.Get(), 0, 0, 0, 700.0, 0.0) == 0 && at(first, 2) == 700, "the first fill of a type");
    Expect(FloodFillMono(second.Get(), 0, 0, 0, 900.0, 0.0) == 0 && at(second, 2) == 700,
           "decides what all later ones write");
}

} // namespace

int main() {
    TryThinLines();
    TryThickLines();
    TryValues();
    TryEllipses();
    TryOverlays();
    TryFloodFill();
    TryFillWord();
    return Conclude();
}
