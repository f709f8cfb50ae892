// A processing step whose parameters and results travel in a bag, and a document that keeps the bag.
//
// Usage: bag_step [DOCUMENT]
#include <Basics/IProcess.h>
#include <Basics/PixelOperations.h>
#include <Basics/ZPA_BagIO.h>

#include <cstdio>
#include <string>

namespace {

using BagPtr = ZPA::ZPA_Ptr<ZPA::Bag>;
using Image = ZPA::ZPA_Ptr<ZPA::ZPA_Image<unsigned short>>;
using Mask = ZPA::ZPA_Ptr<ZPA::ZPA_Image<unsigned char>>;

// Cuts an image to the field of a mask. Parameters: "Image" and "Mask". Results: "Result", and "Pixels",
// which counts those in the field. The caller's map tells under which keys they stand in his bag.
class Collimate : public ZPA::IProcess {
public:
    explicit Collimate(BagPtr const& map) : IProcess(map) {}

    bool Run(BagPtr const& bag) const {
        // The log tells what is missing or of another type.
        if (!CheckParam(bag, "Image", typeid(Image), nullptr)) return false;
        if (!CheckParam(bag, "Mask", typeid(Mask), nullptr)) return false;
        Image const image = bag->Get(MapName("Image"));
        Mask const mask = bag->Get(MapName("Mask"));

        ZPA::ImageAttributes cut;  // without pixels: the operation makes them, and we own them
        if (ZPA::CopyPixels(*image, &cut) != ZPA::SOLVANE_OK) return false;
        Image const result(new ZPA::ZPA_Image<unsigned short>(cut, true, false));
        if (ZPA::ApplyMask(*result, *mask) != ZPA::SOLVANE_OK) return false;

        int pixels = 0;
        for (int i = 0; i < mask->GetWidth() * mask->GetHeight(); ++i) pixels += mask->GetBufferPtr()[i] != 0;
        bag->Set(MapName("Result"), result);
        bag->Set(MapName("Pixels"), pixels);
        return true;
    }
};

// A ramp of grey, and a round field in it.
BagPtr Exposure() {
    int const width = 64, height = 48;
    Image const frame(new ZPA::ZPA_Image<unsigned short>(nullptr, width, height, 0, 16, 0, true, true));
    Mask const field(new ZPA::ZPA_Image<unsigned char>(nullptr, width, height, 0, 8, 0, true, true));
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            frame->GetBufferPtr()[y * width + x] = static_cast<unsigned short>(1000 * (y + 1) + x);
            int const dx = x - width / 2, dy = y - height / 2;
            field->GetBufferPtr()[y * width + x] = dx * dx + dy * dy < 400;
        }
    BagPtr const bag(new ZPA::Bag);
    bag->Set("Frame", frame);
    bag->Set("Field", field);
    bag->Set("KiloVolts", 70.5);
    return bag;
}

}  // namespace

int main(int count, char** arguments) {
    std::string const document = count > 1 ? arguments[1] : "bag_step.xml";
    BagPtr const map(new ZPA::Bag);
    map->Set("Image", "Frame");
    map->Set("Mask", "Field");
    map->Set("Result", "Collimated");

    BagPtr const bag = Exposure();
    if (!Collimate(map).Run(bag)) return 1;
    int const pixels = bag->Get("Pixels");
    std::printf("The field has %d of %d pixels.\n", pixels, 64 * 48);

    ZPA::ZPA_BagIO io;
    if (!io.SaveBag(bag, document)) return 1;
    BagPtr const loaded = io.LoadBag(document);
    std::printf("%s keeps:\n", document.c_str());
    for (std::string const& key : loaded->Key()) std::printf("    %s\n", key.c_str());

    if (!loaded->Has("Collimated")) return 1;
    Image const before = bag->Get("Collimated"), after = loaded->Get("Collimated");
    bool const same = ZPA::compare(*before, *after) == ZPA::SOLVANE_OK;
    std::printf("The image that was loaded is %s.\n", same ? "the one that was saved" : "another one");
    return same ? 0 : 1;
}
