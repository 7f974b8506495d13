// atan2 for many points of one row at once, with the results of the C library to the last bit.
#pragma once

#include <cstdint>

namespace Transformations {

/// angles[i] = atan2(y, x[i]) at the current kernel level.
void AnglesOfRow(const double *x, double y, std::intptr_t count, double *angles);
/// An angle that may be another, neighbouring double instead.
struct DoubtfulAngle {
    std::intptr_t Index;
    double Other;
};
/// The same, but the C library need not be asked where two doubles are left: such angles are added to doubts, which
/// has room for count. Result: how many there are.
std::intptr_t AnglesOrNeighbours(const double *x, double y, std::intptr_t count, double *angles,
                                 DoubtfulAngle *doubts);
/// The same, one by one by the C library.
void AnglesOfRowPlainly(const double *x, double y, std::intptr_t count, double *angles);

} // namespace Transformations
