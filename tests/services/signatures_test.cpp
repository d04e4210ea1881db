// SPDX-License-Identifier: BSL-1.0
#include <string>
#include <type_traits>

#include <qzl_io/system.h>

// The interface that callers compile against, as one table: it is correct if it compiles.

namespace {

template <class Type, class Expected>
constexpr bool is = std::is_same_v<Type, Expected>;

namespace OfFile {
using namespace IO::System::File;
static_assert(is<decltype(&Access), bool (*)(const eFileName&, eAccessMode)>);
static_assert(is<decltype(&Copy), bool (*)(const eFileName&, const eFileName&)>);
static_assert(is<decltype(&CopyEx), bool (*)(const eFileName&, const eFileName&, bool*)>);
static_assert(is<decltype(&Delete), bool (*)(const eFileName&)>);
static_assert(is<decltype(&Rename), bool (*)(const eFileName&, const eFileName&)>);
static_assert(is<decltype(&Replace), bool (*)(const eFileName&, const eFileName&)>);
static_assert(is<decltype(&Size), unsigned long long (*)(const eFileName&)>);
static_assert(is<std::underlying_type_t<eAccessMode>, int>);
} // namespace OfFile

namespace OfFileW {
using namespace IO::System::FileW;
static_assert(is<decltype(&Access), bool (*)(const eFileNameW&, eAccessMode)>);
static_assert(is<decltype(&Copy), bool (*)(const eFileNameW&, const eFileNameW&)>);
static_assert(is<decltype(&CopyEx), bool (*)(const eFileNameW&, const eFileNameW&, bool*)>);
static_assert(is<decltype(&Delete), bool (*)(const eFileNameW&)>);
static_assert(is<decltype(&Rename), bool (*)(const eFileNameW&, const eFileNameW&)>);
static_assert(is<decltype(&Replace), bool (*)(const eFileNameW&, const eFileNameW&)>);
static_assert(is<decltype(&Size), unsigned long long (*)(const eFileNameW&)>);
static_assert(is<std::underlying_type_t<eAccessMode>, int>);
} // namespace OfFileW

// Plain enumerations that do not convert to each other.
using eMode = IO::System::File::eAccessMode;
using eModeW = IO::System::FileW::eAccessMode;
static_assert(std::is_convertible_v<eMode, int> && std::is_convertible_v<eModeW, int>);
static_assert(!std::is_convertible_v<eMode, eModeW> && !std::is_convertible_v<eModeW, eMode>);

namespace OfPath {
using namespace IO::System::Path;
using Text = std::string;
static_assert(is<decltype(&Create), bool (*)(const eFileName&)>);
static_assert(is<decltype(&Copy), void (*)(const eFileName&, const eFileName&)>);
static_assert(is<decltype(&Delete), void (*)(const eFileName&, bool)>);
static_assert(is<decltype(&PurgeEmpty), void (*)(const eFileName&)>);
static_assert(is<decltype(&CopyTree),
                 IO::System::eTreeResult (*)(const eFileName&, const eFileName&, const IO::System::eTreeTask&)>);
static_assert(is<decltype(&DeleteTree), IO::System::eTreeResult (*)(const eFileName&, const IO::System::eTreeTask&)>);
static_assert(is<decltype(&PurgeTree), IO::System::eTreeResult (*)(const eFileName&, const IO::System::eTreeTask&)>);
static_assert(is<decltype(&SplitPath), Text (*)(const Text&, Text*, Text*, Text*, Text*)>);
static_assert(is<decltype(&WorkingDir), Text (*)()>);
} // namespace OfPath

namespace OfPathW {
using namespace IO::System::PathW;
using Text = std::wstring;
static_assert(is<decltype(&Create), bool (*)(const eFileNameW&)>);
static_assert(is<decltype(&Copy), void (*)(const eFileNameW&, const eFileNameW&)>);
static_assert(is<decltype(&Delete), void (*)(const eFileNameW&, bool)>);
static_assert(is<decltype(&PurgeEmpty), void (*)(const eFileNameW&)>);
static_assert(is<decltype(&CopyTree),
                 IO::System::eTreeResultW (*)(const eFileNameW&, const eFileNameW&, const IO::System::eTreeTask&)>);
static_assert(is<decltype(&DeleteTree), IO::System::eTreeResultW (*)(const eFileNameW&, const IO::System::eTreeTask&)>);
static_assert(is<decltype(&PurgeTree), IO::System::eTreeResultW (*)(const eFileNameW&, const IO::System::eTreeTask&)>);
static_assert(is<decltype(&SplitPath), Text (*)(const Text&, Text*, Text*, Text*, Text*)>);
static_assert(is<decltype(&WorkingDir), Text (*)()>);
} // namespace OfPathW

template <class Search, class Name, class Char>
constexpr bool isSearch = requires(Search search, const Search fixed, const Name name) {
    requires is<decltype(search.Begin(name, name)), void>;
    requires is<decltype(search.Next()), void>;
    requires is<decltype(search.End()), void>;
    requires is<decltype(fixed.Valid()), bool>;
    requires is<decltype(fixed.IsFile()), bool>;
    requires is<decltype(fixed.IsSubfolder()), bool>;
    requires is<decltype(fixed.Name()), const Char*>;
    requires is<decltype(fixed.Size()), unsigned long long>;
    requires is<decltype(fixed.ModifyTime()), IO::eFileTime>;
    requires is<decltype(search = fixed), Search&>;
    requires std::is_constructible_v<Search, const Name&, const Name&>;
    requires !std::is_default_constructible_v<Search> && !std::is_polymorphic_v<Search>;
    requires std::is_copy_constructible_v<Search> && std::is_nothrow_move_constructible_v<Search>;
};
static_assert(isSearch<IO::eSearch, eFileName, char> && isSearch<IO::eSearchW, eFileNameW, wchar_t>);

template <class Paths, class Text, class List>
constexpr bool isWorkingPaths = requires(Paths paths, const Paths fixed) {
    requires is<decltype(fixed.AppDataAllUsers()), const Text&>;
    requires is<decltype(fixed.AppDataUser()), const Text&>;
    requires is<decltype(fixed.MyDocuments()), const Text&>;
    requires is<decltype(fixed.Working()), const Text&>;
    requires is<decltype(paths = fixed), Paths&>;
    requires std::is_convertible_v<Text, Paths> && std::is_copy_constructible_v<Paths>;
    requires std::has_virtual_destructor_v<Paths>;
    requires sizeof(Paths) == sizeof(void*) + sizeof(List);
};
static_assert(isWorkingPaths<IO::System::eWorkingPaths, std::string, eStrings>);
static_assert(isWorkingPaths<IO::System::eWorkingPathsW, std::wstring, eStringsW>);

template <class Expected, class... Types>
constexpr bool areAll = (is<Types, Expected> && ...);
namespace OfMachine {
using namespace IO::System;
static_assert(areAll<const std::string& (*)(), decltype(&MachineName), decltype(&UserName), decltype(&ProductId),
                     decltype(&WindowsVersion), decltype(&HDDSerialNumber)>);
static_assert(areAll<const std::wstring& (*)(), decltype(&MachineNameW), decltype(&UserNameW), decltype(&ProductIdW),
                     decltype(&WindowsVersionW), decltype(&HDDSerialNumberW)>);
} // namespace OfMachine

} // namespace
