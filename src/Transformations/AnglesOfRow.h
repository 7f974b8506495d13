// atan2 for many points of one row at once, with the results of the C library to the last bit.
#pragma once

#include <cstdint>

namespace Transformations {

/// angles[i] = atan2(y, x[i]) at the current kernel level.
void AnglesOfRow(const double *x, double y, std::intptr_t count, double *angles);
/// The same, one by one by the C library.
void AnglesOfRowPlainly(const double *x, double y, std::intptr_t count, double *angles);

} // namespace Transformations
