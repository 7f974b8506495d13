// Planes of every table layout with a fence around their memory, and a pixel-by-pixel model of what drawing does.
#pragma once

#include <algorithm>
#include <cstring>
#include <numeric>
#include <random>
#include <vector>

#include "Drawing/Ink.h"
#include "Drawing/PlainDrawing.h"

namespace DrawingTests {

using Drawing::Point;
using Random = std::mt19937_64;

inline std::int64_t Pick(Random &random, std::int64_t least, std::int64_t most) {
    return std::uniform_int_distribution<std::int64_t>(least, most)(random);
}

enum class Layout {
    Dense,
    BottomUp,
    Mirrored,
    Padded,
    Interleaved,
    Transposed,
    Doubled,
    RowsMixed,
    ColumnsMixed,
    Count
};

class FencedPlane {
public:
    FencedPlane(Layout layout, std::int64_t width, std::int64_t height, TDataType type, Random &random)
        : bytes_((static_cast<std::int64_t>(type & DataTypeBitsMask) + 7) / 8), width_(width), height_(height),
          table_(static_cast<std::size_t>(std::max<std::int64_t>({width, height, 1}))) {
        SetSteps(layout);
        const std::int64_t columns = xStep_ * (width - 1), rows = yStep_ * (height - 1);
        const std::int64_t first = Fence - std::min<std::int64_t>(columns, 0) - std::min<std::int64_t>(rows, 0);
        memory_.resize(static_cast<std::size_t>(2 * Fence + std::abs(columns) + std::abs(rows) + bytes_));
        std::generate(memory_.begin(), memory_.end(), [&] { return static_cast<char>(random()); });
        for (std::size_t i = 0; i < table_.size(); ++i)
            table_[i] = {static_cast<std::intptr_t>(i) * xStep_, static_cast<std::intptr_t>(i) * yStep_};
        Mix(layout, random);
        plane_ = {memory_.data() + first, table_.data(), width, height, type};
    }

    /// The memory is copied, so that two ways of drawing can be compared.
    Drawing::DrawnPlane OnMemory(std::vector<char> &memory) const {
        Drawing::DrawnPlane plane = plane_;
        plane.Base = memory.data() + (plane_.Base - memory_.data());
        return plane;
    }
    const std::vector<char> &Memory() const { return memory_; }
    std::int64_t Bytes() const { return bytes_; }
    /// The layouts but the mixed ones have common steps, as long as there are two columns and two rows.
    bool IsLinear() const { return isLinear_ && width_ > 1 && height_ > 1; }
    std::int64_t XStep() const { return xStep_; }
    std::int64_t YStep() const { return yStep_; }

private:
    static constexpr std::int64_t Fence = 64;

    void SetSteps(Layout layout) {
        xStep_ = bytes_;
        yStep_ = bytes_ * width_;
        if (layout == Layout::BottomUp)
            yStep_ = -yStep_;
        if (layout == Layout::Mirrored)
            xStep_ = -xStep_;
        if (layout == Layout::Padded)
            yStep_ += 3;
        if (layout == Layout::Interleaved)
            xStep_ *= 3, yStep_ *= 3;
        if (layout == Layout::Transposed)
            xStep_ = bytes_ * height_, yStep_ = bytes_;
        if (layout == Layout::Doubled)
            yStep_ = bytes_; // rows share pixels
    }
    void Mix(Layout layout, Random &random) {
        const auto mix = [&](auto member, std::int64_t count) {
            std::vector<std::intptr_t> values;
            for (std::int64_t i = 0; i < count; ++i)
                values.push_back(table_[static_cast<std::size_t>(i)].*member);
            std::shuffle(values.begin(), values.end(), random);
            for (std::int64_t i = 0; i < count; ++i)
                table_[static_cast<std::size_t>(i)].*member = values[static_cast<std::size_t>(i)];
            // Three values in steps are linear by chance.
            isLinear_ = isLinear_ && count < 3;
            for (std::int64_t i = 2; i < count && !isLinear_; ++i)
                if (values[static_cast<std::size_t>(i)] - values[static_cast<std::size_t>(i - 1)] !=
                    values[1] - values[0])
                    return;
            isLinear_ = true;
            (member == &VPAEntry::XEntry ? xStep_ : yStep_) = count > 1 ? values[1] - values[0] : 0;
        };
        if (layout == Layout::RowsMixed)
            mix(&VPAEntry::YEntry, height_);
        if (layout == Layout::ColumnsMixed)
            mix(&VPAEntry::XEntry, width_);
    }

