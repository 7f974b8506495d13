/* An owned string of bytes. Its text comes from malloc and ends in a NUL that does not count; it may hold other NULs.
 * A string that cannot get its memory throws std::bad_alloc and stays as it was. */
#ifndef ORV_OBJECTS_CTK_CSTRING_H
#define ORV_OBJECTS_CTK_CSTRING_H
#ifdef __cplusplus

#include <string_view>

#include "ORVTypes.h"

class ORV_API CtkCString {
public:
    /// The characters that end a line.
    static constexpr const char *LineEnds = "\n\r";

    CtkCString() noexcept = default;
    /// A null text makes an empty string.
    CtkCString(const char *text);
    CtkCString(const CtkCString &other);
    CtkCString(CtkCString &&other) noexcept;
    CtkCString &operator=(const CtkCString &other);
    CtkCString &operator=(CtkCString &&other) noexcept;
    virtual ~CtkCString();

    virtual std::size_t GetLength() const;
    /// Never null; good until the string changes.
    virtual const char *GetText() const;
    virtual bool IsEmpty() const;
    /// Replaces the text. A null text empties the string.
    virtual void Set(const char *text);
    virtual void Set(const char *text, std::size_t length);
    virtual void Append(const char *text);
    virtual void Append(const char *text, std::size_t length);
    virtual void Clear();
    /// Below 0, 0 or above 0, by unsigned bytes; a string sorts behind each of its beginnings.
    virtual int Compare(const CtkCString &other) const;
    /// The position of the first such character at or behind start, or -1.
    virtual std::ptrdiff_t Find(char character, std::size_t start) const;
    /// Reads the next line from position on into line and moves the position behind it. Each run of line ends
    /// separates two lines, so that no line is empty. False, with nothing changed, when none is left.
    virtual bool ReadLine(std::size_t &position, CtkCString &line) const;

    friend bool operator==(const CtkCString &a, const CtkCString &b) { return a.Compare(b) == 0; }
    friend bool operator<(const CtkCString &a, const CtkCString &b) { return a.Compare(b) < 0; }

private:
    std::string_view View() const noexcept { return {text_ == nullptr ? "" : text_, length_}; }
    void Replace(std::string_view first, std::string_view second);

    std::size_t length_ = 0;
    char *text_ = nullptr;
};

#endif
#endif
