// Makes the inputs that fuzzing starts from: MakeSeeds FOLDER EXPORTS. Fails if an operation is forgotten.
#include <Basics/BagOperations.h>
#include <Basics/ZPA_BagIO.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <sstream>

#include "operations/Operations.h"

using namespace ZPA;
namespace fs = std::filesystem;

namespace {

// A folder of seeds for one target.
class Corpus {
public:
    explicit Corpus(fs::path const& folder) : folder_(folder) { fs::create_directories(folder_); }
    void Add(std::string const& seed) {
        std::ofstream(folder_ / ("seed" + std::to_string(count_++)), std::ios::binary) << seed;
    }

private:
    fs::path folder_;
    int count_ = 0;
};

std::string Bytes(std::mt19937& random, int count) {
    std::string bytes;
    for (int i = 0; i < count; ++i) bytes += static_cast<char>(random());
    return bytes;
}

// Calls of each operation, more and more of whose numbers are not tame.
void AddOperations(Corpus corpus) {
    std::mt19937 random(1);
    for (Fuzz::Operation const& each : Fuzz::AllOperations()) {
        std::uint16_t const id = each.Id();
        for (int hostile = 0; hostile < 12; ++hostile) {
            std::string seed(reinterpret_cast<char const*>(&id), sizeof id);
            seed += '\0';
            for (int i = 0; i < 64; ++i) {
                auto const byte = random() % 256;
                bool const tame = static_cast<int>(random() % 16) >= hostile;
                seed += static_cast<char>(tame ? byte % 180 : byte);
            }
            corpus.Add(seed);
        }
    }
}

std::string WithZero(std::string const& text) { return text + '\0'; }

std::string Read(fs::path const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

template <typename T> ZPA_Ptr<T> Counting(int count) {
    ZPA_Ptr<T> array(new T[static_cast<std::size_t>(count)]);
    for (int i = 0; i < count; ++i) array.GetPointer()[i] = static_cast<T>(i - 5);
    return array;
}

// Documents that the library itself writes, and what it only reads.
void AddDocuments(Corpus corpus, fs::path const& scratch) {
    ZPA_Ptr<Bag> const bag(new Bag), inner(new Bag);
    bag->Set("flag", true);
    bag->Set("letter", 'a');
    bag->Set("count", 5u);
    bag->Set("gain", 1.5);
    bag->Set("text", "a < b & \xC3\xA9");
    bag->Set("items", Counting<short>(3), 3);
    inner->Set("ratio", 0.5f);
    inner->Set("curve", Counting<double>(2), 2);
    bag->Set("inner", inner);
    ZPA_Ptr<ZPA_Image<unsigned short>> const image(
        new ZPA_Image<unsigned short>(nullptr, 4, 3, 0, 16, 1, true, true));
    bag->Set("scan", image);
    std::string const options = std::string("\2") + std::string(8, '\1'), content(24, 'x');
    std::vector<std::string> documents;
    for (auto const& each : {bag, inner, ZPA_Ptr<Bag>(new Bag)}) {
        (void)ZPA_BagIO().SaveBag(each, (scratch / "bag.xml").string());
        documents.push_back(Read(scratch / "bag.xml"));
    }
    documents.push_back(
        "<Bag><a Type='System.Int16[]' Size='12' BufferFile='a'/><b Type='Bag[]'><item Type='Bag'>"
        "<c Type='System.Byte'>7</c></item></b><d Type='System.String[]'><item>x</item><item/></d></Bag>");
    documents.push_back(
        "<Bag><i Type='Bag'><ZPA_Type Type='System.String'>ZPA_Image&lt;unsigned char&gt;</ZPA_Type>"
        "<Width>4</Width><Height>3</Height><BitsPerPixel>8</BitsPerPixel>"
        "<Buffer Type='System.Byte[]' Size='12' BufferFile='b'/></i></Bag>");
    documents.push_back(
        "<Bag><l Type='Bag'><StructArray/><ZPA_Type>ZPA_Image&lt;unsigned short&gt;</ZPA_Type><one>"
        "<ZPA_Type>ZPA_Image&lt;unsigned short&gt;</ZPA_Type><Width>4</Width><Height>3</Height>"
        "<Buffer BufferFile='a'/></one></l></Bag>");
    documents.push_back("<?xml version='1.0'?><!DOCTYPE a><a b=c><!-- d --><![CDATA[e]]>&#x41;&lt;</a>");
    std::string many = "<Bag>";
    for (int i = 0; i < 200; ++i)
        many += "<k" + std::to_string(i * 7 % 190) + " Type='System.Byte'>1</k" +
                std::to_string(i * 7 % 190) + ">";
    documents.push_back(many + "</Bag>");
    for (std::string const& each : documents) corpus.Add(WithZero(each) + options + content);
}

void AddIds(Corpus corpus) {
    for (char const* id :
         {"image.8.640.480.0.12.0", "image.6.3.2.4.8.1", "image.7.9..5", "image.14.3.3.3.64.0", "image.5.1.1",
          "buffer.14.256", "buffer.9.0", "buffer.5.7", "buffer.13.3", "image.", "image.8.-1.2147483648",
          "unsigned char", "USHORT", "long double", "byte", "image.8.%s%n.3"})
        for (char const option : {'\0', '\1', '\2'}) corpus.Add(std::string(1, option) + id);
}

void AddRawFiles(Corpus corpus) {
    for (char const* name : {"scan.4.3.raw", "scan.4.3.MASK", "mask.4.3.mask", "plain.bin", "curve.24.raw",
                             "a..4...3.raw", "x.-4.3.raw", "%s%n.4.3.raw", "scan.99999999999.3.raw", "4.3"})
        for (int type = 0; type < 6; ++type)
            corpus.Add(WithZero(name) + static_cast<char>(type) + std::string("\4\3\0\2", 4) +
                       std::string(static_cast<std::size_t>(type == 0   ? 12
                                                            : type == 5 ? 96
                                                                        : 24),
                                   'p'));
}

void AddFormats(Corpus corpus) {
    for (char const* label :
         {"label", "%s %S %ls %hs", "%d%%", "%5.3f|%-20p|%n", "%*.*d", "%I64u %zu %jd", "%Lf", "%"})
        corpus.Add(std::string(1, '\0') + label);
    std::mt19937 random(2);
    for (int i = 0; i < 200; ++i) corpus.Add('\1' + Bytes(random, 80));
}

// The exported functions with C linkage that no target calls.
int ReportForgotten(char const* exportsFile) {
    std::set<std::string> called = {// by the targets of their own
                                    "ParseTypeCode", "ParseImageFactoryString", "ParseBufferFactoryString",
                                    "ZPA_Create", "ZPA_CreateEx", "ReadRaw", "ReadRawFile", "ReadRawBuffer",
                                    "dumpRaw", "DumpRawImage", "DumpRawMask", "dumpPgm8bit",
                                    "dumpPgm8bit_uchar", "dumpPgm8bit_double",
                                    // as others do, or without a choice
                                    "SizeOfTypeCode", "LogMemoryError"};
    for (Fuzz::Operation const& each : Fuzz::AllOperations()) {
        std::istringstream names(each.name);
        for (std::string name; names >> name;) called.insert(name);
    }
    int forgotten = 0;
    std::ifstream exports(exportsFile);
    if (!exports) ++forgotten, std::fprintf(stderr, "%s cannot be read\n", exportsFile);
    for (std::string name; std::getline(exports, name);) {
        bool const plain = name.find_first_of(":(<# ") == std::string::npos && !name.empty();
        if (plain && called.count(name) == 0)
            ++forgotten, std::fprintf(stderr, "No fuzz target calls %s\n", name.c_str());
    }
    return forgotten;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    if (argumentCount != 3) return std::fprintf(stderr, "Usage: MakeSeeds FOLDER EXPORTS\n"), 2;
    fs::path const folder = arguments[1];
    AddOperations(Corpus(folder / "Operations"));
    AddDocuments(Corpus(folder / "BagDocument"), folder);
    AddIds(Corpus(folder / "FactoryId"));
    AddRawFiles(Corpus(folder / "RawFile"));
    AddFormats(Corpus(folder / "LogFormat"));
    return ReportForgotten(arguments[2]) ? 1 : 0;
}
