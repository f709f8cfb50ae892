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

std::string PictureHtml(Section const& section) {
    return "<a class=\"picture\" href=\"" + Escaped(section.fullSize) + "\"><img width=\"" +
           std::to_string(section.picture.width) + "\" height=\"" + std::to_string(section.picture.height) +
           "\" alt=\"" + Escaped(section.title) + "\" src=\"data:image/png;base64," +
           Base64(EncodePng(section.picture)) + "\"></a>\n";
}

std::string ScaleHtml(GreyScale scale) {
    return "<div class=\"scale\" role=\"img\" aria-label=\"Black is " + Number(scale.black) + ", white is " +
           Number(scale.white) + "\">" + Number(scale.black) + "<i></i>" + Number(scale.white) + "</div>\n";
}

std::string FiguresHtml(std::vector<Figure> const& figures) {
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

}  // namespace

std::string MakePage(Report const& report) {
    std::string const subject = Escaped(report.subject);
    std::string html =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
        subject + " – radiograph</title>\n<style>" + kPageStyle +
        "</style>\n</head>\n<body>\n<header>\n<h1>" + subject +
        "</h1>\n<p>A radiograph, its background, and what is left without it.</p>\n" + "</header>\n<main>\n";
    for (Section const& section : report.sections) html += SectionHtml(section);
    return html + "</main>\n<footer><p>" + Escaped(report.greyNote) +
           " The bar under a picture tells the values shown black and white; the few pixels beyond them are "
           "cut. The PGM files spread the whole range from dark to bright, and the raw files hold the values "
           "as they are.</p></footer>\n</body>\n</html>\n";
}

}  // namespace Radiograph
