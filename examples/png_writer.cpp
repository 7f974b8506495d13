// libpng takes rows of red, green, blue bytes; they are gathered through the tables.
#include "png_writer.h"

#include "image_handle.h"

#include <png.h>
#include <vector>

bool WritePng(const std::string &path, void *image) {
    const TPlaneRec planes[] = {PlaneOf(image, 0), PlaneOf(image, 1), PlaneOf(image, 2)};
    std::vector<unsigned char> pixels;
    for (intptr_t y = 0; y < planes[0].Height; ++y)
        for (intptr_t x = 0; x < planes[0].Width; ++x)
            for (const TPlaneRec &plane : planes)
                pixels.push_back(*AddressOf(plane, x, y));

    png_image description{};
    description.version = PNG_IMAGE_VERSION;
    description.width = static_cast<png_uint_32>(planes[0].Width);
    description.height = static_cast<png_uint_32>(planes[0].Height);
    description.format = PNG_FORMAT_RGB;
    return png_image_write_to_file(&description, path.c_str(), 0, pixels.data(), 0, nullptr) != 0;
}
