// Interface ids: 16 bytes, blank padded, compared as bytes.
#pragma once

#include <cstring>

#include "Interfaces.h"

namespace Interface {

inline constexpr std::size_t InterfaceIdSize = 16;

/// True when id (16 bytes, no terminator needed) names the interface. Two words each: a call to compare so few bytes
/// would cost more than the comparison, and every query compares several times.
inline bool IsInterfaceId(const char *id, const char *name) {
    static_assert(InterfaceIdSize == 2 * sizeof(std::uint64_t));
    std::uint64_t asked[2];
    std::uint64_t known[2];
    std::memcpy(asked, id, InterfaceIdSize);
    std::memcpy(known, name, InterfaceIdSize);
    return ((asked[0] ^ known[0]) | (asked[1] ^ known[1])) == 0;
}

/// The id under which an interface is queried.
template <class I>
inline constexpr const char *InterfaceIdOf = nullptr;
template <>
inline constexpr const char *InterfaceIdOf<pOLE::IUnknown> = ORV_IID_IUNKNOWN;
template <>
inline constexpr const char *InterfaceIdOf<pOLE::IImageVPA> = ORV_IID_IIMAGEVPA;
template <>
inline constexpr const char *InterfaceIdOf<pOLE::IImageDIB> = ORV_IID_IIMAGEDIB;
template <>
inline constexpr const char *InterfaceIdOf<pOLE::IColorModelInfo> = ORV_IID_ICOLORMODELINFO;
template <>
inline constexpr const char *InterfaceIdOf<pOLE::IIPPIProxy> = ORV_IID_IIPPIPROXY;

/// Statuses of QueryInterface and its like.
inline constexpr std::int32_t StatusOk = 0;
inline constexpr std::int32_t StatusNoInterface = static_cast<std::int32_t>(0x80000011u);
inline constexpr std::int32_t StatusParameter = static_cast<std::int32_t>(0x80000002u);
inline constexpr std::int32_t StatusPlaneIndex = static_cast<std::int32_t>(0x80000006u);
inline constexpr std::int32_t StatusTreeFailure = -1;

} // namespace Interface
