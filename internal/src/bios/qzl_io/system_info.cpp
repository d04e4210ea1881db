// SPDX-License-Identifier: BSL-1.0
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

struct eFacts {
    eCachedText<char> machineName, userName, productId, version;
    eCachedText<wchar_t> machineNameW, userNameW, productIdW, versionW;
};

// Never destroyed, since destructors of an application's static objects may ask for facts, too.
eFacts& Facts() {
    static eFacts& facts = *new eFacts;
    return facts;
}

template <class Char>
std::basic_string<Char> LowerCased(std::basic_string<Char> text) {
    Platform::LowerCase(&text);
    return text;
}

template <class Char>
std::basic_string<Char> AskProductId() {
    const Platform::eProductIdQuery query = Platform::OpenProductId<Char>();
    if (!query)
        return {};
    return AskGrowing<Char>(query);
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
    return Facts().machineName.Get([] { return LowerCased(Platform::ComputerName<char>()); });
}

const std::wstring& MachineNameW() {
    return Facts().machineNameW.Get([] { return LowerCased(Platform::ComputerName<wchar_t>()); });
}

const std::string& UserName() {
    return Facts().userName.Get([] { return LowerCased(Platform::AccountName<char>()); });
}

const std::wstring& UserNameW() {
    return Facts().userNameW.Get([] { return LowerCased(Platform::AccountName<wchar_t>()); });
}

const std::string& ProductId() {
    return Facts().productId.Get(AskProductId<char>);
}

const std::wstring& ProductIdW() {
    return Facts().productIdW.Get(AskProductId<wchar_t>);
}

const std::string& WindowsVersion() {
    return Facts().version.Get(AskVersionName);
}

const std::wstring& WindowsVersionW() {
    return Facts().versionW.Get([] { return ToStringW(AskVersionName()); });
}

} // namespace IO::System
