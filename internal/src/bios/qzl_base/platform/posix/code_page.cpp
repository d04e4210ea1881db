// SPDX-License-Identifier: BSL-1.0
#include "platform/code_page.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstddef>
#include <new>
#include <utility>

#include <fcntl.h>
#include <iconv.h>
#include <sys/mman.h>
#include <unistd.h>

namespace platform {

namespace {

// Here a wchar_t holds one character, in the byte order of the machine.
constexpr const char* kWide = "WCHAR_T";

class eConverter {
public:
    eConverter(const char* to, const char* from) : descriptor(iconv_open(to, from)), failure(IsOpen() ? 0 : errno) {}
    ~eConverter() {
        if (IsOpen())
            iconv_close(descriptor);
    }
    eConverter(const eConverter&) = delete;
    eConverter& operator=(const eConverter&) = delete;

    bool IsOpen() const { return descriptor != reinterpret_cast<iconv_t>(-1); }
    int Failure() const { return failure; }

    // Appends the converted bytes. False, with a part of them appended, if the text cannot be converted completely.
    bool Convert(std::string_view bytes, std::string* out) {
        iconv(descriptor, nullptr, nullptr, nullptr, nullptr);
        char* at = const_cast<char*>(bytes.data());
        std::size_t left = bytes.size();
        return Run(&at, &left, out) && Run(nullptr, nullptr, out);
    }

private:
    // Converts until nothing is left. Without a text, flushes what the converter holds back.
    bool Run(char** at, std::size_t* left, std::string* out) {
        std::array<char, 4096> room;
        for (;;) {
            char* end = room.data();
            std::size_t free = room.size();
            const std::size_t replaced = iconv(descriptor, at, left, &end, &free);
            const bool full = replaced == static_cast<std::size_t>(-1) && errno == E2BIG;
            out->append(room.data(), end);
            if (!full)
                return replaced == 0;
        }
    }

    iconv_t descriptor;
    int failure;
};

std::string_view BytesOf(std::wstring_view text) {
    return {reinterpret_cast<const char*>(text.data()), text.size() * sizeof(wchar_t)};
}

class eIconvCodePage : public eCodePage {
public:
    explicit eIconvCodePage(const std::string& name) : widener(kWide, name.c_str()), narrower(name.c_str(), kWide) {}

    // 0, or the system's error number for the direction that failed.
    int Failure() const { return widener.IsOpen() ? narrower.Failure() : widener.Failure(); }

    bool Widen(std::string_view text, std::wstring* out) override {
        std::string bytes;
        if (!widener.Convert(text, &bytes))
            return false;
        const std::size_t size = out->size();
        out->resize(size + bytes.size() / sizeof(wchar_t));
        std::copy(bytes.begin(), bytes.end(), reinterpret_cast<char*>(out->data() + size));
        return true;
    }

    bool Narrow(std::wstring_view text, std::string* out) override {
        std::string bytes;
        if (!narrower.Convert(BytesOf(text), &bytes))
            return false;
        out->append(bytes);
        return true;
    }

private:
    eConverter widener;
    eConverter narrower;
};

// The code pages whose converters are not named after their numbers.
constexpr std::array kNames = {std::pair{0, "UTF-8"},
                               std::pair{1, "UTF-8"},
                               std::pair{2, "MACINTOSH"},
                               std::pair{3, "UTF-8"},
                               std::pair{708, "ASMO-708"},
                               std::pair{10000, "MACINTOSH"},
                               std::pair{10029, "MAC-CENTRALEUROPE"},
                               std::pair{20127, "ASCII"},
                               std::pair{20866, "KOI8-R"},
                               std::pair{20932, "EUC-JP"},
                               std::pair{20936, "EUC-CN"},
                               std::pair{21025, "CP1025"},
                               std::pair{21866, "KOI8-U"},
                               std::pair{50220, "ISO-2022-JP"},
                               std::pair{50225, "ISO-2022-KR"},
                               std::pair{51932, "EUC-JP"},
                               std::pair{51936, "EUC-CN"},
                               std::pair{51949, "EUC-KR"},
                               std::pair{54936, "GB18030"},
                               std::pair{65000, "UTF-7"}};

std::string NameOf(int number) {
    const auto known = std::find_if(kNames.begin(), kNames.end(), [number](auto name) { return name.first == number; });
    if (known != kNames.end())
        return known->second;
    if (number > 28590 && number <= 28606)
        return "ISO-8859-" + std::to_string(number - 28590);
    if (number >= 20273 && number <= 20905)
        return "CP" + std::to_string(number - 20000); // code pages of mainframes
    const std::string digits = std::to_string(number);
    return "CP" + std::string(digits.size() < 3 ? 3 - digits.size() : 0, '0') + digits;
}

// The system's converters are files. If the system cannot open one, or has no memory for it, it says that it does not
// know the page; if that happens while it reads the list of converters, it says so of every page for good.

bool HasDescriptors() {
    const int probe = open("/", O_PATH | O_DIRECTORY | O_CLOEXEC);
    if (probe < 0)
        return errno != EMFILE && errno != ENFILE;
    close(probe);
    return true;
}

bool HasRoom() {
    constexpr std::size_t kMoreThanAnyConverter = std::size_t{4} << 20;
    void* const probe = mmap(nullptr, kMoreThanAnyConverter, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (probe == MAP_FAILED)
        return false;
    munmap(probe, kMoreThanAnyConverter);
    return true;
}

} // namespace

bool OpenCodePage(int number, std::unique_ptr<eCodePage>* page) {
    if (!HasDescriptors())
        return false;
    auto opened = std::make_unique<eIconvCodePage>(NameOf(number));
    const int failure = opened->Failure();
    if (failure == ENOMEM || (failure == EINVAL && !HasRoom()))
        throw std::bad_alloc();
    if (failure == 0)
        *page = std::move(opened);
    return failure == 0 || (failure == EINVAL && HasDescriptors());
}

} // namespace platform
