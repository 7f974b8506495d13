#include "Drawing/EllipseShape.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "Drawing/LineSteps.h"
#include "Drawing/NearCorners.h"

namespace Drawing {
namespace {

constexpr double GreatestRotation = 1e6; ///< in radians

constexpr std::size_t KeptShapes = 8;

/// The pixels of PlainThinLine.
void AppendLine(std::vector<EllipseShape::Offset> &pixels, Point from, Point to) {
    const LineSteps steps(from, to);
    const std::int64_t whole = 2 * steps.Count(), part = 2 * steps.Rise();
    std::int64_t remainder = steps.RemainderAt(0);
    Point pixel = from;
    std::int64_t &along = steps.IsAlongX() ? pixel.X : pixel.Y, &across = steps.IsAlongX() ? pixel.Y : pixel.X;
    const std::int64_t alongSign = steps.IsAlongX() ? steps.SignX() : steps.SignY();
    const std::int64_t acrossSign = steps.IsAlongX() ? steps.SignY() : steps.SignX();
    for (std::int64_t i = 0; i < steps.Count(); ++i) {
        pixels.push_back({static_cast<std::int32_t>(pixel.X), static_cast<std::int32_t>(pixel.Y)});
        along += alongSign;
        remainder += part;
        if (remainder >= whole) {
            remainder -= whole;
            across += acrossSign;
        }
    }
}

} // namespace

bool EllipseShape::IsKept(const EllipseKey &key) {
    return key.RadiusA >= 0 && key.RadiusB >= 0 && key.RadiusA <= GreatestRadius && key.RadiusB <= GreatestRadius &&
           std::fabs(key.RotationRadians) <= GreatestRotation;
}

struct EllipseShape::KeptByThread {
    std::array<EllipseShape, KeptShapes> Shapes;
    std::array<EllipseKey, KeptShapes> Keys; ///< of no ellipse that IsKept before they are set
    std::size_t Oldest = 0;

    KeptByThread() { Keys.fill({-1, -1, 0}); }

    EllipseShape *Find(const EllipseKey &key) {
        for (std::size_t i = 0; i < KeptShapes; ++i)
            if (Keys[i] == key)
                return &Shapes[i];
        return nullptr;
    }
    /// In place of the one that was added first.
    EllipseShape &Add(const EllipseKey &key) {
        const std::size_t place = std::exchange(Oldest, (Oldest + 1) % KeptShapes);
        Keys[place] = key;
        Shapes[place].isMade_ = false;
        return Shapes[place];
    }
};

EllipseShape::KeptByThread &EllipseShape::Kept() {
    static thread_local KeptByThread kept;
    return kept;
}

EllipseShape &EllipseShape::Of(const EllipseKey &key) {
    EllipseShape *const found = Kept().Find(key);
    EllipseShape &shape = found != nullptr ? *found : Kept().Add(key);
    if (!shape.isMade_)
        shape.Make(key);
    return shape;
}

EllipseShape *EllipseShape::OfRepeated(const EllipseKey &key) {
    EllipseShape *const found = Kept().Find(key);
    if (found == nullptr)
        Kept().Add(key);
    else if (!found->isMade_)
        found->Make(key);
    return found;
}

void EllipseShape::Make(const EllipseKey &key) {
    corners_.clear();
    pixels_.clear();
    spans_.reset();
    thick_.reset();
    const NearCorners corners(EllipseFormOf(key.RadiusA, key.RadiusB, key.RotationRadians));
    corners_.reserve(static_cast<std::size_t>(corners.Count + 1));
    for (std::size_t i = 0; i <= static_cast<std::size_t>(corners.Count); ++i)
        corners_.push_back({corners.X[i], corners.Y[i]});
    std::int64_t reach = 0;
    for (const Point &corner : corners_)
        reach = std::max({reach, std::abs(corner.X), std::abs(corner.Y)});
    reach_ = static_cast<std::int32_t>(reach);
    isMade_ = true;
}

const std::vector<EllipseShape::Offset> &EllipseShape::Pixels() {
    if (pixels_.empty()) {
        std::vector<Offset> pixels;
        for (std::size_t i = 1; i < corners_.size(); ++i)
            AppendLine(pixels, corners_[i - 1], corners_[i]);
        pixels_ = std::move(pixels);
    }
    return pixels_;
}

SpanView EllipseShape::Spans(Point centre) {
    if (!spans_) {
        spans_.emplace(-std::int64_t{reach_}, std::int64_t{reach_} + 1, 2 * std::int64_t{reach_});
        for (std::size_t i = 1; i < corners_.size(); ++i)
            spans_->AddEdge(corners_[i], corners_[i - 1]);
    }
    SpanView view = spans_->View();
    view.Shift.X += centre.X;
    view.Shift.Y += centre.Y;
    view.Bottom += centre.Y;
    return view;
}

const ThickShape &EllipseShape::Thick(std::int32_t thickness) {
    if (!thick_ || thick_->Thickness() != thickness)
        thick_.emplace(corners_, reach_, thickness);
    return *thick_;
}

} // namespace Drawing
