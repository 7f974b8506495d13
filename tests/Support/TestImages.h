/* What many tests need: an image class of the tests' own, foreign handles, an owner of one reference, and the
 * calling thread's reports as values. Images of many layouts stand in TestLayouts.h. */
#ifndef ORV_TESTS_TEST_IMAGES_H
#define ORV_TESTS_TEST_IMAGES_H

#include "ErrorHandling.h"
#include "InterfaceHandling.h"
#include "Interfaces.h"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace TestSupport {

inline constexpr std::int32_t StatusNoInterface = static_cast<std::int32_t>(0x80000011u);
inline constexpr std::int32_t StatusBadPlane = static_cast<std::int32_t>(0x80000002u);

inline bool SameInterfaceId(const char *id, const char *name) {
    return std::memcmp(id, name, 16) == 0;
}
inline std::size_t PixelSize(TDataType type) {
    return ((type & DataTypeBitsMask) + 7u) >> 3;
}

/// Counts references like an object of the library, starting at 1 for the creator. It never deletes itself; its end
/// of life checks that nobody else still holds it.
class CountedReferences {
public:
    CountedReferences() = default;
    CountedReferences(const CountedReferences &) = delete;
    CountedReferences &operator=(const CountedReferences &) = delete;
    ~CountedReferences() {
        EXPECT_LE(count.load(), 1) << "a test object goes while others still hold references";
        EXPECT_GE(count.load(), 0) << "more references given back than taken";
    }
    std::uintptr_t Take() { return static_cast<std::uintptr_t>(++count); }
    std::uintptr_t GiveBack() {
        const std::intptr_t left = --count;
        destroyed = destroyed || left == 0;
        return static_cast<std::uintptr_t>(left);
    }
    std::intptr_t Count() const { return count; }
    bool Destroyed() const { return destroyed; }

private:
    std::atomic<std::intptr_t> count{1};
    std::atomic<bool> destroyed{false};
};

/// A plane's table with its four guard entries at each end. What no axis uses holds an offset that no access
/// survives.
class Table {
public:
    using Offsets = std::function<std::intptr_t(std::intptr_t)>;
    static constexpr std::intptr_t Unused = 0x5A5A5A5A5A5A;

    Table(std::intptr_t width, std::intptr_t height, const Offsets &x, const Offsets &y)
        : entries(static_cast<std::size_t>(std::max(width, height) + 8), VPAEntry{Unused, Unused}) {
        for (std::intptr_t i = -4; i < width + 4 && width > 0; ++i)
            entries[static_cast<std::size_t>(i + 4)].XEntry = x(std::clamp<std::intptr_t>(i, 0, width - 1));
        for (std::intptr_t j = -4; j < height + 4 && height > 0; ++j)
            entries[static_cast<std::size_t>(j + 4)].YEntry = y(std::clamp<std::intptr_t>(j, 0, height - 1));
    }
    /// Entry 0.
    VPAEntry *Entries() { return entries.data() + 4; }

private:
    std::vector<VPAEntry> entries;
};

/// An image class of the tests' own. Add planes over memory that outlives it, or over its own Pixels.
class FakeImage final : public pOLE::IImageVPA {
public:
    /// How the image fails; each on its own. Query failures meet "IImageVPA       " only.
    struct Failures {
        bool QueryThrows = false;
        bool QueryGivesNull = false; ///< together with the status below, which is 0 by default
        std::int32_t QueryStatus = 0;
        std::int32_t DimensionsStatus = 0;
        std::int32_t DatatypeStatus = 0;
        std::int32_t VPAStatus = 0;
        std::int32_t CoordinatesStatus = 0;
        std::function<void()> OnOperation; ///< runs first in each of the five image operations; may throw
    };
    Failures Fails;
    std::vector<std::uint8_t> Pixels;
    TCoordinateMap Coordinates{0.0, 0.0, {1.0, 0.0, 0.0, 1.0}};

    FakeImage(std::intptr_t imageWidth, std::intptr_t imageHeight, std::size_t pixelBytes = 0)
        : Pixels(pixelBytes), width(imageWidth), height(imageHeight) {}

