// The holder of one interface reference. Whatever path leads out of a function, the reference is given back.
#pragma once

#include <utility>

#include "Interfaces.h"

namespace orvThreads {

/// Holds exactly one reference of an interface. Tag is a plain mark with no effect on behaviour.
template <class I, int Tag>
class CSmartPointer {
public:
    CSmartPointer() = default;
    /// Takes over a reference that the caller holds.
    explicit CSmartPointer(I *adopted) noexcept : pointer_(adopted) {}
    CSmartPointer(const CSmartPointer &other) : pointer_(other.pointer_) {
        if (pointer_ != nullptr)
            pointer_->AddRef();
    }
    CSmartPointer(CSmartPointer &&other) noexcept : pointer_(std::exchange(other.pointer_, nullptr)) {}
    CSmartPointer &operator=(CSmartPointer other) noexcept {
        std::swap(pointer_, other.pointer_);
        return *this;
    }
    virtual ~CSmartPointer() {
        if (I *held = std::exchange(pointer_, nullptr))
            held->Release();
    }
    virtual bool IsValid() const { return pointer_ != nullptr; }
    virtual operator I *() const { return pointer_; }
    virtual I *Get() const { return pointer_; }

    I *operator->() const { return pointer_; }
    /// Hands the reference to the caller and holds nothing any more.
    I *Detach() noexcept { return std::exchange(pointer_, nullptr); }
    /// Takes a further reference of an interface that somebody else holds.
    static CSmartPointer Share(I *borrowed) {
        borrowed->AddRef();
        return CSmartPointer(borrowed);
    }

private:
    I *pointer_ = nullptr;
};

/// Keeps an object of a class with CBasicIUnknown alive.
template <class T>
class CSmartUnknownObject : public CSmartPointer<pOLE::IUnknown, 0> {
public:
    /// Takes over the object's first reference.
    explicit CSmartUnknownObject(T *adopted) noexcept
        : CSmartPointer<pOLE::IUnknown, 0>(adopted == nullptr ? nullptr : adopted->AsUnknown()), object_(adopted) {}
    T *Object() const { return object_; }

private:
    T *object_;
};

} // namespace orvThreads
