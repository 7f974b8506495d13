// The pixels of a thin line in closed form. The error-term walk moves one pixel along the longer axis in every step;
// how far it is then along the shorter one is a rounded quotient, halves down. So a walk can begin anywhere.
#pragma once

#include <cstdlib>

#include "Drawing/WidePoint.h"

namespace Drawing {

__extension__ typedef __int128 WideInt;

constexpr WideInt FloorQuotient(WideInt dividend, WideInt divisor) {
    const WideInt quotient = dividend / divisor;
    return quotient - (dividend % divisor != 0 && (dividend < 0) != (divisor < 0) ? 1 : 0);
}

class LineSteps {
public:
    LineSteps(Point from, Point to) : from_(from), signX_(to.X > from.X ? 1 : -1), signY_(to.Y > from.Y ? 1 : -1) {
        const std::int64_t dx = std::abs(to.X - from.X), dy = std::abs(to.Y - from.Y);
        isAlongX_ = dx >= dy;
        length_ = isAlongX_ ? dx : dy;
        rise_ = isAlongX_ ? dy : dx;
    }

    bool IsAlongX() const { return isAlongX_; }
    std::int64_t SignX() const { return signX_; }
    std::int64_t SignY() const { return signY_; }
    /// Along the longer axis and along the shorter one, from end to end.
    std::int64_t Length() const { return length_; }
    std::int64_t Rise() const { return rise_; }
    /// Pixels, without the end point unless it is the only one.
    std::int64_t Count() const { return length_ == 0 ? 1 : length_; }

    /// Steps along the shorter axis before pixel k.
    std::int64_t RiseAt(std::int64_t k) const {
        return k == 0 || length_ == 0 ? 0 : static_cast<std::int64_t>(Numerator(k) / (2 * length_));
    }
    /// How far pixel k is from the next such step: 0 to 2 * Length - 1, and 2 * Rise more for each pixel.
    std::int64_t RemainderAt(std::int64_t k) const {
        if (k == 0 || length_ == 0)
            return length_ == 0 ? 0 : length_ - 1;
        return static_cast<std::int64_t>(Numerator(k) % (2 * length_));
    }
    /// The first pixel with RiseAt of at least rise, which may be Count or more.
    WideInt FirstWithRise(std::int64_t rise) const {
        if (rise <= 0)
            return 0;
        if (rise_ == 0)
            return Count();
        return FloorQuotient(WideInt{length_} * (2 * rise - 1), 2 * WideInt{rise_}) + 1;
    }
    Point At(std::int64_t k) const {
        const std::int64_t rise = RiseAt(k);
        return {from_.X + signX_ * (isAlongX_ ? k : rise), from_.Y + signY_ * (isAlongX_ ? rise : k)};
    }

private:
    WideInt Numerator(std::int64_t k) const { return 2 * WideInt{k} * rise_ + length_ - 1; }

    Point from_;
    std::int64_t signX_, signY_;
    bool isAlongX_;
    std::int64_t length_, rise_;
};

} // namespace Drawing
