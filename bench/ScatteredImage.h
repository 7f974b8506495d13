// An image of the benchmark's own whose columns and rows lie in random order: no step describes its table.
#ifndef ORV_BENCH_SCATTERED_IMAGE_H
#define ORV_BENCH_SCATTERED_IMAGE_H

#include "Interfaces.h"
#include "Matrices.h"
#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

namespace Bench {

/// One 8-bit plane. Made with new; its last reference deletes it.
class ScatteredImage final : public pOLE::IImageVPA {
public:
    ScatteredImage(intptr_t width, intptr_t height, unsigned seed)
        : width_(width), height_(height), pixels_(static_cast<std::size_t>(width * height)),
          table_(static_cast<std::size_t>(std::max(width, height) + 2 * GuardEntries)) {
        InitCoordinateMap(&coordinates_);
        std::mt19937 random(seed);
        Scatter(random, &VPAEntry::XEntry, width, 1);
        Scatter(random, &VPAEntry::YEntry, height, width);
    }

    unsigned char *Base() { return pixels_.data(); }
    VPAEntry *Table() { return table_.data() + GuardEntries; }
    void *Handle() { return static_cast<pOLE::IUnknown *>(this); }

    int32_t QueryInterface(const char *id, void **out) override {
        if (std::memcmp(id, ORV_IID_IIMAGEVPA, 16) != 0 && std::memcmp(id, ORV_IID_IUNKNOWN, 16) != 0) {
            *out = nullptr;
            return -1;
        }
        AddRef();
        *out = static_cast<pOLE::IImageVPA *>(this);
        return 0;
    }
    uintptr_t AddRef() override { return ++references_; }
    uintptr_t Release() override {
        const uintptr_t left = --references_;
        if (left == 0)
            delete this;
        return left;
    }

    int32_t GetImageDimensions(intptr_t *planes, intptr_t *width, intptr_t *height) override {
        *planes = 1;
        *width = width_;
        *height = height_;
        return 0;
    }
    int32_t GetPlaneDatatype(intptr_t plane, TDataType *type) override {
        if (plane != 0)
            return -1;
        *type = 8;
        return 0;
    }
    int32_t GetPlaneVPA(intptr_t plane, void **base, VPAEntry **table) override {
        if (plane != 0)
            return -1;
        *base = Base();
        *table = Table();
        return 0;
    }
    int32_t GetCoordinateMap(TCoordinateMap *map) override {
        *map = coordinates_;
        return 0;
    }
    int32_t SetCoordinateMap(TCoordinateMap map) override {
        coordinates_ = map;
        return 0;
    }

private:
    static constexpr intptr_t GuardEntries = 4;

    ~ScatteredImage() = default;

    void Scatter(std::mt19937 &random, intptr_t VPAEntry::*axis, intptr_t count, intptr_t step) {
        std::vector<intptr_t> offsets;
        for (intptr_t i = 0; i < count; ++i)
            offsets.push_back(i * step);
        std::shuffle(offsets.begin(), offsets.end(), random);
        for (intptr_t i = -GuardEntries; i < count + GuardEntries; ++i)
            Table()[i].*axis = offsets[static_cast<std::size_t>(std::clamp<intptr_t>(i, 0, count - 1))];
    }

    uintptr_t references_ = 1;
    intptr_t width_, height_;
    std::vector<unsigned char> pixels_;
    std::vector<VPAEntry> table_;
    TCoordinateMap coordinates_{};
};

} // namespace Bench

#endif
