// SPDX-License-Identifier: BSL-1.0
#include "platform/named_files.h"

#include <qzl_base/convert.h>

namespace xC {

bool OpenDocument(eSDLDocument* document, const std::string& name, const eSDLLimits& limits) {
    return document->Open(eFileNameW(ToStringW(name)), limits);
}

bool SaveDocument(const eSDLDocument& document, const std::string& name) {
    return document.Save(eFileNameW(ToStringW(name)));
}

std::unique_ptr<IO::eStream> OpenStream(const std::string& name) {
    return std::unique_ptr<IO::eStream>(IO::GetStream(eFileNameW(ToStringW(name)), IO::StreamMode::Read));
}

} // namespace xC
