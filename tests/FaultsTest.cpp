// What becomes of operations when the world around them fails: files, disks, callbacks, other threads.
#include <Basics/BagOperations.h>
#include <Basics/Logging.h>
#include <Basics/RawFile.h>
#include <Basics/ZPA_BagIO.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <set>
#include <stdexcept>
#include <thread>

#if !defined(_WIN32)
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#endif

#include "support/BagDocuments.h"
#include "support/CapturedLog.h"
#include "support/EveryOperation.h"
#include "support/RawFiles.h"
#include "support/TemporaryFolder.h"

namespace ZPA::Testing {
namespace {

class Faults : public testing::Test {
protected:
    Faults() { Workplace::WriteFiles(folder.Path()); }
    TemporaryFolder folder;
    CapturedLog log;  // puts everything back
};

// The codes are those without the callbacks' exceptions, or tell of one.
TEST_F(Faults, CallbacksThatThrowLetNoExceptionOut) {
    ZPA_Logging::SetErrorCallback(ThrowFromCallback);
    ZPA_Logging::SetDebugCallback(ThrowFromCallback);
    for (LogCategory const category : {eLogFunction, eLogImage, eLogMemory, eLogFactory, eLogTiming}) {
        ZPA_Logging::EnableDebug(category, true);
        for (OperationCall const& each : EveryOperation()) {
            SCOPED_TRACE(each.name);
            Workplace place(folder.Path());
            int code = -1;
            EXPECT_NO_THROW(code = each.call(place));
            EXPECT_TRUE(code == 0 || code == 1 || code == 5 || code == 999) << code;
        }
        ZPA_Logging::EnableDebug(category, false);
    }
}

// Logs again from within, once.
void HearAndLog(wchar_t const*, int category, wchar_t const* message) {
    static thread_local bool within = false;
    if (within) return;
    within = true;
    ZPA_Logging::LogError(nullptr, 0, category, L"again: %s", message);
    ZPA_Logging::LogDebug(nullptr, 0, eLogFunction, L"%s", message);
    within = false;
}

TEST_F(Faults, EightThreadsThatShareTheLogDoWhatOneDoes) {
    ZPA_Logging::SetErrorCallback(HearAndLog);
    ZPA_Logging::SetDebugCallback(HearAndLog);
    for (int category = 0; category < eLogAll; ++category) log.Debug(static_cast<LogCategory>(category));
    std::vector<std::uint64_t> expected;
    for (OperationCall const& each : EveryOperation()) {
        Workplace place(folder.Path());
        EXPECT_EQ(each.call(place), 0) << each.name;
        expected.push_back(place.Digest());
    }
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread) {
        std::string const own = folder.Path(std::to_string(thread)) + '/';
        std::filesystem::create_directory(own);
        Workplace::WriteFiles(own);
        threads.emplace_back([&expected, own, thread] {
            std::size_t const count = expected.size();
            for (std::size_t i = 0; i < count; ++i) {
                std::size_t const at = (i + static_cast<std::size_t>(thread) * 7) % count;
                OperationCall const& each = EveryOperation()[at];
                Workplace place(own);
                EXPECT_EQ(each.call(place), 0) << each.name;
                EXPECT_EQ(place.Digest(), expected[at]) << each.name;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
}

// The bags are the threads' own; the values in them are shared.
TEST_F(Faults, EightThreadsShareTheValuesOfBags) {
    ZPA_Ptr<int> const array(new int[3]{1, 2, 3});
    BagPtr source = NewBag({{"array", array, 3}, {"text", "shared"}});
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 8; ++thread)
        threads.emplace_back([own = BagQuery(source, source->Key())]() mutable {
            for (int i = 0; i < 200; ++i) {
                BagPtr sum = BagQuery(own, {"array"});
                BagAddition(sum, own);
                EXPECT_EQ(Describe(*BagClone(sum)), "array: i32[3] 1 2 3, text: \"shared\"");
            }
            own = BagPtr();
        });
    source = BagPtr();
    for (std::thread& thread : threads) thread.join();
    EXPECT_TRUE(array.IsUnique());
}

// Read while somebody else writes them, cuts them off and removes them. The system may show one that is being cut off
// in its old length, with zeros at the end.
TEST_F(Faults, FilesThatComeAndGoAreReadInFullOrNotAtAll) {
    ZPA_Logging::SetErrorCallback([](wchar_t const*, int, wchar_t const*) {});
    std::string const image = folder.Path("some.16.16.raw"), document = folder.Path("some.xml");
    std::string const pixels(512, 'x');
    std::string const text = "<Bag><a Type='System.Byte[]' Size='512' BufferFile='some.16.16.raw'/></Bag>";
    std::atomic<bool> done(false);
    std::thread other([&] {
        for (int i = 0; i < 200; ++i) {
            folder.Write("some.16.16.raw", pixels);
            folder.Write("some.xml", text);
            std::error_code ignored;
            if (i % 3 == 1) std::filesystem::resize_file(image, 100, ignored);
            if (i % 3 == 2) std::filesystem::remove(image, ignored);
            if (i % 5 == 4) std::filesystem::remove(document, ignored);
        }
        done = true;
    });
    auto const isOfTheFile = [](void const* block) {
        auto const* const bytes = static_cast<unsigned char const*>(block);
        return std::all_of(bytes, bytes + 512, [](unsigned char byte) { return byte == 'x' || byte == 0; });
    };
    // Told once nothing is captured any more.
    std::set<int> codes;
    bool imagesAreWhole = true, arraysAreWhole = true;
    (void)Printed([&] {
        while (!done) {
            ImageAttributes read;
            int const code = ReadRawFile(image.c_str(), &read);
            codes.insert(code);
            imagesAreWhole &= code == 0 ? read.buffer && isOfTheFile(read.buffer) : !read.buffer;
            FreePixels(read.buffer);

            BagPtr const bag = BagIO().LoadBag(document);
            if (!bag->Has("a")) continue;
            ZPA_Ptr<unsigned char> const array = bag->Get("a");
            arraysAreWhole &= isOfTheFile(array.GetPointer());
        }
    });
    other.join();
    for (int const code : codes) EXPECT_TRUE(code == 0 || code == 5) << code;
    EXPECT_TRUE(imagesAreWhole);
    EXPECT_TRUE(arraysAreWhole);
}

#if !defined(_WIN32)

// No file grows beyond `bytes` meanwhile, as on a disk that fills up.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        rlimit const limit{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FullDisk(FullDisk const&) = delete;
    FullDisk& operator=(FullDisk const&) = delete;

private:
    rlimit before_;
    void (*handler_)(int);
};

TEST_F(Faults, ADiskThatFillsUpIsTold) {
    std::vector<double> const data(3000, 1.5);
    auto const* const words = reinterpret_cast<unsigned short const*>(data.data());
    auto const* const bytes = reinterpret_cast<unsigned char const*>(data.data());
    std::string const path = folder.Path("dump");
    std::vector<int> codes;
    {
        FullDisk const full(4096);
        codes = {dumpRaw(data.data(), 24000, path.c_str()), DumpRawImage(words, 100, 120, -1, path.c_str()),
                 DumpRawMask(bytes, 100, 120, -1, path.c_str()), dumpPgm8bit(words, 100, 120, path.c_str())};
        EXPECT_EQ(dumpPgm8bit_double(data.data(), 100, 30, path.c_str()), 0);  // fits
    }
    EXPECT_EQ(folder.Read("dump.100.120.raw").size(), 4096U);
    {
        FullDisk const full(0);  // which is noticed when the file is closed
        codes.push_back(dumpRaw(bytes, 1, path.c_str()));
        codes.push_back(dumpPgm8bit_uchar(bytes, 1, 1, path.c_str()));
    }
    EXPECT_EQ(codes, std::vector<int>(6, 999));
    std::wstring const raw = L"dumpRaw() - Error in writing " + Wide(path);
    std::wstring const picture = L"template_dumpPgm8bit(): Error in writing " + Wide(path) + L".\n";
    EXPECT_EQ(log.Texts(), raw + L".\n" + raw + L".100.120.raw.\n" + raw + L".100.120.mask.\n" + picture +
                               raw + L".\n" + picture);
}

TEST_F(Faults, ABagOnADiskThatFillsUpIsReadAsFarAsItGot) {
    ZPA_Ptr<int> const array(new int[3000]);
    std::fill_n(array.GetPointer(), 3000, 7);
    BagPtr const bag = NewBag(), small = NewBag({{"array", array, 3000}});
    for (int i = 0; i < 200; ++i) bag->Set("key" + std::to_string(i), i);
    std::string const large = folder.Path("large.xml"), fits = folder.Path("fits.xml");
    {
        FullDisk const full(4096);
        EXPECT_TRUE(BagIO().SaveBag(bag, large));
        EXPECT_TRUE(BagIO().SaveBag(small, fits));
    }
    BagPtr const loaded = BagIO().LoadBag(fits);
    ZPA_Ptr<int> const read = loaded->Get("array");
    for (int i = 0; i < 3000; ++i) ASSERT_EQ(read.GetPointer()[i], i < 1024 ? 7 : 0) << i;
    std::size_t keys = 1;
    EXPECT_EQ(Printed([&] { keys = BagIO().LoadBag(large)->Key().size(); }),
              "Failed to load file \"" + large + "\"\n");
    EXPECT_EQ(keys, 0U);
}

TEST_F(Faults, FilesWithoutPermissionAreNeitherReadNorWritten) {
    std::string const secret = folder.Write("secret.2.1.raw", "abcd");
    folder.Write("bag.xml", "<Bag><a Type='System.Byte[]' Size='4' BufferFile='secret.2.1.raw'/></Bag>");
    std::filesystem::permissions(secret, std::filesystem::perms::none);
    // Permissions do not hold for root.
    bool const isRoot = geteuid() == 0;
    if (isRoot && seteuid(65534) != 0) GTEST_SKIP();
    ImageAttributes image;
    int const read = ReadRawFile(secret.c_str(), &image);
    int const dumped = dumpRaw("x", 1, secret.c_str());
    BagPtr const bag = BagIO().LoadBag(folder.Path("bag.xml"));
    bool const saved = BagIO().SaveBag(bag, secret);
    ASSERT_TRUE(!isRoot || seteuid(0) == 0);
    std::filesystem::permissions(secret, std::filesystem::perms::owner_all);

    EXPECT_EQ(read, 5);
    EXPECT_EQ(image.buffer, nullptr);
    EXPECT_EQ(dumped, 999);
    EXPECT_TRUE(saved);
    ZPA_Ptr<unsigned char> const array = bag->Get("a");
    EXPECT_EQ(array.GetPointer()[0], 0);
    EXPECT_EQ(folder.Read("secret.2.1.raw"), "abcd");
}

#endif

}  // namespace
}  // namespace ZPA::Testing