    std::int64_t bytes_, width_, height_;
    std::int64_t xStep_ = 0, yStep_ = 0;
    bool isLinear_ = true;
    std::vector<VPAEntry> table_;
    std::vector<char> memory_;
    Drawing::DrawnPlane plane_{};
};

/// Writes pixels one by one, as the modes are defined.
class ModelPen {
public:
    ModelPen(const FencedPlane &fenced, std::vector<char> &memory, const Drawing::Pen &pen)
        : fenced_(fenced), plane_(fenced.OnMemory(memory)), mode_(pen.Mode),
          value_(Drawing::StoredValueOf(plane_.Type, pen.Value).Word) {
        if ((plane_.Type & DataTypeFloat) != 0)
            mode_ = 0;
    }

    void Write(char *pixel) const {
        const auto bytes = static_cast<std::size_t>(fenced_.Bytes());
        std::uint64_t word = 0;
        std::memcpy(&word, pixel, bytes);
        word = mode_ == 0 ? value_ : mode_ == 1 ? word & value_ : word | value_;
        std::memcpy(pixel, &word, bytes);
    }
    void WritePosition(std::int64_t x, std::int64_t y) const {
        if (plane_.Contains(x, y))
            Write(plane_.Pixel(x, y));
    }
    /// A pixel of a thin line: by its address in linear planes, which go on beside the image.
    void WriteLinePixel(std::int64_t x, std::int64_t y) const {
        if (!fenced_.IsLinear())
            return WritePosition(x, y);
        const std::int64_t offset = x * fenced_.XStep() + y * fenced_.YStep();
        const std::int64_t columns = fenced_.XStep() * (plane_.Width - 1),
                           rows = fenced_.YStep() * (plane_.Height - 1);
        if (offset >= std::min<std::int64_t>(columns, 0) + std::min<std::int64_t>(rows, 0) &&
            offset <= std::max<std::int64_t>(columns, 0) + std::max<std::int64_t>(rows, 0))
            Write(plane_.Pixel(0, 0) + offset);
    }
    void ThinLine(Point from, Point to) const {
        Drawing::PlainThinLine(from, to, [&](std::int64_t x, std::int64_t y) { WriteLinePixel(x, y); });
    }
    void Polygon(const std::vector<Point> &corners) const {
        Drawing::PlainPolygon(corners, plane_.Width, plane_.Height,
                              [&](std::int64_t y, std::int64_t left, std::int64_t right) {
                                  for (std::int64_t x = left; x <= right; ++x)
                                      WritePosition(x, y);
                              });
    }

private:
    const FencedPlane &fenced_;
    Drawing::DrawnPlane plane_;
    std::uint32_t mode_;
    std::uint64_t value_;
};

constexpr TDataType Types[] = {8,
                               8 | DataTypeSigned,
                               12,
                               16 | DataTypeSigned,
                               32,
                               32 | DataTypeSigned,
                               64,
                               64 | DataTypeSigned,
                               32 | DataTypeFloat,
                               64 | DataTypeFloat};

/// A plane, a type, a mode and a value by chance.
struct RandomCase {
    Drawing::Pen Pen;
    std::int64_t Width, Height;
    FencedPlane Fenced;
    std::vector<char> Expected, Actual;
    ModelPen Model;

    RandomCase(Random &random, std::int64_t greatestSize)
        : Pen{static_cast<std::uint32_t>(Pick(random, 0, 2)), static_cast<double>(Pick(random, 0, 200))},
          Width(Pick(random, 1, greatestSize)), Height(Pick(random, 1, greatestSize)),
          Fenced(static_cast<Layout>(Pick(random, 0, static_cast<std::int64_t>(Layout::Count) - 1)), Width, Height,
                 Types[static_cast<std::size_t>(Pick(random, 0, std::size(Types) - 1))], random),
          Expected(Fenced.Memory()), Actual(Fenced.Memory()), Model(Fenced, Expected, Pen) {}
    RandomCase(const RandomCase &) = delete;

    Drawing::Canvas Canvas() { return Drawing::CanvasOf(Fenced.OnMemory(Actual), Pen); }
};

} // namespace DrawingTests