    void AddPlane(void *base, TDataType type, const Table::Offsets &x, const Table::Offsets &y) {
        planes.push_back({base, type, std::make_shared<Table>(width, height, x, y)});
    }
    /// Adds a plane with a table that an earlier plane has too.
    void AddPlaneWithTableOf(std::size_t earlier, void *base, TDataType type) {
        planes.push_back({base, type, planes[earlier].table});
    }
    /// A finished image of separate planes, rows not padded, pixels 0.
    static std::unique_ptr<FakeImage> Planar(std::intptr_t width, std::intptr_t height, std::intptr_t planeCount,
                                             TDataType type) {
        const auto size = static_cast<std::intptr_t>(PixelSize(type));
        const std::intptr_t planeBytes = width * height * size;
        auto image = std::make_unique<FakeImage>(width, height, static_cast<std::size_t>(planeBytes * planeCount));
        for (std::intptr_t plane = 0; plane < planeCount; ++plane)
            image->AddPlane(
                image->Pixels.data() + plane * planeBytes, type, [=](std::intptr_t i) { return i * size; },
                [=](std::intptr_t j) { return j * width * size; });
        return image;
    }

    void *Handle() { return static_cast<pOLE::IUnknown *>(this); }
    std::intptr_t Count() const { return references.Count(); }
    bool Destroyed() const { return references.Destroyed(); }
    VPAEntry *TableOf(std::size_t plane) { return planes[plane].table->Entries(); }
    void *BaseOf(std::size_t plane) const { return planes[plane].base; }
    std::uint8_t *PixelAddress(std::size_t plane, std::intptr_t x, std::intptr_t y) {
        return static_cast<std::uint8_t *>(planes[plane].base) + TableOf(plane)[x].XEntry + TableOf(plane)[y].YEntry;
    }
    /// Names of the operations called so far, in order; a query is "QueryInterface " and the id's first word.
    std::vector<std::string> Calls() const {
        const std::lock_guard guard(callsLock);
        return calls;
    }
    std::ptrdiff_t CallsOf(const std::string &operation) const {
        const auto all = Calls();
        return std::count(all.begin(), all.end(), operation);
    }
    void ClearCalls() {
        const std::lock_guard guard(callsLock);
        calls.clear();
    }

    std::int32_t QueryInterface(const char *id, void **out) override {
        Record("QueryInterface " + std::string(id, std::find(id, id + 16, ' ')));
        const bool asksForImage = SameInterfaceId(id, ORV_IID_IIMAGEVPA);
        if (asksForImage && Fails.QueryThrows)
            throw std::runtime_error("query refused");
        if (asksForImage && (Fails.QueryGivesNull || Fails.QueryStatus != 0)) {
            *out = nullptr;
            return Fails.QueryStatus;
        }
        if (!asksForImage && !SameInterfaceId(id, ORV_IID_IUNKNOWN)) {
            *out = nullptr;
            return StatusNoInterface;
        }
        references.Take();
        *out = this;
        return 0;
    }
    std::uintptr_t AddRef() override { return references.Take(); }
    std::uintptr_t Release() override { return references.GiveBack(); }

    std::int32_t GetImageDimensions(std::intptr_t *outPlanes, std::intptr_t *outWidth,
                                    std::intptr_t *outHeight) override {
        Begin("GetImageDimensions");
        if (Fails.DimensionsStatus != 0)
            return Fails.DimensionsStatus;
        *outPlanes = static_cast<std::intptr_t>(planes.size());
        *outWidth = width;
        *outHeight = height;
        return 0;
    }
    std::int32_t GetPlaneDatatype(std::intptr_t plane, TDataType *type) override {
        Begin("GetPlaneDatatype");
        if (Fails.DatatypeStatus != 0 || !HasPlane(plane))
            return Fails.DatatypeStatus != 0 ? Fails.DatatypeStatus : StatusBadPlane;
        *type = planes[static_cast<std::size_t>(plane)].type;
        return 0;
    }
    std::int32_t GetPlaneVPA(std::intptr_t plane, void **base, VPAEntry **table) override {
        Begin("GetPlaneVPA");
        if (Fails.VPAStatus != 0 || !HasPlane(plane))
            return Fails.VPAStatus != 0 ? Fails.VPAStatus : StatusBadPlane;
        *base = planes[static_cast<std::size_t>(plane)].base;
        *table = TableOf(static_cast<std::size_t>(plane));
        return 0;
    }
    std::int32_t GetCoordinateMap(TCoordinateMap *map) override {
        Begin("GetCoordinateMap");
        if (Fails.CoordinatesStatus != 0)
            return Fails.CoordinatesStatus;
        *map = Coordinates;
        return 0;
    }
    std::int32_t SetCoordinateMap(TCoordinateMap map) override {
        Begin("SetCoordinateMap");
        if (Fails.CoordinatesStatus != 0)
            return Fails.CoordinatesStatus;
        Coordinates = map;
        return 0;
    }

private:
    struct Plane {
        void *base;
        TDataType type;
        std::shared_ptr<Table> table;
    };
    CountedReferences references;
    std::intptr_t width;
    std::intptr_t height;
    std::vector<Plane> planes;
    std::vector<std::string> calls;
    mutable std::mutex callsLock;

