/* Rectangle copying done the slow way, through the tables alone: what is left of a rectangle, which of the numbered
 * methods is told for a pair of planes, what is reported, and what every byte of memory holds afterwards. */
#ifndef ORV_TESTS_RECTANGLE_MODEL_H
#define ORV_TESTS_RECTANGLE_MODEL_H

#include "Support/ImageAccess.h"

#include <cstdlib>
#include <set>

namespace TestSupport {

struct ModelRectangle {
    std::int64_t Left, Top, Right, Bottom;
    friend bool operator==(const ModelRectangle &, const ModelRectangle &) = default;
};
struct ModelPosition {
    std::int64_t X, Y;
    friend bool operator==(const ModelPosition &, const ModelPosition &) = default;
};
inline std::ostream &operator<<(std::ostream &out, const ModelRectangle &r) {
    return out << "left " << r.Left << ", top " << r.Top << ", right " << r.Right << ", bottom " << r.Bottom;
}
inline std::ostream &operator<<(std::ostream &out, const ModelPosition &p) {
    return out << "to " << p.X << ", " << p.Y;
}

/// Everything about one plane that a table tells.
struct ModelPlane {
    PlaneAccess Access;
    TDataType Type = DataTypeNone;
    std::intptr_t Bytes = 0;
    std::intptr_t XStep = 0;
    std::intptr_t YStep = 0;
};

/// The common difference of neighbours, or 0.
template <class Entry>
std::intptr_t CommonDifference(std::intptr_t count, Entry entry) {
    std::set<std::intptr_t> differences;
    for (std::intptr_t i = 1; i < count; ++i)
        differences.insert(entry(i) - entry(i - 1));
    return differences.size() == 1 ? *differences.begin() : 0;
}

class ModelImage {
public:
    explicit ModelImage(void *handle) {
        const ImageSize size = SizeOf(handle);
        Width = size.Width;
        Height = size.Height;
        for (std::intptr_t i = 0; i < size.Planes; ++i) {
            ModelPlane plane;
            plane.Access = AccessOf(handle, i);
            plane.Type = TypeOf(handle, i);
            plane.Bytes = static_cast<std::intptr_t>(PixelSize(plane.Type));
            const VPAEntry *table = plane.Access.Table;
            plane.XStep = CommonDifference(Width, [table](std::intptr_t x) { return table[x].XEntry; });
            plane.YStep = CommonDifference(Height, [table](std::intptr_t y) { return table[y].YEntry; });
            Planes.push_back(plane);
        }
    }
    std::intptr_t Count() const { return static_cast<std::intptr_t>(Planes.size()); }
    const ModelPlane &operator[](std::intptr_t plane) const { return Planes[static_cast<std::size_t>(plane)]; }

    unsigned XClass(std::intptr_t plane) const { return ClassOf((*this)[plane].XStep, (*this)[plane].Bytes); }
    unsigned YClass(std::intptr_t plane) const { return ClassOf((*this)[plane].YStep, (*this)[plane].Bytes * Width); }

    bool IsInterleaved() const {
        const ModelPlane &first = Planes.front();
        const std::intptr_t group = first.Bytes * Count();
        if (Count() == 1)
            return first.XStep != 0 && first.YStep != 0;
        for (const ModelPlane &plane : Planes)
            if (plane.Type != first.Type || plane.XStep != first.XStep || plane.XStep < group ||
                std::abs(plane.YStep) != std::abs(first.YStep) || std::abs(plane.YStep) < group * Width)
                return false;
        const auto order = MemoryOrder();
        for (std::size_t i = 1; i < order.size(); ++i)
            if ((*this)[order[i]].Access.At(0, 0) - (*this)[order[i - 1]].Access.At(0, 0) != first.Bytes)
                return false;
        return true;
    }
    std::intptr_t ColumnGap() const {
        if (IsInterleaved())
            return Planes.front().XStep - Planes.front().Bytes * Count();
        unsigned common = 15;
        for (std::intptr_t plane = 0; plane < Count(); ++plane)
            common &= XClass(plane);
        return common == 3 ? 0 : -1;
    }
    std::vector<std::intptr_t> MemoryOrder() const {
        std::vector<std::intptr_t> order;
        for (std::intptr_t plane = 0; plane < Count(); ++plane)
            order.push_back(plane);
        std::stable_sort(order.begin(), order.end(), [this](std::intptr_t a, std::intptr_t b) {
            return (*this)[a].Access.At(0, 0) < (*this)[b].Access.At(0, 0);
        });
        return order;
    }

