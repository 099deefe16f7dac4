/* A C program against the installed library: header, types, one conversion. */
#include <krocc.h>
#include <stdio.h>
#include <string.h>

int main(void) {
    const KroLibraryVersion* v = kroccGetLibVersion();
    Kro8u rgb[3 * 20], yuv[3 * 20];
    kroiSize roi = {20, 1};
    int i;
    if (v == NULL || strcmp(v->targetCode, "p8") != 0) return 1;
    for (i = 0; i < 60; ++i) rgb[i] = 255;
    if (kroiRGBToYUV_8u_C3R(rgb, 60, yuv, 60, roi) != kroStatusOk) return 2;
    /* white: main path (254,127,127), tail (255,128,128) */
    if (yuv[0] != 254 || yuv[1] != 127 || yuv[3 * 19] != 255 || yuv[3 * 19 + 1] != 128) return 3;
    if (kroiRGBToYUV_8u_C3R(NULL, 60, yuv, 60, roi) != kroStatusNullPointer) return 4;
    printf("%s %s\n", v->displayName, v->versionText);
    return 0;
}
