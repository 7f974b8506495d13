#include "Image/CopyMethods.h"

#include <algorithm>
#include <iterator>

#include "Image/RowKernels.h"
#include "Image/TableWriter.h"
#include "Interface/ImageKernelException.h"

namespace Image {
namespace {

/// Source and target of one copy, of equal size.
struct ViewPair {
    PlaneView Source;
    PlaneView Target;
};

bool IsReachable(std::int64_t first, std::int64_t count, std::int64_t size) {
    return first >= -GuardEntries && first + count <= size + GuardEntries;
}

/// The views of a clipped rectangle. False when it is empty, or when the target would be left: its guard entries can
/// be written through, what lies beyond them can't.
bool MakeViews(const PlaneView &source, const PlaneView &target, const PixelRectangle &rectangle,
               const PixelPosition &at, ViewPair &views) {
    const std::int64_t width = rectangle.Width();
    const std::int64_t height = rectangle.Height();
    if (width < 1 || height < 1 || !IsReachable(at.X, width, target.Width) ||
        !IsReachable(at.Y, height, target.Height))
        return false;
    views.Source = source.Part(rectangle.Left, rectangle.Top, width, height);
    views.Target = target.Part(at.X, at.Y, width, height);
    return true;
}

/// The method that does what the numbered one is told to do, pixel for pixel in the told order.
PlaneCopyMethod PlainMethodOf(CopyMethod method, const ViewPair &views) {
    const auto allowedOr = [&views](PlaneCopyMethod wanted, PlaneCopyMethod other) {
        return AllowsPlaneCopy(wanted, views.Source, views.Target) ? wanted : other;
    };
    switch (method) {
    case CopyMethod::CopyTableToLinear:
        return allowedOr(PlaneCopyMethod::TableToSteps, PlaneCopyMethod::TableToTable);
    case CopyMethod::CopyLinearToTable:
        return allowedOr(PlaneCopyMethod::StepsToTable, PlaneCopyMethod::TableToTable);
    case CopyMethod::CopyLinearToLinear:
        return allowedOr(PlaneCopyMethod::StepsToSteps, PlaneCopyMethod::TableToTable);
    case CopyMethod::CopyLineByLine:
        return allowedOr(PlaneCopyMethod::Rows, PlaneCopyMethod::TableToTable);
    case CopyMethod::CopyWhole:
        return allowedOr(PlaneCopyMethod::Whole, allowedOr(PlaneCopyMethod::Rows, PlaneCopyMethod::TableToTable));
    default:
        return PlaneCopyMethod::TableToTable;
    }
}

bool AreDisjoint(const ViewPair &views) {
    return !RangeOf(views.Source).Meets(RangeOf(views.Target));
}

/// The three planes of an image whose 8-bit pixels lie in dense groups of three, or in dense planes of their own.
struct ThreePlanes {
    std::intptr_t ByAddress[3] = {}; ///< plane numbers, the lowest address first
    bool Grouped = false;
    bool Separate = false;
};

ThreePlanes ThreePlanesOf(const vpat_analyzer &image) {
    ThreePlanes planes;
    bool sameRows = true;
    bool steps3 = true;
    bool steps1 = true;
    for (std::intptr_t plane = 0; plane < 3; ++plane) {
        if (BytesOf(image.Datatype(plane)) != 1)
            return planes;
        sameRows = sameRows && image.YStep(plane) == image.YStep(0);
        steps3 = steps3 && image.XStep(plane) == 3;
        steps1 = steps1 && image.XStep(plane) == 1;
    }
    const std::vector<std::intptr_t> order = image.MemoryOrder();
    std::copy(order.begin(), order.end(), planes.ByAddress);
    planes.Grouped = steps3 && sameRows && image.YStep(0) != 0 &&
                     image.FirstPixel(order[1]) - image.FirstPixel(order[0]) == 1 &&
                     image.FirstPixel(order[2]) - image.FirstPixel(order[1]) == 1;
    planes.Separate = steps1;
    return planes;
}

/// The views of the rectangle in all three planes. False when there is nothing to do or memory is shared.
bool MakeThreeViews(const vpat_analyzer &source, const vpat_analyzer &target, const PixelRectangle &rectangle,
                    const PixelPosition &at, ViewPair (&views)[3]) {
    if (at.X < 0 || at.Y < 0)
        return false;
    for (std::intptr_t plane = 0; plane < 3; ++plane)
        if (!MakeViews(ViewOf(source, plane), ViewOf(target, plane), rectangle, at, views[plane]))
            return false;
    const MemoryRange targets[3] = {RangeOf(views[0].Target), RangeOf(views[1].Target), RangeOf(views[2].Target)};
    return std::none_of(std::begin(views), std::end(views), [&targets](const ViewPair &pair) {
        const MemoryRange from = RangeOf(pair.Source);
        return from.Meets(targets[0]) || from.Meets(targets[1]) || from.Meets(targets[2]);
    });
}

/// True when no two pixels of the targets share a byte: in which order they are written doesn't matter then.
bool TargetsKeepApart(const ViewPair (&views)[3], bool grouped, std::intptr_t lowestPlane) {
    if (grouped) {
        PlaneView group = views[lowestPlane].Target;
        group.Bytes = 3;
        return group.HasDistinctPixels();
    }
    const MemoryRange ranges[3] = {RangeOf(views[0].Target), RangeOf(views[1].Target), RangeOf(views[2].Target)};
    return !ranges[0].Meets(ranges[1]) && !ranges[0].Meets(ranges[2]) && !ranges[1].Meets(ranges[2]);
}

bool SplitOrJoin(const vpat_analyzer &source, const vpat_analyzer &target, const PixelRectangle &rectangle,
                 const PixelPosition &at) {
    const ThreePlanes from = ThreePlanesOf(source);
    const ThreePlanes to = ThreePlanesOf(target);
    const bool splits = from.Grouped && to.Separate;
    const bool joins = from.Separate && to.Grouped;
    ViewPair views[3];
    if ((!splits && !joins) || !MakeThreeViews(source, target, rectangle, at, views))
        return false;
    const RowKernels &kernels = RowKernels::Best();
    const auto &order = splits ? from.ByAddress : to.ByAddress;
    if (!TargetsKeepApart(views, joins, order[0]))
        return false;
    for (std::intptr_t y = 0; y < views[0].Source.Height; ++y) {
        char *sources[3];
        char *targets[3];
        for (int k = 0; k < 3; ++k) {
            sources[k] = views[order[k]].Source.Pixel(0, y);
            targets[k] = views[order[k]].Target.Pixel(0, y);
        }
        if (splits)
            kernels.SplitThreeBytes(targets, sources[0], views[0].Source.Width);
        else
            kernels.JoinThreeBytes(targets[0], sources, views[0].Source.Width);
    }
    return true;
}

/// The pixels of all planes as the pixels of one plane. False when they do not lie in dense groups.
bool GroupView(const vpat_analyzer &image, PlaneView &view) {
    const std::intptr_t groupBytes = BytesOf(image.Datatype(0)) * image.Planes();
    if (!image.IsInterleaved() || image.XStep(0) != groupBytes)
        return false;
    for (std::intptr_t plane = 1; plane < image.Planes(); ++plane)
        if (image.YStep(plane) != image.YStep(0))
            return false;
    view = ViewOf(image, image.MemoryOrder().front());
    view.Bytes = groupBytes;
    return true;
}

bool CopyGroups(const vpat_analyzer &source, const vpat_analyzer &target, const PixelRectangle &rectangle,
                const PixelPosition &at) {
    PlaneView from;
    PlaneView to;
    ViewPair views;
    if (at.X < 0 || at.Y < 0 || !GroupView(source, from) || !GroupView(target, to) || from.Bytes != to.Bytes ||
        source.MemoryOrder() != target.MemoryOrder() || !MakeViews(from, to, rectangle, at, views))
        return false;
    if (AreDisjoint(views)) {
        CopyDisjointPlane(views.Source, views.Target);
        return true;
    }
    const bool whole = AllowsPlaneCopy(PlaneCopyMethod::Whole, views.Source, views.Target);
    CopyPlane(whole ? PlaneCopyMethod::Whole : PlaneCopyMethod::Rows, views.Source, views.Target);
    return true;
}

/// Copies groups that may lie apart, of pixels that the methods for single planes do not take.
bool CopySpacedGroups(const vpat_analyzer &source, const vpat_analyzer &target, const PixelRectangle &rectangle,
                      const PixelPosition &at) {
    if (IsTypedWidth(BytesOf(source.Datatype(0))) || !source.IsInterleaved() || !target.IsInterleaved() ||
        source.XStep(0) != target.XStep(0) || source.MemoryOrder() != target.MemoryOrder())
        return false;
    for (std::intptr_t plane = 0; plane < source.Planes(); ++plane) {
        ViewPair views;
        if (MakeViews(ViewOf(source, plane), ViewOf(target, plane), rectangle, at, views))
            CopyPlane(PlaneCopyMethod::TableToTable, views.Source, views.Target);
    }
    return true;
}

} // namespace

void RunCopy(CopyMethod method, const vpat_analyzer &source, std::intptr_t sourcePlane, const vpat_analyzer &target,
             std::intptr_t targetPlane, PixelRectangle rectangle, PixelPosition targetPosition, bool fastest) {
    if (!ClipRect(source, target, rectangle, targetPosition))
        return;
    ValidateCopy(source, sourcePlane, target, targetPlane, rectangle.Width() == source.Width(), method);
    const bool movesLines = method == CopyMethod::CopyLineByLine || method == CopyMethod::CopyWhole;
    if (!movesLines && !IsTypedWidth(BytesOf(source.Datatype(sourcePlane))))
        throw ErrorHandling::CImageKernelException(ErrDataType);
    ViewPair views;
    if (!MakeViews(ViewOf(source, sourcePlane), ViewOf(target, targetPlane), rectangle, targetPosition, views))
        return;
    if (fastest && AreDisjoint(views))
        CopyDisjointPlane(views.Source, views.Target);
    else
        CopyPlane(PlainMethodOf(method, views), views.Source, views.Target);
}

bool CopyAllPlanesAtOnce(const vpat_analyzer &source, const vpat_analyzer &target, const PixelRectangle &rectangle,
                         const PixelPosition &targetPosition) {
    if (source.Planes() < 2 || source.Planes() != target.Planes() || !source.HasOneDatatype() ||
        !target.HasOneDatatype() || source.Datatype(0) != target.Datatype(0))
        return false;
    return CopyGroups(source, target, rectangle, targetPosition) ||
           (source.Planes() == 3 && SplitOrJoin(source, target, rectangle, targetPosition)) ||
           CopySpacedGroups(source, target, rectangle, targetPosition);
}

} // namespace Image
