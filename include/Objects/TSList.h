/* The node of the persistable tree: a list of counted children. A count is deep: sharing a node shares all nodes
 * below it, once per path, and releasing it releases them. Any number of threads may share and release; the lists
 * themselves belong to one thread until the tree is built. */
#ifndef ORV_OBJECTS_TSLIST_H
#define ORV_OBJECTS_TSLIST_H
#ifdef __cplusplus

#include <atomic>

#include "Objects/CtkDLList.h"
#include "Objects/CtkStream.h"

class TSList;
extern template class CtkDLList<TSList *>;

class ORV_API TSList : public CtkDLList<TSList *> {
public:
    static constexpr unsigned ClassId = 0;
    static constexpr std::uint32_t NodeTag = 21;
    static constexpr std::int32_t NoStreamIndex = -1;

    /// A node with one reference for its maker and no children.
    TSList();
    /// Never touches the children: they have lost this node's references one by one before.
    ~TSList() override = default;

    std::uint32_t GetClassId() const override;

    /// Takes a reference to this node, then to all below it. Result: the own count.
    virtual std::int32_t Share();
    /// Reads the body: the number of children, then a record for each. Throws CtkExceptionObject for a class that
    /// can't be loaded, and when the stream ends too early; children read up to there stay children.
    virtual void Load(CtkStream &stream);
    /// Gives a reference to all nodes below back, then the own one. Result: the own count as this call left it; at 0
    /// the node is gone, and of several calls that race for the last references exactly one sees it.
    virtual std::int32_t Release();
    /// Makes this new node a copy of the source, which must have the same tag; else throws CtkExceptionObject. A
    /// child of a class that is not copied becomes a null child.
    virtual void Replicate(TSList &source);
    /// Writes the body as Load reads it. Throws CtkExceptionObject for a child that is null or of a class that can't
    /// be stored, and when the stream is full.
    virtual void Store(CtkStream &stream);
    /// Forgets the number in a stream, here and in all nodes below. A child that throws ends the walk silently.
    virtual void ClearStreamIndex();

    /// Brings a node that is being built up back to its first state: no number, valid guards.
    void Reset() noexcept;
    /// True as long as both guard words stand. They are cleared when a node that stands for memory ends.
    bool HasValidGuards() const noexcept;

    std::int32_t GetStreamIndex() const noexcept { return streamIndex_; }
    void SetStreamIndex(std::int32_t index) noexcept { streamIndex_ = index; }
    std::uint32_t GetNodeTag() const noexcept { return tag_; }
    /// The count at this moment; other threads may be changing it.
    std::int32_t GetRefCount() const noexcept { return refCount_.load(std::memory_order_relaxed); }

protected:
    void ClearGuards() noexcept;

private:
    std::int32_t streamIndex_;
    std::uint32_t guard1_;
    std::uint32_t guard2_;
    [[maybe_unused]] std::uint32_t reserved_ = 0;
    std::uint32_t tag_ = NodeTag;
    std::atomic<std::int32_t> refCount_{1};
};

#endif
#endif
