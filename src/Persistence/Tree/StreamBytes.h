// Whole values to and from a stream: a short read or write is a failure, whatever class the stream is of.
#pragma once

#include <type_traits>

#include "CtkExceptionObject.h"
#include "CtkStream.h"

namespace Persistence {

inline constexpr const char *ReadTooShort = "Read attempt beyond the end of the stream while loading TBuffer object.";
inline constexpr const char *WriteTooShort = "Stream too small to take up the contents of the TBuffer object.";

/// Throw CtkExceptionObject when not all bytes were moved.
inline void ReadExactly(CtkStream &stream, void *target, std::size_t count) {
    if (stream.Read(target, count) < count)
        throw CtkExceptionObject(ReadTooShort);
}
inline void WriteExactly(CtkStream &stream, const void *source, std::size_t count) {
    if (stream.Write(source, count) < count)
        throw CtkExceptionObject(WriteTooShort);
}

/// A value as the memory holds it.
template <class T>
T ReadValue(CtkStream &stream) {
    static_assert(std::is_trivially_copyable_v<T>);
    T value{};
    ReadExactly(stream, &value, sizeof value);
    return value;
}
template <class T>
void WriteValue(CtkStream &stream, const T &value) {
    static_assert(std::is_trivially_copyable_v<T>);
    WriteExactly(stream, &value, sizeof value);
}

} // namespace Persistence