    std::intptr_t Width = 0;
    std::intptr_t Height = 0;
    std::vector<ModelPlane> Planes;

private:
    unsigned ClassOf(std::intptr_t step, std::intptr_t own) const {
        if (step == 0)
            return 0;
        if (std::abs(step) == own * Count())
            return step >= 1 ? 7 : 15;
        if (std::abs(step) == own)
            return step >= 1 ? 3 : 11;
        return 1;
    }
};

/// One axis of the clipping: what is left of [first, last] of a source of sourceCount at target place at.
inline std::int64_t ClipModelAxis(std::int64_t &first, std::int64_t &last, std::int64_t sourceCount, std::int64_t &at,
                                  std::int64_t targetCount) {
    if (first < 0)
        at -= first;
    first = std::max<std::int64_t>(first, 0);
    last = std::min(last, sourceCount - 1);
    const std::int64_t count = last - first + 1;
    if (at < 0) {
        first -= at;
        return at + count;
    }
    const std::int64_t usable = std::min(count, targetCount - at);
    last = first + usable - 1;
    return usable;
}

/// False when nothing is left.
inline bool ClipModel(const ModelImage &source, const ModelImage &target, ModelRectangle &r, ModelPosition &at) {
    if (r.Left > r.Right)
        std::swap(r.Left, r.Right);
    if (r.Top > r.Bottom)
        std::swap(r.Top, r.Bottom);
    if (r.Left >= source.Width || r.Top >= source.Height || at.X >= target.Width || at.Y >= target.Height ||
        r.Bottom < 0 || r.Right < 0)
        return false;
    const std::int64_t width = ClipModelAxis(r.Left, r.Right, source.Width, at.X, target.Width);
    const std::int64_t height = ClipModelAxis(r.Top, r.Bottom, source.Height, at.Y, target.Height);
    return width >= 0 && height >= 0;
}

/// The number of the method told for a pair of planes.
inline int MethodModel(const ModelImage &source, std::intptr_t sourcePlane, const ModelImage &target,
                       std::intptr_t targetPlane, bool wholeLines) {
    if (source[sourcePlane].Type != target[targetPlane].Type)
        return 0;
    const unsigned xs = source.XClass(sourcePlane), xt = target.XClass(targetPlane);
    if (xs == 0 || xt == 0)
        return xs == 0 && xt == 0 ? 1 : xs == 0 ? 2 : 3;
    const bool denseAlike = (xs & 2) != 0 && (xt & 2) != 0 && source[sourcePlane].XStep == target[targetPlane].XStep;
    if (!denseAlike || (source.Count() > 1 && (xs & 4) != 0) || (target.Count() > 1 && (xt & 4) != 0))
        return 4;
    const auto suitsWhole = [](const ModelImage &image) {
        for (std::intptr_t plane = 0; plane < image.Count(); ++plane)
            if (image.Count() > 1 && image.XClass(plane) != 3)
                return false;
        return true;
    };
    const bool whole = wholeLines && suitsWhole(source) && suitsWhole(target) && source.Width == target.Width &&
                       source.ColumnGap() == target.ColumnGap() &&
                       source.YClass(sourcePlane) == target.YClass(targetPlane);
    return whole ? 6 : 5;
}

/// The number of the method told for all planes of two images with equal plane counts above 0.
inline int MethodModelOfAll(const ModelImage &source, const ModelImage &target, bool wholeLines) {
    if (source.Count() == 1)
        return MethodModel(source, 0, target, 0, wholeLines);
    for (std::intptr_t plane = 0; plane < source.Count(); ++plane)
        if (source[plane].Type != target[plane].Type)
            return 0;
    for (std::intptr_t plane = 0; plane < source.Count(); ++plane)
        if (source.XClass(plane) != target.XClass(plane))
            return 7;
    if (!source.IsInterleaved() || !target.IsInterleaved() || source.MemoryOrder() != target.MemoryOrder() ||
        source[0].XStep != target[0].XStep || source[0].XStep == 0 || source[0].YStep == 0 || target[0].YStep == 0)
        return 7;
    return wholeLines && source[0].YStep == target[0].YStep ? 6 : 5;
}

inline bool HasTypedWidth(const ModelPlane &plane) {
    return plane.Bytes == 1 || plane.Bytes == 2 || plane.Bytes == 4 || plane.Bytes == 8;
}

struct ModelReport {
    std::uint32_t Code;
    std::string Function;
    friend bool operator==(const ModelReport &, const ModelReport &) = default;
};

/// What a copy gives back and reports.
struct ModelOutcome {
    bool Result = true;
    std::vector<ModelReport> Reports;
};

/// How much of the source is read before anything is written: it tells when source and target share memory.
enum class ReadAhead { Pixel, Row, Everything };

/// Copies a clipped rectangle of some planes of one pixel width, row by row.
inline void CopyModelPixels(const ModelImage &source, const ModelImage &target,
                            const std::vector<std::pair<std::intptr_t, std::intptr_t>> &planes,
                            const ModelRectangle &r, const ModelPosition &at, ReadAhead ahead) {
    std::vector<std::uint8_t *> places;
    std::vector<std::uint8_t> pixels;
    const auto write = [&places, &pixels] {
        const std::size_t bytes = places.empty() ? 0 : pixels.size() / places.size();
        for (std::size_t i = 0; i < places.size(); ++i)
            std::copy_n(pixels.data() + i * bytes, bytes, places[i]);
        places.clear();
        pixels.clear();
    };
    for (std::int64_t y = r.Top; y <= r.Bottom; ++y) {
        for (const auto &[from, to] : planes)
            for (std::int64_t x = r.Left; x <= r.Right; ++x) {
                const std::uint8_t *pixel = source[from].Access.At(x, y);
                places.push_back(target[to].Access.At(at.X + x - r.Left, at.Y + y - r.Top));
                pixels.insert(pixels.end(), pixel, pixel + source[from].Bytes);
                if (ahead == ReadAhead::Pixel)
                    write();
            }
        if (ahead == ReadAhead::Row)
            write();
    }
    write();
}

/// True when the rows of both planes follow each other without a gap, and alike.
inline bool AreOneBlock(const ModelPlane &source, const ModelPlane &target, std::intptr_t rowBytes) {
    return source.YStep == target.YStep && std::abs(source.YStep) == rowBytes;
}

/// A rectangle of one plane. The target position must not be left of or above the target.
inline ModelOutcome CopyModelPlane(const ModelImage &source, const ModelImage &target, std::intptr_t sourcePlane,
                                   std::intptr_t targetPlane, ModelRectangle r, ModelPosition at) {
    static const std::string name = "CopyImageRect";
    if (sourcePlane < 0 || targetPlane < 0 || sourcePlane >= source.Count() || targetPlane >= target.Count())
        return {false, {{ErrPlaneIndex, name}}};
    if (!ClipModel(source, target, r, at))
        return {};
    const bool wholeLines = r.Right - r.Left + 1 == source.Width;
    const int method = MethodModel(source, sourcePlane, target, targetPlane, wholeLines);
    if (method == 0)
        return {false, {{ErrDataType, name}}};
    // Each method clips once more, which ends what has become empty.
    if (!ClipModel(source, target, r, at))
        return {};
    if (method < 5 && !HasTypedWidth(source[sourcePlane]))
        return {false, {{ErrDataType & 0xFFFFu, name}}};
    const std::intptr_t rowBytes = source[sourcePlane].Bytes * source.Width;
    const bool oneBlock = method == 6 && AreOneBlock(source[sourcePlane], target[targetPlane], rowBytes);
    CopyModelPixels(source, target, {{sourcePlane, targetPlane}}, r, at,
                    method < 5 ? ReadAhead::Pixel
                    : oneBlock ? ReadAhead::Everything
                               : ReadAhead::Row);
    return {};
}

/// All planes at once, their pixels lying in groups: dense groups line by line or as one block, others plane by
/// plane.
inline void CopyModelGroups(const ModelImage &source, const ModelImage &target,
                            const std::vector<std::pair<std::intptr_t, std::intptr_t>> &pairs,
                            const ModelRectangle &r, const ModelPosition &at, bool whole) {
    const std::intptr_t group = source[0].Bytes * source.Count();
    bool rowsRunTogether = true;
    for (std::intptr_t plane = 1; plane < source.Count(); ++plane)
        rowsRunTogether =
            rowsRunTogether && source[plane].YStep == source[0].YStep && target[plane].YStep == target[0].YStep;
    if (source[0].XStep == group && rowsRunTogether) {
        const bool oneBlock = whole && AreOneBlock(source[0], target[0], group * source.Width);
        return CopyModelPixels(source, target, pairs, r, at, oneBlock ? ReadAhead::Everything : ReadAhead::Row);
    }
    for (const auto &pair : pairs)
        CopyModelPixels(source, target, {pair}, r, at, ReadAhead::Pixel);
}

/// A rectangle of all planes. The target position must not be left of or above the target.
inline ModelOutcome CopyModelPlanes(const ModelImage &source, const ModelImage &target, ModelRectangle r,
                                    ModelPosition at) {
    if (!ClipModel(source, target, r, at))
        return {};
    ModelOutcome outcome;
    std::vector<std::pair<std::intptr_t, std::intptr_t>> pairs;
    for (std::intptr_t plane = 0; plane < std::min(source.Count(), target.Count()); ++plane)
        pairs.emplace_back(plane, plane);
    if (source.Count() == target.Count() && !pairs.empty()) {
        const int method = MethodModelOfAll(source, target, r.Right - r.Left + 1 == source.Width);
        if (method == 0)
            return {false, {{ErrDataType, "CopyImageRectPlanes"}}};
        if (source.Count() > 1 && (method == 5 || method == 6)) {
            CopyModelGroups(source, target, pairs, r, at, method == 6);
            return {};
        }
    }
    for (const auto &[from, to] : pairs) {
        const auto reports = CopyModelPlane(source, target, from, to, r, at).Reports;
        outcome.Reports.insert(outcome.Reports.end(), reports.begin(), reports.end());
    }
    return outcome;
}

} // namespace TestSupport

#endif
