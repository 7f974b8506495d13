// The calling thread's error slot: one error, the newest, and a count of reports.
#pragma once

#include <boost/thread/recursive_mutex.hpp>
#include <string>

#include "CtkObject.h"

namespace tkErrors {

class CtkHRESULTErrorCache : public CtkSystemObject {
public:
    static constexpr unsigned ClassId = 50;

    /// What the slot holds.
    struct Error {
        std::uint32_t Code = 0;
        std::string Text;
        std::int32_t Serial = 0;
        std::string FunctionName;
    };

    CtkHRESULTErrorCache();
    std::uint32_t GetClassId() const override;

    /// Puts an error into the slot; a null text has the message composed from the code.
    void Report(std::uint32_t code, const char *text, const char *functionName);
    /// Takes the error out. False when the slot is empty.
    bool Take(Error &error);
    /// Copies the error and leaves it. False when the slot is empty; the copy is empty then.
    bool Peek(Error &error);
    /// Empties the slot; the count stays.
    void Clear();
    /// Empties the slot and takes 1 off the count.
    void Retract();
    void ResetCount();
    std::int32_t GetCount();

    /// The calling thread's slot, made at the thread's first use and gone with the thread.
    static CtkHRESULTErrorCache &OfThisThread();

private:
    std::uint32_t code_ = 0;
    std::string text_;
    std::int32_t serial_ = 0;
    std::string functionName_;
    std::int32_t count_ = 0;
    bool valid_ = false;
    boost::recursive_mutex lock_;
};

/// The message of a report without a text of its own. With the origin it ends in a NUL that counts in its length.
std::string ComposeMessage(std::uint32_t code, bool withOrigin);

} // namespace tkErrors
