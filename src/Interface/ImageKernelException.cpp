#include "Interface/ImageKernelException.h"

namespace ErrorHandling {
namespace {

const std::string FacilityName = "Orvane";
const std::string SubFacilityName = "Image Kernel";

} // namespace

const char *CImageKernelException::GetFacilityName() const {
    return FacilityName.c_str();
}

const char *CImageKernelException::GetSubFacilityName() const {
    return SubFacilityName.c_str();
}

} // namespace ErrorHandling
