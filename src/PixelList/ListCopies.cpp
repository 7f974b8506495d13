// Copies of whole pixel lists: two lists one behind the other as a new one, and a list copied into another.
#include "Interface/Boundary.h"
#include "Interface/ErrorTexts.h"
#include "PixelList/ListGuard.h"
#include "PixelList/Pixel.h"

using Interface::ErrorTexts::ListDimensionsDiffer;
using namespace PixelList;

namespace {

void AppendAll(const CPixelList &source, CPixelList &target) {
    for (const CPixel *pixel : source)
        target.Append(pixel->Components);
}

/// Adds all pixels, cut to the dimension of the target, which is not above that of the source. False when memory
/// runs out, which AddPixel has reported.
bool AddAll(const CPixelList &source, const ListHolder &target) {
    for (const CPixel *pixel : source)
        if (!AddPixel(target.Get(), pixel->Components))
            return false;
    return true;
}

constexpr const char *copyName = "CopyPixelList";

bool CopyInto(const ListHolder &source, const ListHolder &target) {
    if (source.Object()->Dimension < target.Object()->Dimension) {
        ReportORVErrorEx(ErrIndexRange, ListDimensionsDiffer, copyName);
        return false;
    }
    if (source.Object() == target.Object())
        return true;
    const ListHolder copy(new CPixelList(target.Object()->Dimension));
    if (!AddAll(*source.Object(), copy))
        return false;
    target.Object()->swap(*copy.Object()); // the former pixels go with the copy
    return true;
}

bool CopyIntoNew(const ListHolder &source, void **target) {
    CPixelList *made = nullptr;
    try {
        made = new CPixelList(source.Object()->Dimension);
    } catch (...) {
        ReportORVError(ErrCreateFailed, copyName);
        return false;
    }
    ListHolder copy(made);
    if (!AddAll(*source.Object(), copy))
        return false;
    *target = copy.Detach();
    return true;
}

} // namespace

void *ConcatenatePixelLists(void *first, void *second) {
    constexpr const char *functionName = "ConcatenatePixelLists";
    const ListHolder head = GuardList(first, functionName);
    if (!head.IsValid())
        return nullptr;
    const ListHolder tail = GuardList(second, functionName);
    if (!tail.IsValid())
        return nullptr;
    if (head.Object()->Dimension != tail.Object()->Dimension) {
        ReportORVErrorEx(ErrIndexRange, ListDimensionsDiffer, functionName);
        return nullptr;
    }
    return Interface::GeneralBoundary(functionName, static_cast<void *>(nullptr), [&]() -> void * {
        ListHolder both(new CPixelList(head.Object()->Dimension));
        both.Object()->reserve(head.Object()->size() + tail.Object()->size());
        AppendAll(*head.Object(), *both.Object());
        AppendAll(*tail.Object(), *both.Object());
        return both.Detach();
    });
}

bool CopyPixelList(void *source, void **target) {
    const ListHolder pixels = GuardList(source, copyName);
    if (!pixels.IsValid())
        return false;
    if (target == nullptr) {
        ReportORVError(ErrParameter, copyName);
        return false;
    }
    return Interface::GeneralBoundary(copyName, [&] {
        const ListHolder existing = HoldList(*target);
        return existing.IsValid() ? CopyInto(pixels, existing) : CopyIntoNew(pixels, target);
    });
}
