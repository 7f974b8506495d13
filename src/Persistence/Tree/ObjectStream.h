// Storing, loading and replicating trees: one record per object, its class's number and then its body. An object that
// comes again is a back reference to its number. Numbers count the objects in the order of their records, for the
// writer as for the reader. One such operation may run in a process at a time.
#pragma once

#include <limits>

#include "Persistence/Tree/NodeHolder.h"

namespace Persistence {

/// What a stream is told when its length is not known.
inline constexpr std::size_t UnknownLength = std::numeric_limits<std::size_t>::max();

/// Stands where another record has the number of its class.
inline constexpr std::uint32_t BackReference = 0;

/// Makes a table the process's current object table, and puts the former one back at its end. Without a table nothing
/// is numbered and what is shared is stored once per path.
class TableScope {
public:
    explicit TableScope(TSList *table) noexcept;
    TableScope(const TableScope &) = delete;
    TableScope &operator=(const TableScope &) = delete;
    ~TableScope();

    /// Has the table stay the current one.
    void Keep() noexcept { former_ = table_; }
    /// Has no table be the current one afterwards.
    void Clear() noexcept { former_ = nullptr; }

    static TSList *Current() noexcept;

private:
    TSList *table_;
    TSList *former_;
};

/// Writes the record of an object, or a back reference to it. Throws CtkExceptionObject for null and for a class that
/// can't be stored.
void WriteObject(CtkStream &stream, TSList *object);

/// Reads one record. Gives a new object, or a shared one for a back reference. Throws CtkExceptionObject for whatever
/// can't be read; what was read up to there is released.
/// length         what is known to follow in the stream, so that blocks of it can be made at once.
/// firstReferable of objects with numbers below this one no reference is read.
NodeHolder<TSList> ReadObject(CtkStream &stream, std::size_t length = UnknownLength, std::int32_t firstReferable = 0);

/// WriteObject with a table of its own. 1, or 0 when an exception of the tree has ended it.
std::int32_t StoreTree(CtkStream &stream, TSList &object);
/// ReadObject with a table of its own.
NodeHolder<TSList> LoadTree(CtkStream &stream, std::size_t length = UnknownLength);
/// A deep copy, with a table of its own; null for the classes that are not copied.
NodeHolder<TSList> ReplicateTree(TSList *object);
/// The copy of one node and all below it. Null for the classes that are not copied, and for a node that has a number
/// in the current table. Throws CtkExceptionObject for null.
NodeHolder<TSList> ReplicateObject(TSList *source);

/// What the bodies of nodes call. The first gives an object its number; the second enters one that is being loaded.
void NumberStored(TSList &object, TSList &entry);
void NumberLoaded(TSList &object);
/// Bytes that follow in the stream that is being read, or UnknownLength.
std::size_t BytesKnownToFollow(const CtkStream &stream);

} // namespace Persistence
