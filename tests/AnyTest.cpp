// Values, the conversions of their handles, and values as text.
#include <Basics/Any.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "support/Thrown.h"

namespace ZPA {
namespace {

using Texts = std::vector<std::string>;
using Bags = std::vector<ZPA_Ptr<Bag>>;
using Bytes = ZPA_Image<unsigned char>;

static_assert(sizeof(AnyHandle) == sizeof(ZPA_Ptr<Any>), "a handle has no data of its own");
static_assert(!std::is_constructible<Any, long>::value && !std::is_constructible<Any, char const*>::value &&
                  !std::is_constructible<Any, ZPA_Ptr<long>>::value &&
                  !std::is_constructible<Any, ZPA_Ptr<ZPA_Image<float>>>::value,
              "the list of held types is closed");
static_assert(sizeof(std::size_t) == sizeof(unsigned int) ||
                  (!std::is_constructible<Texts, AnyHandle>::value &&
                   !std::is_constructible<Bags, AnyHandle>::value),
              "a vector must not take its size from a handle");

template <typename T> AnyHandle Handle(T const& value) { return AnyHandle(new Any(value)); }

struct Held {
    std::type_info const& type;
    AnyHandle handle;
};
template <typename... T> std::vector<Held> Defaults() { return {{typeid(T), Handle(T())}...}; }

// One value of each held type, and none at all.
std::vector<Held> OneOfEach() {
    auto all =
        Defaults<char, unsigned char, short, unsigned short, int, unsigned int, float, double, bool,
                 std::string, ZPA_Ptr<char>, ZPA_Ptr<unsigned char>, ZPA_Ptr<short>, ZPA_Ptr<unsigned short>,
                 ZPA_Ptr<int>, ZPA_Ptr<unsigned int>, ZPA_Ptr<float>, ZPA_Ptr<double>, ZPA_Ptr<bool>,
                 ZPA_Ptr<Bytes>, ZPA_Ptr<ZPA_Image<short>>, ZPA_Ptr<ZPA_Image<unsigned short>>,
                 ZPA_Ptr<ZPA_Image<int>>, ZPA_Ptr<ZPA_Image<double>>, ZPA_Ptr<Bag>,
                 std::vector<ZPA_Ptr<Bytes>>, std::vector<ZPA_Ptr<ZPA_Image<unsigned short>>>, Bags, Texts>();
    EXPECT_EQ(all.size(), 29u);
    all.push_back({typeid(void), AnyHandle()});
    return all;
}

struct Conversion {
    std::type_info const& type;
    std::string refusal;
    std::function<void(AnyHandle const&)> read;
};
template <typename T> Conversion To(char const* refusal) {
    return {typeid(T), refusal, [](AnyHandle const& handle) { [[maybe_unused]] T const value = handle; }};
}

TEST(AnyHandle, ConvertsToTheHeldTypeAndRefusesEveryOther) {
    Conversion const conversions[] = {
        To<unsigned int>("Can't cast to unsigned integer"),
        To<int>("Can't cast to integer"),
        To<unsigned char>("Not an unsigned char."),
        To<char>("Not an char."),
        To<unsigned short>("Not an unsigned short."),
        To<short>("Not a short type."),
        To<float>("Not in float type."),
        To<double>("Not in double type."),
        To<bool>("Not in boolean type."),
        To<std::string>("Not in string type."),
        To<ZPA_Ptr<Bag>>("can't cast to ZPA_Ptr<Bag>."),
        To<ZPA_Ptr<unsigned char>>("can't cast to ZPA_Ptr<unsigned char>."),
        To<ZPA_Ptr<char>>("can't cast to ZPA_Ptr<char>."),
        To<ZPA_Ptr<unsigned short>>("can't cast to ZPA_Ptr<unsigned short>."),
        To<ZPA_Ptr<short>>("can't cast to ZPA_Ptr<short>."),
        To<ZPA_Ptr<unsigned int>>("can't cast to ZPA_Ptr<unsigned int>."),
        To<ZPA_Ptr<int>>("can't cast to ZPA_Ptr<int>."),
        To<ZPA_Ptr<float>>("can't cast to ZPA_Ptr<float>."),
        To<ZPA_Ptr<double>>("can't cast to ZPA_Ptr<double>."),
        To<ZPA_Ptr<bool>>("can't cast to ZPA_Ptr<bool>."),
        To<ZPA_Ptr<Bytes>>("bad cast"),
        To<ZPA_Ptr<ZPA_Image<short>>>("bad cast"),
        To<ZPA_Ptr<ZPA_Image<unsigned short>>>("bad cast"),
        To<ZPA_Ptr<ZPA_Image<int>>>("bad cast"),
        To<ZPA_Ptr<ZPA_Image<double>>>("bad cast"),
    };
    for (Held const& held : OneOfEach()) {
        EXPECT_EQ(held.handle->Type(), held.type);
        for (Conversion const& conversion : conversions) {
            std::string expected = conversion.type == held.type ? "" : conversion.refusal;
            if (conversion.type == typeid(unsigned int) && held.type == typeid(Texts))
                expected = "can't cast to std::vector<string> in a 32-bit process.";
            if (conversion.type == typeid(unsigned int) && held.type == typeid(Bags))
                expected = "can't cast to std::vector<ZPA_Ptr<Bag>> in a 32-bit process.";
            std::string refusal;
            try {
                conversion.read(held.handle);
            } catch (char const* message) {
                refusal = message;
            } catch (std::bad_cast const& exception) {
                refusal = exception.what();
            }
            EXPECT_EQ(refusal, expected) << held.type.name() << " to " << conversion.type.name();
        }
    }
}

// Elsewhere than in a 32-bit process it does not compile, as the assertion above tells.
template <typename Vector> std::string ConstructedFrom([[maybe_unused]] AnyHandle const& handle) {
    std::string size;
    return Testing::Thrown<char const*>([&] {
               if constexpr (std::is_constructible_v<Vector, AnyHandle>)
                   size = std::to_string(Vector(handle).size());
           }) +
           size;
}

TEST(AnyHandle, IsASizeToAVectorIn32Bits) {
    if (sizeof(std::size_t) != sizeof(unsigned int)) GTEST_SKIP();
    EXPECT_EQ(ConstructedFrom<Texts>(Handle(Texts(2))),
              "can't cast to std::vector<string> in a 32-bit process.");
    EXPECT_EQ(ConstructedFrom<Bags>(Handle(Bags(2))),
              "can't cast to std::vector<ZPA_Ptr<Bag>> in a 32-bit process.");
    EXPECT_EQ(ConstructedFrom<Texts>(Handle(3)), "Can't cast to unsigned integer");
    EXPECT_EQ(ConstructedFrom<Texts>(Handle(3U)), "3");
}

TEST(AnyHandle, ReadsVectorsForThoseWhoNameThem) {
    Texts const texts{"one", ""};
    EXPECT_EQ(Handle(texts).Get<Texts>(), texts);
    EXPECT_EQ(Handle(Bags(3)).Get<Bags>().size(), 3u);
    EXPECT_EQ(Handle(std::vector<ZPA_Ptr<Bytes>>(2)).Get<std::vector<ZPA_Ptr<Bytes>>>().size(), 2u);
    EXPECT_THROW((void)Handle(texts).Get<Bags>(), std::bad_cast);
    EXPECT_THROW((void)AnyHandle().Get<Texts>(), std::bad_cast);
}

TEST(AnyHandle, AlwaysHasAnAnyBehindIt) {
    EXPECT_EQ(AnyHandle(nullptr)->Type(), typeid(void));
    AnyHandle handle{ZPA_Ptr<Any>()};
    EXPECT_EQ(handle->Type(), typeid(void));
    // Only the base class can be emptied.
    static_cast<ZPA_Ptr<Any>&>(handle) = ZPA_Ptr<Any>();
    EXPECT_THROW((void)static_cast<int>(handle), char const*);
    EXPECT_THROW((void)handle.Get<int>(), std::bad_cast);
}

TEST(AnyHandle, SharesTheAnyAndAnAnySharesWhatItPointsAt) {
    ZPA_Ptr<int> const array(new int[1]());
    AnyHandle const handle = Handle(array);
    AnyHandle const second = handle;
    EXPECT_EQ(second.GetPointer(), handle.GetPointer());
    EXPECT_FALSE(handle.IsUnique());
    ZPA_Ptr<int> const read = handle;
    EXPECT_EQ(read.GetPointer(), array.GetPointer());
    Any const copy(*handle);
    EXPECT_NE(&copy.Get<ZPA_Ptr<int>>(), &handle->Get<ZPA_Ptr<int>>());
    EXPECT_EQ(copy.Get<ZPA_Ptr<int>>().GetPointer(), array.GetPointer());
    EXPECT_EQ(Any(Any()).Type(), typeid(void));
}

TEST(AnyHandle, PrintsScalarsAndTexts) {
    struct Case {
        AnyHandle handle;
        std::string text;
    };
    Case const cases[] = {
        {Handle(-5), "-5"},
        {Handle(4294967295u), "4294967295"},
        {Handle(static_cast<unsigned char>(65)), "A"},
        {Handle('z'), "z"},
        {Handle('\0'), ""},
        {Handle(static_cast<unsigned short>(65535)), "65535"},
        {Handle(static_cast<short>(-7)), "-7"},
        {Handle(1.5f), "1.500000"},
        {Handle(-0.0000004), "-0.000000"},
        {Handle(true), "1"},
        {Handle(std::string("100%s %n")), "100%s %n"},
        {Handle(std::string("a\0b", 3)), "a"},
        {Handle(1e308), std::to_string(1e308)},
        {Handle(std::string(5000, 'x')), std::string(1023, 'x')},
        {Handle(ZPA_Ptr<Bag>()), "toSting() not supported for type ZPA::ZPA_Ptr<ZPA::Bag>"},
        {AnyHandle(), "toSting() not supported for type void"},
    };
    for (Case const& each : cases)
        for (int const size : {1024, 5, 1}) {
            std::string buffer(1100, '#');
            EXPECT_EQ(each.handle.toString(&buffer[0], size), buffer.data());
            EXPECT_EQ(buffer.c_str(), each.text.substr(0, static_cast<std::size_t>(size - 1)));
            EXPECT_EQ(buffer.substr(static_cast<std::size_t>(size)).find_first_not_of('#'),
                      std::string::npos);
        }
    char untouched = '#';
    EXPECT_EQ(Handle(1).toString(&untouched, 0), &untouched);
    Handle(1).toString(&untouched, -1);
    EXPECT_EQ(untouched, '#');
    EXPECT_EQ(Handle(1).toString(nullptr), nullptr);
}

}  // namespace
}  // namespace ZPA
