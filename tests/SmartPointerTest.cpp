// Shared ownership: who deletes what and when, serial numbers, and the lines that tell of it.
#include <Basics/ImageBuffer.h>
#include <Basics/SmartPointer.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "support/CapturedLog.h"

namespace ZPA {
namespace {

using namespace Testing;

// Counts its kind, and may hold a pointer to another.
class Node : public ISolvane_Object {
public:
    inline static std::atomic<int> alive{0};
    Node() { ++alive; }
    ~Node() override { --alive; }
    ZPA_Ptr<Node> next;
};

using NodePtr = ZPA_Ptr<Node>;

TEST(SolvaneObject, BearsASerialNumberThatCopiesShare) {
    long const before = allocation_counter;
    ISolvane_Object const first;
    ISolvane_Object second;
    EXPECT_EQ(first.Id(), before + 1);
    EXPECT_EQ(second.Id(), before + 2);
    ISolvane_Object const copy(first);
    second = first;
    EXPECT_EQ(copy.Id(), first.Id());
    EXPECT_EQ(second.Id(), first.Id());
    EXPECT_EQ(allocation_counter, before + 2);
}

TEST(SolvaneObject, KnowsOneTypeOnly) {
    EXPECT_EQ(ISolvane_Object().Type(), typeid(ISolvane_Object*));
    EXPECT_EQ(ZPA_Image<int>().Type(), typeid(ISolvane_Object*));
}

TEST(Ptr, WithoutAnObjectDoesNothing) {
    NodePtr empty;
    NodePtr const null(nullptr);
    NodePtr const copy(null);
    empty = copy;
    NodePtr const& itself = empty;
    empty = itself;
    EXPECT_EQ(empty.GetPointer(), nullptr);
    EXPECT_EQ(copy.GetPointer(), nullptr);
    EXPECT_FALSE(empty.IsUnique());
}

TEST(Ptr, SharesWithItsCopiesAndDeletesWithTheLast) {
    {
        NodePtr first(new Node);
        EXPECT_TRUE(first.IsUnique());
        {
            NodePtr const second(first);
            EXPECT_EQ(second.GetPointer(), first.GetPointer());
            EXPECT_EQ(&*second, second.operator->());
            EXPECT_FALSE(first.IsUnique());
            EXPECT_FALSE(second.IsUnique());
        }
        EXPECT_TRUE(first.IsUnique());
        NodePtr third;
        third = first;
        first = NodePtr();
        EXPECT_EQ(first.GetPointer(), nullptr);
        EXPECT_TRUE(third.IsUnique());
        EXPECT_EQ(Node::alive, 1);
        third = NodePtr(new Node);
        EXPECT_EQ(Node::alive, 1);
    }
    EXPECT_EQ(Node::alive, 0);
}

TEST(Ptr, SurvivesAssignmentsThatCouldKillItsSource) {
    NodePtr head(new Node);
    NodePtr& itself = head;
    head = itself;
    EXPECT_EQ(Node::alive, 1);
    NodePtr const sharer(head);
    head = sharer;  // the same object under another pointer
    EXPECT_FALSE(head.IsUnique());

    NodePtr list(new Node);
    list->next = NodePtr(new Node);
    list->next->next = NodePtr(new Node);
    Node* const second = list->next.GetPointer();
    list = list->next;  // owned by what the assignment deletes
    EXPECT_EQ(list.GetPointer(), second);
    EXPECT_TRUE(list.IsUnique());
    EXPECT_EQ(Node::alive, 3);
    list = list->next;
    list = list->next;
    EXPECT_EQ(list.GetPointer(), nullptr);
    EXPECT_EQ(Node::alive, 1);
}

TEST(Ptr, DrawsASerialNumberForItselfAndItsCounter) {
    auto* const node = new Node;  // draws two: its own, and that of the pointer in it
    long const before = allocation_counter;
    NodePtr const pointer(node);
    EXPECT_EQ(pointer.Id(), before + 1);
    EXPECT_EQ(allocation_counter, before + 2);
    NodePtr copy(pointer);
    EXPECT_EQ(copy.Id(), before + 3);
    long const id = copy.Id();
    copy = NodePtr(pointer);
    EXPECT_EQ(copy.Id(), id);
    EXPECT_EQ(allocation_counter, before + 4);
}

std::wstring Hexadecimal(void const* pointer) {
    std::wostringstream digits;
    digits << std::hex << reinterpret_cast<std::uintptr_t>(pointer);
    return digits.str();
}

TEST(PtrTrace, TellsTheLifeOfAnObjectToTheLetter) {
    CapturedLog log;
    log.Debug(eLogMemory);
    auto* const numbers = new unsigned short[4];
    auto* const others = new unsigned short[4];
    long const before = allocation_counter;
    {
        ZPA_Ptr<unsigned short> pointer(numbers);  // draws 1, its counter 2
        ZPA_Ptr<unsigned short> const copy(pointer);
        pointer = copy;
        pointer = ZPA_Ptr<unsigned short>(others);  // draws 4, its counter 5
    }
    auto const about = [](long id, void const* object) {
        return L"ZPA_Ptr<unsigned short>(" + std::to_wstring(id) + L",0x" + Hexadecimal(object) + L")";
    };
    std::wstring const first = about(before + 2, numbers);
    std::wstring const second = about(before + 5, others);
    std::vector<std::wstring> const expected = {
        L"ctor " + first + L".",  first + L"->2\n",  // the pointer, and its copy
        first + L"<-1\n",         first + L"->2\n",  // the assignment lets go, and shares again
        L"ctor " + second + L".", first + L"<-1\n",
        second + L"->2\n",                                  // the other object is assigned
        second + L"<-1\n",                                  // the temporary pointer dies
        first + L"<-0\n",         L"dtor " + first + L".",  // the copy dies
        second + L"<-0\n",        L"dtor " + second + L".",
    };
    ASSERT_EQ(log.DebugLines().size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(log.DebugLines()[i].message, expected[i]) << i;
        EXPECT_EQ(log.DebugLines()[i].category, eLogMemory);
    }
}

TEST(PtrTrace, CannotDisturbACount) {
    {
        CapturedLog log;
        log.Debug(eLogMemory);
        ZPA_Logging::SetDebugCallback(ThrowFromCallback);
        NodePtr first(new Node);
        NodePtr second(first);
        second = NodePtr(new Node);
        EXPECT_TRUE(first.IsUnique());
        EXPECT_TRUE(second.IsUnique());
    }
    EXPECT_EQ(Node::alive, 0);
}

// Whichever thread lets go last deletes, once, and no serial number is drawn twice.
TEST(Ptr, IsCountedAcrossThreads) {
    long const before = allocation_counter;
    std::vector<long> all;
    for (int round = 0; round < 20; ++round) {
        std::vector<std::vector<long>> ids(8);
        NodePtr shared(new Node);
        std::vector<std::thread> threads;
        for (std::vector<long>& mine : ids)
            threads.emplace_back([&mine, copy = shared] {
                for (int i = 0; i < 2000; ++i) {
                    NodePtr another(copy);
                    EXPECT_FALSE(another.IsUnique());
                    mine.push_back(another.Id());
                    another = copy;
                }
            });
        shared = NodePtr();
        for (std::thread& thread : threads) thread.join();
        ASSERT_EQ(Node::alive, 0);
        for (std::vector<long> const& mine : ids) all.insert(all.end(), mine.begin(), mine.end());
    }
    std::sort(all.begin(), all.end());
    EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end());
    EXPECT_GT(all.front(), before);
    EXPECT_LE(all.back(), allocation_counter);
}

TEST(SmartCleaner, DeletesWhatItHoldsAtTheEnd) {
    auto const kept = std::make_unique<Node>();
    {
        SmartCleaner cleaner;
        cleaner.SetObject(kept.get());
        cleaner.SetObject(new Node);  // the former object is nobody's concern any more
        EXPECT_EQ(Node::alive, 2);
    }
    EXPECT_EQ(Node::alive, 1);
    { SmartCleaner const empty; }
    {
        SmartCleaner cleaner;
        cleaner.SetObject(new Node);
        SmartCleaner copy(cleaner);
        cleaner.SetObject(nullptr);
        EXPECT_EQ(Node::alive, 2);
    }
    EXPECT_EQ(Node::alive, 1);
}

}  // namespace
}  // namespace ZPA
