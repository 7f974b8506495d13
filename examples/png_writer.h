// Writes an image as a PNG file that a web page can show. For the examples only: the library itself writes bitmaps.
#pragma once

#include <string>

/// image  three 8-bit planes: red, green, blue. Result: false when the file can't be written.
bool WritePng(const std::string &path, void *image);
