// SPDX-License-Identifier: BSL-1.0
#include "platform/code_page.h"

#include <cstddef>
#include <limits>

#include <windows.h>

namespace platform {

namespace {

constexpr std::size_t kLongestText = std::numeric_limits<int>::max() / 4;

class eSystemCodePage : public eCodePage {
public:
    explicit eSystemCodePage(unsigned page) : number(page) {}

    bool Widen(std::string_view text, std::wstring* out) override {
        if (text.size() > kLongestText)
            return false;
        return Convert(out, text.empty(), [&](wchar_t* room, int size) { return WidenInto(text, room, size); });
    }

    bool Narrow(std::wstring_view text, std::string* out) override {
        if (text.size() > kLongestText)
            return false;
        return Convert(out, text.empty(), [&](char* room, int size) { return NarrowInto(text, room, size); });
    }

private:
    // Queries the size of the converted text, makes room and converts. The call returns 0 for a text that it cannot
    // convert.
    template <class TText, class TCall>
    static bool Convert(TText* out, bool nothing, TCall call) {
        if (nothing)
            return true;
        const int size = call(nullptr, 0);
        if (size <= 0)
            return false;
        const std::size_t kept = out->size();
        out->resize(kept + static_cast<std::size_t>(size));
        if (call(out->data() + kept, size) == size)
            return true;
        out->resize(kept);
        return false;
    }

    int WidenInto(std::string_view text, wchar_t* room, int size) const {
        const int length = static_cast<int>(text.size());
        const int converted = MultiByteToWideChar(number, MB_ERR_INVALID_CHARS, text.data(), length, room, size);
        // Some pages reject every flag.
        if (converted == 0 && GetLastError() == ERROR_INVALID_FLAGS)
            return MultiByteToWideChar(number, 0, text.data(), length, room, size);
        return converted;
    }

    int NarrowInto(std::wstring_view text, char* room, int size) const {
        const int length = static_cast<int>(text.size());
        BOOL replaced = FALSE;
        const int converted =
            WideCharToMultiByte(number, WC_NO_BEST_FIT_CHARS, text.data(), length, room, size, nullptr, &replaced);
        if (converted == 0 && (GetLastError() == ERROR_INVALID_FLAGS || GetLastError() == ERROR_INVALID_PARAMETER))
            return WideCharToMultiByte(number, 0, text.data(), length, room, size, nullptr, nullptr);
        return replaced ? 0 : converted;
    }

    unsigned number;
};

} // namespace

bool OpenCodePage(int number, std::unique_ptr<eCodePage>* page) {
    const auto asked = static_cast<unsigned>(number);
    if (IsValidCodePage(asked) || asked <= CP_THREAD_ACP)
        *page = std::make_unique<eSystemCodePage>(asked);
    return true;
}

} // namespace platform
