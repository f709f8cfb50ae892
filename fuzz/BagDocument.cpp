// Bag documents with their side files: read, walked, changed, written, and read again.
#include <Basics/BagOperations.h>
#include <Basics/ZPA_BagIO.h>

#include "support/Input.h"
#include "support/Limits.h"
#include "support/ScratchFolder.h"

using namespace ZPA;
using BagPtr = ZPA_Ptr<Bag>;

namespace {

Fuzz::ScratchFolder& Scratch() {
    static Fuzz::ScratchFolder folder;
    return folder;
}

// What a bag holds beside its values, and whether look-ups agree with the order of the entries.
void Walk(BagPtr const& bag, int depth) {
    std::vector<std::string> const keys = bag->Key();
    for (std::size_t i = 0; i < keys.size(); ++i) {
        int const index = static_cast<int>(i);
        std::type_info const& type = bag->Get(index)->Type();
        if (keys[i].find('/') == std::string::npos && bag->GetType(keys[i]) != type) std::abort();
        if (bag->GetSize(keys[i]) != bag->GetSize(index)) std::abort();
        char text[64];
        try {
            (void)bag->Get(keys[i]).toString(text, sizeof text);
        } catch (char const*) {  // a type without a text
        }
        if (type == typeid(BagPtr) && depth < 16) Walk(static_cast<BagPtr>(bag->Get(keys[i])), depth + 1);
    }
    (void)bag->IsDirty("");
}

void Change(BagPtr const& bag, Fuzz::Input& input) {
    std::vector<std::string> const keys = bag->Key();
    if (keys.empty()) return;
    for (int i = 0; i < 4; ++i) {
        std::string const& key = keys[input.Byte() % keys.size()];
        switch (input.Choice(5)) {
            case 0:
                bag->Remove(key);
                break;
            case 1:
                (void)bag->Rename(key, keys[input.Byte() % keys.size()]);
                break;
            case 2:
                bag->Set(key, 1.5);
                break;
            case 3:
                bag->Set("New" + std::to_string(i), bag->Get(key).operator bool());
                break;
            default:
                bag->ClearDirty(key);
        }
    }
}

// Exceptions are how bags and values refuse; what is thrown on purpose is a text or a standard exception.
template <typename Work> void Tolerant(Work const& work) {
    try {
        work();
    } catch (char const*) {
    } catch (std::exception const&) {
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    Fuzz::ListenToAll();
    return 0;
}

// The document up to the first zero, options, what to change, and the content of the side files.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* bytes, std::size_t size) {
    Fuzz::Input input(bytes, size);
    std::string const document = input.TextToZero();
    int const options = input.Byte();
    std::string const change = input.Text(8);
    std::string const content = input.Rest();
    Scratch().Write("bag.xml", document);
    Scratch().Write("a", content);
    Scratch().Write("b", content.substr(0, content.size() / 2));
    std::string const path = Scratch().Path("bag.xml"), again = Scratch().Path("again.xml");

    {
        Fuzz::LimitedMemory const little(80 << 20);
        BagPtr const bag = options & 2 ? ZPA_BagIO().LoadBag(path) : BagIO().LoadBag(path);
        Tolerant([&] { Walk(bag, 0); });
        // No allocation fails while a document is parsed: the XML parser would lose what it is at.
        Testing::ThisThreadsAllocations().untilFailure = options & 1 ? options >> 2 : -1;
        Tolerant([&] {
            BagPtr sum(new Bag);
            Tolerant([&] { sum = BagClone(bag); });
            Fuzz::Input changes(reinterpret_cast<std::uint8_t const*>(change.data()), change.size());
            Tolerant([&] { Change(bag, changes); });
            BagAddition(sum, bag);
            (void)BagQuery(sum, bag->Key());
            BagIO().Scan(bag);
        });
        Tolerant([&] { (void)ZPA_BagIO().SaveBag(bag, again, "Again"); });
        Testing::ThisThreadsAllocations().untilFailure = -1;
        BagPtr const second = ZPA_BagIO().LoadBag(again);
        Tolerant([&] { Walk(second, 0); });
    }
    Scratch().Clear();
    return 0;
}
