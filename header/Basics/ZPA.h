// All of the library at once.
#ifndef ZPA_BASICS_ZPA_H
#define ZPA_BASICS_ZPA_H

/// @file
/// Includes every public header. Each can be included alone as well.

#include <Basics/AnisotropicGaussian.h>
#include <Basics/Any.h>
#include <Basics/Arithmetic.h>
#include <Basics/Bag.h>
#include <Basics/BagIO.h>
#include <Basics/BagOperations.h>
#include <Basics/BlockAverage.h>
#include <Basics/CoreTypes.h>
#include <Basics/Export.h>
#include <Basics/Factory.h>
#include <Basics/FlatTopFilter.h>
#include <Basics/FourierTransform.h>
#include <Basics/Histogram.h>
#include <Basics/HomoFilter.h>
#include <Basics/ImageBuffer.h>
#include <Basics/IProcess.h>
#include <Basics/LinearAlgebra.h>
#include <Basics/LinearFilters.h>
#include <Basics/Logging.h>
#include <Basics/LogicalPixelOp.h>
#include <Basics/Morphology.h>
#include <Basics/PixelOperations.h>
#include <Basics/RawFile.h>
#include <Basics/Regions.h>
#include <Basics/SmartPointer.h>
#include <Basics/Statistics.h>
#include <Basics/StructuringElement.h>
#include <Basics/ZPA_BagIO.h>

#endif
