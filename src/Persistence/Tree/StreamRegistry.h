// Which classes can be stored and loaded, and under which number each stands in a stream.
#pragma once

#include "Persistence/Tree/TSList.h"

/// One class; there is one such record per class for the life of the process.
struct TStreamRec {
    std::uint32_t StreamId;
    std::uint32_t ClassId;
    /// A new object of the class, with one reference.
    TSList *(*Make)();
    /// What has to be done once a whole object has been loaded; null for nothing. Throws CtkExceptionObject for an
    /// object that can't be used.
    void (*Finish)(TSList &object);
    /// True for the classes that a replication copies.
    bool IsReplicated;
};

namespace Persistence {

/// Enters a class under a class number. Throws CtkExceptionObject "Duplicate Stream ID registered." when the record's
/// ClassId, as it stands before, is the StreamId of a class that is entered.
void RegisterStreamClass(TStreamRec &record, std::uint32_t classId);
/// Forgets all classes.
void RemoveStreamRegistry() noexcept;

/// Null when there is none.
const TStreamRec *FindByClassId(std::uint32_t classId);
const TStreamRec *FindByStreamId(std::uint32_t streamId);

} // namespace Persistence
