// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/layout.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

#include <qzl_io/sdl/document.h>

namespace {

// What stands between two parts.
struct eGap {
    void Take(std::string_view blanks) {
        for (std::size_t at = 0; at < blanks.size(); ++at) {
            if (blanks[at] == '=')
                (lineEnds == 0 ? equalsBefore : equalsAfter) = true;
            else if (blanks[at] == '\n' || (blanks[at] == '\r' && blanks.substr(at + 1, 1) != "\n"))
                ++lineEnds;
            any = true;
        }
    }

    bool any = false;
    bool equalsBefore = false; // a = before the first line end
    bool equalsAfter = false;
    std::size_t lineEnds = 0;
};

// Deeper lines are not indented further, so that a document of nothing but braces does not grow with its square.
constexpr unsigned long long kDeepest = 64;

class eFormatting {
public:
    eFormatting(const eSDLDocument& source, const eSDLLayout& form) : document(source), layout(form) {}

    std::string Text() {
        text.reserve(static_cast<std::size_t>(document.Size()));
        for (const eSDLPart& part : document.Parts())
            Take(part);
        if (!ended)
            End();
        return std::move(text);
    }

private:
    void Take(const eSDLPart& part) {
        switch (part.kind) {
        case eSDLKind::Blank:
            return gap.Take(part.text);
        case eSDLKind::Outside:
            return TakeOutside(part.text);
        default:
            Separate(part.kind, part.depth);
            Put(part);
        }
    }

    // A byte-order mark, or a NUL and everything after it.
    void TakeOutside(std::string_view bytes) {
        if (bytes.starts_with('\0')) {
            End();
            ended = true;
        }
        text += bytes;
        empty = empty && !ended;
    }

    void Put(const eSDLPart& part) {
        std::string_view shown = part.text;
        if (part.kind == eSDLKind::Comment)
            shown = shown.substr(0, shown.find_last_not_of(" \t") + 1);
        text += shown;
        previous = part.kind;
        marked = part.kind == eSDLKind::Block && shown.size() > 1;
        openString = part.kind == eSDLKind::Bad && shown.starts_with('"');
        empty = false;
        gap = {};
    }

    void Separate(eSDLKind kind, unsigned long long depth) {
        if (previous == eSDLKind::None)
            return PutEquals(false);
        if (gap.lineEnds > 0 || previous == eSDLKind::Comment)
            return BreakLine(kind, depth);
        if (gap.equalsBefore)
            text += kind == eSDLKind::BlockEnd ? " =" : previous == eSDLKind::Block ? "= " : " = ";
        else if (NeedsBlank(kind))
            text += ' ';
    }

    // Tokens that touched keep doing so, as parameters may stand for parts of tokens; those of blocks do not.
    bool NeedsBlank(eSDLKind kind) const {
        if (kind == eSDLKind::Comment)
            return true;
        if (kind == eSDLKind::BlockEnd)
            return false;
        if (previous == eSDLKind::Block)
            return marked && gap.any;
        return gap.any || kind == eSDLKind::Block || previous == eSDLKind::BlockEnd;
    }

    void BreakLine(eSDLKind kind, unsigned long long depth) {
        if (gap.equalsBefore)
            text += " =";
        const bool emptyLine = gap.lineEnds > 1 && kind != eSDLKind::BlockEnd && previous != eSDLKind::Block;
        EndLine();
        if (emptyLine)
            EndLine();
        Indent(depth);
        PutEquals(true);
    }

    // A = at the beginning of a line.
    void PutEquals(bool afterLineEnd) {
        if (gap.equalsAfter || (!afterLineEnd && gap.equalsBefore))
            text += "= ";
    }

    void EndLine() { text += layout.crLf ? "\r\n" : "\n"; }

    void Indent(unsigned long long depth) {
        const auto levels = static_cast<std::size_t>(std::min(depth, kDeepest));
        if (layout.indent < 0)
            text.append(levels, '\t');
        else
            text.append(levels * static_cast<std::size_t>(layout.indent), ' ');
    }

    // A string that only the end of the text ends would be broken by the end of a line.
    void End() {
        if (!empty && !openString)
            EndLine();
    }

    const eSDLDocument& document;
    const eSDLLayout& layout;
    std::string text;
    eGap gap;
    eSDLKind previous = eSDLKind::None;
    bool marked = false; // the previous part is a { with a mark
    bool empty = true;
    bool openString = false;
    bool ended = false;
};

} // namespace

// Bound to a reference, a constant of an exported class is imported from here on Windows.
constexpr int eSDLLayout::kTab; // NOLINT(readability-redundant-declaration): it makes the place

std::string eSDLLayout::Format(const eSDLDocument& document) const {
    return eFormatting(document, *this).Text();
}
