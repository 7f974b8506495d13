// The texts that exported functions hand to their reports instead of a composed message, each written once.
#pragma once

namespace Interface::ErrorTexts {

inline constexpr char InvalidPlaneIndex[] = "Invalid Plane Index";
inline constexpr char InvalidXCoordinate[] = "Invalid X coordinate";
inline constexpr char InvalidYCoordinate[] = "Invalid Y coordinate";
inline constexpr char InvalidInputArray[] = "Invalid input Array";
inline constexpr char NullDataPointer[] = "Data pointer must not be NULL";
inline constexpr char InconsistentData[] = "Inconsistent data";
inline constexpr char InvalidDimensions[] = "Invalid dimension parameters";
inline constexpr char XPitchTooSmall[] = "X Pitch too small";
inline constexpr char YPitchTooSmall[] = "Y Pitch too small";
inline constexpr char ZPitchTooSmall[] = "Z Pitch too small";
inline constexpr char InvalidSequenceOrder[] = "Sequence order is invalid";

} // namespace Interface::ErrorTexts
