// The page that shows what was done: one file that opens in any browser.
#ifndef RADIOGRAPH_REPORT_H
#define RADIOGRAPH_REPORT_H

#include <string>
#include <vector>

#include "radiograph/Picture.h"

namespace Radiograph {

// All texts here but the drawing are plain; the page escapes what HTML gives a meaning to.
struct Figure {
    std::string name, value;
};
struct Link {
    std::string label, file;
};
// A text on a picture, at a part of its width and height.
struct Mark {
    double x, y;
    std::string text;
};

struct Section {
    std::string title, caption;
    Picture picture;
    std::vector<Mark> marks;
    std::vector<Figure> scale;  // what black and what white stands for; nothing where grey has no scale
    std::vector<Figure> figures;
    std::string fullSize;  // the file that the picture leads to
    std::vector<Link> files;
};

struct Plot {
    std::string caption;
    std::string drawing;  // an SVG element, as it is
    std::vector<Figure> figures;
};

// The first row is the head.
struct Table {
    std::string caption;
    std::vector<std::vector<std::string>> rows;
    std::vector<std::string> colours;  // of the swatches in front of the rows below the head; none if empty
};

struct Report {
    std::string subject;
    std::string greyNote;  // how values become grey
    std::vector<Section> sections;
    Plot histogram;
    Table regions;
    std::vector<Figure> times;  // of each step
    std::vector<double> seconds;
    std::string versions;
};

// The HTML document. The pictures are in it; the files that it links to lie beside it.
std::string MakePage(Report const& report);

}  // namespace Radiograph

#endif
