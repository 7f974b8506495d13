#include <ORVImg.h>
#include <stdio.h>

int main(int count, char **names) {
    void *image = NULL, *turned = NULL;
    const bool done = count == 3 && LoadImageFile(names[1], &image) &&
                      CreateRotatedImageMap(image, VPATRotation180, &turned) && WriteImageFile(turned, names[2]);
    printf("%td x %td pixels\n", ImageWidth(turned), ImageHeight(turned));
    char text[120] = "the file can't be written";
    uint64_t textSize = sizeof text, noName = 0;
    uint32_t code = 0;
    PeekLastORVError(&code, NULL, text, &textSize, NULL, &noName);
    puts(done ? "turned and written" : text);
    ReleaseObject(&turned), ReleaseObject(&image);
    return done ? 0 : 1;
}
