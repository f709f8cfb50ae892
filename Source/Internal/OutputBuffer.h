// The counts that an operation creates where the caller gave no buffer.
#ifndef ZPA_SOURCE_INTERNAL_OUTPUTBUFFER_H
#define ZPA_SOURCE_INTERNAL_OUTPUTBUFFER_H

#include <Basics/ImageBuffer.h>

#include <climits>
#include <cstring>
#include <new>

namespace ZPA {

// Gives `output` a buffer of counts if it has none, and fills in its descriptor. The buffer becomes the
// caller's when the operation finishes with success; else it is freed, and the caller's pointer is null
// again. A null `output` is no caller's: its counts are freed in any case.
class OutputBuffer {
public:
    explicit OutputBuffer(BufferAttributes* output) : output_(output) {}
    ~OutputBuffer() {
        if (output_ && made_.IsOwner()) output_->buffer = nullptr;
    }
    OutputBuffer(OutputBuffer const&) = delete;
    OutputBuffer& operator=(OutputBuffer const&) = delete;

    // Room for `size` counts, 1 at least. The caller's buffer is refused, in silence, with 6 if it has other
    // elements, and with 7 if it is too short. Throws if there is no memory.
    [[nodiscard]] SOLVANE_RETURNCODE Prepare(std::int64_t size) {
        if (output_ && output_->buffer) {
            if (output_->type != eUInt32) return SOLVANE_UNSUPPORTED_TYPE;
            if (output_->size < size) return SOLVANE_SIZE_MISMATCH;
            counts_ = output_->buffer;
        } else {
            if (size > INT_MAX) throw std::bad_alloc();
            made_.SetBuffer(nullptr, static_cast<int>(size), true);
            if (output_) *output_ = made_;
            counts_ = made_.GetBufferPtr();
        }
        size_ = static_cast<std::size_t>(size);
        return SOLVANE_OK;
    }

    // The counts, for kernels: these know no ULong32, which may be another type of the same 32 bits.
    std::uint32_t* Counts() { return static_cast<std::uint32_t*>(counts_); }

    // The counts, all of them set to zero. The caller's own stay as they were up to here.
    std::uint32_t* Cleared() {
        std::memset(counts_, 0, size_ * sizeof(ULong32));
        return Counts();
    }

    // Ends the operation with its code.
    [[nodiscard]] SOLVANE_RETURNCODE Finish(SOLVANE_RETURNCODE code) {
        if (code == SOLVANE_OK && output_) made_.Disown();
        return code;
    }

private:
    BufferAttributes* output_;
    ZPA_Buffer<ULong32> made_;
    void* counts_ = nullptr;
    std::size_t size_ = 0;
};

}  // namespace ZPA

#endif
