// Code that the page docs/transforms.md quotes, and trials of what the page says; see manual.cpp.
#include "expect.h"
#include "image_handle.h"

#include <cmath>
#include <cstring>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

// quoted: MixAt
double PixelOf(const TPlaneRec &plane, int32_t x, int32_t y) {
    return *(static_cast<unsigned char *>(plane.BaseAddress) + plane.VPAT[x].XEntry + plane.VPAT[y].YEntry);
}

/// An 8-bit plane between its pixels, as CreateTransformedImage samples it; outside 127.
int MixAt(const TPlaneRec &plane, double x, double y) {
    if (!(x > -1.0 && x < static_cast<double>(plane.Width) && y > -1.0 && y < static_cast<double>(plane.Height)))
        return 127;
    const auto column = static_cast<int32_t>(x), row = static_cast<int32_t>(y);
    const double right = x - column, down = y - row; // the weights of the neighbours
    // Behind the last column and row the tables go on: the guard entries give the last pixel again.
    const double sum = PixelOf(plane, column, row) * (1.0 - right) * (1.0 - down) +
                       PixelOf(plane, column + 1, row) * right * (1.0 - down) +
                       PixelOf(plane, column, row + 1) * (1.0 - right) * down +
                       PixelOf(plane, column + 1, row + 1) * right * down;
    return static_cast<int>(sum + 0.5);
}
// end of quote

// quoted: Enlarge
/// An image so many times as wide and high, smooth between its pixels.
bool Enlarge(void *image, double times, void **out) {
    TMatrix matrix;
    SetMatrix(&matrix, times, 0.0, 0.0, times);
    return CreateMatrixTransformedImage(image, out, matrix);
}
// end of quote

// quoted: ShowStraight
/// Shows what lies around a place of an image straight, when it is turned by some degrees there. The image's own
/// system is changed for that; the result's pixel (reach, reach) is the place.
bool ShowStraight(void *image, double x, double y, double angleDegrees, double reach, void **out) {
    TCoordinateMap map = {x, y, {}}; // from places on the thing to pixels
    RotationMatrix(&map.Matrix, angleDegrees);
    TArea area;
    SetRectArea(&area, -reach, -reach, reach, reach);
    return SetImageCoordinates(image, map) && CreateSubImage(image, out, area);
}
// end of quote

// quoted: CutOutUpright
/// Cuts an area out between its corners, whichever way it is turned: its edge from P0 to P1 becomes the first row.
bool CutOutUpright(void *image, TArea area, void **out) {
    std::swap(area.X1, area.X2); // the function takes the edge to P2 for the first row
    std::swap(area.Y1, area.Y2);
    return CreateAreaSubImage(image, out, area);
}
// end of quote

// quoted: Wave
/// Moves each row to the right by a wave. A transform answers for each pixel of the result where it comes from: what
/// has to come from further left has moved to the right.
struct Wave {
    double height;
    double length;
};

void WavePosition(void *userData, double *x, double *y) {
    const Wave &wave = *static_cast<const Wave *>(userData);
    *x -= wave.height * std::sin(*y / wave.length); // y stays as it is
}

bool MakeWaves(void *image, Wave wave, void **out) {
    return CreateTransformedImage(image, ImageWidth(image), ImageHeight(image), WavePosition, &wave, out);
}
// end of quote

// quoted: RollUpInPlace
/// Unrolls the ring of an image between two whole radii and rolls it up again, so that the ring looks as before, in
/// the middle of a new image. The ring is unrolled one row wider on both sides, and loses its last two rows.
bool RollUpInPlace(void *image, double centreX, double centreY, double start, double inner, double outer,
                   void **out) {
    void *wider = nullptr, *cut = nullptr;
    bool done = CreatePolarImage(image, &wider, centreX, centreY, start, inner - 1.0, outer + 1.0);
    const intptr_t width = ImageWidth(wider), height = ImageHeight(wider) - 2;
    done = done && CreateImageMap(wider, 0, 0, width - 1, height - 1, width, height, &cut) &&
           CreateInversePolarImage(cut, out, -start, inner); // the angle counts the other way round here
    ReleaseObject(cut), ReleaseObject(wider);
    return done;
}
// end of quote

