// The texts of error codes by number, sub-facility and facility. The tables of the base layer are entered while the
// library loads. Entering is not for several threads at once; looking up is.
#pragma once

#include <atomic>
#include <map>
#include <string>

#include "CtkHRESULT.h"

namespace tkErrors {

class CErrorStringDatabase {
public:
    CErrorStringDatabase() = default;
    CErrorStringDatabase(const CErrorStringDatabase &) = delete;
    CErrorStringDatabase &operator=(const CErrorStringDatabase &) = delete;
    virtual ~CErrorStringDatabase();

    /// The text of a code, or null. Severity and failure bit do not count. The pointer is good until the text is
    /// replaced or the process ends.
    const char *Lookup(std::uint32_t code) const;

    /// Enters a text. False, with nothing changed, when there is one already and replace is false, or for a null
    /// text.
    bool Register(std::int16_t number, std::uint32_t subFacility, std::uint32_t facility, const char *text,
                  bool replace);
    bool Register(std::uint32_t word, const char *text, bool replace);

    /// The one database of the process.
    static CErrorStringDatabase &Instance();

private:
    using Texts = std::map<std::uint32_t, std::string>;

    Texts texts_;
    /// The entry found last; its key and its text travel together, whatever other threads look up meanwhile.
    mutable std::atomic<const Texts::value_type *> lastFound_{nullptr};
};

/// Enters a table into the database of the process. The first text of a code wins.
class CErrorStringRegistrator {
public:
    static constexpr std::int32_t EndOfTable = 65535;
    static constexpr int MostRows = 4096;

    struct Row {
        std::int32_t Number;
        const char *Text;
    };

    /// The table ends at a row with EndOfTable or without a text, or after MostRows rows.
    CErrorStringRegistrator(std::uint32_t subFacility, std::uint32_t facility, const Row *table);
    CErrorStringRegistrator(const CErrorStringRegistrator &) = delete;
    CErrorStringRegistrator &operator=(const CErrorStringRegistrator &) = delete;
    /// The texts stay.
    virtual ~CErrorStringRegistrator();

private:
    void RegisterRows() const;

    std::uint32_t subFacility_;
    std::uint32_t facility_;
    const Row *table_;
};

} // namespace tkErrors
