// Files of the library's own format: an image's stream and nothing else.
#pragma once

namespace Persistence {

/// The image of a file, with one reference; null for everything that holds none. Neither reports nor throws.
void *LoadLmg(const char *path);

/// Writes an image by value, views too.
/// path    a file that is there is replaced once the new one is whole; a failure leaves it as it was.
/// Result  false: no image; pixels that can't be duplicated; the file can't be made, or not wholly written. What
///         CreateDuplicateImage can't copy is reported under its name.
bool WriteLmg(void *image, const char *path);

} // namespace Persistence
