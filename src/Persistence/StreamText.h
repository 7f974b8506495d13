// Strings of bytes in a stream.
#pragma once

#include <cstdlib>
#include <memory>

#include "CtkStream.h"

namespace Persistence {

struct FreeText {
    void operator()(char *text) const { std::free(text); }
};
/// A text from malloc.
using StreamText = std::unique_ptr<char, FreeText>;

/// Writes a length in 8 bytes, the closing NUL included, and then the bytes; null has the length 0. Throw
/// CtkExceptionObject when the stream is full. The big-endian form has the low four bytes of the length turned round.
void WriteCString(CtkStream &stream, const char *text);
void WriteCStringBigEndian(CtkStream &stream, const char *text);

/// Read a length in 4 bytes and then as many bytes; null for the length 0. Throw CtkExceptionObject when the stream
/// ends too early.
StreamText ReadCString(CtkStream &stream);
StreamText ReadCStringBigEndian(CtkStream &stream);

} // namespace Persistence
