// How a bag is kept in an XML document with files beside it.
#ifndef ZPA_BASICS_BAGIO_H
#define ZPA_BASICS_BAGIO_H

#include <Basics/Bag.h>

#include <string>
#include <typeinfo>

class TiXmlElement;
class TiXmlNode;

/// @file
/// A document has one element for every entry of a bag, in their order, named after the key, with the
/// attribute "Type":
///
///     <?xml version="1.0" ?>
///     <Bag Type="Bag">
///         <Gain Type="System.Double">1.500000</Gain>
///         <Calibration Type="Bag">
///             <Offsets Type="System.Int16[]">
///                 <item Type="System.Int16">-3</item>
///             </Offsets>
///             <Lut Type="System.UInt16[]" Size="4096" BufferFile="Bag.Calibration.Lut.buffer" />
///         </Calibration>
///     </Bag>
///
/// | Value            | "Type"         | Written                   | Read                                   |
/// |------------------|----------------|---------------------------|----------------------------------------|
/// | `bool`           | System.Boolean | "true" or "false"         | "true"; anything else is false         |
/// | `char`           | System.SByte   | as a number               | as far as it is a number               |
/// | `unsigned char`  | System.Byte    | as a number               | as far as it is a number               |
/// | `short`          | System.Int16   |                           |                                        |
/// | `unsigned short` | System.UInt16  |                           |                                        |
/// | `int`            | System.Int32   |                           | above 2147483647 as that number        |
/// | `unsigned int`   | System.UInt32  |                           | above 2147483647 as that number        |
/// | `float`          | System.Single  | with six decimals         | infinity and not-a-number too          |
/// | `double`         | System.Double  | with six decimals         | infinity and not-a-number too          |
/// | `std::string`    | System.String  | as it is                  | without white space at its ends        |
/// | array            | with "[]"      | as items or in a file     | as many items; "Size" from the file    |
/// | `ZPA_Ptr<Bag>`   | Bag            | its entries               | its entries                            |
/// | vector of texts  | System.String[] | not                      | items                                  |
/// | vector of bags   | Bag[]          | not                       | items, each with a bag's entries       |
///
/// An array of up to 100 elements, and any of `bool`, has an "item" for each of them; a longer one goes to a
/// side file. White space within a text is drawn together to one space.
///
/// So not all that is written comes back: decimals behind the sixth are lost, an array without elements
/// leaves nothing, and a vector of texts or of bags ends the writing of the bag that it stands in.
///
/// A side file has the elements in the order of memory, little-endian, and nothing else. It lies beside the
/// document and is named after the root, the keys on the way and its own key, with dots between, and
/// ".buffer".
///
/// A key has to be an XML name, made of letters, digits, "_", "-", "." and ":" with a letter or "_" ahead:
/// nothing checks it, and a document with any other key cannot be read. Where a key has a "/" or "\" in it
/// there is no side file either. Texts should be UTF-8; a document with any other bytes is read byte by byte.

namespace ZPA {

/// One element while it is read.
struct NodeAttribute {
    std::string type;              ///< The attribute "Type".
    std::string bufferFile;        ///< The attribute "BufferFile".
    int size = 1;                  ///< The attribute "Size".
    std::string name;              ///< The element's name, which is the key.
    std::string directory = "./";  ///< The folder of the document.
};

/// Writes bags to documents, and reads them. An object keeps nothing: objects may be used at the same time,
/// for different bags and files. A class may derive from it to save and load types that it does not; do not
/// delete that one through a pointer to BagIO.
///
/// Nothing throws, and nothing is logged: what a reader may want to know is printed on standard output.
class ZPA_API BagIO {
public:
    BagIO();

    /// Writes a bag to a document, and its long arrays to side files. Files that exist are overwritten.
    ///
    /// The cost grows with the entries and the bytes of the arrays.
    ///
    /// @param bag       Read only; null counts as empty. Bags in it may stand at most 250 deep, this one
    ///                  included.
    /// @param path      The document. Both "/" and "\" end its folder, on every platform.
    /// @param rootName  The name of the root element, and the beginning of the names of side files.
    ///
    /// @return false, with nothing written, for a bag too deep, one that contains itself among them, and
    ///         without memory. True does not mean that all could be written: an entry that cannot be is left
    ///         out, with those behind it in its bag if it is a vector of texts or of bags, and a file that
    ///         cannot be written is not reported.
    bool SaveBag(ZPA_Ptr<Bag> const& bag, std::string const& path, std::string const& rootName);
    /// The same with the root element "Bag".
    bool SaveBag(ZPA_Ptr<Bag> const& bag, std::string const& path);

