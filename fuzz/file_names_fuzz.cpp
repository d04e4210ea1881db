// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include <qzl_io/file_name.h>
#include <qzl_io/streams.h>

#include "require.h"
#include "script.h"
#include "target.h"

// The bytes are a text and calls on a name made from it, compared with what they do to plain texts; narrow and wide.

namespace {

template <class Char>
using eTextOf = std::basic_string<Char>;

template <class Char>
eTextOf<Char> Of(std::string_view text) {
    return {text.begin(), text.end()};
}
template <>
std::wstring Of<wchar_t>(std::string_view text) {
    return WideText(text);
}

template <class Char>
eTextOf<Char> Slashed(eTextOf<Char> text) {
    std::replace(text.begin(), text.end(), Char('\\'), Char('/'));
    return text;
}

template <class Char>
eTextOf<Char> Piece(const eTextOf<Char>& text, int item) {
    const std::size_t slash = text.rfind(Char('/'));
    const eTextOf<Char> last = slash == text.npos ? text : text.substr(slash + 1);
    const std::size_t dot = last.rfind(Char('.'));
    const eTextOf<Char> extension = dot == last.npos ? eTextOf<Char>() : last.substr(dot);
    switch (item) {
    case Folder:
        return text.substr(0, text.size() - last.size());
    case Title:
        return last.substr(0, last.find(Char('.')));
    case Extension:
        return extension;
    case ExtensionOrWhole:
        return extension.empty() && slash != text.npos ? text : extension;
    case NameExt:
        return last;
    default:
        return {};
    }
}

bool IsValid(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return byte >= ' ' && byte < 127 && std::string_view("\"#&'*,/:;<=>?\\`|~").find(c) == std::string_view::npos;
}
bool IsValid(wchar_t c) {
    return std::wstring_view(L"\\/:*?\"<>|").find(c) == std::wstring_view::npos;
}

template <class Char>
bool IsValidName(const eTextOf<Char>& text) {
    return !text.empty() && text != Of<Char>(".") && text != Of<Char>("..") &&
           std::all_of(text.begin(), text.end(), [](Char c) { return IsValid(c); });
}

// The comparison ends at a NUL, as that of the C library does.
template <class Char>
bool IsTrimmed(const eTextOf<Char>& text, const eTextOf<Char>& base) {
    const std::size_t zero = base.find(Char());
    const eTextOf<Char> compared = zero == base.npos ? base : base.substr(0, zero + 1);
    return base.size() <= text.size() && text.starts_with(compared);
}

template <class eName, class Char>
void CheckState(const eName& name, const eTextOf<Char>& text) {
    RequireEqual(name.str(), text, "the name");
    Require(name.c_str() == name.str().c_str() && name.size() == text.size() && name.length() == text.size(),
            "the size of a name");
    Require(name.empty() == text.empty(), "an empty name");
    Require(name.IsPath() == text.ends_with(Char('/')), "the name of a folder");
    Require(name.IsRoot() == text.starts_with(Char('/')), "a rooted name");
    Require(name.IsValidName() == IsValidName(text), "a valid name");
    for (int item = -1; item <= 5; ++item)
        RequireEqual(name.GetItem(static_cast<eFileNameItem>(item)).str(), Slashed(Piece(text, item)),
                     "a piece of the name");
    RequireEqual(name.GetItem(Folder).str() + name.GetItem(NameExt).str(), text, "folder and last component together");
    RequireEqual(name.GetPath().str(), text.ends_with(Char('/')) ? text : text + Char('/'), "the name as a folder");
}

template <class eName, class Char>
void Call(eScript& script, eName& name, eTextOf<Char>& text) {
    const unsigned call = script.Below(9);
    if (call < 4) {
        const eTextOf<Char> raw = Of<Char>(script.Text());
        const eTextOf<Char> other = Slashed(raw);
        switch (call) {
        case 0:
            name = raw;
            text = other;
            break;
        case 1:
            name.Add(raw);
            text += other;
            break;
        case 2:
            name.Trim(raw);
            text.erase(0, IsTrimmed(text, other) ? other.size() : 0);
            break;
        default:
            Require((name == eName(raw)) == (text == other) && (name != eName(raw)) == (text != other), "equal names");
            Require((name < eName(raw)) == (text < other), "the order of names");
            break;
        }
        return;
    }
    switch (call) {
    case 4:
        name.Path();
        text += text.ends_with(Char('/')) ? eTextOf<Char>() : Of<Char>("/");
        break;
    case 5:
        name.Unpath();
        text.resize(text.size() - (text.ends_with(Char('/')) ? 1 : 0));
        break;
    case 6: {
        const int item = static_cast<int>(script.Below(7)) - 1;
        name.Item(static_cast<eFileNameItem>(item));
        text = Piece(text, item);
        break;
    }
    case 7: {
        const auto item = static_cast<eFileNameItem>(script.Below(5));
        name.GetItemTo(&name, item);
        text = Piece(text, item);
        break;
    }
    default: {
        eName taken(std::move(name));
        Require(name.empty(), "a name that was moved from");
        name = std::move(taken);
        break;
    }
    }
}

// From and to a stream, up to the first NUL.
void CheckStored(const eFileName& name) {
    IO::eMemoryStream stream;
    stream << name;
    stream.Reset();
    eFileName stored("old");
    stream >> stored;
    if (name.size() < 255)
        RequireEqual(stored.str(), std::string(name.c_str()), "a name from a stream");
}

template <class eName, class Char>
void CheckCalls(std::string_view input) {
    eScript script(input);
    const eTextOf<Char> raw = Of<Char>(script.Text());
    eName name(raw);
    eTextOf<Char> text = Slashed(raw);
    CheckState(name, text);
    for (int calls = 0; !script.IsOver() && calls < 100; ++calls) {
        Call(script, name, text);
        CheckState(name, text);
    }
    if constexpr (std::is_same_v<Char, char>)
        CheckStored(name);
}

template <class eName, class Char>
void WorkOn(std::string_view input) {
    eName name(Of<Char>(input));
    for (int item = 0; item <= 4; ++item)
        name.GetItem(static_cast<eFileNameItem>(item));
    name.IsValidName();
    name.Add(name);
    name.Trim(name);
}

} // namespace

void Check(std::string_view input) {
    CheckCalls<eFileName, char>(input);
    CheckCalls<eFileNameW, wchar_t>(input);
}

void Work(std::string_view input) {
    WorkOn<eFileName, char>(input);
    WorkOn<eFileNameW, wchar_t>(input);
}
