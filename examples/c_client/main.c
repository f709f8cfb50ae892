// Finds what is brighter than its surroundings in a radiograph, from C.
//
// Usage: c_client [IMAGE.WIDTH.HEIGHT.raw]. Without an image it makes one of its own. The lines between the marks are
// the sample in docs/c.md.
#include <stdio.h>
#include <stdlib.h>

// [sample]
#include <zpa.h>

// Marks the pixels that are brighter by `excess` than the mean over 31 by 31 pixels around them, without specks
// that are smaller than 3 by 3. The image has 16-bit pixels and no padding. The caller frees the mask's pixels
// with FreePixels.
static ZPA_SOLVANE_RETURNCODE FindBright(ZPA_ImageAttributes image, int excess, ZPA_ImageAttributes* mask) {
    ZPA_ImageAttributes means = {0},
                        above = {0};  // without pixels: the library makes them, and they are ours
    ZPA_SOLVANE_RETURNCODE code = ValidateImageBuffer(image, &means);
    if (code == ZPA_SOLVANE_OK)
        code = rect_flat_top_filtering_ushort(image.buffer, means.buffer, image.width, image.height, 31, 31);

    image.type = ZPA_eByte;
    if (code == ZPA_SOLVANE_OK) code = ValidateImageBuffer(image, &above);
    if (code == ZPA_SOLVANE_OK) {
        unsigned short const *pixels = image.buffer, *mean = means.buffer;
        unsigned char* set = above.buffer;
        for (int i = 0; i < image.width * image.height; ++i) set[i] = pixels[i] > mean[i] + excess;
    }

    unsigned char ones[3 * 3];
    ZPA_ImageAttributes const element = {ZPA_eByte, ones, 3, 3, 3, 8, 0};
    ZPA_StrelParam const width = {3};
    double center[2];
    if (code == ZPA_SOLVANE_OK) code = strel(element, center, "rectangle", 3, width, 0);
    if (code == ZPA_SOLVANE_OK) code = ImOpen(above, mask, element, 1, 1);

    FreePixels(means.buffer);  // null is ignored
    FreePixels(above.buffer);
    return code;
}
// [sample]

enum { kWidth = 320, kHeight = 240 };

// Grey with noise, a bright disc, and a brighter speck.
static ZPA_ImageAttributes MadeUp(void) {
    ZPA_ImageAttributes image = {ZPA_eUInt16, NULL, kWidth, kHeight, kWidth, 16, 0};
    unsigned short* const pixels = malloc(sizeof *pixels * kWidth * kHeight);
    image.buffer = pixels;
    if (!pixels) return image;
    unsigned random = 1;
    for (int y = 0; y < kHeight; ++y)
        for (int x = 0; x < kWidth; ++x) {
            int const dx = x - 100, dy = y - 120;
            random = random * 1103515245u + 12345u;
            pixels[y * kWidth + x] =
                (unsigned short)(8000u + (random >> 24) + (dx * dx + dy * dy < 100 ? 4000u : 0u));
        }
    pixels[60 * kWidth + 250] = 60000;
    return image;
}

int main(int count, char** arguments) {
    ZPA_ImageAttributes image = {0}, mask = {0};
    ZPA_SOLVANE_RETURNCODE code = ZPA_SOLVANE_OK;
    image.bitsperpixel = 16;
    if (count > 1)
        code = ReadRawFile(arguments[1], &image);
    else
        image = MadeUp();
    if (code == ZPA_SOLVANE_OK && image.type != ZPA_eUInt16) code = ZPA_SOLVANE_UNSUPPORTED_TYPE;
    if (code == ZPA_SOLVANE_OK) code = FindBright(image, 1000, &mask);

    int bright = 0;
    double mean = 0;
    if (code == ZPA_SOLVANE_OK) code = ImageCountOfN(mask, NULL, NULL, NULL, 1, &bright, NULL);
    if (code == ZPA_SOLVANE_OK) code = CalculateImageStats(image, NULL, &mask, NULL, NULL, NULL, &mean, NULL);
    if (code == ZPA_SOLVANE_OK)
        printf("%d of %d pixels are bright, with a mean of %.0f.\n", bright, image.width * image.height,
               mean);
    else
        fprintf(stderr, "zpa %d.%d refuses with code %d; the system's log has the reason.\n",
                ZPA_VERSION_MAJOR, ZPA_VERSION_MINOR, (int)code);

    FreePixels(mask.buffer);
    if (count > 1)
        FreePixels(image.buffer);  // pixels go back to where they came from
    else
        free(image.buffer);
    return code == ZPA_SOLVANE_OK ? 0 : 1;
}
