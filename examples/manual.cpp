// Code that the pages under docs quote, compiled and run: main tries each piece and gives 0 only when all of them do
// what the page says. The marks around a piece say under which name a page quotes it. Cut and composed views have a
// file of their own, manual_views.cpp.
#include "expect.h"
#include "image_handle.h"

#include <cstring>
#include <string>
#include <vector>

namespace {

// quoted: SumOfPlane
/// Adds up the pixels of an 8-bit plane of any image: a file, a view, a view of a view.
uint64_t SumOfPlane(void *image, intptr_t plane) {
    TPlaneRec record = {};
    SetPlaneRec(image, plane, &record);
    uint64_t sum = 0;
    for (intptr_t y = 0; y < record.Height; ++y) {
        const unsigned char *row = static_cast<unsigned char *>(record.BaseAddress) + record.VPAT[y].YEntry;
        for (intptr_t x = 0; x < record.Width; ++x)
            sum += row[record.VPAT[x].XEntry];
    }
    return sum;
}
// end of quote

// quoted: LargestVerticalStep
/// The largest step between vertical neighbours of an 8-bit plane. Row -1 exists: it is the first row again.
int LargestVerticalStep(const TPlaneRec &plane) {
    int largest = 0;
    for (intptr_t y = 0; y < plane.Height; ++y)
        for (intptr_t x = 0; x < plane.Width; ++x) {
            const unsigned char *column = static_cast<unsigned char *>(plane.BaseAddress) + plane.VPAT[x].XEntry;
            const int step = column[plane.VPAT[y].YEntry] - column[plane.VPAT[y - 1].YEntry];
            largest = step > largest ? step : largest;
        }
    return largest;
}
// end of quote

// quoted: SetMillimetres
/// Gives an image a system in millimetres: 20 pixels per millimetre, zero at pixel (320, 240), y upwards.
bool SetMillimetres(void *image) {
    TCoordinateMap map = {320.0, 240.0, {}};
    SetMatrix(&map.Matrix, 20.0, 0.0, 0.0, -20.0);
    return SetImageCoordinates(image, map);
}
// end of quote

// quoted: TurnWithItsCoordinates
/// Turns an image by 180 degrees and its coordinate system with it: a thing in the picture keeps its coordinates.
bool TurnWithItsCoordinates(void *image, void **out) {
    TCoordinateMap map;
    if (!GetImageCoordinates(image, &map) || !CreateRotatedImageMap(image, VPATRotation180, out))
        return false;
    TCoordinateMap turn = {
        static_cast<double>(ImageWidth(image) - 1), static_cast<double>(ImageHeight(image) - 1), {}};
    SetMatrix(&turn.Matrix, -1.0, 0.0, 0.0, -1.0); // from the pixels of the image to the pixels of the view
    TCoordinateMap turnedMap;
    ComposeCoordinateMaps(&turnedMap, map, turn);
    return SetImageCoordinates(*out, turnedMap);
}
// end of quote

// quoted: ShowCameraFrame
/// Runs when the image and all views of it are gone, on the thread that gave the last reference back.
void ReturnFrame(void *, void *userData) {
    *static_cast<bool *>(userData) = true;
}

/// Shows a frame of 640 x 480 pixels in blue, green, red order without copying it. frameIsFree becomes true when the
/// memory may be used again.
bool ShowCameraFrame(unsigned char *pixels, bool *frameIsFree, void **out) {
    const intptr_t planeOrder[] = {2, 1, 0}; // first in memory is blue, which is plane 2
    return CreateImageFromPointer(pixels, 640 * 480 * 3, 640, 480, 3, 8, 3, 640 * 3, 1, planeOrder, ReturnFrame,
                                  frameIsFree, out) == 0;
}
// end of quote

// quoted: GiveBackEarly
/// A view keeps what it shows: the caller can give the source back at once.
bool TurnedFrame(unsigned char *pixels, bool *frameIsFree, void **out) {
    void *frame = nullptr;
    if (!ShowCameraFrame(pixels, frameIsFree, &frame))
        return false;
    const bool done = CreateRotatedImageMap(frame, VPATRotation90Clockwise, out);
    ReleaseObject(frame); // false when the view lives: released, but still held
    return done;
}
// end of quote

// quoted: LastReport
/// The newest report of this thread as one line, taken out of its slot; empty when there is none.
std::string LastReport() {
    uint32_t code = 0;
    int64_t serial = 0;
    uint64_t textSize = 0;
    uint64_t nameSize = 0;
    GetLastORVError(&code, &serial, nullptr, &textSize, nullptr, &nameSize); // a size of 0 asks for the sizes
    std::vector<char> text(textSize);
    std::vector<char> name(nameSize);
    if (!GetLastORVError(&code, &serial, text.data(), &textSize, name.data(), &nameSize))
        return {};
    return std::string(nameSize > 0 ? name.data() : "?") + ": " + (textSize > 0 ? text.data() : "");
}
// end of quote

// quoted: IsError
/// Compares a reported code with one of the constants: some reports come without the failure bit.
bool IsError(uint32_t reported, uint32_t constant) {
    return (reported & 0xFFFFu) == (constant & 0xFFFFu);
}
// end of quote

void TryPixels() {
    unsigned char pixels[] = {1, 2, 3, 40, 50, 60};
    ImageHandle image, turned;
    Expect(CreateImageFromPointer(pixels, sizeof pixels, 3, 2, 1, 8, 1, 3, 0, nullptr, nullptr, nullptr,
                                  image.Out()) == 0,
           "six bytes are an image");
    Expect(CreateRotatedImageMap(image.Get(), VPATRotation90Clockwise, turned.Out()), "it can be turned");
    Expect(SumOfPlane(image.Get(), 0) == 156 && SumOfPlane(turned.Get(), 0) == 156, "the sum is that of the bytes");
    Expect(LargestVerticalStep(PlaneOf(image.Get(), 0)) == 57, "60 stands below 3");
    Expect(LargestVerticalStep(PlaneOf(turned.Get(), 0)) == 10, "turned, 60 stands below 50");
}

void TryCoordinates() {
    ImageHandle image, turned;
    Expect(CreateGenericImage(1, 640, 480, false, image.Out()) && SetMillimetres(image.Get()), "a system is set");
    double x = 0.0;
    double y = 0.0;
    ImageToPixel(image.Get(), &x, &y, 1.0, 1.0);
    Expect(x == 340.0 && y == 220.0, "one millimetre right and up is 20 pixels right and up");
    PixelToImage(image.Get(), &x, &y, 0.0, 0.0);
    Expect(x == -16.0 && y == 12.0, "the first pixel is 16 mm left of and 12 mm above the zero point");
    Expect(TurnWithItsCoordinates(image.Get(), turned.Out()), "the image turns with its system");
    ImageToPixel(turned.Get(), &x, &y, 1.0, 1.0);
    Expect(x == 639.0 - 340.0 && y == 479.0 - 220.0, "the same place lies at the turned pixel");
}

void TryOwnership() {
    std::vector<unsigned char> pixels(640 * 480 * 3, 7);
    bool isFree = false;
    void *view = nullptr;
    Expect(TurnedFrame(pixels.data(), &isFree, &view) && !isFree, "the view keeps the frame");
    Expect(RefCount(view) == 1 && ShareImage(view) == 2, "a fresh handle has one reference");
    void *second = view;
    Expect(!ReleaseObject(second) && second == view && !isFree, "false: released, but still held");
    Expect(ReleaseObject(view) && view == nullptr && isFree, "true: gone, the callback has run");
}

void TryErrors() {
    FlushORVErrorCache();
    Expect(LastReport().empty(), "an empty slot gives no text");
    Expect(ImageWidth(nullptr) == 0, "no image has no width");
    std::string text = LastReport();
    Expect(text == "ImageWidth: Error code 16 (no extended information) occured. "
                   "Error from Sub-Facility Nr. 0 of Facility Nr. 0",
           text.c_str());
    unsigned char pixel = 0;
    void *image = nullptr;
    Expect(CreateImageFromPointer(&pixel, 1, 2, 1, 1, 8, 0, 1, 0, nullptr, nullptr, nullptr, &image) == 2,
           "the status is ErrParameter without its failure bit");
    text = LastReport();
    Expect(text == "CreateImageFromPointer: Inconsistent data. Exception from Sub-Facility 'Image Kernel' of "
                   "Facility 'Orvane'.",
           text.c_str());
    Expect(IsError(2, ErrParameter) && IsError(ErrParameter, ErrParameter) && !IsError(2, ErrGeneral),
           "codes are compared without their upper half");
    ReportORVErrorEx(ErrParameter, "abc", "F");
    char letters[8] = "";
    uint64_t size = sizeof letters;
    uint64_t noName = 0;
    uint32_t code = 0;
    Expect(PeekLastORVError(&code, nullptr, letters, &size, nullptr, &noName) && std::strcmp(letters, "ab") == 0,
           "a look takes the last letter");
    Expect(LastReport() == "F: abc", "taking gives the whole text");
}

} // namespace

int main() {
    TryPixels();
    TryCoordinates();
    TryOwnership();
    TryErrors();
    return Conclude();
}
