// The bag document: parameters, figures and images of all steps, for programs to read.
#ifndef RADIOGRAPH_DOCUMENT_H
#define RADIOGRAPH_DOCUMENT_H

#include "radiograph/CommandLine.h"
#include "radiograph/OutputFolder.h"
#include "radiograph/Processing.h"

namespace Radiograph {

inline constexpr char kDocument[] = "radiograph.xml";

// Writes the document and, as its side files, the images again: a bag takes along all that belongs to it.
// Throws a Failure if not all of it can be written.
void WriteDocument(Findings const& found, CommandLine const& options, OutputFolder const& folder);

}  // namespace Radiograph

#endif
