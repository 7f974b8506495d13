// Prints images of letters with their tables, for the programs whose output the manual shows.
#pragma once

#include "image_handle.h"

#include <cstdio>

/// The entries of one axis from guard entry to guard entry, those of the image between bars.
inline void PrintEntries(const VPAEntry *table, intptr_t VPAEntry::*axis, intptr_t count) {
    for (intptr_t i = -4; i < count + 4; ++i)
        std::printf("%s%3td", i == 0 || i == count ? " |" : "", table[i].*axis);
}

inline void PrintLetters(const TPlaneRec &plane, intptr_t y) {
    for (intptr_t x = 0; x < plane.Width; ++x)
        std::printf(" %c", *AddressOf(plane, x, y));
    std::printf("\n");
}

/// Table and pixels of a plane of letters.
inline void PrintPlane(const TPlaneRec &plane) {
    std::printf("  XEntry");
    PrintEntries(plane.VPAT, &VPAEntry::XEntry, plane.Width);
    std::printf("\n  YEntry");
    PrintEntries(plane.VPAT, &VPAEntry::YEntry, plane.Height);
    std::printf("\n");
    for (intptr_t y = 0; y < plane.Height; ++y) {
        std::printf("         ");
        PrintLetters(plane, y);
    }
}
