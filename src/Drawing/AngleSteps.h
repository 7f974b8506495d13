// The angles of an ellipse's outline: step, step + step, and so on below a whole turn, as sums of doubles, with the
// sum after any number of steps in closed form.
#pragma once

#include <cstdint>
#include <vector>

namespace Drawing {

class AngleSteps {
public:
    static constexpr double WholeTurn = 2 * 3.141592653589793;

    /// step  above 0, at most a quarter turn.
    explicit AngleSteps(double step);

    /// How many sums lie below a whole turn.
    std::int64_t Count() const { return count_; }
    /// The sum of i steps, 1 <= i <= Count.
    double At(std::int64_t i) const;

private:
    /// From sum First on, each sum is exactly Advance above the one before: within a power of two, a step is rounded
    /// to the same multiple of the last bit every time.
    struct Stretch {
        std::int64_t First;
        double Start, Advance;
    };

    std::vector<Stretch> stretches_;
    std::int64_t count_ = 0;
};

} // namespace Drawing
