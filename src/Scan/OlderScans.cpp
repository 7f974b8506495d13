// The entry points of an older interface, which only report.
#include "ErrorHandling.h"
#include "ImageScan.h"
#include "Interface/ErrorTexts.h"

namespace {

std::int64_t Refuse(const char *functionName, std::int64_t result) {
    ReportORVErrorEx(ErrNotPossible, Interface::ErrorTexts::OtherPlatformOnly, functionName);
    return result;
}

} // namespace

int64_t Iterate(...) {
    return Refuse("Iterate", 0);
}
int64_t Scan1_Area(...) {
    return Refuse("Scan1_Area", -1);
}
int64_t Scan1_All(...) {
    return Refuse("Scan1_All", -1);
}
int64_t Scan2_All(...) {
    return Refuse("Scan2_All", -1);
}
int64_t BinaryImageOperator(...) {
    return Refuse("BinaryImageOperator", 0);
}
int64_t FillPlane(...) {
    ReportORVErrorEx(ErrGeneral, Interface::ErrorTexts::NoLongerImplemented, "FillPlane");
    return 0;
}
