#include "Interface/ErrorCache.h"

#include <boost/thread/lock_types.hpp>
#include <boost/thread/tss.hpp>
#include <memory>
#include <utility>

#include "ErrorStringDatabase.h"

namespace tkErrors {
namespace {

using Guard = boost::unique_lock<boost::recursive_mutex>;

/// Lives until the process ends: threads and static objects may report at any time.
boost::thread_specific_ptr<CtkHRESULTErrorCache> &Slots() {
    static auto *slots = new boost::thread_specific_ptr<CtkHRESULTErrorCache>;
    return *slots;
}

} // namespace

CtkHRESULTErrorCache::CtkHRESULTErrorCache() {
    AddClass(ClassId);
}

std::uint32_t CtkHRESULTErrorCache::GetClassId() const {
    return WhileValid(ClassId);
}

void CtkHRESULTErrorCache::Report(std::uint32_t code, const char *text, const char *functionName) {
    const Guard guard(lock_);
    Clear();
    code_ = code;
    serial_ = count_;
    count_ = static_cast<std::int32_t>(static_cast<std::uint32_t>(count_) + 1u);
    text_ = text != nullptr ? std::string(text) : ComposeMessage(code, true);
    if (functionName != nullptr)
        functionName_ = functionName;
    valid_ = true;
}

bool CtkHRESULTErrorCache::Take(Error &error) {
    const Guard guard(lock_);
    if (!Peek(error))
        return false;
    Clear();
    return true;
}

bool CtkHRESULTErrorCache::Peek(Error &error) {
    const Guard guard(lock_);
    error = valid_ ? Error{code_, text_, serial_, functionName_} : Error{};
    return valid_;
}

void CtkHRESULTErrorCache::Clear() {
    const Guard guard(lock_);
    code_ = 0;
    text_.clear();
    serial_ = 0;
    functionName_.clear();
    valid_ = false;
}

void CtkHRESULTErrorCache::Retract() {
    const Guard guard(lock_);
    Clear();
    count_ = static_cast<std::int32_t>(static_cast<std::uint32_t>(count_) - 1u);
}

void CtkHRESULTErrorCache::ResetCount() {
    const Guard guard(lock_);
    count_ = 0;
}

std::int32_t CtkHRESULTErrorCache::GetCount() {
    const Guard guard(lock_);
    return count_;
}

CtkHRESULTErrorCache &CtkHRESULTErrorCache::OfThisThread() {
    auto &slots = Slots();
    if (slots.get() == nullptr) {
        auto fresh = std::make_unique<CtkHRESULTErrorCache>();
        slots.reset(fresh.get());
        static_cast<void>(fresh.release()); // the thread holds it now
    }
    return *slots;
}

std::string ComposeMessage(std::uint32_t code, bool withOrigin) {
    std::string message;
    if (const char *text = CErrorStringDatabase::Instance().Lookup(code))
        message = text;
    else
        message = "Error code " + std::to_string(code & 0xFFFu) + " (no extended information) occured";
    message += ".";
    if (withOrigin) {
        message += " Error from Sub-Facility Nr. " + std::to_string((code >> 12) & 0xFFu) + " of Facility Nr. " +
                   std::to_string((code >> 20) & 0x1Fu);
        message.push_back('\0'); // Required: sizes reported for a composed message count this closing NUL.
    }
    return message;
}

} // namespace tkErrors
