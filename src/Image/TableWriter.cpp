#include "Image/TableWriter.h"

#include "CheckedSize.h"
#include "Image/VectorRegisters.h"

namespace Image {
namespace {

/// A record of two machine words is one register: both axes advance at once, in wrapping arithmetic.
using Record = Vector<std::uint64_t, sizeof(VPAEntry)>;

Record RecordOf(std::intptr_t x, std::intptr_t y) {
    return Record{static_cast<std::uint64_t>(x), static_cast<std::uint64_t>(y)};
}

/// Writes the entries [from, end): value, then value + step and so on. Result: what entry end would be.
Record WriteRun(VPAEntry *table, std::intptr_t from, std::intptr_t end, Record value, Record step) {
    char *at = reinterpret_cast<char *>(table + from);
    char *const behind = reinterpret_cast<char *>(table + end);
    // Four at a time: one addition after the other would be slower than the stores.
    constexpr auto size = static_cast<std::intptr_t>(sizeof(Record));
    const Record step2 = step + step;
    const Record step4 = step2 + step2;
    Record second = value + step;
    for (; behind - at >= 4 * size; at += 4 * size) {
        StoreVector(at, value);
        StoreVector(at + size, second);
        StoreVector(at + 2 * size, value + step2);
        StoreVector(at + 3 * size, second + step2);
        value += step4;
        second += step4;
    }
    for (; at < behind; at += size) {
        StoreVector(at, value);
        value += step;
    }
    return value;
}

} // namespace

bool TableRecords(std::intptr_t width, std::intptr_t height, std::size_t &records) {
    const auto longer = static_cast<std::size_t>(std::max({width, height, std::intptr_t{0}}));
    std::size_t bytes = 0;
    return orvBase::CheckedSum(records, longer, std::size_t{2 * GuardEntries}) &&
           orvBase::CheckedProduct(bytes, records, sizeof(VPAEntry));
}

void WriteLinearTable(VPAEntry *table, std::intptr_t width, std::intptr_t height, AxisOffsets x, AxisOffsets y) {
    const std::intptr_t shorter = std::min(width, height);
    const std::intptr_t longer = std::max(width, height);
    constexpr Record nothing = {0, 0};
    WriteRun(table, -GuardEntries, 0, nothing, nothing);
    const Record rest = WriteRun(table, 0, shorter, RecordOf(x.Start, y.Start), RecordOf(x.Step, y.Step));
    // Only one lane goes on, and what the shorter axis does not use is 0.
    const Record lane = width > height ? Record{~std::uint64_t{0}, 0} : Record{0, ~std::uint64_t{0}};
    WriteRun(table, shorter, longer, rest & lane, RecordOf(x.Step, y.Step) & lane);
    WriteRun(table, longer, longer + GuardEntries, nothing, nothing);
    WriteGuardEntries(table, width, height);
}

} // namespace Image
