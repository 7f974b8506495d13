/* A sequence of bytes with a position, as the object tree is stored to and loaded from. */
#ifndef ORV_OBJECTS_CTK_STREAM_H
#define ORV_OBJECTS_CTK_STREAM_H
#ifdef __cplusplus

#include "Objects/CtkObject.h"

class ORV_API CtkStream : public CtkObject {
public:
    static constexpr std::uint32_t Family = 21;

    std::uint32_t GetFamily() const override;

    /// Both return the number of bytes that were moved. What happens when it is short of count is each class's own.
    virtual std::size_t Read(void *buffer, std::size_t count) = 0;
    virtual std::size_t Write(const void *buffer, std::size_t count) = 0;
    /// Moves the position and returns it. Origin 0 is the start; 1 and 2 are the end and the present position, which
    /// is which is each class's own.
    virtual std::int64_t Seek(std::int64_t offset, std::int32_t origin) = 0;
};

#endif
#endif
