// Holds one reference to a tree node, so that builders need no clean-up code of their own.
#pragma once

#include <utility>

#include "Persistence/Tree/TSList.h"

namespace Persistence {

/// Gives its reference back when it ends. It adopts the one that a new node is born with; it never takes another.
template <class T>
class NodeHolder {
public:
    NodeHolder() noexcept = default;
    explicit NodeHolder(T *node) noexcept : node_(node) {}
    NodeHolder(NodeHolder &&other) noexcept : node_(other.Detach()) {}
    template <class Derived>
    NodeHolder(NodeHolder<Derived> &&other) noexcept : node_(other.Detach()) {}
    NodeHolder &operator=(NodeHolder &&other) noexcept {
        std::swap(node_, other.node_);
        return *this;
    }
    ~NodeHolder() {
        if (node_ != nullptr)
            node_->Release();
    }

    T *Get() const noexcept { return node_; }
    T *operator->() const noexcept { return node_; }
    T &operator*() const noexcept { return *node_; }
    explicit operator bool() const noexcept { return node_ != nullptr; }

    /// Hands the reference over to the caller.
    [[nodiscard]] T *Detach() noexcept { return std::exchange(node_, nullptr); }

private:
    T *node_ = nullptr;
};

template <class T, class... Arguments>
[[nodiscard]] NodeHolder<T> MakeNode(Arguments &&...arguments) {
    return NodeHolder<T>(new T(std::forward<Arguments>(arguments)...));
}

/// A further reference of a node that somebody holds.
template <class T>
[[nodiscard]] NodeHolder<T> ShareNode(const NodeHolder<T> &node) {
    node->Share();
    return NodeHolder<T>(node.Get());
}

/// Appends a child to a parent that nobody shares yet; the child's reference becomes the parent's. When appending
/// throws, the reference is given back and the parent is as it was.
template <class T>
T &Adopt(TSList &parent, NodeHolder<T> child) {
    if (parent.GetCount() == 0)
        parent.Reset();
    parent.AddTail(child.Get());
    return *child.Detach();
}

} // namespace Persistence
