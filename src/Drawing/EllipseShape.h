// The pixels and the spans of an ellipse around (0, 0). Differences of positions alone decide them, so that they
// serve every centre; each thread keeps those of the ellipses that it drew last.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Drawing/NearCorners.h"
#include "Drawing/RowSpans.h"
#include "Drawing/ThickShape.h"

namespace Drawing {

struct EllipseKey {
    std::int32_t RadiusA = 0, RadiusB = 0;
    double RotationRadians = 0;

    bool operator==(const EllipseKey &) const = default;
};

class EllipseShape {
public:
    /// A position around the centre.
    struct Offset {
        std::int32_t X, Y;
    };
    /// The greatest radius of a shape that is kept.
    static constexpr std::int32_t GreatestRadius = NearCorners::GreatestRadius;

    /// True for shapes small enough to be kept: the radii are limited, none is negative, and the rotation is a
    /// number.
    static bool IsKept(const EllipseKey &key);
    /// This thread's shape of a key that IsKept; valid until the next call on this thread.
    static EllipseShape &Of(const EllipseKey &key);
    /// The same when the key is one of those asked for last, else null: what is drawn once is not worth a shape.
    static EllipseShape *OfRepeated(const EllipseKey &key);

    /// No pixel is farther from the centre, in either direction.
    std::int32_t Reach() const { return reach_; }
    /// The corners; the first one again at the end.
    const std::vector<Point> &Corners() const { return corners_; }
    /// The pixels of thin lines from corner to corner, in their order.
    const std::vector<Offset> &Pixels();
    /// The filled polygon of the corners, to be shifted by the centre.
    SpanView Spans(Point centre);
    /// The thick lines from corner to corner.
    const ThickShape &Thick(std::int32_t thickness);

private:
    struct KeptByThread;
    static KeptByThread &Kept();
    void Make(const EllipseKey &key);

    bool isMade_ = false;
    std::int32_t reach_ = 0;
    std::vector<Point> corners_; ///< empty until made
    std::vector<Offset> pixels_;
    std::optional<RowSpans> spans_;
    std::optional<ThickShape> thick_; ///< of the thickness asked for last
};

} // namespace Drawing
