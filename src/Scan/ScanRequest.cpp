#include "Scan/ScanRequest.h"

#include <limits>

#include "Matrices.h"
#include "Scan/Limiter.h"

namespace Scan {

bool PlaneAddresses::Read(pOLE::IImageVPA &image, std::intptr_t planes) {
    const auto entries = static_cast<std::size_t>(planes) + 1;
    bases_.assign(entries, nullptr);
    tables_.assign(entries, nullptr);
    pixels_.assign(entries, nullptr);
    for (std::intptr_t plane = 0; plane < planes; ++plane) {
        void *base = nullptr;
        VPAEntry *table = nullptr;
        if (image.GetPlaneVPA(plane, &base, &table) < 0 || (base != nullptr && table == nullptr))
            return false;
        if (base == nullptr)
            break;
        bases_[static_cast<std::size_t>(plane)] = static_cast<char *>(base);
        tables_[static_cast<std::size_t>(plane)] = table;
    }
    return true;
}

std::int64_t RefuseScan(std::uint32_t code, const ScanRequest &request) {
    ReportORVError(code, request.FunctionName);
    return scanFailed;
}

bool ReadPlane(pOLE::IImageVPA &image, std::intptr_t plane, const ScanRequest &request, char *&base,
               const VPAEntry *&table) {
    void *foundBase = nullptr;
    VPAEntry *foundTable = nullptr;
    if (image.GetPlaneVPA(plane, &foundBase, &foundTable) < 0 || foundBase == nullptr || foundTable == nullptr) {
        RefuseScan(ErrGeneral, request);
        return false;
    }
    base = static_cast<char *>(foundBase);
    table = foundTable;
    return true;
}

bool PrepareArea(pOLE::IImageVPA &image, ScanRequest &request) {
    constexpr std::int64_t lowestDensity = 1, highestDensity = 1000;
    if (request.Density < 0) {
        RefuseScan(ErrParameter, request);
        return false;
    }
    request.Density = LimitTo(request.Density, lowestDensity, highestDensity);
    if (!request.UsesCoordinateSystem)
        return true;
    TCoordinateMap map = {};
    if (image.GetCoordinateMap(&map) < 0) {
        RefuseScan(ErrGeneral, request);
        return false;
    }
    const TArea area = request.Area;
    CoordinateMapTransformArea(&request.Area, area, map);
    return true;
}

PixelBounds CommonBounds(const Image::Dimensions &first, const Image::Dimensions &second, std::int64_t dx,
                         std::int64_t dy, int behind) {
    constexpr std::int64_t furthest = std::int64_t{1} << 40; // no image reaches so far
    constexpr std::int64_t lowest = std::numeric_limits<std::int32_t>::min();
    constexpr std::int64_t highest = std::numeric_limits<std::int32_t>::max();
    if (first.Width < 1 || first.Height < 1 || second.Width < 1 || second.Height < 1)
        return {0, 0, -1, -1};
    const auto narrow = [](std::int64_t value) { return static_cast<std::int32_t>(LimitTo(value, lowest, highest)); };
    const std::int64_t right = LimitTo(dx, -furthest, furthest), down = LimitTo(dy, -furthest, furthest);
    return {narrow(right < 0 ? -right : 0), narrow(down < 0 ? -down : 0),
            narrow(std::min<std::int64_t>(first.Width, second.Width - right) - 1 + behind),
            narrow(std::min<std::int64_t>(first.Height, second.Height - down) - 1 + behind)};
}

std::int64_t WalkLinesOnly(const ScanRequest &request) {
    const auto plan = PlanWalk(request.Area, request.Density);
    if (!plan)
        return scanFailed;
    if (!request.Lines.WantsLines())
        return 0;
    for (std::int64_t linesLeft = plan->Lines; linesLeft > 0; --linesLeft)
        if (!request.Lines.BeginLine(linesLeft) || !request.Lines.EndLine(linesLeft))
            break;
    return 0;
}

} // namespace Scan
