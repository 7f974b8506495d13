// C++ of another compiler run: queries the image interface behind a handle and reaches a pixel through its table.
#include <cstdio>
#include <ORVImg.h>

namespace {

int fail(const char *text) {
    std::puts(text);
    return 1;
}

} // namespace

int main() {
    void *image = nullptr;
    if (!CreateGenericImageDT(2, 5, 4, 16, &image) || !image)
        return fail("no image");
    void *queried = nullptr;
    if (static_cast<pOLE::IUnknown *>(image)->QueryInterface(ORV_IID_IIMAGEVPA, &queried) != 0)
        return fail("the image does not offer IImageVPA");
    auto *view = static_cast<pOLE::IImageVPA *>(queried);
    void *base = nullptr;
    VPAEntry *table = nullptr;
    if (view->GetPlaneVPA(1, &base, &table) != 0)
        return fail("no table for plane 1");
    auto *pixel = reinterpret_cast<std::uint16_t *>(static_cast<char *>(base) + table[4].XEntry + table[3].YEntry);
    *pixel = 4711;
    if (PixVal(image, 1, 4, 3) != 4711)
        return fail("the table leads elsewhere");
    if (view->Release() != 1 || !ReleaseObject(image) || image)
        return fail("the image was not given back");
    std::puts("consumer in C++: all as expected");
    return 0;
}
