// SPDX-License-Identifier: BSL-1.0
#include <string>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_base/format.h>

#include <qzl_io/system/system_info.h>

#include "machine/cached_text.h"
#include "platform/machine.h"

namespace IO::System {

namespace {

namespace DiskReport {
constexpr const char* kSource = "internal/src/bios/qzl_io/system_hdd";
constexpr int kNoSerialLine = 92;
} // namespace DiskReport

constexpr int kWindows1252 = 1252;

struct eSerial {
    eCachedText<char> text;
    eCachedText<wchar_t> textW;
};

// Never destroyed, since destructors of an application's static objects may ask for it, too.
eSerial& Serial() {
    static eSerial& serial = *new eSerial;
    return serial;
}

std::string AskSerial() {
    std::string serial;
    const unsigned int failure = Platform::AskDiskSerial(&serial);
    if (failure == 0)
        return serial;
    const std::string message = format("eHDDInfo: obtain serialNumber failure(%1%)") % failure;
    xError::Warning(DiskReport::kSource, DiskReport::kNoSerialLine, message, 0);
    return {};
}

} // namespace

const std::string& HDDSerialNumber() {
    return Serial().text.Get(AskSerial);
}

const std::wstring& HDDSerialNumberW() {
    return Serial().textW.Get([] { return StringToWideChar(AskSerial(), kWindows1252); });
}

} // namespace IO::System
