// Masks of common shapes for the morphological operations.
#ifndef ZPA_BASICS_STRUCTURINGELEMENT_H
#define ZPA_BASICS_STRUCTURINGELEMENT_H

#include <Basics/CoreTypes.h>

#include <cstdint>

/// @file
/// A mask is made in two steps: strel_GetBufferSize tells its size, the caller allocates an image of that
/// size, and strel fills it. In a mask 1 is set and 0 is clear. The shapes, their names matched with case:
///
/// - "square": `param1` is the side.
/// - "rectangle": `param1` is the height, `param2` the width, an `int`.
/// - "line": `param1` is a length, `param2` the address of an angle in degrees, a `double`. Sets ONE pixel,
///   not a run: the point one step behind the end of a line of that length. The mask is as large as that
///   point demands: length 5 at 0 degrees gives 7 by 1 with the last pixel set. A point above or left of the
///   centre gives a negative size, and no such mask can be filled.
/// - "periodicline": `param1` is a count, `param2` the address of two `double`, a step in rows and one in
///   columns. Sets the pixel at the centre, and `param1` more on either side, each one step further,
///   truncated toward zero. Height and width are 2 * trunc(param1 * |step|) + 1.
/// - "disk": `param1` is the radius. Copies a fixed pattern; the mask's side is (radius + param3) * 2 - 1.
///   Radius 1 and 2 want `param3` 1, radius 3, 4 and 6 want 0, and radius 5 has a pattern for either. The
///   centre is not written.
/// - "diamond" (`param1` is the height, `param2` the width) has a size, and is not made. "arbitrary",
///   "octagon", "pair" and "ball" are neither sized nor made.
///
/// All run on the caller's thread, allocate next to nothing and keep nothing.

namespace ZPA {

/// The second parameter of a shape: a number or the address of numbers, as the shape wants it. One word with
/// the size of a pointer; callers in other languages pass that.
struct StrelParam {
    std::intptr_t word;  ///< The number, in its low 32 bits, or the address.

    /// A number.
    StrelParam(int number) : word(number) {}
    /// The address of numbers, which are read during the call only.
    StrelParam(double const* numbers) : word(reinterpret_cast<std::intptr_t>(numbers)) {}
};

/// Tells the size of a mask.
///
/// @param shape   One of the names above.
/// @param param1  As listed above.
/// @param param2  As listed above.
/// @param param3  As listed above.
/// @param height  Out. Left alone for a shape without a size and for a disk's radius that is not served.
/// @param width   Out, likewise.
///
/// @retval 0  Done. Also for a disk's radius outside 1 to 6, which is only logged, with code 6:
///            "DiskStrel_GetBufferSize::radius = %d is not supported."
/// @retval 6  "arbitrary", "octagon", "pair", "ball" or a name that is none of these; nothing is logged.
/// @retval 2  "strel_GetBufferSize: Null pointer."
ZPA_C_API SOLVANE_RETURNCODE strel_GetBufferSize(char const* shape, int param1, StrelParam param2, int param3,
                                                 int* height, int* width);

/// Fills a mask.
///
/// "square" and "rectangle" write pixels of the mask's own type, which is an integer's. "line" and
/// "periodicline" write bytes, as for eByte, whatever the type says. "disk" writes eByte masks. For an
/// eUInt16 mask it writes ONE BLOCK OF 242 BYTES, the pattern of radius 6 without padding, whatever the
/// radius and the stride: the caller must give that much memory. For other types it writes nothing.
///
/// @param se      The mask: pixels, size, stride and type are used. Pixels beyond the shape are kept by "disk"
///                and cleared by the lines; "line" also clears the padding.
/// @param center  Out: column and row of the centre. From one for "square" and "rectangle" (a square of 3 has
///                2.0, 2.0), from zero for the lines. None of the operations reads it. May be null for
///                "disk".
/// @param shape   One of the names above.
/// @param param1  As listed above.
/// @param param2  As listed above.
/// @param param3  As listed above.
///
/// @retval 0  Done.
/// @retval 4  A side below 1, or a mask of another size: "MakeSquareStrel::param1 = %d is not supported." For
///            rectangles (sic): "MakeSquareStrel::param1,param2 = %d,%d is not supported."
/// @retval 4  A length below 1: "MakeLineStrel(int len = %d, double theta_d = %x) error". The last number is
///            the low half of the angle's address.
/// @retval 4  A mask of another size, or of none: "MakeLineStrel(int len = %d, double theta_d = %x) buffer
///            invalid"
/// @retval 4  A mask that is too small for its line: "MakePeriodicLineStrel::se invalid"
/// @retval 4  No pixels, a mask of another size, or one that is too small for the pattern:
///            "MakeDiskStrel::se invalid"
/// @retval 6  A shape that is not made, or a disk's radius outside 1 to 6; nothing is logged.
/// @retval 2  "strel: Null pointer."
/// @retval 6  A square or rectangle of elements that are not integers: "strel: The mask's type is not
///            supported."
/// @retval 7  "The mask's rows overlap."
ZPA_C_API SOLVANE_RETURNCODE strel(ImageAttributes se, double* center, char const* shape, int param1,
                                   StrelParam param2, int param3);

}  // namespace ZPA

#endif
