// Pixels to and from plain files, for diagnosis: raw elements, and pictures for the eye.
#ifndef ZPA_BASICS_RAWFILE_H
#define ZPA_BASICS_RAWFILE_H

#include <Basics/CoreTypes.h>

/// @file
/// A raw file holds elements and nothing else, row after row, in the byte order of the machine. Its name may
/// carry its dimensions, as "scan.100.50.raw": a base name, then decimal numbers, set apart by dots, then the
/// extension, ".raw" for unsigned 16-bit elements and ".mask" for unsigned 8-bit ones.
///
/// Paths are narrow text as the system takes it. A file that exists is overwritten. What cannot be opened for
/// reading is logged as an error; what cannot be opened for writing only tells the debug log of eLogFunction.
/// All of it happens on the caller's thread, and nothing is kept after a call.

namespace ZPA {

/// Writes a block of memory to a file.
///
/// @param data   Read only.
/// @param bytes  How many; 0 makes an empty file.
/// @param path   The file. After a failed write it holds what could be written.
///
/// @retval 0    Done.
/// @retval 2    `data` or `path` is null: "dumpRaw() - NULL input pointer."
/// @retval 3    `bytes` is negative: "dumpRaw() - Invalid number of bytes."; the file is not touched.
/// @retval 999  The file cannot be opened; only the debug log is told: "dumpRaw() - Cannot open `path` for
///              writing."
/// @retval 999  Not all could be written: "dumpRaw() - Error in writing `path`."
ZPA_C_API SOLVANE_RETURNCODE dumpRaw(void const* data, int bytes, char const* path);

/// Writes a packed unsigned 16-bit image to a raw file named after its dimensions: "`name`.10.20.raw" for an
/// `index` of -1, else with the index, which no dot goes ahead of: "`name`3.10.20.raw".
///
/// The debug log of eLogFunction is told of success: "image dumped to " and the file's name.
///
/// @param data    `width * height` pixels, without padding. Read only.
/// @param width   Pixels in a row.
/// @param height  Rows.
/// @param index   Part of the file's name, unless it is -1.
/// @param name    Where the file's name begins; may hold folders and have any length.
///
/// @retval 0    Done.
/// @retval 2    `data` or `name` is null: "DumpRawImage() - NULL input pointer."
/// @retval 3    Width or height is negative; logged as by dumpRaw.
/// @retval 999  The file could not be opened or written; logged as by dumpRaw.
ZPA_C_API SOLVANE_RETURNCODE DumpRawImage(unsigned short const* data, int width, int height, int index,
                                          char const* name);

/// Writes a packed unsigned 8-bit image to a raw file named after its dimensions: "`name`.10.20.mask" for an
/// `index` of -1, else "`name`.3.10.20.mask", with a dot ahead of the index.
///
/// The debug log of eLogFunction is told of success: "mask dumped to " and the file's name.
///
/// @param data    `width * height` pixels, without padding. Read only.
/// @param width   Pixels in a row.
/// @param height  Rows.
/// @param index   Part of the file's name, unless it is -1.
/// @param name    Where the file's name begins; may hold folders and have any length.
///
/// @retval 0    Done.
/// @retval 2    `data` or `name` is null: "DumpRawMask() - NULL input pointer."
/// @retval 3    Width or height is negative; logged as by dumpRaw.
/// @retval 999  The file could not be opened or written; logged as by dumpRaw.
ZPA_C_API SOLVANE_RETURNCODE DumpRawMask(unsigned char const* data, int width, int height, int index,
                                         char const* name);

/// Writes a packed image as a binary PGM picture of 8 bits a pixel, for viewing: the darkest pixel becomes 0,
/// the brightest 255, the rest is spread evenly between them, to the nearest whole number, halves to the even
/// one.
///
/// A flat image is all 0, and so is a pixel that is not a number. The whole picture is 0 if the first pixel
/// is not a number, or the brightest less the darkest passes what a double holds.
///
/// @param image   `width * height` pixels, without padding: `unsigned short`, `unsigned char` or `double`.
/// @param width   Pixels in a row.
/// @param height  Rows.
/// @param path    The file. After a failed write it holds what could be written.
///
/// @retval 0    Done.
/// @retval 4    A pointer is null, or width or height is below 1; only the debug log of eLogFunction is told:
///              "template_dumpPgm8bit():  Invalid input. imgPtr=OK, w=0, h=5, filePtr=NULL."
/// @retval 999  The file cannot be opened; only the debug log is told: "template_dumpPgm8bit(): Error opening
///              `path` for writing."
/// @retval 999  Not all could be written: "template_dumpPgm8bit(): Error in writing `path`."
template <typename T>
ZPA_TEMPLATE_API SOLVANE_RETURNCODE template_dumpPgm8bit(T const* image, int width, int height,
                                                         char const* path);

/// @cond The instantiations that the library holds.
extern template SOLVANE_RETURNCODE template_dumpPgm8bit(unsigned short const*, int, int, char const*);
extern template SOLVANE_RETURNCODE template_dumpPgm8bit(unsigned char const*, int, int, char const*);
extern template SOLVANE_RETURNCODE template_dumpPgm8bit(double const*, int, int, char const*);
/// @endcond

/// template_dumpPgm8bit of unsigned 16-bit pixels.
ZPA_C_API SOLVANE_RETURNCODE dumpPgm8bit(unsigned short const* image, int width, int height,
                                         char const* path);
/// template_dumpPgm8bit of unsigned 8-bit pixels.
ZPA_C_API SOLVANE_RETURNCODE dumpPgm8bit_uchar(unsigned char const* image, int width, int height,
                                               char const* path);
/// template_dumpPgm8bit of 64-bit floating-point pixels.
ZPA_C_API SOLVANE_RETURNCODE dumpPgm8bit_double(double const* image, int width, int height, char const* path);

/// Reads a raw file into a new block of memory.
///
/// The file must be a regular one of exactly `height * stride` elements. A `stride` of 0 stands for the
/// file's length in bytes, which fits only one row of single bytes.
///
/// @param path          The file.
/// @param data          Out: the block, which the caller frees with FreePixels or `delete[]`; null on every
///                      failure.
/// @param type          eSByte, eByte, eInt16, eUInt16, eInt32 or eDouble.
/// @param width         Elements in a row; not used with a `stride` of 0.
/// @param height        Rows.
/// @param stride        0, or the same as `width`: a file cannot be read into padded rows.
/// @param countInBytes  Whether an element counts as one byte, whatever its type.
///
/// @retval 0    Done.
/// @retval 1    No memory: "ReadRaw: Memory allocation failed for `n` bytes."
/// @retval 2    `path` or `data` is null: "ReadRaw: Null pointer."
/// @retval 4    Another type: "ReadRaw: Unsupported eType `type`."
/// @retval 5    "ReadRaw: File `path` does not exist, or does not match requested size."
/// @retval 5    `stride` is neither 0 nor `width`, or the file could not be read to its end: "ReadRaw: Unable
///              to read required number of bytes."
/// @retval 999  "ReadRaw: Unexpected exception."
ZPA_C_API SOLVANE_RETURNCODE ReadRaw(char const* path, void** data, eTypeCode type, int width, int height,
                                     int stride, bool countInBytes);

/// Reads an image from a raw file, with the dimensions that the file's name tells.
///
/// A name tells them if its second and third parts are numbers other than 0, as in "scan.100.50.raw": width,
/// stride and height are set from it, and the type from ".raw" or ".mask" in any case; any other extension
/// leaves the type. Numbers are read as far as they go, and dots in a row count as one. Any other name, or
/// one of more than 259 characters or with an extension of more than 255, leaves the descriptor as the caller
/// filled it in.
///
/// @param path        The file.
/// @param attributes  In and out. `buffer` becomes the new pixels, which the caller frees with FreePixels or
///                    `delete[]`; on failure it stays, while the other fields may have been set from the
///                    name. Bits per pixel and pixel spacing stay.
///
/// @retval 0  Done.
/// @retval 2  A pointer is null: "ReadRawFile: Null pointer."
/// @return    else what ReadRaw returns and logs for the descriptor.
ZPA_C_API SOLVANE_RETURNCODE ReadRawFile(char const* path, ImageAttributes* attributes);

/// Reads a buffer from a raw file, with the length that the file's name tells.
///
/// A name tells it if its second part is a number other than 0, as in "curve.512.raw"; ".raw" in any case
/// also sets the type to eUInt16. Otherwise as ReadRawFile. The length, from the name or the descriptor,
/// counts BYTES, whatever the type: before the descriptor goes to an operation on wider elements, divide its
/// `size` by theirs. A length of 0 in the descriptor takes the file as it is, and stays 0.
///
/// @param path        The file.
/// @param attributes  In and out. `buffer` becomes the new elements, which the caller frees with FreePixels
///                    or `delete[]`; on failure it stays, while the other fields may have been set from the
///                    name.
///
/// @retval 0  Done.
/// @retval 2  A pointer is null: "ReadRawBuffer: Null pointer."
/// @return    else what ReadRaw returns and logs for one row of that many bytes.
ZPA_C_API SOLVANE_RETURNCODE ReadRawBuffer(char const* path, BufferAttributes* attributes);

}  // namespace ZPA

#endif
