#include "Persistence/Tree/ObjectStream.h"

#include "Persistence/Tree/LoadSession.h"
#include "Persistence/Tree/StreamBytes.h"
#include "Persistence/Tree/StreamRegistry.h"

namespace Persistence {
namespace {

constinit TSList *objectTable = nullptr;

/// Takes the numbers off a tree when it ends, also when an exception passes.
class NumbersOf {
public:
    explicit NumbersOf(TSList &tree) noexcept : tree_(tree) {}
    NumbersOf(const NumbersOf &) = delete;
    NumbersOf &operator=(const NumbersOf &) = delete;
    ~NumbersOf() { tree_.ClearStreamIndex(); }

private:
    TSList &tree_;
};

} // namespace

TableScope::TableScope(TSList *table) noexcept : table_(table), former_(objectTable) {
    objectTable = table;
}

TableScope::~TableScope() {
    objectTable = former_;
}

TSList *TableScope::Current() noexcept {
    return objectTable;
}

void WriteObject(CtkStream &stream, TSList *object) {
    const TStreamRec *record = object == nullptr ? nullptr : FindByClassId(object->GetClassId());
    if (record == nullptr)
        throw CtkExceptionObject("Attempt to store unregistered Class.");
    if (objectTable != nullptr && object->GetStreamIndex() >= 0) {
        WriteValue(stream, BackReference);
        WriteValue(stream, object->GetStreamIndex());
        return;
    }
    WriteValue(stream, record->StreamId);
    object->Store(stream);
}

NodeHolder<TSList> ReadObject(CtkStream &stream, std::size_t length, std::int32_t firstReferable) {
    if (LoadSession *session = LoadSession::Of(stream))
        return session->ReadRecord();
    LoadSession session(stream, length, firstReferable);
    return session.ReadRoot();
}

std::int32_t StoreTree(CtkStream &stream, TSList &object) {
    object.ClearStreamIndex();
    const NumbersOf numbers(object);
    TSList table;
    TableScope scope(&table);
    scope.Clear();
    try {
        WriteObject(stream, &object);
    } catch (const CtkObject &) {
        return 0;
    }
    return 1;
}

NodeHolder<TSList> LoadTree(CtkStream &stream, std::size_t length) {
    TSList table;
    TableScope scope(&table);
    scope.Clear();
    return ReadObject(stream, length);
}

NodeHolder<TSList> ReplicateTree(TSList *object) {
    TSList table;
    TableScope scope(&table);
    scope.Clear();
    if (object == nullptr)
        return ReplicateObject(nullptr);
    const NumbersOf numbers(*object);
    return ReplicateObject(object);
}

NodeHolder<TSList> ReplicateObject(TSList *source) {
    if (source == nullptr)
        throw CtkExceptionObject("Cannot replicate NULL pointer.");
    if (objectTable != nullptr && source->GetStreamIndex() >= 0) {
        // Required: the copy gets a reference, but the list that asked for it gets a null child.
        objectTable->ValueAt(source->GetStreamIndex())->Share();
        return {};
    }
    const TStreamRec *record = FindByClassId(source->GetClassId());
    if (record == nullptr || !record->IsReplicated)
        return {};
    NodeHolder<TSList> copy(record->Make());
    copy->Replicate(*source);
    return copy;
}

void NumberStored(TSList &object, TSList &entry) {
    if (objectTable == nullptr)
        return;
    const std::int32_t number = objectTable->GetCount();
    objectTable->AddTail(&entry);
    object.SetStreamIndex(number);
}

void NumberLoaded(TSList &object) {
    if (objectTable == nullptr)
        return;
    if (LoadSession *session = LoadSession::Current())
        session->Enter(object);
    objectTable->AddTail(&object);
}

std::size_t BytesKnownToFollow(const CtkStream &stream) {
    const LoadSession *session = LoadSession::Of(stream);
    return session == nullptr ? UnknownLength : session->BytesKnownToFollow();
}

} // namespace Persistence
