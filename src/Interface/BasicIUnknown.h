// The counted base of the newer interface objects.
#pragma once

#include <atomic>
#include <type_traits>

#include "Interface/InterfaceId.h"

namespace orvBase {

/// Reference count and query of an object. T, the class derived from it, tells in SupportsInterface what it offers.
template <class T>
class CBasicIUnknown : public pOLE::IUnknown {
public:
    CBasicIUnknown(const CBasicIUnknown &) = delete;
    CBasicIUnknown &operator=(const CBasicIUnknown &) = delete;

    /// Status 0: *out carries a new reference. 0x80000011: not offered; *out is untouched when SupportsInterface
    /// refuses the id, and null when the id is not one of the known five.
    std::int32_t QueryInterface(const char *id, void **out) override {
        if (!Interface::IsInterfaceId(id, ORV_IID_IUNKNOWN) && !SupportsInterface(id))
            return Interface::StatusNoInterface;
        bool known = true;
        void *found = Find(id, known);
        if (found == nullptr) {
            if (!known)
                *out = nullptr;
            return Interface::StatusNoInterface;
        }
        *out = found;
        AddRef();
        return Interface::StatusOk;
    }

    std::uintptr_t AddRef() override {
        return static_cast<std::uintptr_t>(count_.fetch_add(1, std::memory_order_relaxed) + 1);
    }

    std::uintptr_t Release() override {
        const std::int32_t left = count_.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left > 0)
            return static_cast<std::uintptr_t>(left);
        if (left == 0)
            delete this;
        return 0;
    }

protected:
    // The slots of the destructor stand before that of SupportsInterface.
    virtual ~CBasicIUnknown() = default;

public:
    virtual bool SupportsInterface(const char *id) { return Interface::IsInterfaceId(id, ORV_IID_IUNKNOWN); }

    /// The object under its primary interface; takes no reference.
    pOLE::IUnknown *AsUnknown() { return this; }

protected:
    explicit CBasicIUnknown(std::int32_t count) : count_(count) {}

private:
    /// The interface's address, or null. Known before run time where T itself derives from I.
    template <class I>
    void *Cast() {
        if constexpr (std::is_base_of_v<I, T>)
            return static_cast<I *>(static_cast<T *>(this));
        else
            return dynamic_cast<I *>(static_cast<T *>(this));
    }

    void *Find(const char *id, bool &known) {
        if (Interface::IsInterfaceId(id, ORV_IID_IUNKNOWN))
            return AsUnknown();
        if (Interface::IsInterfaceId(id, ORV_IID_IIMAGEDIB))
            return Cast<pOLE::IImageDIB>();
        if (Interface::IsInterfaceId(id, ORV_IID_IIMAGEVPA))
            return Cast<pOLE::IImageVPA>();
        if (Interface::IsInterfaceId(id, ORV_IID_IIPPIPROXY))
            return Cast<pOLE::IIPPIProxy>();
        if (Interface::IsInterfaceId(id, ORV_IID_ICOLORMODELINFO))
            return Cast<pOLE::IColorModelInfo>();
        known = false;
        return nullptr;
    }

    std::atomic<std::int32_t> count_;
};

} // namespace orvBase
