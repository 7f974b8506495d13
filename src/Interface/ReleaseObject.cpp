// Releasing an object of either kind through the caller's pointer.
#include "CtkObject.h"
#include "Interface/Boundary.h"
#include "Interface/ObjectKind.h"
#include "Interface/UnloadList.h"
#include "InterfaceHandling.h"
#include "Persistence/Tree/TSList.h"

namespace Interface {

ObjectKind KindOf(void *object) {
    constexpr std::uint32_t listFamily = 7;
    constexpr unsigned treeNodeBit = 0;
    const std::uint32_t tag = CtkObject::TagOf(object);
    if (tag == CtkObject::DeadTag)
        return ObjectKind::Neither;
    if (tag != CtkObject::LivingTag)
        return ObjectKind::PresumedInterface;
    auto *root = static_cast<CtkObject *>(object);
    return root->GetFamily() == listFamily && root->IsMemberOf(treeNodeBit) ? ObjectKind::TreeNode
                                                                            : ObjectKind::Neither;
}

namespace {

/// True when the object is gone.
bool ReleaseByKind(void *object) {
    switch (KindOf(object)) {
    case ObjectKind::TreeNode:
        return static_cast<TSList *>(object)->Release() == 0;
    case ObjectKind::PresumedInterface:
        if (!IsIUnknown(object) || static_cast<pOLE::IUnknown *>(object)->Release() != 0)
            return false;
        Streaming::PollUnloadList();
        return true;
    default:
        return false;
    }
}

} // namespace
} // namespace Interface

bool ReleaseObject(void *&object) {
    return Interface::SilentBoundary(false, [&object] {
        if (object == nullptr) {
            Streaming::PollUnloadList();
            return true;
        }
        if (!Interface::ReleaseByKind(object))
            return false;
        object = nullptr;
        return true;
    });
}
