/* Plain value functions over matrices, coordinate maps, areas and rectangles. All angles are degrees.
 * They keep no state, allocate nothing, report nothing, and run on any thread. Records come in by value, so an
 * output may be one of the operands. */
#ifndef ORV_MATRICES_H
#define ORV_MATRICES_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** Stores the four values. */
ORV_API void SetMatrix(TMatrix *out, double a11, double a12, double a21, double a22);
/** c, -s, s, c of the angle in degrees: a positive angle turns the x axis towards the y axis. */
ORV_API void RotationMatrix(TMatrix *out, double angleDegrees);
/** out = a b. */
ORV_API void MultiplyMatrices(TMatrix *out, TMatrix a, TMatrix b);
/** A11 A22 - A12 A21. */
ORV_API double MatrixDeterminant(TMatrix matrix);
/** The inverse. False, with out untouched, unless the determinant's magnitude is above 1.1920928955078125e-7. */
ORV_API bool InverseMatrix(TMatrix *out, TMatrix matrix);
/** Transforms an integer point and rounds halves up: floor(v + 0.5). A result that does not fit 64 bits is the lowest
 *  64-bit integer. */
ORV_API void MatrixITransform(int64_t x, int64_t y, int64_t *outX, int64_t *outY, TMatrix matrix);
/** Transforms a point, without rounding. */
ORV_API void MatrixRTransform(double *outX, double *outY, TMatrix matrix, double x, double y);
/** Transforms the three points of an area. */
ORV_API void MatrixTransformArea(TArea *out, TArea area, TMatrix matrix);
/** The angle of the vector (x, y) in degrees, in (-180, 180]; 0 for the null vector. */
ORV_API double Argument(double x, double y);

/** Origin (0, 0) and the identity matrix. */
ORV_API void InitCoordinateMap(TCoordinateMap *out);
/** True when the matrix is exactly the identity; the origin is not looked at. */
ORV_API bool CoordinateMapIsTranslation(TCoordinateMap map);
/** p' = origin + matrix p. */
ORV_API void CoordinateMapTransform(double *outX, double *outY, TCoordinateMap map, double x, double y);
/** The smallest rectangle around the four corners of an area, each sent through the map. No edge goes beyond
 *  2147483647 on the left and top or -2147483648 on the right and bottom. */
ORV_API void BoundingRectangle(TRectangle *out, TArea area, TCoordinateMap map);
/** The inverse map. False, with the input copied to out, when the matrix has no inverse (InverseMatrix). */
ORV_API bool InverseCoordinateMap(TCoordinateMap *out, TCoordinateMap map);
/** Sends a point through the inverse. False, with the outputs untouched, when there is none. */
ORV_API bool CoordinateMapInverseTransform(double *outX, double *outY, TCoordinateMap map, double x, double y);
/** Sends the three points of an area through the map. */
ORV_API void CoordinateMapTransformArea(TArea *out, TArea area, TCoordinateMap map);
/** Sends the three points of an area through the inverse. False, with out untouched, when there is none. */
ORV_API bool CoordinateMapInverseTransformArea(TArea *out, TArea area, TCoordinateMap map);
/** The map that applies first, then second. */
ORV_API void ComposeCoordinateMaps(TCoordinateMap *out, TCoordinateMap first, TCoordinateMap second);

/** Stores the six values. */
ORV_API void SetArea(TArea *out, double x0, double y0, double x1, double y1, double x2, double y2);
/** The area (left, top), (right, top), (left, bottom). */
ORV_API void SetRectArea(TArea *out, double left, double top, double right, double bottom);

ORV_END_C

#endif
