// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace IO {

// The two parts of a search pattern: the folder with its trailing "/", empty for the current folder, and the mask.
template <class Char>
struct eSearchPattern {
    std::basic_string_view<Char> folder;
    std::basic_string_view<Char> mask;

    explicit constexpr eSearchPattern(std::basic_string_view<Char> pattern) {
        const auto cut = pattern.rfind(Char('/')) + 1;
        folder = pattern.substr(0, cut);
        mask = pattern.substr(cut);
    }
};

// A search mask, prepared once and then compared with many names, by the rules of the Windows file search. ASCII letter
// case is ignored. "*.*" and "*" match all names, an empty mask none.
//
// | in the mask               | stands for                                                          |
// |---------------------------|---------------------------------------------------------------------|
// | "*.*" as the whole mask   | every name                                                          |
// | "*"                       | any characters, or none                                             |
// | "*" before "."            | any characters, or none, but never the name's last dot              |
// | dots, blanks at the end   | nothing, in a mask with "*" or "?": so "?." is "?"                  |
// | "*" before these, "." last | any characters but the last dot: so "*." is the names without dots |
// | "?"                       | one character other than a dot; before a dot and at the end nothing |
// | "." before "*" or "?"     | a dot, or the name's end: so "a.*" matches "a"                      |
// | other characters          | themselves                                                          |
class eSearchMask {
public:
    explicit eSearchMask(std::wstring_view mask) {
        const std::wstring_view kept = WithoutEnd(mask);
        if (kept == L"*.*") {
            items.push_back(ItemAt(L"*", 0));
            return;
        }
        for (std::size_t at = 0; at < kept.size(); ++at)
            items.push_back(ItemAt(kept, at));
        if (mask.ends_with(L'.') && kept.ends_with(L'*'))
            items.back().kind = eKind::RunBeforeLastDot;
    }

    bool MatchesAll() const { return items.size() == 1 && items.front().kind == eKind::Run; }

    bool Matches(std::wstring_view name) const {
        const auto lastDot = name.rfind(L'.');
        ePlaces places(items.size() + 1, false);
        places.front() = true;
        for (std::size_t at = 0; at < name.size(); ++at) {
            SkipOptional(places, name[at] == L'.', false);
            places = After(places, name[at], at == lastDot);
        }
        SkipOptional(places, false, true);
        return places.back() && !items.empty();
    }

private:
    enum class eKind { Letter, Run, RunBeforeLastDot, One, DotOrEnd };

    struct eItem {
        eKind kind;
        wchar_t letter;
    };

    // The items of the mask that may come next.
    using ePlaces = std::vector<bool>;

    // A mask without wild cards is a name, and names may end in anything.
    static constexpr std::wstring_view WithoutEnd(std::wstring_view mask) {
        const bool wild = mask.find_first_of(L"*?") != std::wstring_view::npos;
        return wild ? mask.substr(0, mask.find_last_not_of(L". ") + 1) : mask;
    }

    static constexpr wchar_t Fold(wchar_t letter) {
        return letter >= L'A' && letter <= L'Z' ? static_cast<wchar_t>(letter - L'A' + L'a') : letter;
    }

    static eItem ItemAt(std::wstring_view mask, std::size_t at) {
        const wchar_t next = at + 1 < mask.size() ? mask[at + 1] : L'\0';
        switch (mask[at]) {
        case L'*':
            return {next == L'.' ? eKind::RunBeforeLastDot : eKind::Run, L'*'};
        case L'?':
            return {eKind::One, L'?'};
        case L'.':
            return {next == L'*' || next == L'?' ? eKind::DotOrEnd : eKind::Letter, L'.'};
        default:
            return {eKind::Letter, Fold(mask[at])};
        }
    }

    void SkipOptional(ePlaces& places, bool beforeDot, bool atEnd) const {
        for (std::size_t place = 0; place < items.size(); ++place)
            if (places[place] && MayBeEmpty(items[place].kind, beforeDot, atEnd))
                places[place + 1] = true;
    }

    static bool MayBeEmpty(eKind kind, bool beforeDot, bool atEnd) {
        switch (kind) {
        case eKind::Letter:
            return false;
        case eKind::Run:
        case eKind::RunBeforeLastDot:
            return true;
        case eKind::One:
            return beforeDot || atEnd;
        case eKind::DotOrEnd:
            break;
        }
        return atEnd;
    }

    ePlaces After(const ePlaces& places, wchar_t letter, bool isLastDot) const {
        ePlaces after(places.size(), false);
        for (std::size_t place = 0; place < items.size(); ++place) {
            if (!places[place] || !Takes(items[place], letter, isLastDot))
                continue;
            const bool run = items[place].kind == eKind::Run || items[place].kind == eKind::RunBeforeLastDot;
            after[run ? place : place + 1] = true;
        }
        return after;
    }

    static bool Takes(const eItem& item, wchar_t letter, bool isLastDot) {
        switch (item.kind) {
        case eKind::Letter:
            return item.letter == Fold(letter);
        case eKind::Run:
            return true;
        case eKind::RunBeforeLastDot:
            return !isLastDot;
        case eKind::One:
            return letter != L'.';
        case eKind::DotOrEnd:
            break;
        }
        return letter == L'.';
    }

    std::vector<eItem> items;
};

} // namespace IO
