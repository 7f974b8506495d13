#include "Drawing/AngleSteps.h"

#include <algorithm>
#include <cmath>

namespace Drawing {
namespace {

/// How many times advance can be added to start with all sums below limit. Start, advance and limit are multiples of
/// unit, a power of two, below 2^53 of them.
std::int64_t StepsBelow(double limit, double start, double advance, double unit) {
    const auto toLimit = static_cast<std::int64_t>((limit - start) / unit);
    const auto each = static_cast<std::int64_t>(advance / unit);
    return (toLimit - 1) / each;
}

} // namespace

AngleSteps::AngleSteps(double step) {
    double sum = step;
    std::int64_t i = 1;
    while (sum < WholeTurn) {
        // The first sum in a power of two may end on an odd last bit, where a step that lies half between two values
        // is rounded the other way than later: it stands for itself.
        const double next = sum + step;
        stretches_.push_back({i, sum, next - sum});
        const bool isFirstInPower = std::ilogb(next) != std::ilogb(sum);
        sum = next;
        ++i;
        if (isFirstInPower || sum >= WholeTurn)
            continue;
        const int exponent = std::ilogb(sum) + 1;
        const double advance = sum + step - sum;
        const double limit = std::min(std::ldexp(1.0, exponent), WholeTurn);
        const std::int64_t more = StepsBelow(limit, sum, advance, std::ldexp(1.0, exponent - 53));
        if (more > 1 && sum + step < limit) {
            stretches_.push_back({i, sum, advance});
            sum += static_cast<double>(more) * advance;
            i += more;
        }
    }
    count_ = i - 1;
}

double AngleSteps::At(std::int64_t i) const {
    const auto behind = std::upper_bound(stretches_.begin(), stretches_.end(), i,
                                         [](std::int64_t value, const Stretch &one) { return value < one.First; });
    const Stretch &stretch = *(behind - 1);
    return stretch.Start + static_cast<double>(i - stretch.First) * stretch.Advance;
}

} // namespace Drawing
