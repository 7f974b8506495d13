// Square roots of arrays, in place. Compilers keep sqrt as a call for the sake of errno, so that loops with it are
// not vectorised; these are the processor's own instructions, at the current kernel level. All levels round correctly
// and give the same bytes.
#pragma once

#include <cstdint>

namespace Scan {

void TakeSquareRoots(float *values, std::intptr_t count);
void TakeSquareRoots(double *values, std::intptr_t count);

} // namespace Scan
