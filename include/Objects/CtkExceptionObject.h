/* The exception of the containers and the object tree. It is no std::exception; it is thrown and caught by value. */
#ifndef ORV_OBJECTS_CTK_EXCEPTION_OBJECT_H
#define ORV_OBJECTS_CTK_EXCEPTION_OBJECT_H
#ifdef __cplusplus

#include "Objects/CtkCString.h"
#include "Objects/CtkObject.h"

class ORV_API CtkExceptionObject : public CtkObject {
public:
    static constexpr unsigned ClassId = 5;

    /// A code word and its text, as tables of errors hold them.
    struct Error {
        std::int32_t Word;
        const char *Text;
    };

    /// From a text alone: code word 0, no file, line 0.
    explicit CtkExceptionObject(const char *text);
    /// From the parts of a code word, without a text. file is kept as a pointer and may be null.
    CtkExceptionObject(std::int16_t number, std::uint32_t subFacility, std::uint32_t facility, std::uint32_t severity,
                       bool failure, const char *file, std::int32_t line);
    CtkExceptionObject(const Error &error, const char *file, std::int32_t line);
    /// A copy that cannot get memory for its text has none, so that catching by value never fails.
    CtkExceptionObject(const CtkExceptionObject &other) noexcept;
    CtkExceptionObject &operator=(const CtkExceptionObject &other) noexcept;

    std::uint32_t GetClassId() const override;
    virtual void Set(std::int16_t number, std::uint32_t subFacility, std::uint32_t facility, std::uint32_t severity,
                     bool failure, const char *file, std::int32_t line);
    virtual void Set(std::int32_t word, const char *text, const char *file, std::int32_t line);

    std::int32_t GetWord() const noexcept { return word_; }
    std::int32_t GetLine() const noexcept { return line_; }
    /// Never null.
    const char *GetText() const { return text_.GetText(); }
    /// Null when none is known.
    const char *GetFile() const noexcept { return file_; }

private:
    void SetText(const char *text) noexcept;

    std::int32_t word_ = 0;
    std::int32_t line_ = 0;
    CtkCString text_;
    const char *file_ = nullptr;
};

#endif
#endif
