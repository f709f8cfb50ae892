// From sections to HTML.
#include "radiograph/Report.h"

#include <algorithm>

#include "radiograph/PageStyle.h"
#include "radiograph/Png.h"
#include "radiograph/Text.h"

namespace Radiograph {
namespace {

std::string Escaped(std::string const& text) {
    std::string escaped;
    for (char character : text) switch (character) {
            case '&':
                escaped += "&amp;";
                break;
            case '<':
                escaped += "&lt;";
                break;
            case '>':
                escaped += "&gt;";
                break;
            case '"':
                escaped += "&quot;";
                break;
            default:
                escaped += character;
        }
    return escaped;
}

std::string Base64(std::string const& bytes) {
    constexpr char kDigits[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::size_t const count = std::min<std::size_t>(3, bytes.size() - i);
        unsigned word = 0;
        for (std::size_t j = 0; j < 3; ++j)
            word = word << 8 | (j < count ? static_cast<unsigned char>(bytes[i + j]) : 0U);
        for (unsigned j = 0; j < 4; ++j) text += j <= count ? kDigits[word >> (18 - 6 * j) & 63] : '=';
    }
    return text;
}

std::string Percent(double part) { return Number(part * 100, 2) + "%"; }

std::string PictureHtml(Section const& section) {
    std::string html = "<a class=\"picture\" href=\"" + Escaped(section.fullSize) + "\"><img width=\"" +
                       std::to_string(section.picture.width) + "\" height=\"" +
                       std::to_string(section.picture.height) + "\" alt=\"" + Escaped(section.title) +
                       "\" src=\"data:image/png;base64," + Base64(EncodePng(section.picture)) + "\">";
    for (Mark const& mark : section.marks)
        html += "<b style=\"left:" + Percent(mark.x) + ";top:" + Percent(mark.y) + "\">" +
                Escaped(mark.text) + "</b>";
    return html + "</a>\n";
}

std::string ScaleHtml(std::vector<Figure> const& scale) {
    if (scale.empty()) return {};
    return "<div class=\"scale\" role=\"img\" aria-label=\"" + Escaped(scale[0].name) + " is " +
           Escaped(scale[0].value) + ", " + Escaped(scale[1].name) + " is " + Escaped(scale[1].value) +
           "\">" + Escaped(scale[0].value) + "<i></i>" + Escaped(scale[1].value) + "</div>\n";
}

std::string FiguresHtml(std::vector<Figure> const& figures) {
    if (figures.empty()) return {};
    std::string html = "<dl>\n";
    for (auto const& figure : figures)
        html += "<div><dt>" + Escaped(figure.name) + "</dt><dd>" + Escaped(figure.value) + "</dd></div>\n";
    return html + "</dl>\n";
}

std::string FilesHtml(std::vector<Link> const& files) {
    std::string html = "<p class=\"files\">";
    for (auto const& link : files)
        html += "<a href=\"" + Escaped(link.file) + "\">" + Escaped(link.label) + "</a> ";
    return html + "</p>\n";
}

std::string SectionHtml(Section const& section) {
    return "<article>\n" + PictureHtml(section) + "<div class=\"text\">\n<div><h2>" + Escaped(section.title) +
           "</h2>\n<p class=\"caption\">" + Escaped(section.caption) + "</p></div>\n" +
           ScaleHtml(section.scale) + FiguresHtml(section.figures) + FilesHtml(section.files) +
           "</div>\n</article>\n";
}

std::string PlotHtml(std::string const& title, Plot const& plot) {
    return "<section>\n<h2>" + title + "</h2>\n<p class=\"caption\">" + Escaped(plot.caption) + "</p>\n" +
           plot.drawing + FiguresHtml(plot.figures) + "</section>\n";
}

std::string TableHtml(std::string const& title, Table const& table) {
    std::string html = "<section>\n<h2>" + title + "</h2>\n<p class=\"caption\">" + Escaped(table.caption) +
                       "</p>\n<div class=\"wide\"><table>\n";
    for (std::size_t i = 0; i < table.rows.size(); ++i) {
        html += "<tr>";
        for (std::size_t j = 0; j < table.rows[i].size(); ++j) {
            std::string const swatch =
                i && !j && i <= table.colours.size()
                    ? "<i style=\"background:" + Escaped(table.colours[i - 1]) + "\"></i>"
                    : "";
            std::string const tag = i ? "td>" : "th>";
            html += "<" + tag + swatch + Escaped(table.rows[i][j]) + "</" + tag;
        }
        html += "</tr>\n";
    }
    return html + "</table></div>\n</section>\n";
}

// Bars as long as the steps took.
std::string TimesHtml(std::vector<Figure> const& times, std::vector<double> const& seconds) {
    if (times.empty()) return {};
    double const longest = std::max(*std::max_element(seconds.begin(), seconds.end()), 1e-9);
    std::string html =
        "<section>\n<h2>Times</h2>\n<p class=\"caption\">Of each step on this machine, once.</p>\n"
        "<dl class=\"times\">\n";
    for (std::size_t i = 0; i < times.size(); ++i)
        html += "<dt>" + Escaped(times[i].name) +
                "</dt><dd><i style=\"width:" + Percent(seconds[i] / longest) + "\"></i><span>" +
                Escaped(times[i].value) + "</span></dd>\n";
    return html + "</dl>\n</section>\n";
}

}  // namespace

std::string MakePage(Report const& report) {
    std::string const subject = Escaped(report.subject);
    std::string html =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
        subject + " – radiograph</title>\n<style>" + kPageStyle +
        "</style>\n</head>\n<body>\n<header>\n<h1>" + subject +
        "</h1>\n<p>A radiograph, its background, what is left without it, and the structures in it. " +
        Escaped(report.greyNote) + "</p>\n</header>\n<main>\n";
    for (Section const& section : report.sections) html += SectionHtml(section);
    return html + "</main>\n<div class=\"findings\">\n" + PlotHtml("Histogram", report.histogram) +
           TableHtml("Regions", report.regions) + TimesHtml(report.times, report.seconds) +
           "</div>\n<footer><p>The bar under a picture tells the values shown black and white; the few "
           "pixels "
           "beyond them are cut. The PGM files spread the whole range from dark to bright, and the raw files "
           "hold the values as they are.</p><p>" +
           Escaped(report.versions) + "</p></footer>\n</body>\n</html>\n";
}

}  // namespace Radiograph
