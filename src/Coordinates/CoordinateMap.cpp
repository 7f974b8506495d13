// Coordinate maps: an origin and a matrix. The order of every floating point operation is part of the result.
// Matrices alone stand in Matrix.cpp, areas in Area.cpp.
#include "Matrices.h"

void InitCoordinateMap(TCoordinateMap *out) {
    *out = TCoordinateMap{0.0, 0.0, {1.0, 0.0, 0.0, 1.0}};
}

bool CoordinateMapIsTranslation(TCoordinateMap map) {
    // Required: no tolerance, so that callers may leave the matrix out where this says true.
    return map.Matrix.A11 == 1.0 && map.Matrix.A12 == 0.0 && map.Matrix.A21 == 0.0 && map.Matrix.A22 == 1.0;
}

void CoordinateMapTransform(double *outX, double *outY, TCoordinateMap map, double x, double y) {
    double linearX = 0.0;
    double linearY = 0.0;
    MatrixRTransform(&linearX, &linearY, map.Matrix, x, y);
    *outX = map.X + linearX;
    *outY = map.Y + linearY;
}

bool InverseCoordinateMap(TCoordinateMap *out, TCoordinateMap map) {
    *out = map; // Required: a map without an inverse comes back as it is.
    if (!InverseMatrix(&out->Matrix, map.Matrix))
        return false;
    MatrixRTransform(&out->X, &out->Y, out->Matrix, -map.X, -map.Y);
    return true;
}

bool CoordinateMapInverseTransform(double *outX, double *outY, TCoordinateMap map, double x, double y) {
    TCoordinateMap inverse;
    if (!InverseCoordinateMap(&inverse, map))
        return false;
    CoordinateMapTransform(outX, outY, inverse, x, y);
    return true;
}

void ComposeCoordinateMaps(TCoordinateMap *out, TCoordinateMap first, TCoordinateMap second) {
    CoordinateMapTransform(&out->X, &out->Y, second, first.X, first.Y);
    MultiplyMatrices(&out->Matrix, second.Matrix, first.Matrix);
}
