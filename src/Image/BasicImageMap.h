// The base of views that rewrite the tables of one source image.
#pragma once

#include <atomic>
#include <memory>
#include <stdexcept>
#include <vector>

#include "Image/Dimensions.h"
#include "Image/TableWriter.h"
#include "Interface/ImageGuard.h"

namespace Image {

/// Holds a reference on the source, and tables of its own. T, derived from it, fills the tables.
template <class T>
class CBasicImageMap : public pOLE::IImageVPA {
public:
    CBasicImageMap(const CBasicImageMap &) = delete;
    CBasicImageMap &operator=(const CBasicImageMap &) = delete;

    std::int32_t QueryInterface(const char *id, void **out) override {
        if (out == nullptr)
            return Interface::StatusParameter;
        if (!Interface::IsInterfaceId(id, ORV_IID_IIMAGEVPA) && !Interface::IsInterfaceId(id, ORV_IID_IUNKNOWN)) {
            *out = nullptr;
            return Interface::StatusNoInterface;
        }
        *out = static_cast<pOLE::IImageVPA *>(this);
        AddRef();
        return Interface::StatusOk;
    }

    std::uintptr_t AddRef() override {
        return static_cast<std::uintptr_t>(count_.fetch_add(1, std::memory_order_relaxed) + 1);
    }

    std::uintptr_t Release() override {
        const std::int32_t left = count_.fetch_sub(1, std::memory_order_acq_rel) - 1;
        if (left == 0)
            delete this;
        return static_cast<std::uintptr_t>(left);
    }

    std::int32_t GetImageDimensions(std::intptr_t *planes, std::intptr_t *width, std::intptr_t *height) override {
        *planes = size_.Planes;
        *width = size_.Width;
        *height = size_.Height;
        return Interface::StatusOk;
    }

    std::int32_t GetPlaneDatatype(std::intptr_t plane, TDataType *type) override {
        return source_->GetPlaneDatatype(plane, type);
    }

    std::int32_t GetPlaneVPA(std::intptr_t plane, void **base, VPAEntry **table) override {
        if (plane < 0 || plane >= size_.Planes)
            return Interface::StatusPlaneIndex;
        if (base == nullptr || table == nullptr)
            return Interface::StatusParameter;
        *base = bases_[static_cast<std::size_t>(plane)];
        *table = Table(tables_.size() == 1 ? 0 : plane);
        return Interface::StatusOk;
    }

    std::int32_t GetCoordinateMap(TCoordinateMap *map) override {
        *map = coordinates_;
        return Interface::StatusOk;
    }

    std::int32_t SetCoordinateMap(TCoordinateMap map) override {
        coordinates_ = map;
        return Interface::StatusOk;
    }

protected:
    /// Takes a further reference of the source, its size and a copy of its coordinate map.
    explicit CBasicImageMap(const Interface::ImageHolder &source) : source_(source) {
        if (source_->GetCoordinateMap(&coordinates_) < 0 ||
            source_->GetImageDimensions(&size_.Planes, &size_.Width, &size_.Height) < 0)
            throw std::runtime_error("no VPA");
    }
    virtual ~CBasicImageMap() = default;

    /// Makes the tables, filled with zero.
    void AllocateTables(std::intptr_t tables) {
        std::size_t records = 0;
        if (!TableRecords(size_.Width, size_.Height, records))
            throw std::bad_alloc();
        bases_.resize(static_cast<std::size_t>(size_.Planes));
        for (std::intptr_t i = 0; i < tables; ++i)
            tables_.push_back(std::make_unique<VPAEntry[]>(records));
    }

    VPAEntry *Table(std::intptr_t index) const {
        return tables_[static_cast<std::size_t>(index)].get() + GuardEntries;
    }

    std::atomic<std::int32_t> count_ = 1;
    Interface::ImageHolder source_;
    TCoordinateMap coordinates_ = {};
    Dimensions size_;
    std::vector<void *> bases_;
    std::vector<std::unique_ptr<VPAEntry[]>> tables_; ///< one for all planes, or one per plane
};

} // namespace Image
