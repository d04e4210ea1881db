// SPDX-License-Identifier: BSL-1.0
#include "document/path.h"

#include <utility>

#include <qzl_base/convert.h>

#include "document/body.h"
#include "document/numbers.h"
#include "qzl_base/shared/ascii.h"
#include "sdl/lexer.h"

namespace xSDL {

// --- Reading a path ---

class ePath::eReading {
public:
    eReading(ePath& itsPath, std::string_view itsText) : path(itsPath), text(itsText) {
        text.append(kTextEnd, '\0');
        at = text.data();
    }

    void Run() {
        do
            if (!ReadStep())
                return;
        while (Take('/'));
        if (*at != 0 || at != text.data() + text.size() - kTextEnd)
            Fail("a \"/\" or a filter is expected");
    }

private:
    bool Fail(const char* what) {
        path.mistake = std::string(what) + " at character " + ToString(at - text.data() + 1, false) + " of the path";
        path.steps.clear();
        return false;
    }

    // Returns whether there was an = among the blanks.
    bool PassGap() {
        int line = 0;
        const char* const begin = at;
        at = PassBlanks(at, &line);
        return std::string_view(begin, static_cast<std::size_t>(at - begin)).find('=') != std::string_view::npos;
    }

    bool Take(char c) {
        if (PassGap() || *at != c)
            return false;
        ++at;
        return true;
    }

    bool Cut(eLexeme* token) {
        int line = 0;
        PassGap();
        if (*at == ';' || *at == 0)
            return false;
        at = CutAt(at, &line, token);
        return token->type != sdlNone && token->type != sdlError;
    }

    static std::string TextOf(const eLexeme& token) { return std::string(token.begin, token.length); }

    static bool ToIndex(const eLexeme& token, std::size_t* index) {
        long long value = 0;
        if (token.type != sdlInt || !numbers::ToInteger({token.begin, token.length}, &value) || value < 0)
            return false;
        *index = static_cast<std::size_t>(value);
        return true;
    }

    bool ReadStep() {
        eStep step;
        eLexeme token;
        const char* const begin = at;
        if (!Cut(&token)) {
            at = begin;
            return Fail("a name, a number or a * is expected");
        }
        if (token.type == sdlIdent) {
            step.name = TextOf(token);
        } else if (token.type == sdlOperator && *token.begin == '*') {
            step.kind = eStep::eKind::Any;
        } else if (ToIndex(token, &step.index)) {
            step.kind = eStep::eKind::Index;
        } else {
            at = begin;
            return Fail("a name, a number or a * is expected");
        }
        while (Take('['))
            if (!ReadFilter(&step))
                return false;
        path.steps.push_back(std::move(step));
        return true;
    }

    bool ReadFilter(eStep* step) {
        eFilter filter;
        eLexeme token;
        if (step->kind == eStep::eKind::Index)
            return Fail("a value takes no filter");
        if (!Cut(&token))
            return Fail("a number or a name is expected");
        if (token.type == sdlIdent) {
            filter.name = TextOf(token);
            if (!PassGap())
                return Fail("a = is expected");
            if (!Cut(&token) || !ToValue(token, &filter.value))
                return Fail("a value is expected");
        } else {
            filter.byIndex = true;
            if (!ToIndex(token, &filter.index))
                return Fail("a number or a name is expected");
        }
        if (!Take(']'))
            return Fail("a ] is expected");
        step->filters.push_back(std::move(filter));
        return true;
    }

    static bool ToValue(const eLexeme& token, eValue* value) {
        value->text = TextOf(token);
        switch (token.type) {
        case sdlIdent:
            value->kind = eSDLKind::Word;
            return true;
        case sdlString:
            value->kind = eSDLKind::String;
            ConvertEscSequence(&value->text, false);
            return true;
        case sdlInt:
        case sdlHex:
        case sdlFloat: {
            value->kind = token.type == sdlFloat ? eSDLKind::Float : eSDLKind::Int;
            long long integer = 0;
            if (value->kind == eSDLKind::Int && numbers::ToInteger(value->text, &integer))
                value->integer = integer;
            return numbers::ToDouble(value->text, &value->number);
        }
        default:
            return false;
        }
    }

