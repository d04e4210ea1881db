// SPDX-License-Identifier: BSL-1.0
#include <functional>
#include <map>
#include <memory>
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

#include "support/interface.h"

// The interface that applications compile against: types, signatures and virtual functions.

namespace {

using std::is_same_v;

// --- Reports ---

static_assert(Is<void (*)(const char*, int, const char*, bool)>(&xError::Error));
static_assert(Is<void (*)(const char*, int, const std::string&, bool)>(&xError::Error));
static_assert(Is<void (*)(const char*, int, const char*, int)>(&xError::Warning));
static_assert(Is<void (*)(const char*, int, const std::string&, int)>(&xError::Warning));
static_assert(Is<xError::eHandler (*)(xError::eHandler)>(&xError::SetErrorHandler));
static_assert(Is<xError::eHandler (*)(xError::eHandler)>(&xError::SetWarningHandler));
static_assert(is_same_v<xError::eHandler, std::function<void(const xError::eReport&)>>);
static_assert(is_same_v<decltype(xError::eReport::file), std::string>);
static_assert(is_same_v<decltype(xError::eReport::line), int>);
static_assert(is_same_v<decltype(xError::eReport::message), std::string>);
static_assert(is_same_v<decltype(xError::eReport::context), std::string>);
static_assert(is_same_v<decltype(xError::eReport::diagnostic), std::shared_ptr<const xError::eDiagnostic>>);
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

static_assert(Is<std::string (*)(int, bool)>(&ToString));
static_assert(Is<std::string (*)(unsigned long long, bool)>(&ToString));
static_assert(Is<std::string (*)(float)>(&ToString));
static_assert(Is<std::string (*)(const std::wstring&)>(&ToString));
static_assert(Is<bool (*)(int*, const char*)>(&_FromString));
static_assert(Is<bool (*)(float*, const char*)>(&_FromString));
static_assert(Is<void (*)(std::string*, bool)>(&ConvertEscSequence));
static_assert(Is<std::wstring (*)(const std::string&, int)>(&StringToWideChar));
static_assert(Is<std::string (*)(const std::wstring&, int)>(&WideCharToString));
static_assert(Is<std::wstring (*)(const std::string&)>(&ToStringW));

static_assert(std::is_convertible_v<const char*, eStringKey> && std::is_convertible_v<std::string, eStringKey>);
static_assert(std::is_convertible_v<const wchar_t*, eStringKeyW> && std::is_convertible_v<std::wstring, eStringKeyW>);
static_assert(std::is_constructible_v<eStrings, bool> && !std::is_convertible_v<bool, eStrings>);
static_assert(is_same_v<decltype(std::declval<eStrings&>().AddUnique("")), bool>);
static_assert(is_same_v<decltype(std::declval<const eStrings&>()[0]), const eStringKey&>);

// --- Registration and threads ---

static_assert(std::is_constructible_v<xCollectors::xGlobal::eGlobalFunctionRegistrator, const std::string&, void (*)(),
                                      void (*)()>);
static_assert(Is<void (*)(const std::string&)>(&xCollectors::xGlobal::Init));
static_assert(Is<void (*)(const std::string&)>(&xCollectors::xGlobal::Exit));

class eDerivedSection : public eCriticalSection {
public:
    void Enter() override {}
    void Leave() override {}
};
static_assert(Is<int& (eCriticalResource<int>::*)()>(&eCriticalResource<int>::Get));

} // namespace

TEST(BaseInterface, VirtualOperationsKeepTheirOrder) {
    EXPECT_EQ(Slot(&xDebug::eStackEntry::DSE_Title), 2);
    EXPECT_EQ(Slot(&xDebug::eStackEntry::DSE_Brief), 3);
    EXPECT_EQ(Slot(&xDebug::eStackEntry::DSE_Full), 4);
    EXPECT_EQ(Slot(&eCriticalSection::Enter), 0);
    EXPECT_EQ(Slot(&eCriticalSection::Leave), 1);
}