    bool HasPlane(std::intptr_t plane) const {
        return plane >= 0 && plane < static_cast<std::intptr_t>(planes.size());
    }
    void Record(std::string operation) {
        const std::lock_guard guard(callsLock);
        calls.push_back(std::move(operation));
    }
    void Begin(const char *operation) {
        Record(operation);
        if (Fails.OnOperation)
            Fails.OnOperation();
    }
};

/// An interface object that is no image; how a query goes is the derived class's.
class ForeignObject : public pOLE::IUnknown {
public:
    virtual ~ForeignObject() = default;
    std::uintptr_t AddRef() override { return references.Take(); }
    std::uintptr_t Release() override { return references.GiveBack(); }
    void *Handle() { return static_cast<pOLE::IUnknown *>(this); }
    std::intptr_t Count() const { return references.Count(); }
    bool Destroyed() const { return references.Destroyed(); }

private:
    CountedReferences references;
};

/// Offers "IUnknown        " and nothing else.
class OnlyUnknown final : public ForeignObject {
public:
    std::int32_t QueryInterface(const char *id, void **out) override {
        const bool known = SameInterfaceId(id, ORV_IID_IUNKNOWN);
        if (known)
            AddRef();
        *out = known ? Handle() : nullptr;
        return known ? 0 : StatusNoInterface;
    }
};

/// Throws at every query: a std::runtime_error, or an int.
class ThrowingUnknown final : public ForeignObject {
public:
    explicit ThrowingUnknown(bool throwAnInt = false) : throwsInt(throwAnInt) {}
    std::int32_t QueryInterface(const char *, void **) override {
        if (throwsInt)
            throw 42;
        throw std::runtime_error("query refused");
    }

private:
    bool throwsInt;
};

/// Answers every query with a good status and a null interface.
class NullInterfaceUnknown final : public ForeignObject {
public:
    std::int32_t QueryInterface(const char *, void **out) override {
        *out = nullptr;
        return 0;
    }
};

/// A foreign handle with its name, for loops over all of them.
struct ForeignHandle {
    std::string Name;
    std::shared_ptr<ForeignObject> Object;
    bool OffersUnknown;
    bool QueryThrows;
    void *Get() const { return Object->Handle(); }
    std::intptr_t Count() const { return Object->Count(); }
};

inline std::vector<ForeignHandle> ForeignHandles() {
    return {{"OnlyUnknown", std::make_shared<OnlyUnknown>(), true, false},
            {"ThrowsRuntimeError", std::make_shared<ThrowingUnknown>(false), false, true},
            {"ThrowsInt", std::make_shared<ThrowingUnknown>(true), false, true},
            {"NullInterface", std::make_shared<NullInterfaceUnknown>(), false, false}};
}

/// Owns one reference of a handle and gives it back with ReleaseObject.
class Handle {
public:
    Handle() = default;
    explicit Handle(void *owned) : object(owned) {}
    Handle(Handle &&other) noexcept : object(std::exchange(other.object, nullptr)) {}
    Handle &operator=(Handle &&other) noexcept {
        std::swap(object, other.object);
        return *this;
    }
    ~Handle() { Reset(); }
    void Reset() {
        void *last = std::exchange(object, nullptr);
        ReleaseObject(last);
    }
    /// Where a creating function puts its result; what was held before goes.
    void **Out() {
        Reset();
        return &object;
    }
    void *Get() const { return object; }
    explicit operator bool() const { return object != nullptr; }

private:
    void *object = nullptr;
};

/// One report of the calling thread. text is without the closing NUL that a composed message counts in its length.
struct Report {
    std::uint32_t code;
    std::string text;
    std::string function;
    std::int64_t serial;
};

/// Takes the newest report out of the slot.
inline std::optional<Report> TakeReport() {
    std::uint64_t textSize = 0;
    std::uint64_t functionSize = 0;
    Report report{0, {}, {}, 0};
    if (!GetLastORVError(&report.code, &report.serial, nullptr, &textSize, nullptr, &functionSize))
        return std::nullopt;
    report.text.resize(textSize);
    report.function.resize(functionSize);
    if (!GetLastORVError(&report.code, &report.serial, report.text.data(), &textSize, report.function.data(),
                         &functionSize))
        return std::nullopt;
    report.text.resize(textSize);
    report.function.resize(functionSize);
    if (report.text.ends_with('\0'))
        report.text.pop_back();
    return report;
}

inline std::intptr_t ReportCount() {
    return GetORVErrorCount();
}

/// Empties the calling thread's slot and sets its count to 0.
inline void ClearReports() {
    FlushORVErrorCache();
    ResetORVErrorCount();
}

} // namespace TestSupport

#endif
