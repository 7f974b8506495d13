// Tells the two kinds of object that callers hold apart: interface objects and persistable tree nodes.
#pragma once

namespace Interface {

enum class ObjectKind {
    TreeNode,          ///< a living list-based persistable object
    PresumedInterface, ///< no object of the root class: may be asked for interfaces
    Neither            ///< an object of the root class that is no tree node, or one that is gone
};

/// Looks at the root object's tag first. An object of the root class must never be asked for interfaces: the slot of
/// QueryInterface is its destructor.
ObjectKind KindOf(void *object);

} // namespace Interface
