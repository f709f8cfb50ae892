// The working buffer of fills.
#ifndef ZPA_SOURCE_MORPHOLOGICAL_FILLBUFFER_H
#define ZPA_SOURCE_MORPHOLOGICAL_FILLBUFFER_H

#include <Basics/CoreTypes.h>

#include <memory>

namespace ZPA {

class FillBuffer {
public:
    // Makes room for a fill of the image, or logs why there is none, as a failure of FloodFill.cpp.
    [[nodiscard]] SOLVANE_RETURNCODE Allocate(ImageAttributes const& image);
    void* Get() const { return memory_.get(); }

private:
    std::unique_ptr<unsigned char[]> memory_;
};

}  // namespace ZPA

#endif
