// Images and buffers as objects that own their elements, or wrap somebody else's.
#ifndef ZPA_BASICS_IMAGEBUFFER_H
#define ZPA_BASICS_IMAGEBUFFER_H

#include <Basics/CoreTypes.h>
#include <Basics/SmartPointer.h>

/// @file
/// The object forms of ImageAttributes and BufferAttributes. An object is empty, owns its elements (a block
/// from `new[]`, released with `delete[]`), or wraps elements of somebody else. Unlike the image operations
/// these classes report by throwing: std::runtime_error with the texts given below. No locks: one thread at a
/// time.

namespace ZPA {

template <typename T> class ZPA_TEMPLATE_API IZPA_Buffer;

/// An image of elements of type T, seen through its interface.
template <typename T> class ZPA_TEMPLATE_API IZPA_Image : public ISolvane_Object {
public:
    /// Gives the image new pixels or a new shape.
    ///
    /// - A null `buffer`, where the image owns pixels and `height * stride` stays the same, keeps the memory
    ///   and takes the new shape, with `clear` zeroing it. The stride must be given here.
    /// - The present `buffer` goes to ZPA_Image::ChangeImageAttributes; the owner stays as it was.
    /// - Else owned pixels are freed. A null `buffer` allocates `height * stride` elements that the image
    ///   owns, whatever `owner` says, zeroed if `clear` is set; any other is taken as it is and never zeroed.
    ///
    /// @param buffer        Null, or pixels.
    /// @param width         Pixels in a row, above 0.
    /// @param height        Rows, above 0.
    /// @param stride        From row to row, in elements; 0 stands for `width`. Not below `width`, unless
    ///                      `bitsperpixel` is 8 or less, where rows may share memory.
    /// @param bitsperpixel  Significant bits of a pixel.
    /// @param pixelspacing  Carried along.
    /// @param owner         Whether the image will free a `buffer` that is not null, with `delete[]`.
    /// @param clear         Whether to zero memory that the image allocates or keeps.
    ///
    /// @throws std::runtime_error "ZPA_Image<T>::Initialize()  : Invalid buffer dimensions"; owned pixels are
    ///         freed unless the memory would have been kept, and the shape stays.
    /// @throws std::runtime_error "ZPA_Image<T>::Initialize memory allocation failure"; the shape is the new
    ///         one, and the pixel pointer null.
    virtual void SetImage(T* buffer, int width, int height, int stride, int bitsperpixel, int pixelspacing,
                          bool owner, bool clear) = 0;
    /// The same with the fields of a descriptor, whose type is ignored.
    virtual void SetImage(ImageAttributes attributes, bool owner, bool clear) = 0;
    virtual T* GetBufferPtr() const = 0;      ///< The first pixel, or null.
    virtual int GetWidth() const = 0;         ///< Pixels in a row.
    virtual int GetHeight() const = 0;        ///< Rows.
    virtual int GetStride() const = 0;        ///< From row to row, in elements.
    virtual int GetBitsPerPixel() const = 0;  ///< Significant bits of a pixel.
    virtual int GetPixelSpacing() const = 0;  ///< As it was given.
    virtual bool IsOwner() const = 0;         ///< Whether the image frees its pixels.
    /// Counts the pixels by their absolute value, in 2 to the power of `bitsperpixel` bins (its low five
    /// bits). A floating-point pixel counts by its whole part. A pixel without a bin is not counted: one that
    /// is too large or not a number.
    ///
    /// @return the counts; empty or without elements if they cannot be allocated, or `bitsperpixel` is 31,
    ///         which is logged as "GetHistogram(); Unexpected exception.".
    virtual ZPA_Ptr<IZPA_Buffer<ULong32>> GetHistogram() const = 0;
    /// The descriptor, for the image operations. Valid as long as the image keeps its pixels.
    virtual operator ImageAttributes() const = 0;
};

/// An image of elements of type T: `char`, `signed char`, `unsigned char`, `short`, `unsigned short`, `int`,
/// `unsigned int`, `long`, `unsigned long`, `float` or `double`. Its descriptor's type is that of T, whatever
/// descriptors it was given; `long` has none where it has 64 bits.
template <typename T> class ZPA_TEMPLATE_API ZPA_Image : public IZPA_Image<T> {
public:
    /// An empty image.
    ZPA_Image();
    /// Arguments and exceptions as those of SetImage.
    ZPA_Image(T* buffer, int width, int height, int stride, int bitsperpixel, int pixelspacing, bool owner,
              bool clear);
    /// Arguments and exceptions as those of SetImage.
    ZPA_Image(ImageAttributes attributes, bool owner, bool clear);
    /// Frees the pixels if the image owns them.
    ~ZPA_Image() override;
    ZPA_Image(ZPA_Image const&) = delete;
    ZPA_Image& operator=(ZPA_Image const&) = delete;

    void SetImage(T* buffer, int width, int height, int stride, int bitsperpixel, int pixelspacing,
                  bool owner, bool clear) override;
    void SetImage(ImageAttributes attributes, bool owner, bool clear) override;
    T* GetBufferPtr() const override;
    int GetWidth() const override;
    int GetHeight() const override;
    int GetStride() const override;
    int GetBitsPerPixel() const override;
    int GetPixelSpacing() const override;
    bool IsOwner() const override;
    ZPA_Ptr<IZPA_Buffer<ULong32>> GetHistogram() const override;
    operator ImageAttributes() const override;

    /// Gives the pixels away: the pointer stays, and whoever takes it frees it, with FreePixels or
    /// `delete[]`.
    virtual void Disown();
    /// Takes a new shape for the same pixels. For memory that the image did not allocate it is taken on
    /// trust.
    /// @throws std::runtime_error "ZPA::ZPA_Image.ChangeImageAttributes() : Invalid buffer attributes." if
    ///         there are no pixels, or `height * stride` or the end of the last row passes what the image
    ///         allocated.
    virtual void ChangeImageAttributes(int width, int height, int stride, int bitsperpixel, int pixelspacing);

protected:
    /// Sets the descriptor's type to that of T.
    void SetType();
    /// Takes or allocates pixels, as SetImage tells. Former pixels must have been freed.
    void Initialize(T* buffer, int width, int height, int stride, int bitsperpixel, int pixelspacing,
                    bool owner, bool clear);
    /// Frees the pixels if the image owns them.
    void Clean();

private:
    ImageAttributes attributes_;
    bool owner_;
    std::int32_t allocated_;  // elements, -1 if the memory came from elsewhere
    std::uint64_t room_;      // elements that the shapes so far tell are there; overlapping rows need more
};

/// A buffer of elements of type T, seen through its interface.
template <typename T> class ZPA_TEMPLATE_API IZPA_Buffer : public ISolvane_Object {
public:
    /// Gives the buffer new elements.
    ///
    /// - A null `buffer`, where the buffer owns as many elements as `size`, zeroes them.
    /// - Else owned elements are freed, unless they are those of `buffer`. A null `buffer` allocates `size`
    ///   zeroed elements that the buffer owns, whatever `owner` says; any other is taken as it is.
    ///
    /// @param buffer  Null, or elements.
    /// @param size    Number of elements, above 0.
    /// @param owner   Whether the buffer will free a `buffer` that is not null, with `delete[]`.
    ///
    /// @throws std::runtime_error "ZPA_Image<T>::Initialize()  : Invalid buffer size." (sic)
    /// @throws std::runtime_error "ZPA_Buffer<T>::Initialize memory allocation failure"
    virtual void SetBuffer(T* buffer, int size, bool owner) = 0;
    /// The same with the fields of a descriptor, whose type is ignored.
    virtual void SetBuffer(BufferAttributes attributes, bool owner) = 0;
    virtual T* GetBufferPtr() const = 0;  ///< The first element, or null.
    virtual int GetSize() const = 0;      ///< Number of elements.
    virtual bool IsOwner() const = 0;     ///< Whether the buffer frees its elements.
};

/// A buffer of elements of type T: those of ZPA_Image but `signed char`.
template <typename T> class ZPA_TEMPLATE_API ZPA_Buffer : public IZPA_Buffer<T> {
public:
    /// An empty buffer.
    ZPA_Buffer();
    /// Arguments and exceptions as those of SetBuffer.
    ZPA_Buffer(T* buffer, int size, bool owner);
    /// Arguments and exceptions as those of SetBuffer.
    ZPA_Buffer(BufferAttributes attributes, bool owner);
    /// Frees the elements if the buffer owns them.
    ~ZPA_Buffer() override;
    ZPA_Buffer(ZPA_Buffer const&) = delete;
    ZPA_Buffer& operator=(ZPA_Buffer const&) = delete;

    void SetBuffer(T* buffer, int size, bool owner) override;
    void SetBuffer(BufferAttributes attributes, bool owner) override;
    T* GetBufferPtr() const override;
    int GetSize() const override;
    bool IsOwner() const override;

    /// Gives the elements away: the pointer stays, and whoever takes it frees it, with FreePixels or
    /// `delete[]`.
    virtual void Disown();
    /// The descriptor. Valid as long as the buffer keeps its elements.
    virtual operator BufferAttributes() const;

protected:
    /// Sets the descriptor's type to that of T.
    void SetType();
    /// Takes or allocates elements, as SetBuffer tells. Former elements must have been freed.
    void Initialize(T* buffer, int size, bool owner);
    /// Frees the elements if the buffer owns them.
    void Clean();

private:
    BufferAttributes attributes_;
    bool owner_;
    std::int32_t allocated_;  // elements, -1 if the memory came from elsewhere
};

/// @cond The instantiations that the library holds.
#define ZPA_FOR_BUFFER_ELEMENTS_(apply)                                                                \
    apply(char) apply(unsigned char) apply(short) apply(unsigned short) apply(int) apply(unsigned int) \
        apply(long) apply(unsigned long) apply(float) apply(double)
#define ZPA_FOR_IMAGE_ELEMENTS_(apply) apply(signed char) ZPA_FOR_BUFFER_ELEMENTS_(apply)

#define ZPA_DECLARED_ELSEWHERE_(T)                         \
    extern template class ZPA_INSTANCE_API IZPA_Buffer<T>; \
    extern template class ZPA_INSTANCE_API ZPA_Buffer<T>;
ZPA_FOR_BUFFER_ELEMENTS_(ZPA_DECLARED_ELSEWHERE_)
#undef ZPA_DECLARED_ELSEWHERE_
#define ZPA_DECLARED_ELSEWHERE_(T)                        \
    extern template class ZPA_INSTANCE_API IZPA_Image<T>; \
    extern template class ZPA_INSTANCE_API ZPA_Image<T>;
ZPA_FOR_IMAGE_ELEMENTS_(ZPA_DECLARED_ELSEWHERE_)
#undef ZPA_DECLARED_ELSEWHERE_
/// @endcond

}  // namespace ZPA

#endif
