// Code that the page docs/maxima.md quotes, and trials of what the page says; see manual.cpp.
#include "expect.h"
#include "image_handle.h"

#include <cmath>
#include <vector>

namespace {

// quoted: AddLight
/// The sum of the values of the brightest places of a plane, as many as count says.
double AddLight(void *image, int64_t threshold, int64_t count) {
    void *list = nullptr; // 0 as right and bottom: to the last column and row
    if (!FindMaxima(image, 0, 0, 0, 0, 0, 5, threshold, &list))
        return 0.0;
    double sum = 0.0;
    for (int64_t i = 0; i < count && i < PixelListCount(list); ++i) {
        double place[3]; // x, y, value
        ListPixelEx(list, i, place);
        sum += place[2];
    }
    ReleaseObject(list);
    return sum;
}
// end of quote

// quoted: LocateInPart
/// Places in a part of an image to fractions of a pixel, as exact far from its origin as near it: the fit works in
/// the coordinates of the cut-out part, and the list is moved back.
bool LocateInPart(void *image, intptr_t left, intptr_t top, intptr_t width, intptr_t height, double threshold,
                  void **list) {
    void *part = nullptr;
    bool done = CreateImageMap(image, left, top, left + width - 1, top + height - 1, width, height, &part) &&
                FindSubPixelMaxima(part, 0, 0, 0, width - 1, height - 1, 4, FitGaussian, 2, list, threshold);
    ReleaseObject(part);
    TMatrix unchanged;
    SetMatrix(&unchanged, 1.0, 0.0, 0.0, 1.0);
    return done && TransformPixelListMatrix(*list, unchanged, static_cast<double>(left), static_cast<double>(top));
}
// end of quote

// quoted: KeepStrongest
/// Leaves the strongest of all places that lie within a distance of each other, and count of them at most.
bool KeepStrongest(void *list, double distance, int64_t count) {
    const double strongestFirst[] = {0.0, 0.0, -1.0}; // ascending along this direction
    return SeparatePixels(list, strongestFirst, distance) &&
           (PixelListCount(list) <= count || TruncatePixelList(list, count));
}
// end of quote

// quoted: KeepMarks
/// Marks found places in an image's overlay, where they go wherever the image goes, and reads them again.
bool KeepMarks(void *list, void *image, void **marked) {
    return PixelListCount(list) > 0 && CreateOverlayFromPixelList(list, image, marked);
}

bool ReadMarks(void *marked, void **list) {
    return CreatePixelListFromOverlay(marked, 3, 0, 0, 0, 0, list);
}
// end of quote

using ListHandle = ImageHandle;

struct Triple {
    double x, y, value;
    bool operator==(const Triple &) const = default;
};

std::vector<Triple> PlacesOf(const ListHandle &list) {
    std::vector<Triple> places;
    for (int64_t i = 0; i < PixelListCount(list.Get()); ++i) {
        double components[3] = {};
        Expect(ListPixelEx(list.Get(), i, components), "a pixel can be read");
        places.push_back({components[0], components[1], components[2]});
    }
    return places;
}

ListHandle MakeList(const std::vector<Triple> &places) {
    ListHandle list;
    *list.Out() = CreatePixelList(3);
    for (const Triple &place : places) {
        const double components[] = {place.x, place.y, place.value};
        Expect(AddPixel(list.Get(), components), "a pixel can be added");
    }
    return list;
}

/// An image of one plane whose pixels are all 0.
ImageHandle Dark(intptr_t width, intptr_t height, TDataType type = 8) {
    ImageHandle image;
    TArea all{};
    Expect(CreateGenericImageDT(1, width, height, type, image.Out()) && MaxImageArea(image.Get(), &all) &&
               InitializeImageAreaEx(image.Get(), 0, 0.0, all) != 0,
           "an image can be made");
    return image;
}

/// The pixels of a row from a place on.
void Put(const ImageHandle &image, intptr_t x, intptr_t y, const std::vector<int> &values) {
    for (const int value : values)
        *AddressOf(PlaneOf(image.Get(), 0), x++, y) = static_cast<unsigned char>(value);
}

std::vector<Triple> Maxima(const ImageHandle &image, int64_t locality, int64_t threshold, int64_t left = 0,
                           int64_t top = 0, int64_t right = 0, int64_t bottom = 0) {
    ListHandle list;
    Expect(FindMaxima(image.Get(), 0, left, top, right, bottom, locality, threshold, list.Out()) == -1,
           "FindMaxima gives all bits set");
    return PlacesOf(list);
}

std::vector<Triple> Peaks(const ImageHandle &image, int64_t locality, double threshold, uint32_t fit = FitNone,
                          int32_t radius = 1) {
    ListHandle list;
    Expect(FindSubPixelMaxima(image.Get(), 0, 0, 0, ImageWidth(image.Get()) - 1, ImageHeight(image.Get()) - 1,
                              locality, fit, radius, list.Out(), threshold),
           "maxima can be found");
    return PlacesOf(list);
}

using Places = std::vector<Triple>;

uint32_t LastCode() {
    uint32_t code = 0;
    uint64_t noText = 0, noName = 0;
    PeekLastORVError(&code, nullptr, nullptr, &noText, nullptr, &noName);
    return code;
}

void TryLists() {
    ListHandle list = MakeList({{2.5, -2.5, 7.0}, {1.0, 2.0, 3.0}});
    int64_t x = 0, y = 0, value = 0;
    Expect(ListPixel(list.Get(), 0, &x, &y, &value) && x == 3 && y == -2 && value == 7, "halves are rounded up");
    Expect(!ListPixel(list.Get(), 2, &x, &y, &value) && LastCode() == ErrElementIndex, "reading behind the end");
    const double components[] = {0.0, 0.0, 0.0};
    Expect(!ModifyListPixel(list.Get(), 2, components) && LastCode() == ErrIndexRange, "writing behind the end");
    FlushORVErrorCache();
    Expect(TruncatePixelList(list.Get(), 5) && LastCode() == 3 && PixelListCount(list.Get()) == 2,
           "fewer than wanted is no failure");
    ListHandle flat;
    *flat.Out() = CreatePixelList(2);
    void *target = flat.Get();
    Expect(CopyPixelList(list.Get(), &target) && PixelListCount(flat.Get()) == 2 && PixelListDimension(target) == 2,
           "copies are cut to the target's dimension");
    TCoordinateMap map = {10.0, 20.0, {2.0, 0.0, 0.0, 2.0}}, inverse{}; // two pixels per unit
    const ListHandle moved = MakeList({{14.0, 26.0, 1.0}});
    Expect(InverseCoordinateMap(&inverse, map) && TransformPixelListCoordinates(moved.Get(), inverse) &&
               PlacesOf(moved) == Places{{2.0, 3.0, 1.0}},
           "from pixels to the coordinates of an image");
    Expect(RemovePixel(list.Get(), 0) && PlacesOf(list) == Places{{1.0, 2.0, 3.0}}, "those behind move down");
    Expect(RemoveAllPixels(list.Get()), "all can be removed");
    FlushORVErrorCache();
    Expect(!RemoveAllPixels(list.Get()) && LastCode() == 0, "of an empty list there is none, without a report");
    Expect(CreatePixelList(1) == nullptr && LastCode() == ErrParameter, "one component is too few");
}

void TryPlateaus() {
    const ImageHandle image = Dark(9, 7);
    Put(image, 3, 3, {50, 50});
    Put(image, 3, 4, {50, 50});
    Expect(Maxima(image, 1, 1) == Places{{3, 3, 50}}, "an area is found once, at its first pixel");
    Expect(Peaks(image, 0, 1).size() == 4, "or at each of its pixels");
    Expect(Peaks(image, 1, 1) == Places{{3, 3, 50}}, "a locality leaves the first");
    Put(image, 5, 5, {51});
    Expect(Maxima(image, 1, 1) == Places{{5, 5, 51}}, "a greater neighbour anywhere: none of it");
    Expect(Peaks(image, 0, 1).size() == 4, "pixel by pixel, the three without a greater neighbour stay");
}

void TryOrderAndLocality() {
    const ImageHandle image = Dark(12, 5);
    Put(image, 1, 2, {40, 0, 0, 40, 0, 0, 60});
    Expect(Maxima(image, 0, 1) == Places({{1, 2, 40}, {4, 2, 40}, {7, 2, 60}}), "ascending at locality 0");
    Expect(Maxima(image, 1, 1) == Places({{7, 2, 60}, {1, 2, 40}, {4, 2, 40}}), "descending from 1 on");
    Expect(Maxima(image, 3, 1) == Places({{7, 2, 60}, {1, 2, 40}}), "a greater one three pixels away");
    Put(image, 7, 2, {0});
    Expect(Maxima(image, 3, 1) == Places{{4, 2, 40}} && Peaks(image, 3, 1) == Places{{1, 2, 40}},
           "of equal ones the last, or the first");
    const ImageHandle scattered = Dark(8, 6);
    Put(scattered, 1, 1, {9, 0, 0, 0, 0, 8});
    Put(scattered, 3, 2, {7});
    Put(scattered, 5, 4, {5});
    Expect(Maxima(scattered, 2, 1) == Places({{1, 1, 9}, {6, 1, 8}, {5, 4, 5}}),
           "what is left out leaves nothing out");
    const ImageHandle dark = Dark(5, 5);
    Expect(Maxima(dark, 0, 0) == Places{{4, 0, 0}} && Maxima(dark, 1, 0).empty(), "value 0 stays at locality 0 only");
    Expect(Peaks(dark, 0, 0).empty(), "the lowest value of the type is never taken");
    const ImageHandle floats = Dark(3, 2, 32 | DataTypeFloat);
    Expect(Peaks(floats, 0, 0).size() == 6, "0 is not the lowest float");
}

void TryRectangles() {
    const ImageHandle image = Dark(9, 7);
    for (const intptr_t y : {0, 3, 6})
        Put(image, 0, y, {9, 0, 0, 0, 9, 0, 0, 0, 9});
    Expect(Maxima(image, 0, 1) == Places({{8, 0, 9}, {0, 3, 9}, {4, 3, 9}, {8, 3, 9}, {8, 6, 9}}),
           "the first and the last row, but for their last column");
    Expect(Peaks(image, 0, 1).size() == 9, "the other search looks there");
    Expect(Maxima(image, 0, 1, 4, 2, 7, 4) == Places{{4, 3, 9}}, "the first column is searched");

    const ImageHandle walled = Dark(9, 7);
    Put(walled, 1, 1, {9, 9, 9});
    Put(walled, 4, 0, {200});
    Expect(Maxima(walled, 0, 1) == Places{{1, 1, 9}}, "what lies in the wall is not compared with");
    ListHandle one;
    Expect(FindSubPixelMaxima(walled.Get(), 0, 0, 0, 0, 0, 0, FitNone, 0, one.Out(), 1.0) &&
               PixelListCount(one.Get()) == 0,
           "0 is no last column for the other search");
    ListHandle none;
    FlushORVErrorCache();
    Expect(FindMaxima(Dark(4, 4, 32).Get(), 0, 0, 0, 0, 0, 0, 0, none.Out()) == 0 && LastCode() == 0,
           "unsigned 32 bits: 0 without a report");
    Expect(FindMaxima(Dark(4, 4, 32 | DataTypeFloat).Get(), 0, 0, 0, 0, 0, 0, 0, none.Out()) == 0 &&
               LastCode() == ErrDataType,
           "floats are refused");
}

/// A float plane with a Gaussian peak of standard deviation 2.
ImageHandle PeakAt(intptr_t width, double x, double y) {
    ImageHandle image = Dark(width, 16, 64 | DataTypeFloat);
    const TPlaneRec plane = PlaneOf(image.Get(), 0);
    for (intptr_t row = 0; row < plane.Height; ++row)
        for (intptr_t column = 0; column < plane.Width; ++column) {
            const double dx = static_cast<double>(column) - x, dy = static_cast<double>(row) - y;
            *reinterpret_cast<double *>(AddressOf(plane, column, row)) = 200.0 * std::exp(-(dx * dx + dy * dy) / 8.0);
        }
    return image;
}

double ErrorOf(const Places &places, double x, double y) {
    return places.size() == 1 ? std::hypot(places[0].x - x, places[0].y - y) : 1e9;
}

void TryFits() {
    const ImageHandle image = PeakAt(16, 7.3, 8.4);
    Expect(Peaks(image, 4, 100.0) == Peaks(image, 4, 100.0, FitGaussian, 0), "radius 0 fits nothing");
    Expect(ErrorOf(Peaks(image, 4, 100.0, FitQuadratic), 7.3, 8.4) < 0.02, "the Taylor step");
    Expect(ErrorOf(Peaks(image, 4, 100.0, FitParaboloid, 2), 7.3, 8.4) < 0.07, "the paraboloid");
    Expect(ErrorOf(Peaks(image, 4, 100.0, FitGaussian, 2), 7.3, 8.4) < 1e-6, "the Gaussian");
    Expect(std::abs(Peaks(image, 4, 100.0, FitGaussian, 2)[0].value - 200.0) < 1e-6, "its height");
    const ImageHandle below = PeakAt(16, 7.3, 8.4);
    *reinterpret_cast<double *>(AddressOf(PlaneOf(below.Get(), 0), 9, 10)) = -5.0;
    Expect(std::isnan(Peaks(below, 4, 100.0, FitGaussian, 2)[0].x), "a negative pixel takes the place away");
    const ImageHandle bytes = Dark(9, 9);
    Put(bytes, 3, 4, {60, 100, 80});
    Expect(ErrorOf(Peaks(bytes, 4, 90, FitQuadratic), 4.0, 4.0) < 0.03, "on bytes the step is next to none");
    const Places flat = Peaks(Dark(5, 5, 32 | DataTypeFloat), 9, 0.0, FitParaboloid, 2);
    Expect(flat == Places{{0, 0, 0}}, "nothing to fit on a plain");
    const ImageHandle far = PeakAt(4020, 4007.3, 8.4);
    ListHandle located;
    Expect(LocateInPart(far.Get(), 4000, 0, 16, 16, 100.0, located.Out()) &&
               ErrorOf(PlacesOf(located), 4007.3, 8.4) < 1e-6,
           "cut out, it is as exact as near the origin");
    Expect(ErrorOf(Peaks(far, 4, 100.0, FitGaussian, 2), 4007.3, 8.4) > 1e-5, "where it lies it is not");
}

void TrySorting() {
    ListHandle list = MakeList({{1, 1, 5}, {3, 3, 9}, {9, 1, 7}, {0, 8, 6}});
    Expect(SortPixelsByValue(list.Get()) && PlacesOf(list)[0] == Triple{3, 3, 9} &&
               PlacesOf(list)[3] == Triple{1, 1, 5},
           "descending by value");
    Expect(SortPixelsByPosition(list.Get(), 1, 0) && PlacesOf(list)[0] == Triple{0, 8, 6} &&
               PlacesOf(list)[3] == Triple{9, 1, 7},
           "from left to right");
    Expect(KeepStrongest(list.Get(), 2.0, 2) && PlacesOf(list) == Places({{3, 3, 9}, {9, 1, 7}}),
           "exactly two pixels away in x and in y is close");
    ListHandle chain = MakeList({{0, 0, 3}, {4, 0, 2}, {8, 0, 1}});
    const double strongestFirst[] = {0.0, 0.0, -1.0};
    Expect(SeparatePixels(chain.Get(), strongestFirst, 5.0) && PlacesOf(chain) == Places({{0, 0, 3}, {8, 0, 1}}),
           "what was removed removes nothing");
    Expect(!SeparatePixels(chain.Get(), strongestFirst, 0.0) && LastCode() == ErrParameter, "no distance at all");
}

void TryOverlays() {
    const ImageHandle image = Dark(6, 4);
    Put(image, 0, 1, {255, 255, 255});
    const ListHandle list = MakeList({{4.9, 2.0, 8.0}, {-0.5, 1.0, 8.0}, {9.0, 1.0, 8.0}});
    ImageHandle marked, none;
    ListHandle back;
    Expect(KeepMarks(list.Get(), image.Get(), marked.Out()) && ReadMarks(marked.Get(), back.Out()) &&
               PlacesOf(back) == Places({{0, 1, 0}, {4, 2, 0}}),
           "row by row, fractions dropped, no values, nothing from outside");
    Expect(*AddressOf(PlaneOf(marked.Get(), 0), 1, 1) == 254 && *AddressOf(PlaneOf(marked.Get(), 0), 0, 1) == 255,
           "bit 0 is the overlay's");
    ListHandle empty;
    *empty.Out() = CreatePixelList(3);
    Expect(!KeepMarks(empty.Get(), image.Get(), none.Out()) &&
               CreateOverlayFromPixelList(empty.Get(), image.Get(), none.Out()) && none.Get() == nullptr,
           "no place: true, and no image");
    Expect(!ReadMarks(image.Get(), empty.Out()) && LastCode() == ErrNotOverlayImage, "an image without an overlay");
}

void TryLight() {
    const ImageHandle image = Dark(30, 9);
    Put(image, 3, 4, {80});
    Put(image, 13, 4, {100});
    Put(image, 23, 4, {60});
    Expect(AddLight(image.Get(), 50, 2) == 180.0 && AddLight(image.Get(), 50, 9) == 240.0, "the brightest first");
}

} // namespace

int main() {
    TryLists();
    TryPlateaus();
    TryOrderAndLocality();
    TryRectangles();
    TryFits();
    TrySorting();
    TryOverlays();
    TryLight();
    return Conclude();
}
