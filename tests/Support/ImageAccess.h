/* Reaching an image as its users do: through the interface, plane by plane, with the table's guard entries looked at.
 * Also reports with every stored character, and pixel memory between two unreadable pages. */
#ifndef ORV_TESTS_IMAGE_ACCESS_H
#define ORV_TESTS_IMAGE_ACCESS_H

#include "Support/TestImages.h"

#include <sys/mman.h>
#include <unistd.h>

namespace TestSupport {

/// A 32-bit status word as the signed number that a slot returns.
inline constexpr std::int32_t Status(std::uint32_t word) {
    return static_cast<std::int32_t>(word);
}

/// Where no function may have written.
inline void *UntouchedPointer() {
    static char mark = 0;
    return &mark;
}

/// Holds the IImageVPA of a handle for as long as it lives. A handle without one fails the test at once.
class ImageInterface {
public:
    explicit ImageInterface(void *handle) {
        void *queried = nullptr;
        if (handle != nullptr)
            static_cast<pOLE::IUnknown *>(handle)->QueryInterface(ORV_IID_IIMAGEVPA, &queried);
        if (queried == nullptr)
            throw std::runtime_error("a test takes something for an image that is none");
        image = static_cast<pOLE::IImageVPA *>(queried);
    }
    ImageInterface(const ImageInterface &) = delete;
    ImageInterface &operator=(const ImageInterface &) = delete;
    ~ImageInterface() { image->Release(); }
    pOLE::IImageVPA *operator->() const { return image; }

private:
    pOLE::IImageVPA *image;
};

struct ImageSize {
    std::intptr_t Planes;
    std::intptr_t Width;
    std::intptr_t Height;
    friend bool operator==(const ImageSize &, const ImageSize &) = default;
};
inline void PrintTo(const ImageSize &size, std::ostream *out) {
    *out << size.Planes << " planes of " << size.Width << " x " << size.Height;
}

inline ImageSize SizeOf(void *handle) {
    ImageSize size{-1, -1, -1};
    const ImageInterface image(handle);
    EXPECT_EQ(image->GetImageDimensions(&size.Planes, &size.Width, &size.Height), 0);
    return size;
}

inline TDataType TypeOf(void *handle, std::intptr_t plane) {
    TDataType type = DataTypeNone;
    const ImageInterface image(handle);
    EXPECT_EQ(image->GetPlaneDatatype(plane, &type), 0);
    return type;
}

/// One plane's base address and table; good as long as the image lives.
struct PlaneAccess {
    std::uint8_t *Base = nullptr;
    VPAEntry *Table = nullptr;
    std::uint8_t *At(std::intptr_t x, std::intptr_t y) const { return Base + Table[x].XEntry + Table[y].YEntry; }
};

inline PlaneAccess AccessOf(void *handle, std::intptr_t plane) {
    void *base = nullptr;
    VPAEntry *table = nullptr;
    const ImageInterface image(handle);
    if (image->GetPlaneVPA(plane, &base, &table) != 0)
        throw std::runtime_error("a test takes a plane for there that is not");
    return {static_cast<std::uint8_t *>(base), table};
}

/// Compares each entry of a table, the four guard entries at each end included, with the told offsets.
inline void ExpectTable(const VPAEntry *table, std::intptr_t width, std::intptr_t height, const Table::Offsets &x,
                        const Table::Offsets &y) {
    ASSERT_NE(table, nullptr);
    for (std::intptr_t i = -4; i < width + 4; ++i)
        ASSERT_EQ(table[i].XEntry, x(std::clamp<std::intptr_t>(i, 0, width - 1))) << "XEntry " << i;
    for (std::intptr_t j = -4; j < height + 4; ++j)
        ASSERT_EQ(table[j].YEntry, y(std::clamp<std::intptr_t>(j, 0, height - 1))) << "YEntry " << j;
}

inline bool SameMap(const TCoordinateMap &a, const TCoordinateMap &b) {
    return std::memcmp(&a, &b, sizeof a) == 0;
}
inline constexpr TCoordinateMap IdentityMap{0.0, 0.0, {1.0, 0.0, 0.0, 1.0}};

/// The newest report's text with every character that counts in its length, a closing NUL included.
inline std::string StoredReportText() {
    char text[512] = {};
    std::uint64_t textSize = sizeof text;
    std::uint64_t noName = 1;
    std::uint32_t code = 0;
    std::int64_t serial = 0;
    if (!GetLastORVError(&code, &serial, text, &textSize, nullptr, &noName))
        return "no report";
    return std::string(text, textSize);
}

/// The message that the library composes for an image code.
inline std::string ComposedText(std::uint32_t code) {
    return "Error code " + std::to_string(code & 0xFFFu) +
           " (no extended information) occured. Error from Sub-Facility Nr. 0 of Facility Nr. 0";
}

/// Expects exactly one report since ClearReports, and takes it.
inline void ExpectOneReport(std::uint32_t code, const char *function) {
    EXPECT_EQ(ReportCount(), 1);
    const auto report = TakeReport();
    ASSERT_TRUE(report.has_value());
    EXPECT_EQ(report->code, code);
    EXPECT_EQ(report->function, function);
    EXPECT_EQ(report->text, ComposedText(code));
    ClearReports();
}

inline void ExpectNoReport() {
    EXPECT_EQ(ReportCount(), 0);
    EXPECT_FALSE(TakeReport().has_value());
    ClearReports();
}

/// Bytes that end at an unreadable page, or begin behind one.
class FencedBlock {
public:
    enum class Fence { Behind, Before };

    FencedBlock(std::size_t bytes, Fence where) {
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const std::size_t inner = (bytes + page - 1) / page * page;
        mappedBytes = inner + 2 * page;
        void *const mapped = mmap(nullptr, mappedBytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (mapped == MAP_FAILED)
            throw std::bad_alloc();
        pages = static_cast<std::uint8_t *>(mapped);
        mprotect(pages, page, PROT_NONE);
        mprotect(pages + page + inner, page, PROT_NONE);
        data = where == Fence::Behind ? pages + page + inner - bytes : pages + page;
    }
    FencedBlock(const FencedBlock &) = delete;
    FencedBlock &operator=(const FencedBlock &) = delete;
    ~FencedBlock() { munmap(pages, mappedBytes); }
    std::uint8_t *Data() const { return data; }

private:
    std::size_t mappedBytes = 0;
    std::uint8_t *pages = nullptr;
    std::uint8_t *data = nullptr;
};

} // namespace TestSupport

#endif
