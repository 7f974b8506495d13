// The optional library that handles all formats but the built-in ones, and drivers that deliver an image. Both are
// found at run time only; their absence is the usual case and nobody's failure but the request's.
#pragma once

namespace Persistence {

/// The plug-in's image of a file; null when there is no plug-in (the loader's message goes to standard error), and
/// when the plug-in gives none, throws, or can't tell when it may be unloaded.
void *LoadThroughPlugin(const char *path);
/// The image that a driver delivers; null for a file that is no driver.
void *LoadThroughDriver(const char *path);

/// The plug-in's result; false without a plug-in. What the plug-in throws passes on.
bool WriteThroughPlugin(void *image, const char *path);
/// As WriteThroughPlugin, but a name of a lossy format goes to the plug-in's writer for those, and any other one to
/// WriteImageFile. A plug-in that knows no lossy formats gets all names.
bool WriteLossyThroughPlugin(void *image, const char *path, double quality);

} // namespace Persistence
