/* The walk over an area, done the slow way and one step after the other: which samples it visits, when it calls back
 * and what it gives. It is defined for every area of finite points, since all integer arithmetic wraps. */
#ifndef ORV_TESTS_WALK_MODEL_H
#define ORV_TESTS_WALK_MODEL_H

#include "ORVTypes.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <ostream>

namespace TestSupport {

/// Edges included. A sample outside is left out.
struct WalkRectangle {
    std::int64_t Left, Top, Right, Bottom;
};

inline WalkRectangle RectangleOfImage(std::int64_t width, std::int64_t height) {
    return {0, 0, width - 1, height - 1};
}

/// The rectangle of a walk over two images in step. extra is 1 where the column and the row behind count as well.
inline WalkRectangle RectangleOfTwo(std::int64_t width1, std::int64_t height1, std::int64_t width2,
                                    std::int64_t height2, std::int64_t dx, std::int64_t dy, std::int64_t extra) {
    constexpr std::int64_t far = std::int64_t{1} << 50; // farther than any sample: nothing is inside
    dx = std::clamp(dx, -far, far);
    dy = std::clamp(dy, -far, far);
    return {dx < 0 ? -dx : 0, dy < 0 ? -dy : 0, std::min(width1, width2 - dx) - 1 + extra,
            std::min(height1, height2 - dy) - 1 + extra};
}

/// What is called; an empty function stands for a null pointer. false ends the walk.
struct WalkCalls {
    std::function<bool(std::int32_t x, std::int32_t y)> Pixel;
    std::function<bool(std::int64_t linesLeft)> LineBegin;
    std::function<bool(std::int64_t linesLeft)> LineEnd;
};

class WalkModel {
public:
    /// density is 0 or more.
    WalkModel(const TArea &area, std::int64_t density) : density(std::clamp<std::int64_t>(density, 1, 1000)) {
        const double points[] = {area.X0, area.Y0, area.X1, area.Y1, area.X2, area.Y2};
        constexpr double limit = 140737488355328.0; // 2^47
        for (const double point : points)
            if (!(std::fabs(std::floor(point + 0.5)) <= limit))
                return;
        x0 = Rounded(area.X0);
        y0 = Rounded(area.Y0);
        dx1 = Rounded(area.X1) - x0;
        dy1 = Rounded(area.Y1) - y0;
        dx2 = Rounded(area.X2) - x0;
        dy2 = Rounded(area.Y2) - y0;
        SetPixelStep();
        SetLineStep();
        for (std::int64_t *step : {&sx, &sy, &lx, &ly})
            if (*step == 0)
                *step = 1;
        inRange = IsInRange();
    }

    std::int64_t Lines() const { return lines; }
    std::int64_t SamplesPerLine() const { return n + 1; }
    bool IsYMajor() const { return yMajor; }

