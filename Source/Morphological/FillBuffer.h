// The working buffer of fills.
#ifndef ZPA_SOURCE_MORPHOLOGICAL_FILLBUFFER_H
#define ZPA_SOURCE_MORPHOLOGICAL_FILLBUFFER_H

#include <memory>

#include "primitives/FloodFill.h"
#include "Source/Internal/Frame.h"
#include "Source/Internal/Memory.h"

namespace ZPA {

class FillBuffer {
public:
    // Makes room for a fill of the image, or logs why there is none.
    [[nodiscard]] SOLVANE_RETURNCODE Allocate(ImageAttributes const& image) {
        std::uint64_t bytes = 0;
        Status const status = ippiFloodFillGetSize({image.width, image.height}, &bytes);
        if (status != kDone)
            return Fail(SOLVANE_OPERATION_FAILED, L"ippiFloodFillGetSize failed. code %d", int{status});
        memory_.reset(AllocateElements<unsigned char>(bytes));
        return memory_ ? SOLVANE_OK : FailMemory(L"template_FloodFill", bytes);
    }
    void* Get() const { return memory_.get(); }

private:
    std::unique_ptr<unsigned char[]> memory_;
};

}  // namespace ZPA

#endif
