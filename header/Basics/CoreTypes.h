// The words in which every operation speaks: return codes, element types, descriptors and geometry records.
#ifndef ZPA_BASICS_CORETYPES_H
#define ZPA_BASICS_CORETYPES_H

#include <Basics/Export.h>
#include <climits>
#include <cstdint>

namespace ZPA {

/// What every image operation returns. The numbers are fixed; callers compare against them. The log has the
/// details of anything but success, unless the operation says that it answers in silence.
enum SOLVANE_RETURNCODE : std::int32_t {
    SOLVANE_OK = 0,                ///< Done.
    SOLVANE_OUT_OF_MEMORY = 1,     ///< An allocation failed.
    SOLVANE_NULL_POINTER = 2,      ///< A pointer that is needed was null.
    SOLVANE_OUT_OF_RANGE = 3,      ///< A region, index or factor lies outside what the data allows.
    SOLVANE_INVALID_ARGUMENT = 4,  ///< An argument cannot be used.
    SOLVANE_OPERATION_FAILED = 5,  ///< An inner step failed; for comparisons: the images differ.
    SOLVANE_UNSUPPORTED_TYPE = 6,  ///< The operation does not serve elements of this type.
    SOLVANE_SIZE_MISMATCH = 7,     ///< Two images or buffers that must agree do not.
    SOLVANE_PARAM_TYPE = 8,        ///< A value in a bag, or one of two images, has the wrong type.
    SOLVANE_UNEXPECTED = 999       ///< An exception was caught, or a numerical routine gave up.
};

/// The type of an element. Values that are not listed have no type behind them.
enum eTypeCode : std::int32_t {
    eUnknown = 0,  ///< None.
    eSByte = 5,    ///< Signed 8-bit integer.
    eByte = 6,     ///< Unsigned 8-bit integer; the type of every mask.
    eInt16 = 7,    ///< Signed 16-bit integer.
    eUInt16 = 8,   ///< Unsigned 16-bit integer.
    eInt32 = 9,    ///< Signed 32-bit integer.
    eUInt32 = 10,  ///< Unsigned 32-bit integer.
    eSingle = 13,  ///< 32-bit floating point.
    eDouble = 14   ///< 64-bit floating point.
};

/// The unsigned 32-bit element of counts and histograms, type eUInt32, four bytes on every platform:
/// `unsigned long` where that has 32 bits, else `unsigned int`.
#if ULONG_MAX == 0xFFFFFFFFUL
using ULong32 = unsigned long;
#else
using ULong32 = unsigned int;
#endif

/// Describes a greyscale image. It owns nothing: the pixels belong to whoever allocated them, and must stay
/// valid for as long as an operation works on them. Operations take inputs by value and outputs by pointer.
struct ImageAttributes {
    eTypeCode type;             ///< Type of the pixels.
    void* buffer;               ///< The first pixel of the first row. Rows run downwards in memory.
    std::int32_t width;         ///< Pixels in a row.
    std::int32_t height;        ///< Rows.
    std::int32_t stride;        ///< From one row to the next, in elements, never in bytes.
    std::int32_t bitsperpixel;  ///< Significant bits of a pixel.
    std::int32_t pixelspacing;  ///< Spacing of the pixels, carried along with the image.

    /// All fields zero.
    ImageAttributes()
        : type(eUnknown), buffer(nullptr), width(0), height(0), stride(0), bitsperpixel(0), pixelspacing(0) {}
    /// The fields in their order.
    ImageAttributes(eTypeCode itsType, void* itsBuffer, int itsWidth, int itsHeight, int itsStride,
                    int itsBitsPerPixel, int itsPixelSpacing)
        : type(itsType),
          buffer(itsBuffer),
          width(itsWidth),
          height(itsHeight),
          stride(itsStride),
          bitsperpixel(itsBitsPerPixel),
          pixelspacing(itsPixelSpacing) {}
};

/// Describes a one-dimensional buffer of numbers. It owns nothing, as ImageAttributes.
struct BufferAttributes {
    eTypeCode type;     ///< Type of the elements.
    void* buffer;       ///< The first element.
    std::int32_t size;  ///< Number of elements.

    /// All fields zero.
    BufferAttributes() : type(eUnknown), buffer(nullptr), size(0) {}
    /// The fields in their order.
    BufferAttributes(eTypeCode itsType, void* itsBuffer, int itsSize)
        : type(itsType), buffer(itsBuffer), size(itsSize) {}
};

/// A pixel's position.
struct APOINT {
    std::int32_t x;  ///< Column.
    std::int32_t y;  ///< Row.

