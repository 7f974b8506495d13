#include "Persistence/StreamClasses.h"

#include <array>
#include <atomic>

#include "Image/ImageObject.h"
#include "Persistence/LoadedImage.h"

namespace Persistence {
namespace {

template <class Node>
TSList *Make() {
    return new Node;
}

constexpr std::uint32_t NotYet = CtkObject::NoId;

// Views are not among them: an image of views has to be duplicated before it can be stored.
constinit std::array<TStreamRec, StreamClassCount> records = {{
    {4000, NotYet, Make<TSList>, nullptr, true},
    {4001, NotYet, Make<TBuffer>, nullptr, true},
    {10000, NotYet, Make<TImageObject>, FinishLoadedImage, true},
    {10001, NotYet, Make<TImagePlane>, nullptr, true},
    {10002, NotYet, Make<TSimpleDIB>, FinishLoadedImage, false},
    {10003, NotYet, Make<TDIBInfo>, nullptr, false},
}};
constexpr std::array<std::uint32_t, StreamClassCount> classIds = {
    TSList::ClassId,      TBuffer::ClassId,    TImageObject::ClassId,
    TImagePlane::ClassId, TSimpleDIB::ClassId, TDIBInfo::ClassId,
};

[[gnu::constructor]] void RegisterAtLoad() {
    RegisterStreamClasses();
}

} // namespace

void RegisterStreamClasses() {
    static constinit std::atomic<int> calls = 0;
    if (calls.fetch_add(1) > 0)
        return;
    for (std::size_t i = 0; i < records.size(); ++i)
        RegisterStreamClass(records[i], classIds[i]);
}

} // namespace Persistence
