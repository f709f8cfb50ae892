// The page that shows what was done: one file that opens in any browser.
#ifndef RADIOGRAPH_REPORT_H
#define RADIOGRAPH_REPORT_H

#include <string>
#include <vector>

#include "radiograph/Picture.h"

namespace Radiograph {

// All texts here are plain; the page escapes what HTML gives a meaning to.
struct Figure {
    std::string name, value;
};
struct Link {
    std::string label, file;
};

struct Section {
    std::string title, caption;
    Picture picture;
    GreyScale scale;
    std::vector<Figure> figures;
    std::string fullSize;  // the file that the picture leads to
    std::vector<Link> files;
};

struct Report {
    std::string subject;
    std::string greyNote;  // how values become grey
    std::vector<Section> sections;
};

// The HTML document. The pictures are in it; the files that it links to lie beside it.
std::string MakePage(Report const& report);

}  // namespace Radiograph

#endif
