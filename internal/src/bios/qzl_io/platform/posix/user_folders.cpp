// SPDX-License-Identifier: BSL-1.0
#include "platform/user_folders.h"

#include <cstdlib>
#include <string_view>

#include <sys/statvfs.h>

#include "platform/posix/descriptor.h"
#include "platform/posix/native_name.h"
#include "platform/posix/small_file.h"
#include "platform/posix/user_record.h"
#include "platform/pure/assignments.h"

namespace IO::Platform {

namespace {

// Empty unless it is an absolute name.
std::string Variable(const char* name) {
    const char* const value = std::getenv(name); // NOLINT(concurrency-mt-unsafe): as every reader of the environment
    return value && value[0] == '/' ? value : "";
}

std::string Home() {
    const std::string home = Variable("HOME");
    return home.empty() ? UserRecord(&passwd::pw_dir) : home;
}

// The variable's folder, or the one below the user's own.
std::string BaseFolder(const char* variable, const char* below) {
    std::string named = Variable(variable);
    if (!named.empty())
        return named;
    std::string home = Home();
    return home.empty() ? home : home + below;
}

std::string SettingsFolder() {
    return BaseFolder("XDG_CONFIG_HOME", "/.config");
}

// Values are absolute, or begin with "$HOME/".
std::string DocumentsFolder() {
    constexpr std::string_view kHome = "$HOME";
    const std::string file = ReadSmallFile((SettingsFolder() + "/user-dirs.dirs").c_str());
    const std::string value = System::AssignedTo("XDG_DOCUMENTS_DIR", file);
    if (value == kHome || value.starts_with("$HOME/"))
        return Home() + value.substr(kHome.size());
    return value.starts_with('/') ? value : Home();
}

std::string FolderBytes(int folder) {
    switch (folder) {
    case kSettingsFolder:
        return SettingsFolder();
    case kDataFolder:
        return BaseFolder("XDG_DATA_HOME", "/.local/share");
    case kCacheFolder:
        return BaseFolder("XDG_CACHE_HOME", "/.cache");
    case kTemporaryFolder:
        return Variable("TMPDIR").empty() ? "/tmp" : Variable("TMPDIR");
    case kDocumentsFolder:
        return DocumentsFolder();
    default:
        return {};
    }
}

} // namespace

std::wstring FolderOfUser(int folder) {
    return WideName(FolderBytes(folder));
}

template <class Char>
bool AskSpace(const Char* name, unsigned long long* free, unsigned long long* total) {
    struct statvfs told {};
    const eNativeName native(name);
    if (Uninterrupted([&] { return ::statvfs(native.c_str(), &told); }) != 0)
        return false;
    *free = static_cast<unsigned long long>(told.f_bavail) * told.f_frsize;
    *total = static_cast<unsigned long long>(told.f_blocks) * told.f_frsize;
    return true;
}

template bool AskSpace(const char*, unsigned long long*, unsigned long long*);
template bool AskSpace(const wchar_t*, unsigned long long*, unsigned long long*);

} // namespace IO::Platform