// quoted: RollUpSector
/// Rolls an unrolled sector of a ring up, with 0 in the rest of the ring: it is laid into an unrolled whole ring
/// first.
bool RollUpSector(void *sector, double start, double inner, void **out) {
    const intptr_t width = ImageWidth(sector), height = ImageHeight(sector);
    const double outer = inner + static_cast<double>(height - 2);
    const auto wholeWidth = static_cast<intptr_t>(std::floor((inner + outer) * M_PI + 0.5));
    void *whole = nullptr;
    bool done = CreateCompatibleImage(sector, wholeWidth, height, 0, &whole);
    TArea all;
    done = done && MaxImageArea(whole, &all) && InitializeImageArea(whole, 0, 0, all) && // an image of one plane
           CopyImageRectPlanes(sector, whole, 0, 0, static_cast<int32_t>(width - 1), static_cast<int32_t>(height - 1),
                               0, 0) &&
           CreateInversePolarImage(whole, out, -start, inner);
    ReleaseObject(whole);
    return done;
}
// end of quote

/// An image of this type whose pixels are all 0.
ImageHandle BlankImage(intptr_t planes, intptr_t width, intptr_t height, TDataType type = 8) {
    ImageHandle image;
    Expect(CreateGenericImageDT(planes, width, height, type, image.Out()), "an image can be made");
    const TArea all = {0.0, 0.0, static_cast<double>(width - 1), 0.0, 0.0, static_cast<double>(height - 1)};
    for (intptr_t p = 0; p < planes; ++p)
        Expect(InitializeImageAreaEx(image.Get(), p, 0.0, all) != 0, "it can be cleared");
    return image;
}

/// Pixels without any order.
ImageHandle MottledImage(intptr_t width, intptr_t height) {
    ImageHandle image = BlankImage(1, width, height);
    const TPlaneRec plane = PlaneOf(image.Get(), 0);
    for (intptr_t y = 0; y < height; ++y)
        for (intptr_t x = 0; x < width; ++x)
            *AddressOf(plane, x, y) = static_cast<unsigned char>((x * x * 37 + y * 101 + x * y * 59) % 251);
    return image;
}

int Pixel(const ImageHandle &image, intptr_t x, intptr_t y) {
    return *AddressOf(PlaneOf(image.Get(), 0), x, y);
}

bool HasSize(const ImageHandle &image, intptr_t width, intptr_t height) {
    return ImageWidth(image.Get()) == width && ImageHeight(image.Get()) == height;
}

/// The bytes of a pixel of any type, as a number.
uint64_t Bits(const ImageHandle &image, intptr_t x, intptr_t y) {
    const TPlaneRec plane = PlaneOf(image.Get(), 0);
    uint64_t bits = 0;
    std::memcpy(&bits, AddressOf(plane, x, y), static_cast<std::size_t>(BytesPerPixel(plane.Datatype)));
    return bits;
}

/// A position that is the same for all pixels.
struct Position {
    double x, y;
};
void GoTo(void *position, double *x, double *y) {
    *x = static_cast<Position *>(position)->x;
    *y = static_cast<Position *>(position)->y;
}
ImageHandle SampledAt(const ImageHandle &image, double x, double y) {
    Position position = {x, y};
    ImageHandle pixel;
    Expect(CreateTransformedImage(image.Get(), 1, 1, GoTo, &position, pixel.Out()), "one pixel can be sampled");
    return pixel;
}

/// The image moved to the left and up by some part of a pixel.
ImageHandle Moved(const ImageHandle &image, double x, double y) {
    // The map's own shift has no effect, so the area begins there instead.
    TCoordinateMap map{};
    InitCoordinateMap(&map);
    const double width = static_cast<double>(ImageWidth(image.Get()));
    const double height = static_cast<double>(ImageHeight(image.Get()));
    const TArea area = {x, y, x + width, y, x, y + height};
    ImageHandle moved;
    Expect(CreateAreaAffineTransformedImage(image.Get(), &map, &area, moved.Out()), "an image can be moved");
    return moved;
}

