// Operations on whole bags: a copy, a merge, and a selection.
#ifndef ZPA_BASICS_BAGOPERATIONS_H
#define ZPA_BASICS_BAGOPERATIONS_H

#include <Basics/Bag.h>

#include <string>
#include <vector>

namespace ZPA {

/// A copy that shares nothing with its source: arrays are copied by their sizes, bags with all that is in
/// them.
///
/// Entries stand in the order of the source, those with the same key included, and all of them are dirty.
/// Sizes other than those of arrays are 1. An array of a null pointer becomes one of zeros. A value that
/// cannot be copied, which means images and vectors of images, becomes the text "Unsupported clone type: "
/// and the name of its type.
///
/// @param source  Read only. A null pointer, here or as a value, gives a null pointer.
/// @return the copy.
///
/// @throws char const* if there is a vector of texts,
///         "can't cast to std::vector<string> in a 32-bit process.", or a vector of bags,
///         "can't cast to std::vector<ZPA_Ptr<Bag>> in a 32-bit process.": on every platform, whatever the
///         size of a pointer.
/// @throws std::runtime_error "BagClone() a bag contains itself." for a bag that cannot be copied to its end.
/// @throws std::bad_alloc also if an array has a negative size.
ZPA_API ZPA_Ptr<Bag> BagClone(ZPA_Ptr<Bag> const& source);

/// Adds the entries of one bag to another; both share the values then.
///
/// A key that the target has keeps its place and takes the source's value and size, and becomes dirty. Where
/// both values are bags, the source's bag is added to the target's in the same way, and the entry's size and
/// dirty flag are those of the source. Keys that the target lacks follow in the order of the source, dirty;
/// one that stands twice there does so in the target. An empty source changes nothing.
///
/// @param target  Changed. A null pointer, here or as a value, becomes a new bag if there is anything to add.
/// @param source  Read only, unless target and source have a bag in common. Null adds nothing.
///
/// @throws std::bad_alloc with a part of the entries added, each with its value, size and flag.
/// @throws std::length_error "list<T> too long" where a list cannot grow any more.
ZPA_API void BagAddition(ZPA_Ptr<Bag>& target, ZPA_Ptr<Bag> const& source);

/// Picks entries by key; no paths. The new bag shares the values with the source.
///
/// @param source  Read only; null counts as empty.
/// @param keys    What to pick, in the order of the result. A key that is missing is skipped, one that is
///                named twice stands twice in the result.
/// @return a new bag, with the sizes and dirty flags of the source.
///
/// @throws std::length_error "list<T> too long" where a list cannot grow any more.
ZPA_API ZPA_Ptr<Bag> BagQuery(ZPA_Ptr<Bag>& source, std::vector<std::string> keys);

}  // namespace ZPA

#endif
