// The exported face of the calling thread's error slot.
#include <algorithm>
#include <cstring>

#include "ErrorHandling.h"
#include "ErrorStringDatabase.h"
#include "Interface/ErrorCache.h"

namespace {

using tkErrors::CtkHRESULTErrorCache;

/// Runs a body on the calling thread's slot. No exception leaves the family: a failure gives the failure value.
template <class Result, class Body>
Result OnThisThread(Result failure, Body &&body) {
    try {
        return body(CtkHRESULTErrorCache::OfThisThread());
    } catch (...) {
        return failure;
    }
}

template <class Body>
void OnThisThread(Body &&body) {
    OnThisThread(false, [&body](CtkHRESULTErrorCache &cache) {
        body(cache);
        return true;
    });
}

template <class Value>
void StoreIfWanted(Value *out, Value value) {
    if (out != nullptr)
        *out = value;
}

/// Stores up to room - 1 characters and a NUL; nothing at all when that leaves no character. Result: characters
/// stored.
std::uint64_t StoreText(char *buffer, const std::string &text, std::uint64_t room) {
    const std::uint64_t count = room == 0 ? 0 : room - 1;
    if (count > 0) {
        std::strncpy(buffer, text.c_str(), count);
        buffer[count] = '\0';
    }
    return count;
}

void StoreTakenText(char *buffer, const std::string &text, std::uint64_t &size) {
    size = buffer == nullptr ? 0 : StoreText(buffer, text, std::min<std::uint64_t>(text.size() + 1, size));
}

// Required: a look at the slot counts without the closing NUL and so cuts the last character, even in ample buffers.
void StorePeekedText(char *buffer, const std::string &text, std::uint64_t &size) {
    size = buffer == nullptr ? text.size() : StoreText(buffer, text, std::min<std::uint64_t>(text.size(), size));
}

} // namespace

const char *GetORVErrorStringPtr(uint32_t code) {
    return tkErrors::CErrorStringDatabase::Instance().Lookup(code);
}

bool GetLastORVError(uint32_t *errorCode, int64_t *serial, char *text, uint64_t *textSize, char *functionName,
                     uint64_t *functionNameSize) {
    if (textSize == nullptr || functionNameSize == nullptr)
        return false;
    return OnThisThread(false, [&](CtkHRESULTErrorCache &cache) {
        CtkHRESULTErrorCache::Error error;
        if (*textSize == 0 || *functionNameSize == 0) {
            cache.Peek(error);
            if (*textSize == 0)
                *textSize = error.Text.size() + 1;
            if (*functionNameSize == 0)
                *functionNameSize = error.FunctionName.size() + 1;
            return true;
        }
        if (!cache.Take(error))
            return false;
        StoreTakenText(text, error.Text, *textSize);
        StoreTakenText(functionName, error.FunctionName, *functionNameSize);
        StoreIfWanted(errorCode, error.Code);
        StoreIfWanted(serial, std::int64_t{error.Serial});
        return true;
    });
}

bool PeekLastORVError(uint32_t *errorCode, int64_t *, char *text, uint64_t *textSize, char *functionName,
                      uint64_t *functionNameSize) {
    if (textSize == nullptr || functionNameSize == nullptr)
        return false;
    return OnThisThread(false, [&](CtkHRESULTErrorCache &cache) {
        CtkHRESULTErrorCache::Error error;
        if (!cache.Peek(error))
            return false;
        StorePeekedText(text, error.Text, *textSize);
        StorePeekedText(functionName, error.FunctionName, *functionNameSize);
        StoreIfWanted(errorCode, error.Code);
        return true;
    });
}

void FlushORVErrorCache() {
    OnThisThread([](CtkHRESULTErrorCache &cache) { cache.Clear(); });
}

intptr_t GetORVErrorCount() {
    return OnThisThread<intptr_t>(0, [](CtkHRESULTErrorCache &cache) { return intptr_t{cache.GetCount()}; });
}

void RetractLastORVError() {
    OnThisThread([](CtkHRESULTErrorCache &cache) { cache.Retract(); });
}

void ResetORVErrorCount() {
    OnThisThread([](CtkHRESULTErrorCache &cache) { cache.ResetCount(); });
}

void ReportORVError(uint32_t code, const char *functionName) {
    OnThisThread([&](CtkHRESULTErrorCache &cache) { cache.Report(code, nullptr, functionName); });
}

void ReportORVErrorEx(uint32_t code, const char *text, const char *functionName) {
    OnThisThread([&](CtkHRESULTErrorCache &cache) { cache.Report(code, text, functionName); });
}

void PauseORVErrorLogging() {}

void ResumeORVErrorLogging() {}
