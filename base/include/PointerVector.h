// A vector that owns the objects behind its pointers.
#pragma once

#include <memory>
#include <utility>
#include <vector>

namespace tkBase {

template <class Pointer, class Allocator = std::allocator<Pointer>>
class ptrvector;

/// Deletes each object when it ends. Taking a pointer out, or erasing it, leaves its object to the caller.
template <class T, class Allocator>
class ptrvector<T *, Allocator> : public std::vector<T *, Allocator> {
    using Base = std::vector<T *, Allocator>;

public:
    using Base::Base;
    ptrvector() = default;
    ptrvector(const ptrvector &) = delete;
    ptrvector(ptrvector &&other) noexcept : Base(std::move(static_cast<Base &>(other))) {}
    ptrvector &operator=(const ptrvector &) = delete;
    ptrvector &operator=(ptrvector &&other) noexcept {
        Base::swap(other);
        return *this;
    }
    ~ptrvector() {
        for (T *object : *this)
            delete object;
    }
};

} // namespace tkBase
