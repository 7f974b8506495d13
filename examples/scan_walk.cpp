// Draws which pixels a walk comes by, in which line, and what it gives: the pictures of docs/scans.md, where the
// output of this program is quoted.
#include "image_handle.h"

#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr intptr_t width = 14;
constexpr intptr_t height = 6;

/// A picture in letters: '.' where no line came by, else the letter of the last line that did.
struct Drawing {
    std::vector<std::string> rows = std::vector<std::string>(height, std::string(width, '.'));
    char line = 'A' - 1;
};

unsigned char NextLine(void *drawing, int64_t) {
    ++static_cast<Drawing *>(drawing)->line;
    return 1;
}

unsigned char DrawPixel(void *data, void *, int32_t x, int32_t y) {
    Drawing &drawing = *static_cast<Drawing *>(data);
    drawing.rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)] = drawing.line;
    return 1;
}

void Draw(void *image, const char *what, const TArea &area, int64_t density) {
    Drawing drawing;
    const int64_t result = ScanPlaneUnary(image, 0, area, density, 0, DrawPixel, NextLine, nullptr, &drawing);
    std::printf("%s: P0 (%g, %g), P1 (%g, %g), P2 (%g, %g), density %lld\n", what, area.X0, area.Y0, area.X1, area.Y1,
                area.X2, area.Y2, static_cast<long long>(density));
    for (const std::string &row : drawing.rows) {
        std::printf("   ");
        for (const char letter : row)
            std::printf(" %c", letter);
        std::printf("\n");
    }
    std::printf("    lines: %d, result: %lld\n\n", drawing.line + 1 - 'A', static_cast<long long>(result));
}

} // namespace

int main() {
    ImageHandle image;
    if (!CreateGenericImage(1, width, height, false, image.Out()))
        return 1;
    Draw(image.Get(), "a rectangle", {2, 1, 9, 1, 2, 4}, 1000);
    Draw(image.Get(), "the same, lines downwards", {2, 1, 2, 4, 9, 1}, 1000);
    Draw(image.Get(), "every second pixel", {2, 0, 10, 0, 2, 4}, 500);
    Draw(image.Get(), "a line", {1, 4, 12, 1, 1, 4}, 1000);
    Draw(image.Get(), "turned", {4, 0, 12, 2, 3, 3}, 1000);
    Draw(image.Get(), "a pixel left out", {6, 1, 7, 4, 3, 1}, 1000);
    Draw(image.Get(), "no first edge", {5, 1, 5, 1, 8, 4}, 1000);
    Draw(image.Get(), "clipped at the right", {9, 1, 16, 1, 9, 3}, 1000);
    Draw(image.Get(), "begun left of the image", {-1, 1, 6, 1, 2, 4}, 1000);
}
