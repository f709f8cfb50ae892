// Connected regions: fills, holes closed, and labels.
#ifndef ZPA_BASICS_REGIONS_H
#define ZPA_BASICS_REGIONS_H

#include <Basics/CoreTypes.h>

/// @file
/// Pixels are connected through their four neighbours if `connectivity` is 4, and through all eight for any
/// other value. Work memory, less than half a byte a pixel for fills and three for labels, lives for the
/// call. Checks are made in the order in which the codes are listed.

namespace ZPA {

/// Replaces the pixel at the seed, and all pixels of its value that are connected with it, by another value.
///
/// Cost: proportional to the rows that the region reaches, whatever its shape; no recursion.
///
/// @param image         Changed in place: eByte or eUInt16.
/// @param seedX         Column of the seed.
/// @param seedY         Row of the seed.
/// @param newValue      Cut to the low bits of the image's type.
/// @param connectivity  4, or anything else for eight neighbours.
///
/// @retval 0  Done.
/// @retval 6  No element type at all: "Unsupported image datatype."
/// @retval 5  No size: "ippiFloodFillGetSize failed. code -5"
/// @retval 1  No memory: "template_FloodFill: Memory allocation failed for %d bytes."
/// @retval 5  "ippiFloodFill_nCon failed. code %d": -8, the pixels are null; -11, the seed lies outside; -12,
///            the type is neither eByte nor eUInt16.
/// @retval 7  The image's rows overlap: "The image's rows overlap."
ZPA_C_API SOLVANE_RETURNCODE FloodFill(ImageAttributes image, int seedX, int seedY, int newValue,
                                       int connectivity);

/// Closes the holes of a mask or of a labelled image: zeros that no path of zeros connects with the border.
///
/// A hole takes the value of the nearest pixel before it, in its row or at the end of an earlier one, that is
/// not zero: the value of a mask's foreground, or a label beside it. The largest value of the type (255 or
/// 65535) serves as a marker for the outside meanwhile: FOREGROUND OF THAT VALUE that is connected with the
/// border, directly or through the outside, is cleared.
///
/// Cost: proportional to the pixels, however many holes there are and however the border is broken.
///
/// @param image         Changed in place: eByte or eUInt16. Without width or height nothing is touched.
/// @param connectivity  Of the outside: 4, or anything else for eight neighbours.
///
/// @retval 0  Done.
/// @retval 6  "Unsupported image datatype."
/// @retval 2  "The input image had a NULL buffer pointer."
/// @retval 7  "The image's rows overlap."
/// @retval 5  No memory to fill from the border: "template_FloodBorderAreas to % failed." (sic), after the
///            messages of the fill that failed. With a zero on the border the image is as it was; with none
///            the holes are closed, and only the clearing is left undone.
ZPA_C_API SOLVANE_RETURNCODE FillHoles(ImageAttributes image, int connectivity);

/// Numbers the connected regions of an image: every pixel of a region gets the region's label.
///
/// Adjacent pixels that are not zero belong to one region, whatever their values; zeros stay. Labels follow
/// the raster order of the regions' first pixels, from 1 to 254 (eByte) or 65534 (eUInt16). PAST THE LARGEST
/// THEY BEGIN AGAIN AT 1, so that several regions share a label: that is a warning and no failure, and the
/// count tells.
///
/// Cost: two passes over the image and one over the runs of pixels in its rows, on the caller's thread: noise
/// takes about five times as long as large regions. The runs are joined by a union-find structure, after M.
/// Rem (in E. W. Dijkstra, A Discipline of Programming, 1976).
///
/// @param image         Changed in place: eByte or eUInt16.
/// @param connectivity  4, or anything else for eight neighbours.
/// @param pnLabels      Receives the number of regions, which may be more than the largest label. Written
///                      only on success.
///
/// @retval 0  Done; with more regions than labels, after the warning, under eLogRegions,
///            "WARNING: Input image has %d regions. Only %ld allowed for this image data type."
/// @retval 6  "Unsupported image datatype."
/// @retval 2  "The input mask image had a NULL buffer pointer."
/// @retval 2  "The pnLabels pointer was NULL."
/// @retval 5  No size, or room for more than 2147483647 regions:
///            "ippiLabelMarkersGetBufferSize<T> failed. code -5"
/// @retval 1  No memory: "template_LabelMarkers: Memory allocation failed for %d bytes."
/// @retval 7  "The image's rows overlap."
ZPA_C_API SOLVANE_RETURNCODE LabelMarkers(ImageAttributes image, int connectivity, int* pnLabels);

/// Numbers the connected regions of a byte mask, as LabelMarkers does, into an image of 16 bits.
///
/// WHAT LABELLING ITSELF REFUSES IS LOGGED, BUT NOT RETURNED: a null `pnLabels`, or no memory, gives 0. Set
/// `*pnLabels` to -1 first: it stays so then.
///
/// @param mask          Read only: eByte, in spite of the message.
/// @param connectivity  4, or anything else for eight neighbours.
/// @param pnLabels      As for LabelMarkers.
/// @param labeled       In and out. With pixels: eUInt16, in the mask's size, any stride. If it has the mask's
///                      own pixel pointer, the regions are those of its own content. With a null pixel pointer
///                      it becomes an eUInt16 image of 16 bits per pixel without padding, with the mask's
///                      pixel spacing; its pixels belong to the caller, who frees them with FreePixels or
///                      `delete[]`. Where labelling failed its pixel pointer is null again.
///
/// @retval 0    Done, or labelling failed.
/// @retval 6    Neither eByte nor eUInt16: "Unsupported image datatype."
/// @retval 2    "The input mask image had a NULL buffer pointer."
/// @retval 6    Not eByte: "The input mask image must be of type eByte or eUInt16."
/// @retval 2    "The output labeled ImageAttributes pointer was NULL."
/// @retval 7    "The output labeled image was not the same size as the input."
/// @retval 6    "The output labeled image must be of type eUInt16."
/// @retval 4    Their memory overlaps, from different pixels on: "The input mask and output labeled images
///              share memory."
/// @retval 7    The mask's or the output's rows overlap: "The call to CopyPixels() failed."
/// @retval 999  An output without pixels, and a mask whose width or height is below 1 or for which there is no
///              memory: "Unexpected exception."
ZPA_C_API SOLVANE_RETURNCODE LabelMarkers2(ImageAttributes mask, int connectivity, int* pnLabels,
                                           ImageAttributes* labeled);

/// The core of FloodFill, for T of `unsigned char` and `unsigned short`. Narrower elements are refused with 7,
/// "The image's elements are too narrow.", after the rows; likewise by the cores below. What a log callback
/// throws passes through all of them.
template <typename T>
ZPA_API SOLVANE_RETURNCODE template_FloodFill(ImageAttributes image, int seedX, int seedY, T newValue,
                                              int connectivity);

/// The core of FillHoles, for T of `unsigned char` and `unsigned short`.
template <typename T> ZPA_API SOLVANE_RETURNCODE template_FillHoles(ImageAttributes image, int connectivity);

/// Replaces the pixels of value `background` on the border of an image, and those connected with them, by
/// `newValue`: what fills from the top and bottom pixel of each column, and then the left and right pixel of
/// each row, would do. For T of `unsigned char` and `unsigned short`.
///
/// @retval 0  Done, or the image has no width or height.
/// @retval 2  "The input image had a NULL buffer pointer."
/// @retval 7  "The image's rows overlap."
/// @retval 5  No memory, which is needed only where there is a pixel to fill from. The first such pixel to fill from decides the message: "FloodFill top border background
///            failed." at the top or left, "FloodFill bottom border background failed." at the bottom or right.
template <typename T>
ZPA_API SOLVANE_RETURNCODE template_FloodBorderAreas(ImageAttributes image, T background, T newValue,
                                                     int connectivity);

/// The core of LabelMarkers, for T of `unsigned char` and `unsigned short`.
template <typename T>
ZPA_API SOLVANE_RETURNCODE template_LabelMarkers(ImageAttributes image, int connectivity, int* pnLabels);

}  // namespace ZPA

#endif
