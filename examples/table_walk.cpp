// Prints the tables of a small picture and of four views of it: what a turned, a mirrored and a stitched image are.
// The manual shows this output.
#include "image_handle.h"

#include <algorithm>
#include <cstdio>

namespace {

/// One column of the table from guard entry to guard entry, the entries of the image between bars.
void PrintColumn(const char *name, const VPAEntry *table, intptr_t VPAEntry::*column, intptr_t count) {
    std::printf("  %s", name);
    for (intptr_t i = -4; i < count + 4; ++i)
        std::printf("%s%3td", i == 0 || i == count ? " |" : "", table[i].*column);
    std::printf("\n");
}

void PrintImage(const char *title, void *image, const char *memory) {
    const TPlaneRec plane = PlaneOf(image, 0);
    const std::ptrdiff_t base = static_cast<char *>(plane.BaseAddress) - memory;
    std::printf("%s: %td x %td, base is byte %td\n", title, plane.Width, plane.Height, base);
    PrintColumn("XEntry", plane.VPAT, &VPAEntry::XEntry, plane.Width);
    PrintColumn("YEntry", plane.VPAT, &VPAEntry::YEntry, plane.Height);
    for (intptr_t y = 0; y < plane.Height; ++y) {
        std::printf("         ");
        for (intptr_t x = 0; x < plane.Width; ++x)
            std::printf(" %c", *AddressOf(plane, x, y));
        std::printf("\n");
    }
    std::printf("\n");
}

} // namespace

int main() {
    char memory[] = "ABCDEFGHIJKL"; // three rows of four pixels
    ImageHandle picture, turned, mirrored, left, right, stitched;
    CreateImageFromPointer(memory, 12, 4, 3, 1, 8, 1, 4, 0, nullptr, nullptr, nullptr, picture.Out());
    CreateRotatedImageMap(picture.Get(), VPATRotation90Clockwise, turned.Out());
    CreateImageFromPointer(memory + 3, 12, 4, 3, 1, 8, -1, 4, 0, nullptr, nullptr, nullptr, mirrored.Out());
    CreateImageFromPointer(memory, 12, 1, 3, 1, 8, 1, 4, 0, nullptr, nullptr, nullptr, left.Out());
    CreateImageFromPointer(memory + 2, 12, 2, 3, 1, 8, 1, 4, 0, nullptr, nullptr, nullptr, right.Out());
    CreatePanoramicImageMap(right.Get(), left.Get(), PanoramaSideBySide, stitched.Out());

    PrintImage("the picture", picture.Get(), memory);
    PrintImage("turned clockwise", turned.Get(), memory);
    PrintImage("mirrored", mirrored.Get(), memory);
    PrintImage("columns 2, 3 and 0 stitched", stitched.Get(), memory);
    return 0;
}
