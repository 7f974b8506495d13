/* Plain C11: wraps memory, looks at it through a turned view, writes through the view, gives everything back. */
#include <ORVImg.h>
#include <stdio.h>

static int released;

static void count_release(void *buffer, void *userData) {
    (void)buffer;
    ++*(int *)userData;
}

int main(void) {
    unsigned char pixels[6] = {0, 1, 2, 10, 11, 12};
    void *image = NULL;
    void *turned = NULL;
    uint64_t value = 99;
    int32_t status =
        CreateImageFromPointer(pixels, sizeof pixels, 3, 2, 1, 8, 1, 3, 1, NULL, count_release, &released, &image);
    if (status != 0 || ImageWidth(image) != 3 || ImageHeight(image) != 2)
        return puts("no image of 3 x 2"), 1;
    if (!CreateRotatedImageMap(image, VPATRotation90Clockwise, &turned) || ImageWidth(turned) != 2)
        return puts("no view"), 1;
    if (PixVal(turned, 0, 1, 2) != 2)
        return puts("the view shows another pixel"), 1;
    if (!SetPixVal(turned, 0, 0, 0, &value) || pixels[3] != 99)
        return puts("a write through the view did not reach the memory"), 1;
    if (ReleaseObject(&image) || released != 0)
        return puts("the view did not hold its source"), 1;
    if (!ReleaseObject(&turned) || turned || released != 1)
        return puts("the memory was not given back"), 1;
    if (ImageWidth(NULL) != 0 || GetORVErrorCount() != 1)
        return puts("a null handle was not reported"), 1;
    puts("consumer in C: all as expected");
    return 0;
}