    ePath& path;
    std::string text;
    const char* at;
};

ePath::ePath(std::string_view text) {
    eReading(*this, text).Run();
}

// --- Finding ---

bool ePath::eValue::Equals(const eSDLNode& node) const {
    switch (node.Kind()) {
    case eSDLKind::Word:
        return kind == eSDLKind::Word && node.Is(text);
    case eSDLKind::String:
        return (kind == eSDLKind::Word || kind == eSDLKind::String) && node.As<std::string>() == text;
    case eSDLKind::Int:
        if (const auto found = node.As<long long>(); found && integer)
            return *found == *integer;
        [[fallthrough]];
    case eSDLKind::Float:
    case eSDLKind::Calculation:
        return (kind == eSDLKind::Int || kind == eSDLKind::Float) && node.As<double>() == number;
    default:
        return false;
    }
}

// What a step finds within one node, one after the other.
class ePath::eMatches {
public:
    eMatches(const eSDLNode& itsParent, const eStep& itsStep, bool isLast)
        : parent(itsParent), step(itsStep), last(isLast), passed(itsStep.filters.size()) {
        if (!IsByIndex())
            at = parent.begin();
    }

    eSDLNode Next() {
        if (IsByIndex())
            return std::exchange(done, true) ? eSDLNode() : AtIndex();
        for (;; ++at) {
            if (at == parent.end() && !SeekWords())
                return {};
            if (IsMeant(*at) && Passes(*at)) {
                const eSDLNode found = *at;
                ++at;
                return found;
            }
        }
    }

private:
    // One node at most.
    bool IsByIndex() const {
        return step.kind == eStep::eKind::Index || (!step.filters.empty() && step.filters.front().byIndex);
    }

    // The other filters see no more than the node that the first one takes.
    eSDLNode AtIndex() {
        if (step.kind == eStep::eKind::Index)
            return parent.Value(step.index);
        const std::size_t index = step.filters.front().index;
        const bool named = step.kind == eStep::eKind::Name;
        const eCounted what = named ? eCounted::Named : eCounted::Blocks;
        eSDLNode found = eDocumentBody::Child(parent, what, step.name, index);
        if (!found && last && named && !eDocumentBody::Child(parent, what, step.name, 0))
            found = eDocumentBody::Child(parent, eCounted::Words, step.name, index);
        for (std::size_t filter = 1; found && filter < step.filters.size(); ++filter)
            if (!PassesOne(step.filters[filter], &passed[filter], found))
                return {};
        return found;
    }

    // Words are looked for once no block has the name. False if there is nothing to look through.
    bool SeekWords() {
        if (!last || words || anyBlock || step.kind != eStep::eKind::Name)
            return false;
        words = true;
        at = parent.begin();
        return !(at == parent.end());
    }

    bool IsMeant(const eSDLNode& node) {
        if (words)
            return node.Kind() == eSDLKind::Word && node.Is(step.name);
        const bool meant = node.IsBlock() && (step.kind == eStep::eKind::Any || node.Is(step.name));
        anyBlock = anyBlock || meant;
        return meant;
    }

    bool Passes(const eSDLNode& node) {
        for (std::size_t filter = 0; filter < step.filters.size(); ++filter)
            if (!PassesOne(step.filters[filter], &passed[filter], node))
                return false;
        return true;
    }

    static bool PassesOne(const eFilter& filter, std::size_t* before, const eSDLNode& node) {
        if (filter.byIndex)
            return (*before)++ == filter.index;
        if (!node.IsBlock())
            return false;
        for (const eSDLNode& child : node)
            if ((child.IsBlock() || child.Kind() == eSDLKind::Word) && child.Is(filter.name) &&
                filter.value.Equals(child.Value()))
                return true;
        return false;
    }

    eSDLNode parent;
    const eStep& step;
    bool last;
    bool words = false;
    bool anyBlock = false;
    bool done = false;
    std::vector<std::size_t> passed; // by each filter by index
    eSDLNode::eIterator at;
};

std::vector<eSDLNode> ePath::Find(const eSDLNode& node, std::size_t most) const {
    std::vector<eSDLNode> found;
    std::vector<eMatches> open;
    const auto enter = [&](const eSDLNode& parent) {
        open.emplace_back(parent, steps[open.size()], open.size() + 1 == steps.size());
    };
    if (!steps.empty() && most > 0)
        enter(node);
    while (!open.empty() && found.size() < most) {
        const eSDLNode next = open.back().Next();
        if (!next)
            open.pop_back();
        else if (open.size() == steps.size())
            found.push_back(next);
        else
            enter(next);
    }
    return found;
}

} // namespace xSDL
