// Code that the pages under docs quote about walks over areas and what is built on them; see manual.cpp.
#include "expect.h"
#include "image_handle.h"

#include <array>
#include <stdexcept>
#include <vector>

namespace {

// quoted: GreyAlong
/// Called for each pixel of the line: notes its value.
unsigned char NoteGrey(void *greys, void *pixel, int32_t, int32_t) {
    static_cast<std::vector<int> *>(greys)->push_back(*static_cast<unsigned char *>(pixel));
    return 1; // 0 would end the walk
}

/// The grey values of an 8-bit plane along a line, from one place to another in image coordinates.
std::vector<int> GreyAlong(void *image, double fromX, double fromY, double toX, double toY) {
    std::vector<int> greys;
    const TArea line = {fromX, fromY, toX, toY, fromX, fromY}; // the second edge is empty: one line
    ScanPlaneUnary(image, 0, line, 1000, 1, NoteGrey, nullptr, nullptr, &greys);
    return greys;
}
// end of quote

// quoted: MeansOfLines
/// The mean of each line of an area, with the calls that stand around each line.
struct LineMeans {
    double sum = 0.0;
    int pixels = 0;
    std::vector<double> means{};
};

unsigned char BeginLine(void *data, int64_t) {
    auto &lines = *static_cast<LineMeans *>(data);
    lines.sum = 0.0;
    lines.pixels = 0;
    return 1;
}

unsigned char AddPixel(void *data, void *pixel, int32_t, int32_t) {
    auto &lines = *static_cast<LineMeans *>(data);
    lines.sum += *static_cast<unsigned char *>(pixel);
    ++lines.pixels;
    return 1;
}

unsigned char EndLine(void *data, int64_t) {
    auto &lines = *static_cast<LineMeans *>(data);
    lines.means.push_back(lines.pixels > 0 ? lines.sum / lines.pixels : 0.0); // a line may lie outside as a whole
    return 1;
}

std::vector<double> MeansOfLines(void *image, TArea area) {
    LineMeans lines;
    ScanPlaneUnary(image, 0, area, 1000, 1, AddPixel, BeginLine, EndLine, &lines);
    return lines.means;
}
// end of quote

// quoted: FirstDarkPixel
struct Place {
    int32_t x;
    int32_t y;
};

unsigned char StopAtDark(void *place, void *pixel, int32_t x, int32_t y) {
    *static_cast<Place *>(place) = {x, y};
    return *static_cast<unsigned char *>(pixel) >= 50; // 0 at the first dark pixel: the walk ends here
}

/// The first pixel below 50 on the way through an area; the last one of the way when there is none.
Place FirstDarkPixel(void *image, TArea area) {
    Place place = {-1, -1};
    ScanPlaneUnary(image, 0, area, 1000, 0, StopAtDark, nullptr, nullptr, &place);
    return place;
}
// end of quote

// quoted: DifferenceAt
unsigned char AddDifference(void *sum, void *pixel1, void *pixel2, int32_t, int32_t) {
    const int difference = *static_cast<unsigned char *>(pixel1) - *static_cast<unsigned char *>(pixel2);
    *static_cast<int64_t *>(sum) += difference < 0 ? -difference : difference;
    return 1;
}

/// How much an area of one image differs from another image, when it is laid on it moved by (dx, dy).
int64_t DifferenceAt(void *image, void *other, TArea area, int64_t dx, int64_t dy) {
    int64_t sum = 0;
    ScanPlaneBinary(image, other, 0, 0, area, 1000, dx, dy, 0, AddDifference, nullptr, nullptr, &sum);
    return sum;
}
// end of quote

// quoted: InvertArea
/// All planes of a pixel at once; a null pointer stands behind the last one.
unsigned char InvertPixel(void *, void **pixels, int32_t, int32_t) {
    for (; *pixels != nullptr; ++pixels)
        *static_cast<unsigned char *>(*pixels) ^= 0xFFu;
    return 1;
}

/// Inverts the pixels of an area in all planes. False when a part of the area lies outside, or the walk failed.
bool InvertArea(void *image, TArea area) {
    return ScanImageUnary(image, area, 1000, 0, InvertPixel, nullptr, nullptr, nullptr) >= 0;
}
// end of quote

// quoted: MarkTheLine
unsigned char SetBit(void *, void *pixel, int32_t, int32_t) {
    *static_cast<unsigned char *>(pixel) |= 1u;
    return 1;
}

/// A copy of an 8-bit image with a line in bit 0 of its pixels, where CopyOverlay finds it.
bool MarkTheLine(void *image, TArea line, void **out) {
    return CreateOverlayImage(image, out) && // clears the bit in all pixels
           ScanPlaneUnary(*out, 0, line, 1000, 0, SetBit, nullptr, nullptr, nullptr) > 0;
}
// end of quote

// quoted: MeanOfFrames
/// The mean and the deviation of frames of one size and data type, pixel by pixel. No frame is copied.
bool MeanOfFrames(void *const *frames, size_t count, void **mean, void **deviation) {
    void *stack = nullptr; // a view: the frames are its planes
    const bool done = CreateConcatenatedImage(frames, count, 1, &stack) != 0 &&
                      CreateMeanVarianceImage(stack, mean, deviation) != 0;
    ReleaseObject(stack);
    return done;
}
// end of quote

// quoted: BalanceOn
/// Makes a colour image grey in the mean over an area that should be grey. False also when one colour has no light.
bool BalanceOn(void *image, TArea greyArea) {
    double red = 0.0, green = 0.0, blue = 0.0;
    if (!CalculateWhiteBalance(image, &red, &green, &blue, greyArea) ||
        !(red < 100.0 && green < 100.0 && blue < 100.0))
        return false; // infinite, or no number at all, where a plane is black
    return ApplyWhiteBalance(image, red, green, blue) != 0;
}
// end of quote

/// Pixel (x, y) of plane p has the value 60 p + 10 y + x.
ImageHandle NumberedImage(intptr_t planes, intptr_t width, intptr_t height) {
    ImageHandle image;
    Expect(CreateGenericImage(planes, width, height, false, image.Out()), "an image can be made");
    for (intptr_t p = 0; p < planes; ++p)
        for (intptr_t y = 0; y < height; ++y)
            for (intptr_t x = 0; x < width; ++x)
                *AddressOf(PlaneOf(image.Get(), p), x, y) = static_cast<unsigned char>(60 * p + 10 * y + x);
    return image;
}

int Pixel(const ImageHandle &image, intptr_t plane, intptr_t x, intptr_t y) {
    uint64_t value = 0;
    Expect(GetPixVal(image.Get(), plane, x, y, &value), "the pixel exists");
    return static_cast<int>(value);
}

unsigned char CountPixel(void *count, void *, int32_t, int32_t) {
    ++*static_cast<int *>(count);
    return 1;
}
unsigned char CountLine(void *count, int64_t) {
    ++*static_cast<int *>(count);
    return 1;
}
unsigned char StopLine(void *, int64_t) {
    return 0;
}
unsigned char Throw(void *, void *, int32_t, int32_t) {
    throw std::runtime_error("enough");
}

int64_t CountOver(const ImageHandle &image, const TArea &area, int64_t density, int *visited) {
    *visited = 0;
    return ScanPlaneUnary(image.Get(), 0, area, density, 0, CountPixel, nullptr, nullptr, visited);
}

void TryProfiles() {
    const ImageHandle image = NumberedImage(1, 9, 5);
    Expect(SetImageOrigin(image.Get(), 2.0, 1.0), "the origin is set");
    Expect(GreyAlong(image.Get(), 0.0, 0.0, 3.0, 3.0) == std::vector<int>{12, 23, 34, 45}, "along a diagonal");
    Expect(GreyAlong(image.Get(), 3.0, 0.0, 0.0, 0.0) == std::vector<int>{15, 14, 13, 12}, "backwards");
    Expect(MeansOfLines(image.Get(), {-2.0, 0.0, 0.0, 0.0, -2.0, 2.0}) == std::vector<double>{11.0, 21.0, 31.0},
           "the means of three rows");
    Expect(MeansOfLines(image.Get(), {-2.0, 0.0, -2.0, 2.0, 0.0, 0.0}) == std::vector<double>{20.0, 21.0, 22.0},
           "the means of three columns");
}

void TryStops() {
    const ImageHandle image = NumberedImage(1, 9, 5);
    *AddressOf(PlaneOf(image.Get(), 0), 3, 1) = 200;
    Place found = FirstDarkPixel(image.Get(), {3.0, 1.0, 6.0, 1.0, 3.0, 3.0});
    Expect(found.x == 4 && found.y == 1, "the second pixel of the way is dark");
    found = FirstDarkPixel(image.Get(), {0.0, 0.0, 0.0, 0.0, 0.0, 0.0});
    Expect(found.x == 0 && found.y == 0, "a single pixel is a walk, too");
    int visited = 0;
    const TArea area = {1.0, 1.0, 4.0, 1.0, 1.0, 3.0};
    Expect(ScanPlaneUnary(image.Get(), 0, area, 1000, 0, CountPixel, StopLine, nullptr, &visited) == 0 &&
               visited == 0,
           "a line that is not begun has no pixels");
    Expect(ScanPlaneUnary(image.Get(), 0, area, 1000, 0, CountPixel, nullptr, StopLine, &visited) == 4 &&
               visited == 4,
           "the walk ends behind the first line");
    int lines = 0;
    Expect(ScanPlaneUnary(image.Get(), 0, area, 1000, 0, nullptr, CountLine, nullptr, &lines) == 0 && lines == 3,
           "without a pixel callback the lines are counted, and the result is 0");
    bool hasPassed = false;
    try {
        ScanPlaneUnary(image.Get(), 0, area, 1000, 0, Throw, nullptr, nullptr, nullptr);
    } catch (const std::runtime_error &) {
        hasPassed = true;
    }
    Expect(hasPassed && RefCount(image.Get()) == 1, "exceptions pass, and no reference is kept");
}

void TryCounts() {
    const ImageHandle image = NumberedImage(1, 9, 5);
    int visited = 0;
    Expect(CountOver(image, {1.0, 1.0, 4.0, 1.0, 1.0, 3.0}, 1000, &visited) == 12, "3 x 4 pixels, edges included");
    Expect(CountOver(image, {1.4, 0.6, 4.4, 0.6, 1.4, 2.6}, 1000, &visited) == 12, "corners are rounded first");
    Expect(CountOver(image, {1.0, 1.0, 20.0, 1.0, 1.0, 3.0}, 1000, &visited) == -24 && visited == 24,
           "clipped: the number inside, negative");
    Expect(CountOver(image, {-1.0, 1.0, 4.0, 1.0, -1.0, 3.0}, 1000, &visited) == 0 && visited == 0,
           "lines that begin left of the image are left out whole");
    Expect(CountOver(image, {4.0, 1.0, -1.0, 1.0, 4.0, 3.0}, 1000, &visited) == -15 && visited == 15,
           "the other way round only what is outside is left out");
    Expect(CountOver(image, {8.0, 2.0, 9.0, 2.0, 8.0, 2.0}, 1000, &visited) == -1 && visited == 1,
           "one pixel inside, others outside: -1, too");
    Expect(CountOver(image, {8.0, 2.0, 9.0, 2.0, 8.0, 2.0}, -1, &visited) == -1 && visited == 0, "a failure");
    Expect(CountOver(image, {0.0, 0.0, 8.0, 0.0, 0.0, 0.0}, 500, &visited) == 5, "every second pixel");
    Expect(CountOver(image, {0.0, 0.0, 8.0, 0.0, 0.0, 4.0}, 500, &visited) == 15, "of every second row");
    Expect(CountOver(image, {0.0, 0.0, 8.0, 0.0, 0.0, 0.0}, 0, &visited) == 1, "0 is taken as 1");
    std::array<uint64_t, 256> histogram{};
    Expect(!ImageHistogram(image.Get(), 0, {0.0, 0.0, 8.0, 0.0, 0.0, 0.0}, 0, histogram.data()) &&
               ImageHistogram(image.Get(), 0, {0.0, 0.0, 8.0, 0.0, 0.0, 0.0}, 1000, histogram.data()) &&
               histogram[3] == 1 && histogram[9] == 0,
           "the histogram refuses it");
}

void TryDrift() {
    std::vector<unsigned char> zeros(40000 * 2, 0);
    ImageHandle wide;
    Expect(CreateImageFromPointer(zeros.data(), zeros.size(), 40000, 2, 1, 8, 1, 40000, 0, nullptr, nullptr, nullptr,
                                  wide.Out()) == 0,
           "a wide image can be made");
    int64_t lastRow = 0;
    const auto noteRow = [](void *row, void *, int32_t, int32_t y) -> unsigned char {
        *static_cast<int64_t *>(row) = y;
        return 1;
    };
    ScanPlaneUnary(wide.Get(), 0, {0.0, 0.0, 32767.0, 0.0, 0.0, 0.0}, 1000, 0, noteRow, nullptr, nullptr, &lastRow);
    Expect(lastRow == 0, "32768 samples stay in their row");
    ScanPlaneUnary(wide.Get(), 0, {0.0, 0.0, 32768.0, 0.0, 0.0, 0.0}, 1000, 0, noteRow, nullptr, nullptr, &lastRow);
    Expect(lastRow == 1, "the next one has drifted into the next row");
}

void TryTwoImages() {
    const ImageHandle image = NumberedImage(1, 9, 5);
    ImageHandle cut;
    Expect(CreateImageMap(image.Get(), 3, 1, 6, 3, 4, 3, cut.Out()), "a part can be cut out");
    const TArea whole = {0.0, 0.0, 3.0, 0.0, 0.0, 2.0};
    Expect(DifferenceAt(cut.Get(), image.Get(), whole, 3, 1) == 0, "the cut fits where it was cut out");
    Expect(DifferenceAt(cut.Get(), image.Get(), whole, 2, 1) == 12, "one column beside it each pixel differs by 1");
    int visited = 0;
    const auto count = [](void *number, void *, void *, int32_t, int32_t) -> unsigned char {
        ++*static_cast<int *>(number);
        return 1;
    };
    const TArea longer = {0.0, 0.0, 20.0, 0.0, 0.0, 0.0};
    Expect(ScanPlaneBinary(image.Get(), image.Get(), 0, 0, longer, 1000, 0, 0, 0, count, nullptr, nullptr,
                           &visited) == -10,
           "nine columns and a guard entry");
}

void TryPlanes() {
    ImageHandle image = NumberedImage(3, 5, 4);
    Expect(InvertArea(image.Get(), {1.0, 1.0, 2.0, 1.0, 1.0, 2.0}), "an area is inverted");
    Expect(Pixel(image, 0, 1, 1) == (11 ^ 255) && Pixel(image, 2, 2, 2) == (142 ^ 255) && Pixel(image, 1, 3, 1) == 73,
           "in all planes, and nothing beside it");
    Expect(!InvertArea(image.Get(), {1.0, 1.0, 9.0, 1.0, 1.0, 2.0}), "a part lies outside");

    const ImageHandle grey = NumberedImage(1, 5, 4);
    ImageHandle marked, target;
    Expect(MarkTheLine(grey.Get(), {1.0, 1.0, 3.0, 1.0, 1.0, 1.0}, marked.Out()) && HasOverlay(marked.Get()),
           "an overlay is made");
    Expect(Pixel(marked, 0, 1, 1) == 11 && Pixel(marked, 0, 2, 1) == 13 && Pixel(marked, 0, 4, 1) == 14 &&
               Pixel(marked, 0, 3, 0) == 2,
           "bit 0 tells the line");
    Expect(CreateDuplicateImage(grey.Get(), target.Out()) && CopyOverlay(marked.Get(), target.Get()) &&
               Pixel(target, 0, 2, 1) == 13 && Pixel(target, 0, 3, 0) == 2 && !HasOverlay(target.Get()),
           "the bits cross over, the flag does not");
}

void TryFramesAndColours() {
    const ImageHandle one = NumberedImage(1, 3, 2), two = NumberedImage(1, 3, 2), three = NumberedImage(1, 3, 2);
    *AddressOf(PlaneOf(two.Get(), 0), 2, 1) = 15;
    *AddressOf(PlaneOf(three.Get(), 0), 2, 1) = 19;
    void *const frames[] = {one.Get(), two.Get(), three.Get()};
    ImageHandle mean, deviation;
    Expect(MeanOfFrames(frames, 3, mean.Out(), deviation.Out()) && Pixel(mean, 0, 2, 1) == 15 &&
               Pixel(deviation, 0, 2, 1) == 3 && Pixel(mean, 0, 0, 1) == 10 && Pixel(deviation, 0, 0, 1) == 0,
           "12, 15 and 19 are 15 and a third in the mean, with a deviation of 2.87");
    Expect(RefCount(one.Get()) == 1, "the frames are free again");

    ImageHandle colour = NumberedImage(3, 2, 2);
    const TArea whole = {0.0, 0.0, 1.0, 0.0, 0.0, 1.0};
    Expect(!BalanceOn(one.Get(), whole), "one plane has no white balance");
    for (intptr_t p = 0; p < 3; ++p)
        Expect(InitializeImageArea(colour.Get(), p,
                                   p == 0   ? 100
                                   : p == 1 ? 50
                                            : 80,
                                   whole) != 0,
               "a plane is filled");
    Expect(BalanceOn(colour.Get(), whole) && Pixel(colour, 0, 0, 0) == 100 && Pixel(colour, 1, 1, 0) == 100 &&
               Pixel(colour, 2, 0, 1) == 100,
           "all planes become as bright as the brightest");
    Expect(InitializeImageArea(colour.Get(), 1, 0, whole) != 0 && !BalanceOn(colour.Get(), whole),
           "no gain brings light where there is none");
}

} // namespace

int main() {
    TryProfiles();
    TryStops();
    TryCounts();
    TryDrift();
    TryTwoImages();
    TryPlanes();
    TryFramesAndColours();
    return Conclude();
}
