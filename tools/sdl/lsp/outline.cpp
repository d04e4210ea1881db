// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "lsp/features.h"

namespace {

using nlohmann::json;

constexpr int kObject = 19; // a kind of symbol
constexpr std::size_t kDeepestListed =
    64; // of the levels that are listed; others would be of no use, and overflow stacks

std::string NameOf(const eSDLNode& block) {
    const std::string_view name = block.Name();
    return name.empty() ? "{}" : std::string(name);
}

// The first value tells blocks of one name apart.
std::string DetailOf(const eSDLNode& block) {
    const eSDLNode first = block.Value();
    std::string text;
    return first.Get(&text) ? text : first.Text();
}

// Puts blocks together while the parts pass.
class eSymbols {
public:
    explicit eSymbols(const eOpenText& of) : text(of) {}

    void Take(const eLocatedPart& located) {
        const eSDLPart& part = located.part;
        while (open.size() > OpenBefore(part))
            Close(located.begin);
        if (part.kind == eSDLKind::Block)
            open.push_back(part.depth < kDeepestListed ? Begun(located) : json());
        else if (part.kind == eSDLKind::BlockEnd && !open.empty())
            Close(located.end);
    }

    json Finish() {
        while (!open.empty())
            Close(text.Text().size());
        return std::move(top);
    }

private:
    json Begun(const eLocatedPart& located) const {
        const eSDLNode& block = located.part.node;
        return {{"name", NameOf(block)},
                {"detail", DetailOf(block)},
                {"kind", kObject},
                {"range", {{"start", ToJson(text.Lines().PositionOf(located.begin))}}},
                {"selectionRange", RangeOf(text, located.begin, located.end + block.Name().size())},
                {"children", json::array()}};
    }

    void Close(std::size_t end) {
        json block = std::move(open.back());
        open.pop_back();
        if (block.is_null())
            return;
        block["range"]["end"] = ToJson(text.Lines().PositionOf(end));
        (open.empty() ? top : open.back()["children"]).push_back(std::move(block));
    }

    const eOpenText& text;
    std::vector<json> open;
    json top = json::array();
};

constexpr const char* kComment = "comment";
constexpr const char* kRegion = "region";

// Lines of comments that follow each other are one fold.
class eFolds {
public:
    explicit eFolds(const eOpenText& of) : text(of) {}

    void Take(const eLocatedPart& located) {
        const eSDLPart& part = located.part;
        const std::size_t line = text.Lines().PositionOf(located.begin).line;
        if (part.kind == eSDLKind::Comment) {
            TakeComment(line);
        } else if (part.kind != eSDLKind::Blank) {
            EndComments();
            open.resize(std::min(open.size(), OpenBefore(part)));
            if (part.kind == eSDLKind::Block)
                open.push_back(line);
            else if (part.kind == eSDLKind::BlockEnd)
                EndBlock(line);
            else if (part.kind == eSDLKind::Control)
                Add(line, text.Lines().PositionOf(located.end).line, kRegion);
        }
    }

    json Finish() {
        EndComments();
        return std::move(folds);
    }

private:
    void TakeComment(std::size_t line) {
        if (inComments && line == lastComment + 1) {
            lastComment = line;
        } else {
            EndComments();
            inComments = true;
            firstComment = lastComment = line;
        }
    }

    void EndComments() {
        if (inComments)
            Add(firstComment, lastComment, kComment);
        inComments = false;
    }

    void EndBlock(std::size_t line) {
        if (open.empty())
            return;
        Add(open.back(), line, kRegion);
        open.pop_back();
    }

    void Add(std::size_t first, std::size_t last, const char* kind) {
        if (first < last)
            folds.push_back({{"startLine", first}, {"endLine", last}, {"kind", kind}});
    }

    const eOpenText& text;
    std::vector<std::size_t> open; // the lines on which the open blocks begin
    bool inComments = false;
    std::size_t firstComment = 0;
    std::size_t lastComment = 0;
    json folds = json::array();
};

template <class Collector>
json Collected(const eOpenText& text) {
    Collector collector(text);
    WalkParts(text, [&](const eLocatedPart& located) {
        collector.Take(located);
        return true;
    });
    return collector.Finish();
}

} // namespace

json OutlineOf(const eOpenText& text) {
    return Collected<eSymbols>(text);
}

json FoldsOf(const eOpenText& text) {
    return Collected<eFolds>(text);
}
