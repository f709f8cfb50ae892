// Dilation, erosion and what is made of them.
#ifndef ZPA_BASICS_MORPHOLOGY_H
#define ZPA_BASICS_MORPHOLOGY_H

#include <Basics/CoreTypes.h>

/// @file
/// Every pixel becomes the largest (dilation) or smallest (erosion) pixel in a neighbourhood, which a
/// structuring element draws: its elements that are not zero take part, and its anchor lies on the pixel. At
/// the image's edges the nearest edge pixel stands for those that are missing.
///
/// The operations share these rules:
///
/// - `src`: type eByte or eUInt16, with strides honoured.
/// - `dst`: null to work in place. With a null pixel pointer an image is created, with all fields of `src`;
///   its pixels belong to the caller, who frees them with FreePixels or `delete[]`, also after a failure. An
///   image that exists must have the width and height of `src`, and may share its memory in any way. With the
///   pixel pointer of `src` it counts as in place, whatever its width and height say.
/// - `se`: type eByte, any size; normally made with strel. It may be larger than the image.
/// - `anchorX`, `anchorY`: the anchor's column and row in `se`, from zero. They are not the centre that strel
///   writes.
///
/// A pixel's cost hardly depends on the size of a rectangle; for another element it grows with the number of
/// runs in it (set elements side by side), and slightly with that of different lengths among them. Work
/// memory is asked for as (width + 2b) * (height + 2b) * (bytes of an element) elements, with b the larger
/// side of `se`; much less of it is touched. Large images use the threads of the OpenMP runtime. The method
/// for rectangles is van Herk's (1992) and Gil and Werman's (1993).
///
/// Refusals, in this order; `dst` stays as it was, unless it was created:
///
/// - 4, "Structuring element must be eByte datatype."
/// - 5, `dst` has another size, or cannot be allocated: "Failed to ValidateImageBuffer.", after
///   ValidateImageBuffer's own message.
/// - 6, a type code without a type: "Unsupported image datatype."
/// - 1, no work memory: the number of elements is logged as bytes.
/// - 5, types other than eByte and eUInt16: "ippiCopyReplicateBorder failed. code -12"
/// - 5, `src` without pixels or size: "ippiCopyReplicateBorder failed. code -8" or "... -5"
/// - 5, "ippiDilate failed. code %d", or "ippiErode ...", with the reason: -8, no elements; -5, an element
///   without a size; -33, one without a set pixel; -34, an anchor outside it.
/// - 7, elements of `dst` that are narrower than those of `src`, rows that overlap, and working in place with
///   a stride of `dst` that leads out of both images.
/// - 5, "ippiDilate failed. code -9", or "ippiErode ...": no work memory.

namespace ZPA {

/// The largest pixel of the neighbourhood: bright regions grow.
/// @return 0, or a refusal as listed above.
ZPA_C_API SOLVANE_RETURNCODE Dilate(ImageAttributes src, ImageAttributes* dst, ImageAttributes se,
                                    int anchorX, int anchorY);

/// The smallest pixel of the neighbourhood: dark regions grow.
/// @return 0, or a refusal as listed above.
ZPA_C_API SOLVANE_RETURNCODE Erode(ImageAttributes src, ImageAttributes* dst, ImageAttributes se, int anchorX,
                                   int anchorY);

/// Erodes and then dilates: bright spots that the element does not fit into vanish.
///
/// The element is not turned between the steps, so one that is not symmetric about its anchor also moves the
/// image.
/// @return 0, or a refusal of the step that failed, as listed above.
/// @retval 2  `dst` is null: "The destination image pointer was NULL."
ZPA_C_API SOLVANE_RETURNCODE ImOpen(ImageAttributes src, ImageAttributes* dst, ImageAttributes se,
                                    int anchorX, int anchorY);

/// Dilates and then erodes: dark spots that the element does not fit into vanish. Otherwise as ImOpen.
/// @return 0, or a refusal of the step that failed, as listed above.
/// @retval 2  `dst` is null: "The destination image pointer was NULL."
ZPA_C_API SOLVANE_RETURNCODE ImClose(ImageAttributes src, ImageAttributes* dst, ImageAttributes se,
                                     int anchorX, int anchorY);

/// Dilates with a square of 3 by 3, anchored in its middle, `iterations` times, and once if that is below 1.
/// @return 0, or a refusal as listed above.
ZPA_C_API SOLVANE_RETURNCODE Dilate3x3(ImageAttributes src, ImageAttributes* dst, int iterations);

/// Erodes with a square of 3 by 3, anchored in its middle, `iterations` times, and once if that is below 1.
/// @return 0, or a refusal as listed above.
ZPA_C_API SOLVANE_RETURNCODE Erode3x3(ImageAttributes src, ImageAttributes* dst, int iterations);

}  // namespace ZPA

#endif
