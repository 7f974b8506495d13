// Prints the planes of a small colour picture, of two plane lists of it, and of two images that are laid over each
// other by their origins. The manual shows this output.
#include "table_print.h"

namespace {

/// The planes of an image of one row; the columns tell them apart.
void PrintPlaneList(const char *title, const ImageHandle &image) {
    std::printf("%s\n", title);
    for (intptr_t p = 0; p < ImageDimension(image.Get()); ++p) {
        const TPlaneRec plane = PlaneOf(image.Get(), p);
        std::printf("  plane %td  XEntry", p);
        PrintEntries(plane.VPAT, &VPAEntry::XEntry, plane.Width);
        std::printf("  shows");
        PrintLetters(plane, 0);
    }
    std::printf("\n");
}

void PrintPlaneLists() {
    char memory[] = "bgrBGR"; // two pixels in one row: blue, green, red
    const intptr_t redFirst[] = {2, 1, 0};
    ImageHandle colour, twoPlanes, red, moved;
    CreateImageFromPointer(memory, 6, 2, 1, 3, 8, 3, 6, 1, redFirst, nullptr, nullptr, colour.Out());
    CreateImageSubList(colour.Get(), 1, 2, 1, twoPlanes.Out());
    CreateImageSubList(colour.Get(), 0, 1, 1, red.Out());
    CreateImageInsertList(twoPlanes.Get(), red.Get(), 1, 1, 0, moved.Out());

    PrintPlaneList("the colour picture", colour);
    PrintPlaneList("green and blue picked", twoPlanes);
    PrintPlaneList("red put between them", moved);
}

void PrintOverlay() {
    char memory[] = "ABCDEFGHIJKL"; // three rows of four pixels
    ImageHandle picture, turned, overlay;
    CreateImageFromPointer(memory, 12, 4, 3, 1, 8, 1, 4, 0, nullptr, nullptr, nullptr, picture.Out());
    CreateRotatedImageMap(picture.Get(), VPATRotation90Clockwise, turned.Out());
    SetImageOrigin(picture.Get(), 2.0, 1.0); // the G
    SetImageOrigin(turned.Get(), 1.0, 2.0);  // the G again
    CreateImageInsertList(picture.Get(), turned.Get(), 1, 1, 1, overlay.Out());

    double x = 0.0;
    double y = 0.0;
    GetImageOrigin(overlay.Get(), &x, &y);
    std::printf("the picture and its turned view, laid over each other at G: %td x %td, origin at (%g, %g)\n",
                ImageWidth(overlay.Get()), ImageHeight(overlay.Get()), x, y);
    for (intptr_t p = 0; p < ImageDimension(overlay.Get()); ++p) {
        std::printf("  plane %td\n", p);
        PrintPlane(PlaneOf(overlay.Get(), p));
    }
}

} // namespace

int main() {
    PrintPlaneLists();
    PrintOverlay();
    return 0;
}