    /// What an export gives: the signed count, 0 without a pixel callback, -1 for points out of range.
    std::int64_t Walk(const WalkRectangle &rectangle, const WalkCalls &calls) const {
        if (!inRange)
            return -1;
        if (lines < 1)
            return 0;
        return calls.Pixel ? WalkPixels(rectangle, calls) : WalkLines(calls);
    }

private:
    static std::int64_t Rounded(double value) { return static_cast<std::int64_t>(std::floor(value + 0.5)); }
    static std::int64_t Truncated(double value) { return static_cast<std::int64_t>(value); }
    static std::int64_t Sum(std::int64_t a, std::int64_t b) {
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) + static_cast<std::uint64_t>(b));
    }
    static std::int64_t Product(std::int64_t a, std::int64_t b) {
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
    }
    static std::int64_t Scaled(std::int64_t a, std::int64_t b, std::int64_t divisor) {
        return Truncated(static_cast<double>(Product(a, b)) / static_cast<double>(divisor));
    }
    std::int64_t Samples(std::int64_t extent) const {
        return Truncated(static_cast<double>(std::abs(extent) * density) / 1000.0);
    }
    std::int64_t OnePixel(std::int64_t direction) const {
        const std::int64_t s = Truncated(65536000.0 / static_cast<double>(density));
        return direction < 0 ? -s : s;
    }

    void SetPixelStep() {
        if (std::abs(dy1) <= std::abs(dx1) && dx1 != 0) {
            n = Samples(dx1);
            sx = OnePixel(dx1);
            sy = Scaled(dy1, sx, dx1);
        } else if (std::abs(dy1) > std::abs(dx1)) {
            n = Samples(dy1);
            sy = OnePixel(dy1);
            sx = Scaled(dx1, sy, dy1);
            yMajor = true;
        }
    }

    /// In 32 bits, the magnitude included.
    std::int32_t CellOfSteps() const {
        const auto word = [](std::int64_t value) { return static_cast<std::uint32_t>(value); };
        const std::uint32_t difference = word(sx) * word(dy2) - word(sy) * word(dx2);
        return static_cast<std::int32_t>(static_cast<std::int32_t>(difference) < 0 ? 0u - difference : difference);
    }

    void SetLineStep() {
        lx = dx2;
        ly = dy2;
        const std::int32_t c = CellOfSteps();
        if (c != 0) {
            const double q = 65536.0 / static_cast<double>(density);
            const double k = q * q * (1000000.0 / static_cast<double>(c));
            if (std::fabs(static_cast<double>(dx2) * k) < 2147483647.0)
                lx = Rounded(static_cast<double>(dx2) * k);
            if (std::fabs(static_cast<double>(dy2) * k) < 2147483647.0)
                ly = Rounded(static_cast<double>(dy2) * k);
            lines = Rounded(65536.0 / k) + 1;
        } else if (std::abs(dy2) > std::abs(dx2)) {
            yMajor = true;
            ly = OnePixel(dy2);
            lx = Scaled(dx2, ly, dy2);
            lines = Samples(dy2) + 1;
        } else if (dx2 != 0) {
            yMajor = false;
            lx = OnePixel(dx2);
            ly = Scaled(dy2, lx, dx2);
            lines = Samples(dx2) + 1;
        } else {
            lines = 1;
            lx = ly = 0;
        }
    }

    bool IsInRange() const {
        constexpr double highest = 2147483647.0, lowest = -2147483648.0;
        double left = highest, top = highest, right = lowest, bottom = lowest;
        const std::int64_t corners[][2] = {
            {x0, y0}, {x0 + dx1, y0 + dy1}, {x0 + dx2, y0 + dy2}, {x0 + dx1 + dx2, y0 + dy1 + dy2}};
        for (const auto &corner : corners) {
            const auto x = static_cast<double>(corner[0]), y = static_cast<double>(corner[1]);
            left = std::min(left, x);
            right = std::max(right, x);
            top = std::min(top, y);
            bottom = std::max(bottom, y);
        }
        if (right > highest)
            return false;
        return bottom > highest ? !(left < lowest) : !(top < lowest);
    }

    /// Where a line that starts at (X, Y) has its first sample.
    void Align(std::int64_t X, std::int64_t Y, std::int64_t &px, std::int64_t &py) const {
        constexpr std::int64_t wholePixels = 0xFFFF0000, fraction = 0xFFFF;
        if (yMajor) {
            py = Y & wholePixels;
            px = Sum(X, -std::int64_t{static_cast<std::int32_t>((Y & fraction) * sx / sy)});
        } else {
            px = X & wholePixels;
            py = Sum(Y, -std::int64_t{static_cast<std::int32_t>((X & fraction) * sy / sx)});
        }
    }

    std::int64_t WalkPixels(const WalkRectangle &r, const WalkCalls &calls) const {
        std::int64_t X = Product(x0, 65536) | 0x8000, Y = Product(y0, 65536) | 0x8000;
        bool clipped = false, stopped = false;
        std::uint32_t count = 0;
        for (std::int64_t left = lines; left > 0 && !stopped; --left) {
            std::int64_t px = 0, py = 0;
            Align(X, Y, px, py);
            if (calls.LineBegin && !calls.LineBegin(left))
                break;
            for (std::int64_t sample = 0; sample <= n && !stopped; ++sample) {
                const auto x = static_cast<std::int32_t>(px >> 16), y = static_cast<std::int32_t>(py >> 16);
                if (x < r.Left || x > r.Right || y < r.Top || y > r.Bottom)
                    clipped = true;
                else {
                    ++count;
                    stopped = !calls.Pixel(x, y);
                }
                px = Sum(px, sx);
                py = Sum(py, sy);
            }
            if (calls.LineEnd && !calls.LineEnd(left))
                break;
            X = Sum(X, lx);
            Y = Sum(Y, ly);
        }
        return static_cast<std::int32_t>(clipped ? 0u - count : count);
    }

    std::int64_t WalkLines(const WalkCalls &calls) const {
        if (!calls.LineBegin && !calls.LineEnd)
            return 0;
        for (std::int64_t left = lines; left > 0; --left) {
            if (calls.LineBegin && !calls.LineBegin(left))
                break;
            if (calls.LineEnd && !calls.LineEnd(left))
                break;
        }
        return 0;
    }

    std::int64_t density;
    std::int64_t x0 = 0, y0 = 0, dx1 = 0, dy1 = 0, dx2 = 0, dy2 = 0;
    std::int64_t sx = 0, sy = 0, lx = 0, ly = 0;
    std::int64_t n = 0; ///< samples of a line, less one
    std::int64_t lines = 0;
    bool yMajor = false;
    bool inRange = false;
};

} // namespace TestSupport

#endif
