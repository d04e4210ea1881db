// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/file_name.h>

#include <algorithm>
#include <cstring>
#include <cwchar>
#include <string_view>

#include <qzl_io/streams/stream.h>

// --- eFileNameBase ---

template <class T>
void eFileNameBase<T>::Set(const eFileNameBase& other) {
    if (this != &other)
        text = other.text;
    Validate();
}

template <class T>
void eFileNameBase<T>::Set(const eText& other) {
    text = other;
    Validate();
}

template <class T>
void eFileNameBase<T>::Set(const T* other) {
    if (other)
        text = other;
    else
        text.clear();
    Validate();
}

template <class T>
void eFileNameBase<T>::Take(eFileNameBase&& other) noexcept {
    if (this != &other) {
        text = std::move(other.text);
        other.text.clear();
    }
    Validate();
}

template <class T>
void eFileNameBase<T>::Validate() noexcept {
    std::replace(text.begin(), text.end(), DelimiterWin(), Delimiter());
}

template <class T>
bool eFileNameBase<T>::IsPath() const noexcept {
    return !text.empty() && text.back() == Delimiter();
}

template <class T>
bool eFileNameBase<T>::IsRoot() const noexcept {
    return !text.empty() && text.front() == Delimiter();
}

template <class T>
bool eFileNameBase<T>::IsValidName() const {
    const bool dots = text.size() <= 2 && text == eText(text.size(), Dot());
    return !dots && std::all_of(text.begin(), text.end(), [this](T c) { return IsCharValidForName(c); });
}

template <class T>
void eFileNameBase<T>::Path() {
    if (!IsPath())
        text.push_back(Delimiter());
}

template <class T>
void eFileNameBase<T>::Unpath() noexcept {
    if (IsPath())
        text.pop_back();
}

template <class T>
void eFileNameBase<T>::Add(const eText& other) {
    text += other;
}

template <class T>
void eFileNameBase<T>::Trim(const eText& base) {
    if (base.size() <= text.size() && StrNCmp(text.c_str(), base.c_str(), base.size()) == 0)
        text.erase(0, base.size());
}

template <class T>
std::size_t eFileNameBase<T>::LastComponent() const noexcept {
    const std::size_t delimiter = text.rfind(Delimiter());
    return delimiter == eText::npos ? 0 : delimiter + 1;
}

template <class T>
void eFileNameBase<T>::GetItem(eText* out, eFileNameItem item) const {
    const std::size_t last = LastComponent();
    const std::size_t dot = text.rfind(Dot());
    const bool extended = dot != eText::npos && dot >= last;
    switch (item) {
    case Folder:
        *out = text.substr(0, last);
        break;
    case Title:
        *out = text.substr(last, std::min(text.find(Dot(), last), text.size()) - last);
        break;
    case Extension:
        *out = extended ? text.substr(dot) : eText();
        break;
    case ExtensionOrWhole:
        *out = extended ? text.substr(dot) : last > 0 ? eText(text) : eText();
        break;
    case NameExt:
        *out = text.substr(last);
        break;
    }
}

template <class T>
void eFileNameBase<T>::Item(eFileNameItem item) {
    eText piece;
    GetItem(&piece, item);
    text = std::move(piece);
}

template class eFileNameBase<char>;
template class eFileNameBase<wchar_t>;

// --- eFileName ---

namespace {

constexpr std::string_view kValidBesidesAlphanumeric = "[](){}@$%^-+._ !";
constexpr std::wstring_view kInvalidWide = L"\\/:*?\"<>|";

bool IsWithin(char character, char first, char last) {
    return character >= first && character <= last;
}

bool IsAlphanumeric(char character) {
    return IsWithin(character, 'a', 'z') || IsWithin(character, 'A', 'Z') || IsWithin(character, '0', '9');
}

} // namespace

bool eFileName::IsCharValidForName(char character) const {
    return IsAlphanumeric(character) || kValidBesidesAlphanumeric.find(character) != std::string_view::npos;
}

char eFileName::DelimiterWin() const {
    return '\\';
}
char eFileName::Delimiter() const {
    return '/';
}
char eFileName::Dot() const {
    return '.';
}

int eFileName::StrNCmp(const char* left, const char* right, unsigned long long count) const {
    return std::strncmp(left, right, count);
}

IO::eStream& operator<<(IO::eStream& stream, const eFileName& name) {
    return stream << name.c_str();
}
IO::eStream& operator>>(IO::eStream& stream, eFileName& name) {
    return stream >> name.Text();
}

// --- eFileNameW ---

bool eFileNameW::IsCharValidForName(wchar_t character) const {
    return kInvalidWide.find(character) == std::wstring_view::npos;
}

wchar_t eFileNameW::DelimiterWin() const {
    return L'\\';
}
wchar_t eFileNameW::Delimiter() const {
    return L'/';
}
wchar_t eFileNameW::Dot() const {
    return L'.';
}

int eFileNameW::StrNCmp(const wchar_t* left, const wchar_t* right, unsigned long long count) const {
    return std::wcsncmp(left, right, count);
}
