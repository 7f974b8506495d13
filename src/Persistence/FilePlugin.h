// The place of the optional library that handles all formats but the built-in ones, and of drivers that deliver an
// image. This version loads neither: every request fails without a report and without a message.
#pragma once

namespace Persistence {

inline void *LoadThroughPlugin(const char *) {
    return nullptr;
}
inline bool WriteThroughPlugin(void *, const char *) {
    return false;
}
inline bool WriteLossyThroughPlugin(void *, const char *, double) {
    return false;
}

} // namespace Persistence
