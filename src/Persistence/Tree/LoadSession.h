// One load from its first record to its last: what it has read, which objects are still open, and what it may cost.
#pragma once

#include <array>
#include <vector>

#include "Persistence/Tree/ObjectStream.h"

namespace Persistence {

/// Stands between the nodes and the caller's stream while a tree is being loaded. It bounds a load by what was really
/// read: records nest to a depth, references reach finished objects only, and the steps of sharing have a budget.
class LoadSession final : public CtkStream {
public:
    static constexpr std::size_t MaxDepth = 64;
    static constexpr std::size_t ShareStepsPerByte = 16;
    static constexpr std::size_t LeastShareSteps = 1000;

    LoadSession(CtkStream &stream, std::size_t length, std::int32_t firstReferable) noexcept;
    LoadSession(const LoadSession &) = delete;
    LoadSession &operator=(const LoadSession &) = delete;
    ~LoadSession() override;

    /// The load that reads from this stream, or null.
    static LoadSession *Of(const CtkStream &stream) noexcept;
    static LoadSession *Current() noexcept;

    /// Reads the root. A failure leaves the table as it was.
    NodeHolder<TSList> ReadRoot();
    NodeHolder<TSList> ReadRecord();
    void Enter(TSList &object);
    std::size_t BytesKnownToFollow() const noexcept;

    std::size_t Read(void *buffer, std::size_t count) override;
    std::size_t Write(const void *buffer, std::size_t count) override;
    std::int64_t Seek(std::int64_t offset, std::int32_t origin) override;

private:
    NodeHolder<TSList> ReadReference();
    TSList *ReferableItem(std::int32_t index) const;
    void PayForSharing(const TSList &item);
    bool IsOpen(const TSList *object) const;

    CtkStream &stream_;
    std::size_t length_;
    std::int32_t firstReferable_;
    std::int32_t firstNumber_;
    LoadSession *former_;
    std::size_t bytesRead_ = 0;
    std::size_t shareSteps_ = 0;
    std::size_t depth_ = 0;
    std::array<const TSList *, MaxDepth> open_{};
    std::vector<TSList *> entered_; ///< the table's items from firstNumber_ on, reached in one step
};

} // namespace Persistence
