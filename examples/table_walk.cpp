// Prints the tables of a small picture and of five views of it: what a turned, a mirrored, a stitched, a shrunk and
// an enlarged image are. The manual shows this output.
#include "table_print.h"

namespace {

void PrintImage(const char *title, const ImageHandle &image, const char *memory) {
    const TPlaneRec plane = PlaneOf(image.Get(), 0);
    const std::ptrdiff_t base = static_cast<char *>(plane.BaseAddress) - memory;
    std::printf("%s: %td x %td, base is byte %td\n", title, plane.Width, plane.Height, base);
    PrintPlane(plane);
    std::printf("\n");
}

} // namespace

int main() {
    char memory[] = "ABCDEFGHIJKL"; // three rows of four pixels
    ImageHandle picture, turned, mirrored, left, right, stitched, shrunk, enlarged;
    CreateImageFromPointer(memory, 12, 4, 3, 1, 8, 1, 4, 0, nullptr, nullptr, nullptr, picture.Out());
    CreateRotatedImageMap(picture.Get(), VPATRotation90Clockwise, turned.Out());
    CreateImageFromPointer(memory + 3, 12, 4, 3, 1, 8, -1, 4, 0, nullptr, nullptr, nullptr, mirrored.Out());
    CreateImageFromPointer(memory, 12, 1, 3, 1, 8, 1, 4, 0, nullptr, nullptr, nullptr, left.Out());
    CreateImageFromPointer(memory + 2, 12, 2, 3, 1, 8, 1, 4, 0, nullptr, nullptr, nullptr, right.Out());
    CreatePanoramicImageMap(right.Get(), left.Get(), PanoramaSideBySide, stitched.Out());
    CreateImageMap(picture.Get(), 0, 0, 3, 2, 2, 2, shrunk.Out());
    CreateImageMap(picture.Get(), 1, 1, 3, 2, 6, 2, enlarged.Out());

    PrintImage("the picture", picture, memory);
    PrintImage("turned clockwise", turned, memory);
    PrintImage("mirrored", mirrored, memory);
    PrintImage("columns 2, 3 and 0 stitched", stitched, memory);
    PrintImage("shrunk", shrunk, memory);
    PrintImage("cut out and enlarged", enlarged, memory);
    return 0;
}
