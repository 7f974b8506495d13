// The one guard in front of every function that takes the handle of a pixel list.
#pragma once

#include "ErrorHandling.h"
#include "Interface/InterfaceId.h"
#include "Interface/SmartPointer.h"
#include "PixelList/PixelListObject.h"

namespace PixelList {

using ListHolder = orvThreads::CSmartUnknownObject<CPixelList>;

/// A list with a reference for the time of a call, or an empty holder for every other handle.
inline ListHolder HoldList(void *handle) {
    CPixelList *list = ListBehind(handle);
    void *reference = nullptr;
    if (list == nullptr || list->QueryInterface(ORV_IID_IUNKNOWN, &reference) != Interface::StatusOk)
        return ListHolder(nullptr);
    return ListHolder(list);
}

/// As HoldList. For every handle that is no list: reports ErrNotAPixelList under the function's name.
inline ListHolder GuardList(void *handle, const char *functionName) {
    ListHolder list = HoldList(handle);
    if (!list.IsValid())
        ReportORVError(ErrNotAPixelList, functionName);
    return list;
}

} // namespace PixelList
