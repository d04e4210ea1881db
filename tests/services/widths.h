// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <qzl_io/system.h>

// The two widths of every service, so that one test tries both: TYPED_TEST over eWidths.

struct eNarrow {
    using Char = char;
    using Text = std::string;
    using Name = eFileName;
    using Search = IO::eSearch;
    using WorkingPaths = IO::System::eWorkingPaths;
    using Access = IO::System::File::eAccessMode;

    static Text Of(std::string_view ascii) { return Text(ascii); }
    static Text OfPath(const std::filesystem::path& path) { return path.generic_string(); }

    static bool MayAccess(const Name& name, int mode) {
        return IO::System::File::Access(name, static_cast<Access>(mode));
    }
    static bool CopyFile(const Name& from, const Name& to) { return IO::System::File::Copy(from, to); }
    static bool CopyFileEx(const Name& from, const Name& to, bool* flag) {
        return IO::System::File::CopyEx(from, to, flag);
    }
    static bool DeleteFile(const Name& name) { return IO::System::File::Delete(name); }
    static bool Rename(const Name& from, const Name& to) { return IO::System::File::Rename(from, to); }
    static bool Replace(const Name& from, const Name& to) { return IO::System::File::Replace(from, to); }
    static unsigned long long Size(const Name& name) { return IO::System::File::Size(name); }

    static bool Create(const Name& folder) { return IO::System::Path::Create(folder); }
    static void Copy(const Name& from, const Name& to) { IO::System::Path::Copy(from, to); }
    static void Delete(const Name& folder, bool recursive) { IO::System::Path::Delete(folder, recursive); }
    static void PurgeEmpty(const Name& folder) { IO::System::Path::PurgeEmpty(folder); }
    using Result = IO::System::eTreeResult;
    static Result CopyTree(const Name& from, const Name& to, const IO::System::eTreeTask& task = {}) {
        return IO::System::Path::CopyTree(from, to, task);
    }
    static Result DeleteTree(const Name& folder, const IO::System::eTreeTask& task = {}) {
        return IO::System::Path::DeleteTree(folder, task);
    }
    static Result PurgeTree(const Name& folder, const IO::System::eTreeTask& task = {}) {
        return IO::System::Path::PurgeTree(folder, task);
    }
    static Text Split(const Text& path, Text* drive, Text* dir, Text* name, Text* ext) {
        return IO::System::Path::SplitPath(path, drive, dir, name, ext);
    }
    static Text WorkingDir() { return IO::System::Path::WorkingDir(); }
};

struct eWide {
    using Char = wchar_t;
    using Text = std::wstring;
    using Name = eFileNameW;
    using Search = IO::eSearchW;
    using WorkingPaths = IO::System::eWorkingPathsW;
    using Access = IO::System::FileW::eAccessMode;

    static Text Of(std::string_view ascii) { return Text(ascii.begin(), ascii.end()); }
    static Text OfPath(const std::filesystem::path& path) { return path.generic_wstring(); }

    static bool MayAccess(const Name& name, int mode) {
        return IO::System::FileW::Access(name, static_cast<Access>(mode));
    }
    static bool CopyFile(const Name& from, const Name& to) { return IO::System::FileW::Copy(from, to); }
    static bool CopyFileEx(const Name& from, const Name& to, bool* flag) {
        return IO::System::FileW::CopyEx(from, to, flag);
    }
    static bool DeleteFile(const Name& name) { return IO::System::FileW::Delete(name); }
    static bool Rename(const Name& from, const Name& to) { return IO::System::FileW::Rename(from, to); }
    static bool Replace(const Name& from, const Name& to) { return IO::System::FileW::Replace(from, to); }
    static unsigned long long Size(const Name& name) { return IO::System::FileW::Size(name); }

    static bool Create(const Name& folder) { return IO::System::PathW::Create(folder); }
    static void Copy(const Name& from, const Name& to) { IO::System::PathW::Copy(from, to); }
    static void Delete(const Name& folder, bool recursive) { IO::System::PathW::Delete(folder, recursive); }
    static void PurgeEmpty(const Name& folder) { IO::System::PathW::PurgeEmpty(folder); }
    using Result = IO::System::eTreeResultW;
    static Result CopyTree(const Name& from, const Name& to, const IO::System::eTreeTask& task = {}) {
        return IO::System::PathW::CopyTree(from, to, task);
    }
    static Result DeleteTree(const Name& folder, const IO::System::eTreeTask& task = {}) {
        return IO::System::PathW::DeleteTree(folder, task);
    }
    static Result PurgeTree(const Name& folder, const IO::System::eTreeTask& task = {}) {
        return IO::System::PathW::PurgeTree(folder, task);
    }
    static Text Split(const Text& path, Text* drive, Text* dir, Text* name, Text* ext) {
        return IO::System::PathW::SplitPath(path, drive, dir, name, ext);
    }
    static Text WorkingDir() { return IO::System::PathW::WorkingDir(); }
};

using eWidths = testing::Types<eNarrow, eWide>;

struct eWidthNames {
    template <class Width>
    static std::string GetName(int) {
        return sizeof(typename Width::Char) == 1 ? "Narrow" : "Wide";
    }
};

// A name with backslashes, as in a value that was read from a stream.
template <class Width>
class eRawName : public Width::Name {
public:
    explicit eRawName(const typename Width::Text& raw) { this->Text() = raw; }
};

// Systems whose wide characters have 2 bytes have drive letters.
inline constexpr bool kHasDrives = sizeof(wchar_t) == 2;
