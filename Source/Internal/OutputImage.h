// The output of an operation that creates one where the caller gave none.
#ifndef ZPA_SOURCE_INTERNAL_OUTPUTIMAGE_H
#define ZPA_SOURCE_INTERNAL_OUTPUTIMAGE_H

#include <Basics/ImageBuffer.h>

namespace ZPA {

// Gives `output` pixels if it has none: rows without padding, zero if `clear` is set, and the whole descriptor
// filled in. They become the caller's when the operation finishes with success; else they are freed, and the
// caller's pointer is null again.
template <typename T> class OutputImage {
public:
    OutputImage(ImageAttributes* output, int width, int height, int bitsperpixel, int pixelspacing,
                bool clear = true)
        : output_(output) {
        if (output_->buffer) return;
        made_.SetImage(nullptr, width, height, width, bitsperpixel, pixelspacing, true, clear);
        *output_ = made_;
    }
    ~OutputImage() {
        if (made_.IsOwner()) output_->buffer = nullptr;
    }
    OutputImage(OutputImage const&) = delete;
    OutputImage& operator=(OutputImage const&) = delete;

    // Ends the operation with its code.
    [[nodiscard]] SOLVANE_RETURNCODE Finish(SOLVANE_RETURNCODE code) {
        if (code == SOLVANE_OK) made_.Disown();
        return code;
    }

private:
    ImageAttributes* output_;
    ZPA_Image<T> made_;
};

}  // namespace ZPA

#endif
