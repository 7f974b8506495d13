// The search for the maxima of one plane.
#pragma once

#include "Image/PlaneView.h"
#include "PixelList/Candidates.h"

namespace PixelList {

struct MaximaRequest {
    Rectangle Inside;      ///< inside the image, or with a side that lies before its opposite
    std::int64_t Locality; ///< below 1: all maxima
    std::int64_t Threshold;
};

/// How the pixels are tested that a walk over their plateau may begin at.
enum class MaximumTest {
    OneByOne,    ///< through the tables, for every layout
    InRegisters, ///< along rows, which other layouts than dense ones are gathered to
};

/// The maxima in the order in which they are handed out. A plane without pixels has none.
/// T       char, unsigned char, short, unsigned short or int.
/// Result  false when there is no memory for the marks. Throws std::bad_alloc for all else.
template <class T>
bool SearchMaxima(const Image::PlaneView &plane, const MaximaRequest &request, std::vector<Candidate> &maxima,
                  MaximumTest test = MaximumTest::InRegisters);

} // namespace PixelList
