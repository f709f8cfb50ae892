// What a document may demand of the XML parser: a walk over its tags before the parser runs.
#include "Source/Internal/XmlLimits.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "Source/Internal/Text.h"

namespace ZPA {
namespace {

bool IsSpace(char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; }

// All that is not ASCII counts as a letter.
bool StartsName(char c) {
    auto const byte = static_cast<unsigned char>(c);
    return byte >= 127 || std::isalpha(byte) || c == '_';
}
bool ContinuesName(char c) {
    return StartsName(c) || std::isdigit(static_cast<unsigned char>(c)) || c == '-' || c == '.' || c == ':';
}

// A mark of the byte order, and the two characters beside it that do not exist: in UTF-8 the parser takes all
// three for white space.
bool IsMark(char const* text) {
    if (*text != '\xEF') return false;
    std::string_view const rest(text + 1, text[1] ? 2 : 0);
    return rest == "\xBB\xBF" || rest == "\xBF\xBE" || rest == "\xBF\xBF";
}

// Goes through a document as the parser does, oddities included, so that both agree on what is a tag: else a
// document could hide its depth. The functions return false where the walk ends, which is where the parser
// fails, or a limit is passed.
class TagWalk {
public:
    explicit TagWalk(char const* text) : at_(text), end_(text + std::strlen(text)) {}

    bool StaysWithinLimits() {
        while (Node()) {
        }
        return !refused_;
    }

private:
    bool Refuse() {
        refused_ = true;
        return false;
    }

    bool Count() { return ++parts_ <= kMostParts || Refuse(); }

    bool Node() {
        while (IsSpace(*at_) || IsMark(at_)) at_ += IsSpace(*at_) ? 1 : 3;
        if (!*at_) return false;
        if (*at_ != '<') return depth_ > 0 && Count() && Text('<');
        if (depth_ > 0 && Follows("</")) {
            --depth_;
            return SkipPast(">");
        }
        if (!Count()) return false;
        if (FollowsInAnyCase("<?xml")) return Declaration();
        if (Follows("<!--")) return SkipPast("-->", 4);
        if (Follows("<![CDATA[")) return SkipPast("]]>", 9);
        if (!StartsName(at_[1])) return SkipPast(">");
        return Element();
    }

    bool Element() {
        ++at_;
        if (!Space() || !Name()) return false;
        for (int attributes = 0; Space(); ++attributes) {
            if (*at_ == '/') {
                at_ += 2;
                return at_[-1] == '>' && (depth_ < kDeepestElement || Refuse());
            }
            if (*at_ == '>') {
                ++at_;
                return ++depth_ <= kDeepestElement || Refuse();
            }
            if (attributes == kMostAttributes) return Refuse();
            if (!Count() || !Attribute()) return false;
        }
        return false;
    }

    bool Declaration() {
        at_ += 5;
        while (*at_ != '>') {
            if (!Space()) return Refuse();  // some versions of the parser abort
            if (FollowsInAnyCase("version") || FollowsInAnyCase("encoding") ||
                FollowsInAnyCase("standalone")) {
                if (!Attribute()) return false;
            } else {
                while (*at_ && *at_ != '>' && !IsSpace(*at_)) ++at_;
            }
        }
        ++at_;
        return true;
    }

    bool Attribute() {
        if (!Name() || !Space() || *at_ != '=') return false;
        ++at_;
        if (!Space()) return false;
        char const quote = *at_;
        if (quote == '"' || quote == '\'') {
            ++at_;
            if (!Text(quote)) return false;
            ++at_;
            return true;
        }
        for (; *at_ && !IsSpace(*at_) && *at_ != '/' && *at_ != '>'; ++at_)
            if (*at_ == '"' || *at_ == '\'') return false;
        return true;
    }

    bool Name() {
        if (!StartsName(*at_)) return false;
        while (ContinuesName(*at_)) ++at_;
        return true;
    }

    // White space inside a tag, with something behind it. Whether a mark belongs to it depends on the
    // encoding; nobody writes one there.
    bool Space() {
        while (IsSpace(*at_)) ++at_;
        if (IsMark(at_)) return Refuse();
        return *at_ != 0;
    }

    // Text with references, up to `end`.
    bool Text(char end) {
        while (*at_ && *at_ != end) {
            if (*at_ != '&' || at_[1] != '#' || !at_[2]) {
                ++at_;
            } else if (!CharacterReference()) {
                return false;
            }
        }
        return *at_ != 0;
    }

    // The parser finds the semicolon first, and reads back from there: all in front of the digits is skipped.
    bool CharacterReference() {
        bool const hexadecimal = at_[2] == 'x';
        char const* const end = std::strchr(at_ + (hexadecimal ? 3 : 2), ';');
        if (!end) return false;
        for (char const* digit = end - 1; *digit != (hexadecimal ? 'x' : '#'); --digit) {
            auto const byte = static_cast<unsigned char>(*digit);
            if (!(hexadecimal ? std::isxdigit(byte) : std::isdigit(byte))) return false;
        }
        at_ = end + 1;
        return true;
    }

    std::string_view Ahead(std::size_t size) const {
        return {at_, std::min(size, static_cast<std::size_t>(end_ - at_))};
    }
    bool Follows(std::string_view word) const { return Ahead(word.size()) == word; }
    bool FollowsInAnyCase(std::string_view word) const { return SameText(Ahead(word.size()), word); }

    bool SkipPast(std::string_view word, std::size_t from = 0) {
        std::string_view const rest(at_, static_cast<std::size_t>(end_ - at_));
        std::size_t const found = rest.find(word, from);
        if (found == rest.npos) return false;
        at_ += found + word.size();
        return true;
    }

    char const* at_;
    char const* end_;
    int depth_ = 0;
    int parts_ = 0;
    bool refused_ = false;
};

}  // namespace

bool FitsParser(char const* text) { return TagWalk(text).StaysWithinLimits(); }

bool IsUtf8(std::string_view text) {
    for (std::size_t at = 0; at < text.size();) {
        auto const byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
        unsigned const lead = byte(at);
        if (lead < 0x80) {
            ++at;
            continue;
        }
        std::size_t const size = lead >= 0xC2 && lead < 0xE0   ? 2
                                 : lead >= 0xE0 && lead < 0xF0 ? 3
                                 : lead >= 0xF0 && lead < 0xF5 ? 4
                                                               : 0;
        if (size == 0 || size > text.size() - at) return false;
        for (std::size_t i = 1; i < size; ++i)
            if ((byte(at + i) & 0xC0) != 0x80) return false;
        at += size;
    }
    return true;
}

}  // namespace ZPA
