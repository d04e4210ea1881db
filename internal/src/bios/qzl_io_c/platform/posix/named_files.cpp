// SPDX-License-Identifier: BSL-1.0
#include "platform/named_files.h"

namespace xC {

bool OpenDocument(eSDLDocument* document, const std::string& name, const eSDLLimits& limits) {
    return document->Open(eFileName(name), limits);
}

bool SaveDocument(const eSDLDocument& document, const std::string& name) {
    return document.Save(eFileName(name));
}

std::unique_ptr<IO::eStream> OpenStream(const std::string& name) {
    return std::unique_ptr<IO::eStream>(IO::GetStream(eFileName(name), IO::StreamMode::Read));
}

} // namespace xC
