// Testing, sharing and releasing interface objects.
#include "InterfaceHandling.h"

#include "Interface/Boundary.h"
#include "Interface/ObjectKind.h"
#include "Interface/SmartPointer.h"
#include "Interface/UnloadList.h"
#include "Persistence/Tree/TSList.h"

namespace pOLE {

/// An acquisition device, implemented by drivers only. Of their side only the place of the dialog slot is known here.
struct IGrabber : IUnknown {
    virtual void DriverSlot1() = 0;
    virtual void DriverSlot2() = 0;
    virtual void DriverSlot3() = 0;
    virtual void ShowDialog() = 0;

protected:
    ~IGrabber() = default;
};

} // namespace pOLE

namespace {

using Interface::SilentBoundary;
using pOLE::IGrabber;

pOLE::IUnknown *AsUnknown(void *object) {
    return static_cast<pOLE::IUnknown *>(object);
}

/// A driver's class comes from a library of its own and need not know the declaration above: only the slot counts.
__attribute__((no_sanitize("vptr"))) void OpenDialog(IGrabber &grabber) {
    grabber.ShowDialog();
}

/// The remaining count; 0 also when the object throws.
uintptr_t Release(void *object) {
    return SilentBoundary<uintptr_t>(0, [object] { return AsUnknown(object)->Release(); });
}

} // namespace

bool IsInterface(void *object, const char *id) {
    if (object == nullptr || id == nullptr)
        return false;
    return SilentBoundary(false, [object, id] {
        void *found = nullptr; // Required: this value decides, not the status.
        AsUnknown(object)->QueryInterface(id, &found);
        if (found == nullptr)
            return false;
        AsUnknown(found)->Release();
        return true;
    });
}

bool IsIUnknown(void *object) {
    return IsInterface(object, ORV_IID_IUNKNOWN);
}

bool IsImage(void *object) {
    return IsInterface(object, ORV_IID_IIMAGEVPA);
}

bool IsGrabber(void *object) {
    return IsInterface(object, ORV_IID_IGRABBER);
}

bool ShowDriverDialog(void *object) {
    if (!IsGrabber(object))
        return false;
    return SilentBoundary(false, [object] {
        void *found = nullptr;
        AsUnknown(object)->QueryInterface(ORV_IID_IGRABBER, &found);
        const orvThreads::CSmartPointer<IGrabber, 0> grabber(static_cast<IGrabber *>(found));
        if (!grabber.IsValid())
            return false;
        OpenDialog(*grabber.Get());
        return true;
    });
}

uintptr_t ReleaseIUnknown(void *object) {
    return IsIUnknown(object) ? Release(object) : 0;
}

intptr_t ReleaseImage(void *object) {
    if (object == nullptr) {
        Streaming::PollUnloadList();
        return 0;
    }
    if (!IsIUnknown(object))
        return 0;
    const uintptr_t left = Release(object);
    if (left == 0)
        Streaming::PollUnloadList();
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(left));
}

intptr_t ShareImage(void *object) {
    if (!IsIUnknown(object))
        return -1;
    return SilentBoundary<intptr_t>(-1, [object] { return static_cast<intptr_t>(AsUnknown(object)->AddRef()); });
}

bool ShareObject(void *object) {
    if (object == nullptr)
        return false;
    return SilentBoundary(false, [object] {
        switch (Interface::KindOf(object)) {
        case Interface::ObjectKind::TreeNode:
            static_cast<TSList *>(object)->Share();
            return true;
        case Interface::ObjectKind::PresumedInterface:
            if (!IsIUnknown(object))
                return false;
            AsUnknown(object)->AddRef();
            return true;
        default:
            return false;
        }
    });
}

uintptr_t RefCount(void *object) {
    if (object == nullptr)
        return 0;
    return SilentBoundary<uintptr_t>(0, [object] {
        // Required: the count is found by a real increment and decrement; there is no read-only access to it.
        AsUnknown(object)->AddRef();
        return AsUnknown(object)->Release();
    });
}