    /// (0, 0).
    APOINT() : x(0), y(0) {}
    /// (itsX, itsY).
    APOINT(int itsX, int itsY) : x(itsX), y(itsY) {}
};

/// The size of an image.
struct SSize {
    std::int32_t width;   ///< Pixels in a row.
    std::int32_t height;  ///< Rows.
    std::int32_t stride;  ///< From one row to the next, in elements.

    /// All zero.
    SSize() : width(0), height(0), stride(0) {}
    /// Rows without padding: the stride is the width.
    SSize(int itsWidth, int itsHeight) : width(itsWidth), height(itsHeight), stride(itsWidth) {}
    /// The fields in their order.
    SSize(int itsWidth, int itsHeight, int itsStride)
        : width(itsWidth), height(itsHeight), stride(itsStride) {}
};

/// A rectangle of pixels: columns `x` to `x + width - 1`, rows `y` to `y + height - 1`.
struct Rectangle {
    std::int32_t x;       ///< Left column.
    std::int32_t y;       ///< Top row.
    std::int32_t width;   ///< Columns.
    std::int32_t height;  ///< Rows.

    /// All zero.
    Rectangle() : x(0), y(0), width(0), height(0) {}
    /// The fields in their order.
    Rectangle(int itsX, int itsY, int itsWidth, int itsHeight)
        : x(itsX), y(itsY), width(itsWidth), height(itsHeight) {}
    /// The size's stride is dropped.
    Rectangle(APOINT corner, SSize size) : x(corner.x), y(corner.y), width(size.width), height(size.height) {}
};

/// A position between pixels.
struct Point {
    double x;  ///< Across.
    double y;  ///< Down.

    /// (0, 0).
    Point() : x(0), y(0) {}
    /// (itsX, itsY).
    Point(int itsX, int itsY) : x(itsX), y(itsY) {}
    /// (itsX, itsY).
    Point(double itsX, double itsY) : x(itsX), y(itsY) {}

    /// Moves to (itsX, itsY).
    void set(int itsX, int itsY) { *this = Point(itsX, itsY); }
    /// Moves to (itsX, itsY).
    void set(double itsX, double itsY) { *this = Point(itsX, itsY); }
    /// Moves to the pixel's position.
    Point& operator=(APOINT const& pixel) { return *this = Point(pixel.x, pixel.y); }

    Point(Point const&) = default;             ///< A copy.
    Point& operator=(Point const&) = default;  ///< A copy.
};

/// Exact, without a tolerance: a coordinate that is not a number equals nothing.
inline bool operator==(Point const& a, Point const& b) { return a.x == b.x && a.y == b.y; }
/// The opposite of ==.
inline bool operator!=(Point const& a, Point const& b) { return !(a == b); }

/// Fourteen words that callers keep for themselves. No operation reads them.
struct BladeInfo {
    std::int32_t words[14];  ///< The caller's own.
};

/// Eight words that callers keep for themselves. No operation reads them.
struct Boundary {
    std::int32_t words[8];  ///< The caller's own.

    /// All zero.
    Boundary() : words() {}
};

/// Bytes of one element.
/// @return 1, 2, 4 or 8, and 0 for any value that names no element type.
ZPA_C_API int SizeOfTypeCode(eTypeCode type);

/// The element type that a type's name means, in any case: "char" and "signed char" are eSByte, "unsigned
/// char" and "byte" eByte, "short" eInt16, "unsigned short" and "ushort" eUInt16, "int" and "long" eInt32,
/// "unsigned int" and "unsigned long" eUInt32, "float" eSingle, "double" and "long double" eDouble.
/// @return the type; eUnknown for any other name, and for a null pointer.
ZPA_C_API eTypeCode ParseTypeCode(char const* name);

/// Prepares the output of an operation that cannot work in place, and creates it if the caller gave none.
///
/// A created output has all fields of `source`, the stride included, and its pixels and padding are zero.
/// They belong to the caller, who frees them with FreePixels or `delete[]`. An output that exists is only
/// compared: its type, stride, bits per pixel and pixel spacing may differ from those of `source`.
///
/// @param source       The input. A null pixel pointer in both descriptors counts as working in place.
/// @param destination  In and out. Unchanged on failure, except that a failed allocation leaves the fields of
///                     `source` with a null pixel pointer.
///
/// @retval 0  Ready.
/// @retval 1  The output cannot be allocated, or its size is negative or beyond the address space.
/// @retval 4  `destination` is null or has the pixels of `source`: "Output is NULL and in-place operation not
///            supported"
/// @retval 4  Width or height differ: "Source and destination image must be same size."
ZPA_C_API SOLVANE_RETURNCODE ValidateImageBuffer(ImageAttributes source, ImageAttributes* destination);

/// Frees a block of pixels or elements that the library handed out, for callers whose run-time has another
/// `delete[]`. A null pointer is ignored.
ZPA_C_API void FreePixels(void* pixels);

}  // namespace ZPA

#endif
