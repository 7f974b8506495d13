/* The types that cross the exported boundary: the data type word, the table entry, the geometry records.
 * Compiles as C11 and as C++17 and later; needs nothing but the language's own headers. */
#ifndef ORV_TYPES_H
#define ORV_TYPES_H

#ifdef __cplusplus
#include <cstddef>
#include <cstdint>
#else
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#endif

#if defined(__GNUC__)
#define ORV_API __attribute__((visibility("default")))
#else
#define ORV_API
#endif

#ifdef __cplusplus
#define ORV_BEGIN_C extern "C" {
#define ORV_END_C }
#define ORV_CONSTANT inline constexpr
#else
#define ORV_BEGIN_C
#define ORV_END_C
#define ORV_CONSTANT static const
#endif

/** The form of a plane's pixels: bits 0 to 7 the width in bits, bit 8 signed, bit 9 floating point,
 *  bit 10 overlay (bit 0 of a pixel value is an overlay bit), bit 11 complex. */
typedef uint32_t TDataType;

ORV_CONSTANT TDataType DataTypeBitsMask = 0xFFu;
ORV_CONSTANT TDataType DataTypeSigned = 0x100u;
ORV_CONSTANT TDataType DataTypeFloat = 0x200u;
ORV_CONSTANT TDataType DataTypeOverlay = 0x400u;
ORV_CONSTANT TDataType DataTypeComplex = 0x800u;
/** What a query answers when there is no data type to tell. */
ORV_CONSTANT TDataType DataTypeNone = 0xFFFFFFFFu;

/** One record of a plane's table. The pixel (x, y) of a plane lies at
 *  base + table[x].XEntry + table[y].YEntry, offsets in bytes, with no other assumption about the layout.
 *  A table can be read from entry -4 to entry 3 behind the last one of each axis: the four guard entries at
 *  each end repeat the nearest entry. */
typedef struct VPAEntry {
    intptr_t XEntry;
    intptr_t YEntry;
} VPAEntry;

/** A two-by-two matrix: x' = A11 x + A12 y, y' = A21 x + A22 y. */
typedef struct TMatrix {
    double A11;
    double A12;
    double A21;
    double A22;
} TMatrix;

/** An origin and a linear part: p' = (X, Y) + Matrix p. The map of an image leads from image coordinates to
 *  pixel coordinates. */
typedef struct TCoordinateMap {
    double X;
    double Y;
    TMatrix Matrix;
} TCoordinateMap;

/** A parallelogram: the corner P0, the end P1 of its first edge, the end P2 of its second edge. */
typedef struct TArea {
    double X0;
    double Y0;
    double X1;
    double Y1;
    double X2;
    double Y2;
} TArea;

/** An axis-parallel rectangle. */
typedef struct TRectangle {
    double Left;
    double Top;
    double Right;
    double Bottom;
} TRectangle;

/** All that is needed to reach the pixels of one plane; filled by SetPlaneRec. VPAT points at entry 0. */
typedef struct TPlaneRec {
    void *BaseAddress;
    VPAEntry *VPAT;
    intptr_t Width;
    intptr_t Height;
    TDataType Datatype;
} TPlaneRec;

#endif
