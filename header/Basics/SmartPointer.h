// Shared ownership: the root of all object classes, the counted pointer, and a scope guard.
#ifndef ZPA_BASICS_SMARTPOINTER_H
#define ZPA_BASICS_SMARTPOINTER_H

#include <Basics/Export.h>
#include <type_traits>
#include <typeinfo>

namespace ZPA {

/// How many serial numbers have been drawn. Changed by atomic increment only.
extern ZPA_API long allocation_counter;

/// The root of the library's object classes. Every instance bears a serial number, so that its life can be
/// followed in a debug log.
class ZPA_API ISolvane_Object {
public:
    /// Draws the next serial number; the first object has 1.
    ISolvane_Object();
    /// A copy bears the serial number of its source.
    ISolvane_Object(ISolvane_Object const&);
    /// Takes over the serial number.
    ISolvane_Object& operator=(ISolvane_Object const&);
    virtual ~ISolvane_Object();
    /// Always the type of a pointer to ISolvane_Object: it says nothing of the dynamic type.
    virtual std::type_info const& Type() const;
    /// The serial number.
    long Id() const { return id_; }

private:
    long id_;
};

/// @cond Used by the templates below.
namespace Detail {
ZPA_API long Increment(long* count);
ZPA_API long Decrement(long* count);
ZPA_API long Read(long const* count);
ZPA_API bool MemoryTraced();
ZPA_API void TraceCounter(wchar_t const* format, std::type_info const& type, long id,
                          void const* object) noexcept;
ZPA_API void TraceCount(wchar_t const* format, std::type_info const& type, long id, void const* object,
                        long count) noexcept;

template <typename T> void Delete(T* object, std::true_type /*arithmetic*/) { delete[] object; }
template <typename T> void Delete(T* object, std::false_type /*arithmetic*/) { delete object; }
}  // namespace Detail
/// @endcond

/// Owns an object on behalf of all the pointers that refer to it. Made and deleted by ZPA_Ptr.
template <typename T> class ZPA_TEMPLATE_API counter : public ISolvane_Object {
public:
    /// Takes the object over, with a count of 1.
    explicit counter(T* object) : object_(object), count_(1) { Trace(L"ctor ZPA_Ptr<%S>(%ld,0x%llx)."); }
    /// Deletes the object.
    ~counter() override {
        Trace(L"dtor ZPA_Ptr<%S>(%ld,0x%llx).");
        Detail::Delete(object_, std::is_arithmetic<T>());
    }
    counter(counter const&) = delete;
    counter& operator=(counter const&) = delete;

    /// The object.
    T* Object() const { return object_; }
    /// How many pointers refer to it.
    long Count() const { return Detail::Read(&count_); }
    /// One pointer more.
    void Add() { TraceCount(L"ZPA_Ptr<%S>(%ld,0x%llx)->%ld\n", Detail::Increment(&count_)); }
    /// One pointer less.
    /// @return how many are left.
    long Remove() {
        long const left = Detail::Decrement(&count_);
        TraceCount(L"ZPA_Ptr<%S>(%ld,0x%llx)<-%ld\n", left);
        return left;
    }

    /// One pointer more for a moment, of which nobody is told.
    void Hold() { Detail::Increment(&count_); }
    /// The end of Hold(); who calls it goes on to Add().
    void Unhold() { Detail::Decrement(&count_); }

private:
    void Trace(wchar_t const* format) const {
        if (Detail::MemoryTraced()) Detail::TraceCounter(format, typeid(T), Id(), object_);
    }
    void TraceCount(wchar_t const* format, long count) const {
        if (Detail::MemoryTraced()) Detail::TraceCount(format, typeid(T), Id(), object_, count);
    }

    T* object_;
    long count_;
};

/// A pointer that shares ownership of an object with its copies; the last one deletes it.
///
/// A pointer to an arithmetic type holds an array from `new[]` and releases it with `delete[]`; a pointer to
/// a class holds one object. Copies may be made and released on different threads; one pointer, and the
/// object itself, are for one thread at a time. Every pointer draws a serial number of its own.
template <typename T> class ZPA_TEMPLATE_API ZPA_Ptr : public ISolvane_Object {
public:
    /// Takes an object over, which nobody else may delete or take over. Null leaves the pointer empty. If the
    /// counter cannot be allocated the object is deleted, and std::bad_alloc thrown.
    explicit ZPA_Ptr(T* object = nullptr) : counter_(nullptr) {
        if (!object) return;
        Guard guard{object};
        counter_ = new counter<T>(object);
        guard.object = nullptr;
    }
    /// Shares the object of `other`.
    ZPA_Ptr(ZPA_Ptr const& other) : ISolvane_Object(), counter_(nullptr) { AddRef(other.counter_); }
    /// Lets go of the present object and shares that of `other`.
    ZPA_Ptr& operator=(ZPA_Ptr const& other) {
        if (this == &other) return *this;
        counter<T>* const shared = other.counter_;
        bool const held = shared && shared != counter_;  // `other` may die with the present object
        if (held) shared->Hold();
        Release();
        if (held) shared->Unhold();
        AddRef(shared);
        return *this;
    }
    /// Lets go of the object.
    ~ZPA_Ptr() override { Release(); }

    /// The object. The pointer must not be empty.
    T* operator->() const { return counter_->Object(); }
    /// The object. The pointer must not be empty.
    T& operator*() const { return *counter_->Object(); }
    /// The object, or null.
    T* GetPointer() const { return counter_ ? counter_->Object() : nullptr; }
    /// True if no other pointer shares the object. An empty pointer has none, and gives false.
    bool IsUnique() const { return counter_ && counter_->Count() == 1; }

protected:
    /// Shares what a counter owns; null empties the pointer. The former object must have been released.
    void AddRef(counter<T>* shared) {
        counter_ = shared;
        if (counter_) counter_->Add();
    }
    /// Lets go of the object, and deletes it if this was the last pointer.
    void Release() {
        counter<T>* const last = counter_;
        counter_ = nullptr;
        if (last && last->Remove() == 0) delete last;
    }

private:
    struct Guard {
        T* object;
        ~Guard() {
            if (object) Detail::Delete(object, std::is_arithmetic<T>());
        }
    };
    counter<T>* counter_;
};

/// Deletes an object when its scope ends.
class ZPA_API SmartCleaner {
public:
    /// Holds nothing.
    SmartCleaner();
    SmartCleaner(SmartCleaner const&);  ///< Both would delete the object; do not copy one that holds any.
    SmartCleaner& operator=(SmartCleaner const&);  ///< As copying; what was held is not deleted.
    /// Deletes the object, if any.
    virtual ~SmartCleaner();
    /// Holds `object` from now on; what was held before is not deleted.
    void SetObject(ISolvane_Object* object);

private:
    ISolvane_Object* object_;
};

}  // namespace ZPA

#endif