    /// Reads a document and its side files.
    ///
    /// The first element is the root, whatever its name and type. Attributes other than the three, children
    /// that are no elements, and items that have no text are passed over. Of two elements with one name the
    /// later one wins, at the place of the former. All entries are dirty.
    ///
    /// A document is trusted with nothing. It must be a regular file of at most 256 MiB, with elements at
    /// most 256 deep, at most 256 attributes each, and at most 2097152 elements, attributes, texts and
    /// comments in all. It reaches only files beside itself: "BufferFile" may have no folder in it. Where a
    /// side file is missing, or shorter than "Size", elements are zero; what it has beyond is not read. Such
    /// elements may take 64 MiB in a whole document, where a side file counts once, however often it is
    /// named: an array or image beyond that, or of a negative "Size", ends the reading of the bag that it
    /// stands in.
    ///
    /// Printed:
    /// - `Failed to load file "path"` if the document cannot be read;
    /// - `DataIO: unsupported data type for parsing: type.` of an element with text;
    /// - `DataIO: unsupported data type: type.` of an array without a side file;
    /// - `DataIO: unspported binary array type: type.` (sic) of one with a side file. The last three are
    ///   skipped.
    ///
    /// @return a new bag, with what could be read.
    ZPA_Ptr<Bag> LoadBag(std::string const& path);

    /// Prints a bag on standard output: a line for each entry, with its key and the text that
    /// AnyHandle::toString gives; the entries of a bag stand between "-- key start --" and "-- key end   --".
    /// A bag that contains itself is not entered again.
    void Scan(ZPA_Ptr<Bag> const& bag);

protected:
    /// Called for every value of a type that the document has no form for. Adds its element to `parent`.
    ///
    /// @param parent     The element of the bag.
    /// @param bag        Has the value under `key`. Where a look-up of the key in the whole bag would find
    ///                   another entry this bag has only the one.
    /// @param key        Not a path.
    /// @param prefix     The beginning of the names of side files; a dot and the key follow.
    /// @param directory  The folder of the document.
    /// @return whether the value was saved; if not, it is left out.
    virtual bool SaveSpecialType(TiXmlElement* parent, ZPA_Ptr<Bag> bag, std::string const& key,
                                 std::string const& prefix, std::string const& directory);
    /// Called for every element of type "Bag" but the root and items. Adds its value to `bag`.
    ///
    /// @param bag        The bag that is being read.
    /// @param node       The element.
    /// @param directory  The folder of the document.
    /// @return whether the element was loaded; if not, it is loaded as a bag.
    virtual bool LoadSpecialType(ZPA_Ptr<Bag> bag, TiXmlNode const* node, std::string const& directory);

    /// Adds an element with the attribute "Type" and a text, which may be empty.
    void AddChildElement(TiXmlElement* parent, std::string name, std::string type, std::string value);
    /// The text of "Type" for a scalar or `std::string`, or for an array of them: "System.Unknown" for any
    /// other type.
    std::string GetStorageTypeName(std::type_info const& type, bool isArray);
    /// Reads an element's name and attributes; what is missing stays as it was in `attribute`.
    /// @return whether it has a "Type".
    bool readNodeAttribute(TiXmlElement const* element, NodeAttribute& attribute);

private:
    bool SaveBagHelper(ZPA_Ptr<Bag> const& bag, TiXmlElement* parent, std::string const& prefix,
                       std::string const& directory);
    bool readAttribute(TiXmlElement const* element, std::string& type, int& size, std::string& bufferFile);
    bool loadAllChildrenNodes(TiXmlNode const* node, ZPA_Ptr<Bag>& bag, std::string const& directory);
    void loadValueNode(TiXmlNode const* node, ZPA_Ptr<Bag>& bag, NodeAttribute& attribute);
    void loadArrayNodeFromBufferFile(ZPA_Ptr<Bag>& bag, NodeAttribute& attribute);
    void loadArrayNodeFromItemList(ZPA_Ptr<Bag>& bag, NodeAttribute const& attribute, TiXmlNode const* node);
    void loadStringArrayFromItemList(ZPA_Ptr<Bag>& bag, NodeAttribute const& attribute,
                                     TiXmlNode const* node);
    void loadDataArrayFromItemList(ZPA_Ptr<Bag>& bag, NodeAttribute& attribute, TiXmlNode const* node);
};

}  // namespace ZPA

#endif
