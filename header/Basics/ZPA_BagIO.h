// How a bag with images is kept in an XML document with files beside it.
#ifndef ZPA_BASICS_ZPA_BAGIO_H
#define ZPA_BASICS_ZPA_BAGIO_H

#include <Basics/BagIO.h>
#include <Basics/CoreTypes.h>

#include <string>

/// @file
/// An image is an element of type "Bag", which describes it, and a raw file beside the document with its
/// pixels:
///
///     <Scan Type="Bag">
///         <ZPA_Type Type="System.String">ZPA::ZPA_Ptr&lt;ZPA::ZPA_Image&lt;short&gt; &gt;</ZPA_Type>
///         <Width Type="System.Int32">640</Width>
///         <Height Type="System.Int32">480</Height>
///         <PixelSpacing Type="System.Int32">0</PixelSpacing>
///         <BitsPerPixel Type="System.Int32">16</BitsPerPixel>
///         <Buffer Type="System.Byte[]" Size="307200" BufferFile="Bag.Scan.640.480.i16" />
///     </Scan>
///
/// "ZPA_Type" has the name of the image's type, which differs between compilers; only "ZPA_Image" and the
/// name of the element type in it count. "Size" is the number of pixels, whatever their size. The file's name
/// ends in ".mask" for `unsigned char`, ".i16" for `short`, ".i32" for `int`, ".f64" for `double`, and ".raw"
/// for `unsigned short`. A plain BagIO reads the element as the bag that it is.

namespace ZPA {

/// Writes bags to documents and reads them as BagIO does, with the images in them.
///
/// Saved are images of all types that a bag holds. Pixels are taken as one block of width times height, of as
/// many whole bytes as the bits per pixel fill: rows must have no padding, and the bits must fill the
/// element, or the file cannot be read back as the same image. What lies beyond the image's memory is not
/// written. A null pointer to an image is left out.
///
/// Loaded images have rows without padding and own their pixels. A raw file that is missing, or not as long
/// as its image, leaves zeros, and the log has the error of ReadRaw. A width or height below 1, and an image
/// beyond what BagIO lets a document ask for without a file, ends the reading of the bag that it stands in.
///
/// Vectors of images are written as BagIO describes vectors of bags, which is how they are read: they do not
/// come back as images. They should stand in the outermost bag, since they mark the bag that they stand in as
/// an image. What comes back as a vector of images is an image element with a child "StructArray": a new bag,
/// with the vector under that key, of all its children but this one and "ZPA_Type". Its type must be
/// `unsigned char` or `unsigned short`; else the bag is empty.
class ZPA_API ZPA_BagIO : public BagIO {
protected:
    /// Saves images and vectors of images.
    bool SaveSpecialType(TiXmlElement* parent, ZPA_Ptr<Bag> bag, std::string const& key,
                         std::string const& prefix, std::string const& directory) override;
    /// Loads images.
    bool LoadSpecialType(ZPA_Ptr<Bag> bag, TiXmlNode const* node, std::string const& directory) override;

private:
    void LoadImageBag(ZPA_Ptr<Bag>& bag, TiXmlNode const* node, std::string const& key,
                      std::string const& directory);
    bool IsImageNode(TiXmlNode const* node);
    bool IsStructArray(TiXmlNode const* node);
    eTypeCode GetImageType(TiXmlNode const* node);
    void GetImageAttributes(TiXmlNode const* node, ImageAttributes& attributes, std::string& bufferFile);
};

}  // namespace ZPA

#endif