void TrySampling() {
    const ImageHandle image = MottledImage(5, 4);
    const TPlaneRec plane = PlaneOf(image.Get(), 0);
    bool equal = true;
    for (double y = -1.25; y < 5.0; y += 0.17)
        for (double x = -1.25; x < 6.0; x += 0.13) // 8 bits are left of what is below 0 or above 255
            equal = equal && (MixAt(plane, x, y) & 255) == Pixel(SampledAt(image, x, y), 0, 0);
    Expect(equal, "callbacks sample like the plain step");
    Expect(Pixel(SampledAt(image, std::nan(""), 0.0), 0, 0) == 127, "no number is outside");

    ImageHandle pair = BlankImage(1, 2, 1);
    *AddressOf(PlaneOf(pair.Get(), 0), 0, 0) = 200;
    Expect(Pixel(SampledAt(pair, 0.25, 0.0), 0, 0) == 150, "a quarter of the way");
    Expect(Pixel(SampledAt(pair, 1.5, 0.0), 0, 0) == 0, "the last pixel goes on for a pixel");
    Expect(Pixel(SampledAt(pair, -0.5, 0.0), 0, 0) == 300 - 256, "in front of the first one the slope goes on");
    Expect(Pixel(SampledAt(pair, -1.0, 0.0), 0, 0) == 127 && Pixel(SampledAt(pair, 2.0, 0.0), 0, 0) == 127,
           "one pixel beyond is outside");

    Expect(Pixel(Moved(pair, 0.25, 0.0), 0, 0) == 150, "whole sixteenths are exact");
    Expect(Pixel(Moved(pair, 0.33, 0.0), 0, 0) == 137 && Pixel(SampledAt(pair, 0.33, 0.0), 0, 0) == 134,
           "others are rounded to them");
    *AddressOf(PlaneOf(pair.Get(), 0), 0, 0) = 1;
    Expect(Pixel(Moved(pair, 0.25, 0.0), 0, 0) == 0 && Pixel(SampledAt(pair, 0.25, 0.0), 0, 0) == 1,
           "three quarters of a grey level are dropped, or rounded");
    Expect(Pixel(Moved(pair, -1.0 / 32.0, 0.0), 0, 0) == 1 && Pixel(Moved(pair, -9.0 / 256.0, 0.0), 0, 0) == 129,
           "inside begins 1/32 before the first pixel, not much further");

    const ImageHandle one = BlankImage(1, 1, 1, 16 | DataTypeSigned);
    const uint64_t minusFive = 0xFFFB;
    Expect(SetPixVal(one.Get(), 0, 0, 0, &minusFive) && Bits(SampledAt(one, 0.0, 0.0), 0, 0) == 0xFFFC &&
               Bits(Moved(one, 0.0, 0.0), 0, 0) == 0xFFFB,
           "a callback makes -4 of -5, an affine map keeps it");
}

void TryOutside() {
    struct Row {
        TDataType type;
        uint64_t affine, callback, polar, beside;
    };
    constexpr uint64_t most64 = 0x7FFFFFFFFFFFFFFF;
    const Row rows[] = {{8, 129, 127, 129, 127},
                        {8 | DataTypeSigned, 0x81, 0, 0x81, 0},
                        {16, 0x7FFF, 0x7FFF, 0x7FFF, 0x7FFF},
                        {16 | DataTypeSigned, 0x7FFF, 0, 0x7FFF, 0},
                        {32, 0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF, 0x7FFFFFFF},
                        {32 | DataTypeSigned, 0, 0, 0, 0},
                        {64, most64, most64, most64, most64 + 1},
                        {64 | DataTypeSigned, 0, 0, 0, 0},
                        {32 | DataTypeFloat, 0, 0, 0, 0},
                        {64 | DataTypeFloat, 0, 0, 0, 0}};
    for (const Row &row : rows) {
        const ImageHandle image = BlankImage(1, 3, 3, row.type);
        ImageHandle polar, rolled;
        Expect(CreatePolarImage(image.Get(), polar.Out(), 90.0, 90.0, 0.0, 1.0, 2.0) &&
                   CreateInversePolarImage(image.Get(), rolled.Out(), 0.0, 4.0),
               "all types can be transformed");
        Expect(Bits(Moved(image, -5.0, 0.0), 0, 0) == row.affine, "outside under an affine map");
        Expect(Bits(SampledAt(image, -5.0, 0.0), 0, 0) == row.callback, "outside under a callback");
        Expect(Bits(polar, 0, 0) == row.polar, "outside of a ring's picture");
        Expect(Bits(rolled, 0, 0) == row.beside, "beside a ring");
    }
}

