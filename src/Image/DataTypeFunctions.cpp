// The exported questions about a data type word.
#include "Image/DataType.h"
#include "ImageQueries.h"

intptr_t BitsPerPixel(TDataType type) {
    return Image::BitsOf(type);
}

intptr_t BytesPerPixel(TDataType type) {
    return Image::BytesOf(type);
}

bool IsSignedDatatype(TDataType type) {
    return (type & DataTypeSigned) != 0;
}

bool IsFloatDatatype(TDataType type) {
    return (type & DataTypeFloat) != 0;
}

bool GetDatatypeMinMaxVal(TDataType type, int64_t *min, int64_t *max) {
    const intptr_t bits = Image::BitsOf(type);
    if (bits == 0 || bits > 32 || IsFloatDatatype(type) || min == nullptr || max == nullptr)
        return false;
    const int64_t largest = (int64_t{1} << bits) - 1;
    const bool isSigned = IsSignedDatatype(type);
    *max = isSigned ? largest / 2 : largest;
    *min = isSigned ? -*max - 1 : 0;
    return true;
}

intptr_t NumPlanesNeededPerImage(int32_t model) {
    constexpr int32_t lowestModel = -2;
    constexpr int32_t highestModel = 11;
    if (model < lowestModel || model > highestModel)
        return -1;
    return model == lowestModel || model >= 2 ? 3 : 1;
}
