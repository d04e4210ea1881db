#include <map>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

#include <qzl_base/collectors.h>
#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_base/stack_entry.h>
#include <qzl_base/strings.h>
#include <qzl_base/thread_storage.h>

#include "support/virtual_slot.h"

// What the library and applications compile against: types, signatures and what can be overridden.
namespace {

using std::is_same_v;

template <auto>
struct eIs;

// --- Reports ---

using eErrorText = eIs<static_cast<void (*)(const char*, int, const char*, bool)>(&xError::Error)>;
using eErrorString = eIs<static_cast<void (*)(const char*, int, const std::string&, bool)>(&xError::Error)>;
using eWarningText = eIs<static_cast<void (*)(const char*, int, const char*, int)>(&xError::Warning)>;
using eWarningString = eIs<static_cast<void (*)(const char*, int, const std::string&, int)>(&xError::Warning)>;
static_assert(is_same_v<decltype(&xError::SetErrorHandler), xError::eHandler (*)(xError::eHandler)>);
static_assert(is_same_v<decltype(&xError::SetWarningHandler), xError::eHandler (*)(xError::eHandler)>);
static_assert(is_same_v<xError::eHandler, std::function<void(const xError::eReport&)>>);
static_assert(is_same_v<decltype(xError::eReport::file), std::string>);
static_assert(is_same_v<decltype(xError::eReport::line), int>);
static_assert(is_same_v<decltype(xError::eReport::message), std::string>);
static_assert(is_same_v<decltype(xError::eReport::context), std::string>);
static_assert(std::is_base_of_v<std::runtime_error, xError::eException>);
static_assert(std::is_constructible_v<xError::eException, const xError::eReport&>);
static_assert(is_same_v<decltype(std::declval<const xError::eException&>().Report()), const xError::eReport&>);

class eDerivedEntry : public xDebug::eStackEntry {
public:
    ~eDerivedEntry() override {}
    std::string DSE_Title() const override { return {}; }
    std::string DSE_Brief() const override { return {}; }
    std::string DSE_Full() const override { return {}; }
};

// --- Texts and numbers ---

using eIntText = eIs<static_cast<std::string (*)(int, bool)>(&ToString)>;
using eLongText = eIs<static_cast<std::string (*)(unsigned long long, bool)>(&ToString)>;
using eFloatText = eIs<static_cast<std::string (*)(float)>(&ToString)>;
using eNarrowText = eIs<static_cast<std::string (*)(const std::wstring&)>(&ToString)>;
using eIntValue = eIs<static_cast<bool (*)(int*, const char*)>(&_FromString)>;
using eFloatValue = eIs<static_cast<bool (*)(float*, const char*)>(&_FromString)>;
static_assert(is_same_v<decltype(&ConvertEscSequence), void (*)(std::string*, bool)>);
static_assert(is_same_v<decltype(&StringToWideChar), std::wstring (*)(const std::string&, int)>);
static_assert(is_same_v<decltype(&WideCharToString), std::string (*)(const std::wstring&, int)>);
static_assert(is_same_v<decltype(&ToStringW), std::wstring (*)(const std::string&)>);

static_assert(std::is_convertible_v<const char*, eStringKey> && std::is_convertible_v<std::string, eStringKey>);
static_assert(std::is_convertible_v<const wchar_t*, eStringKeyW> && std::is_convertible_v<std::wstring, eStringKeyW>);
static_assert(std::is_constructible_v<eStrings, bool> && !std::is_convertible_v<bool, eStrings>);
static_assert(is_same_v<decltype(std::declval<eStrings&>().AddUnique("")), bool>);
static_assert(is_same_v<decltype(std::declval<const eStrings&>()[0]), const eStringKey&>);

// --- Registration and threads ---

static_assert(std::is_constructible_v<xCollectors::xGlobal::eGlobalFunctionRegistrator, const std::string&, void (*)(),
                                      void (*)()>);
static_assert(is_same_v<decltype(&xCollectors::xGlobal::Init), void (*)(const std::string&)>);
static_assert(is_same_v<decltype(&xCollectors::xGlobal::Exit), void (*)(const std::string&)>);

class eDerivedSection : public eCriticalSection {
public:
    void Enter() override {}
    void Leave() override {}
};
static_assert(is_same_v<decltype(&eCriticalResource<int>::Get), int& (eCriticalResource<int>::*)()>);

} // namespace

TEST(BaseInterface, VirtualOperationsStandInTheirOrder) {
    EXPECT_EQ(VirtualSlot(&xDebug::eStackEntry::DSE_Title), 2u);
    EXPECT_EQ(VirtualSlot(&xDebug::eStackEntry::DSE_Brief), 3u);
    EXPECT_EQ(VirtualSlot(&xDebug::eStackEntry::DSE_Full), 4u);
    EXPECT_EQ(VirtualSlot(&eCriticalSection::Enter), 0u);
    EXPECT_EQ(VirtualSlot(&eCriticalSection::Leave), 1u);
}