void TrySizes() {
    const ImageHandle image = MottledImage(5, 4);
    ImageHandle half, twice, turned;
    Expect(Enlarge(image.Get(), 0.5, half.Out()) && HasSize(half, 3, 2), "2.5 columns are rounded to 3");
    Expect(Enlarge(image.Get(), 2.0, twice.Out()) && HasSize(twice, 10, 8), "twice as large");
    Expect(Pixel(twice, 2, 4) == Pixel(image, 1, 2) &&
               Pixel(twice, 3, 4) == (Pixel(image, 1, 2) + Pixel(image, 2, 2)) / 2 &&
               Pixel(twice, 9, 7) == Pixel(image, 4, 3),
           "pixel x of the result lies at x / 2");
    TMatrix quarter{};
    SetMatrix(&quarter, 0.0, -1.0, 1.0, 0.0); // clockwise
    Expect(CreateMatrixTransformedImage(image.Get(), turned.Out(), quarter) && HasSize(turned, 4, 5) &&
               Pixel(turned, 0, 2) == 129 && Pixel(turned, 3, 2) == Pixel(image, 2, 1),
           "a quarter turn begins one column beside the image");
    TMatrix flat{};
    SetMatrix(&flat, 1.0, 1.0, 1.0, 1.0);
    ImageHandle none;
    FlushORVErrorCache();
    uint32_t code = 0;
    uint64_t noText = 0, noName = 0;
    Expect(!CreateMatrixTransformedImage(image.Get(), none.Out(), flat) &&
               !PeekLastORVError(&code, nullptr, nullptr, &noText, nullptr, &noName),
           "no inverse: false without a report");
}

void TryAreas() {
    ImageHandle image = MottledImage(200, 120), straight, cut, upright, lying;
    Expect(ShowStraight(image.Get(), 100.0, 60.0, 30.0, 20.0, straight.Out()) && HasSize(straight, 41, 41) &&
               Pixel(straight, 20, 20) == Pixel(image, 100, 60),
           "the place is in the middle");
    double x = 0.0, y = 0.0;
    PixelToImage(straight.Get(), &x, &y, 20.0, 20.0);
    Expect(std::hypot(x, y) < 1e-9, "and has the coordinates (0, 0)");

    Expect(SetImageOrigin(image.Get(), 0.0, 0.0) &&
               SetImageCoordinates(image.Get(), {0.0, 0.0, {20.0, 0.0, 0.0, 20.0}}),
           "20 pixels per unit");
    const TArea units = {1.0, 1.0, 5.0, 1.0, 1.0, 4.0};
    Expect(CreateSubImage(image.Get(), cut.Out(), units) && HasSize(cut, 5, 4) &&
               Pixel(cut, 1, 2) == Pixel(image, 40, 60),
           "one pixel per unit");
    TCoordinateMap system{};
    InitCoordinateMap(&system);
    Expect(SetImageCoordinates(image.Get(), system), "back to pixels");

    TArea area{};
    SetRectArea(&area, 10.0, 20.0, 109.0, 69.0);
    Expect(CreateAreaSubImage(image.Get(), lying.Out(), area) && HasSize(lying, 50, 100), "lying");
    Expect(CutOutUpright(image.Get(), area, upright.Out()) && HasSize(upright, 100, 50) &&
               Pixel(upright, 0, 0) == Pixel(image, 10, 20) && Pixel(upright, 17, 40) == Pixel(lying, 40, 17),
           "upright");
    const TPlaneRec plane = PlaneOf(image.Get(), 0);
    Expect(Pixel(upright, 7, 49) == MixAt(plane, 17.0 + 49.0 / 50.0, 69.0 + 7.0 / 100.0),
           "the last row is sheared by nearly a pixel");
}

void TryWaves() {
    const ImageHandle image = MottledImage(40, 9);
    ImageHandle waves;
    Expect(MakeWaves(image.Get(), {3.0, 2.0}, waves.Out()) &&
               Pixel(waves, 20, 5) == MixAt(PlaneOf(image.Get(), 0), 20.0 - 3.0 * std::sin(2.5), 5.0),
           "each row has moved");
    const ImageHandle planes = BlankImage(3, 4, 2);
    int calls = 0;
    const auto count = [](void *number, double *, double *) { ++*static_cast<int *>(number); };
    ImageHandle copy, none;
    Expect(CreateTransformedImage(planes.Get(), 5, 2, count, &calls, copy.Out()) && calls == 30,
           "a call for each pixel of each plane");
    const auto fail = [](void *, double *, double *) { throw std::runtime_error("stop"); };
    Expect(!CreateTransformedImage(planes.Get(), 5, 2, fail, nullptr, none.Out()) && none.Get() == nullptr,
           "what a callback throws ends the call");
}

