// The texts that exported functions hand to their reports instead of a composed message, each written once.
#pragma once

namespace Interface::ErrorTexts {

inline constexpr char InvalidPlaneIndex[] = "Invalid Plane Index";
inline constexpr char InvalidXCoordinate[] = "Invalid X coordinate";
inline constexpr char InvalidYCoordinate[] = "Invalid Y coordinate";
inline constexpr char InvalidInputArray[] = "Invalid input Array";
inline constexpr char InvalidTargetDimension[] = "Invalid Target Dimension";
inline constexpr char ZeroSizedArea[] = "Zero sized areas cannot be processed";
inline constexpr char NullDataPointer[] = "Data pointer must not be NULL";
inline constexpr char InconsistentData[] = "Inconsistent data";
inline constexpr char InvalidDimensions[] = "Invalid dimension parameters";
inline constexpr char XPitchTooSmall[] = "X Pitch too small";
inline constexpr char YPitchTooSmall[] = "Y Pitch too small";
inline constexpr char ZPitchTooSmall[] = "Z Pitch too small";
inline constexpr char InvalidSequenceOrder[] = "Sequence order is invalid";
inline constexpr char OtherPlatformOnly[] = "Only supported on the Windows 32 Bit platform";
inline constexpr char NoLongerImplemented[] = "The function you called is no longer implemented in the current build";
inline constexpr char UnknownNormalizationMode[] = "Unknown Normalization Mode specified";
inline constexpr char EmptyTargetImage[] =
    "Operation failed because target image would have width and/or height of 0";

inline constexpr char NegativeIndex[] = "Negative indices are not allowed";
inline constexpr char IndexTooHigh[] = "Index too high or object invalid";
inline constexpr char ListDimensionsDiffer[] = "Pixel list dimensions do not match";
inline constexpr char DimensionTooLow[] = "Dimension too low";
inline constexpr char DimensionTooHigh[] = "Dimension too high";
inline constexpr char DimensionOutOfRange[] = "Pixel list dimension is either too high or too low";
inline constexpr char NotEnoughPixels[] = "Not enough pixels in pixel list";
inline constexpr char PixelDataInaccessible[] = "Access violation during access to input pixel data";
inline constexpr char NoOutputImage[] = "Unable to create output image";
inline constexpr char RectangleOutside[] = "Specified rectangle lies completely outside the image";
inline constexpr char NoProjectionVector[] = "projection vector missing";
inline constexpr char SeparationNotPositive[] = "separation must be positive";
inline constexpr char SeparationDimension[] = "pixel list needs at least dimension 2";
inline constexpr char UnsupportedAntiAlias[] = "Unsupported anti-alias mode";

} // namespace Interface::ErrorTexts
