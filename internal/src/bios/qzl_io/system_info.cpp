#include <qzl_io/system/system_info.h>

#include <qzl_base/collectors.h>
#include <qzl_base/convert.h>

#include "machine/cached_text.h"
#include "machine/growing_query.h"
#include "machine/version_name.h"
#include "platform/characters.h"
#include "platform/machine.h"

namespace IO::System {

namespace {

template <class Char>
std::basic_string<Char> LowerCased(std::basic_string<Char> text) {
    Platform::LowerCase(&text);
    return text;
}

template <class Char>
std::basic_string<Char> AskProductId() {
    const Platform::eProductIdQuery query = Platform::OpenProductId<Char>();
    return query ? AskGrowing<Char>(query) : std::basic_string<Char>();
}

std::string AskVersionName() {
    const Platform::eSystemVersion version = Platform::SystemVersion();
    return VersionName(version.major, version.minor, version.server);
}

void FillNames() {
    MachineName();
    UserName();
}

const xCollectors::xGlobal::eGlobalFunctionRegistrator fillNames("app", &FillNames, nullptr);

} // namespace

const std::string& MachineName() {
    static eCachedText<char>& name = *new eCachedText<char>;
    return name.Get([] { return LowerCased(Platform::ComputerName<char>()); });
}

const std::wstring& MachineNameW() {
    static eCachedText<wchar_t>& name = *new eCachedText<wchar_t>;
    return name.Get([] { return LowerCased(Platform::ComputerName<wchar_t>()); });
}

const std::string& UserName() {
    static eCachedText<char>& name = *new eCachedText<char>;
    return name.Get([] { return LowerCased(Platform::AccountName<char>()); });
}

const std::wstring& UserNameW() {
    static eCachedText<wchar_t>& name = *new eCachedText<wchar_t>;
    return name.Get([] { return LowerCased(Platform::AccountName<wchar_t>()); });
}

const std::string& ProductId() {
    static eCachedText<char>& id = *new eCachedText<char>;
    return id.Get(AskProductId<char>);
}

const std::wstring& ProductIdW() {
    static eCachedText<wchar_t>& id = *new eCachedText<wchar_t>;
    return id.Get(AskProductId<wchar_t>);
}

const std::string& WindowsVersion() {
    static eCachedText<char>& name = *new eCachedText<char>;
    return name.Get(AskVersionName);
}

const std::wstring& WindowsVersionW() {
    static eCachedText<wchar_t>& name = *new eCachedText<wchar_t>;
    return name.Get([] { return ToStringW(AskVersionName()); });
}

} // namespace IO::System