void TryRings() {
    const ImageHandle image = MottledImage(60, 60);
    ImageHandle unrolled, sector, none, inPlace;
    Expect(CreatePolarImage(image.Get(), unrolled.Out(), 30.0, 30.0, 0.0, 10.0, 20.0) && HasSize(unrolled, 94, 12),
           "30 pi columns, 12 rows");
    Expect(Pixel(unrolled, 0, 0) == Pixel(image, 50, 30) && Pixel(unrolled, 0, 10) == Pixel(image, 40, 30) &&
               Pixel(unrolled, 0, 11) == Pixel(image, 39, 30),
           "the first row is the outer radius, the last but one the inner one");
    ImageHandle down;
    Expect(CreatePolarImage(image.Get(), down.Out(), 30.0, 30.0, 90.0, 10.0, 20.0) &&
               Pixel(down, 0, 0) == Pixel(image, 30, 50),
           "90 degrees is down");
    Expect(CreatePolarImageEx(image.Get(), sector.Out(), 30.0, 30.0, 0.0, 90.0, 10.0, 20.0) &&
               HasSize(sector, 24, 12),
           "a quarter of it");
    Expect(!CreatePolarImageEx(image.Get(), none.Out(), 30.0, 30.0, 0.0, 0.0, 10.0, 20.0), "nothing of it");

    ImageHandle rolled;
    Expect(CreateInversePolarImage(unrolled.Get(), rolled.Out(), 0.0, 10.0) && HasSize(rolled, 42, 42) &&
               Pixel(rolled, 21 + 20, 21) == Pixel(unrolled, 0, 1) &&
               Pixel(rolled, 21 + 10, 21) == Pixel(unrolled, 0, 11),
           "one pixel further out");
    const uint64_t start = Bits(down, 0, 1);
    ImageHandle turned, right;
    Expect(CreateInversePolarImage(down.Get(), turned.Out(), -90.0, 10.0) && Bits(turned, 21, 21 + 20) == start &&
               CreateInversePolarImage(down.Get(), right.Out(), 90.0, 10.0) && Bits(right, 21, 21 - 20) == start,
           "the start angle counts the other way round");
    Expect(RollUpInPlace(image.Get(), 30.0, 30.0, 0.0, 10.0, 20.0, inPlace.Out()) && HasSize(inPlace, 42, 42) &&
               Pixel(inPlace, 21 + 20, 21) == Pixel(image, 50, 30) &&
               Pixel(inPlace, 21 + 11, 21) == Pixel(image, 41, 30),
           "in its place again");
}

void TrySectors() {
    ImageHandle half = BlankImage(1, 47, 12); // 180 degrees of the radii 10 to 20
    const TPlaneRec plane = PlaneOf(half.Get(), 0);
    for (intptr_t y = 0; y < 12; ++y)
        for (intptr_t x = 0; x < 47; ++x)
            *AddressOf(plane, x, y) = static_cast<unsigned char>(x);
    ImageHandle spread, quarter, rolled;
    Expect(CreateInversePolarImage(half.Get(), spread.Out(), 0.0, 10.0) && Pixel(spread, 21, 21 + 15) == 12 &&
               Pixel(spread, 21 - 15, 21) == 24 && Pixel(spread, 21, 21 - 15) == 36,
           "half a ring is spread over the whole one");
    Expect(CreateInversePolarImage(half.Get(), quarter.Out(), -90.0, 10.0) && Pixel(quarter, 21, 21 + 15) == 0 &&
               Pixel(quarter, 21, 21 - 15) == 24 && Pixel(quarter, 21 + 12, 21 + 9) == 127,
           "what lies before its start is kept");
    Expect(RollUpSector(half.Get(), 0.0, 10.0, rolled.Out()) && Pixel(rolled, 21, 21 + 15) == 23 &&
               Pixel(rolled, 21 - 11, 21 + 11) == 35 && Pixel(rolled, 21, 21 - 15) == 0,
           "in a whole ring it takes its own half");
}

} // namespace

int main() {
    TrySampling();
    TryOutside();
    TrySizes();
    TryAreas();
    TryWaves();
    TryRings();
    TrySectors();
    return Conclude();
}
