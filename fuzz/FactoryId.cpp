// Factory ids and names of types: any text, to all who read one.
#include <Basics/Factory.h>
#include <Basics/ImageBuffer.h>

#include "support/Input.h"
#include "support/Limits.h"

using namespace ZPA;

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::ListenToAll();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    Fuzz::Input input(bytes, size);
    int const choice = input.Byte();
    Fuzz::SwitchLog(choice & 1);
    int const fails = choice & 2 ? choice >> 2 & 7 : -1;
    std::string const text = input.Rest();
    // In a block of its exact size.
    std::size_t const length = text.size() + 1;
    char* const id = static_cast<char*>(std::malloc(length));
    std::memcpy(id, text.c_str(), length);

    (void)ParseTypeCode(id);
    ImageAttributes image;
    BufferAttributes buffer;
    (void)ParseImageFactoryString(id, &image);
    (void)ParseBufferFactoryString(id, &buffer);
    {
        Fuzz::LimitedMemory const little(1 << 20, fails);
        ISolvane_Object* made = nullptr;
        bool const succeeded = ZPA_CreateEx(id, &made) == SOLVANE_OK;
        if (succeeded != (made != nullptr)) std::abort();
        delete made;
        delete ZPA_Create(id);
    }
    std::free(id);
    return 0;
}
