// SPDX-License-Identifier: BSL-1.0
#include <memory>
#include <string>
#include <string_view>

#include <qzl_io/sdl/json_to_sdl.h>
#include <qzl_io/streams.h>

#include "document.h"
#include "platform/named_files.h"

using xC::Run;

namespace {

eJsonLimits LimitsOf(const qzl_limits& limits) {
    return {limits.source_bytes, limits.json_depth};
}

void TellLosses(const eJsonLosses& counted, qzl_document* document, qzl_json_losses* losses) {
    if (!losses)
        return;
    document->name = counted.firstName;
    qzl_json_losses told{};
    told.names = counted.names;
    told.integers = counted.integers;
    told.floats = counted.floats;
    told.booleans = counted.booleans;
    told.nulls = counted.nulls;
    told.empty_objects = counted.emptyObjects;
    told.texts = counted.texts;
    told.first_name = document->name.c_str();
    xC::Fill(losses, told);
}

qzl_status Convert(qzl_document* document, IO::eStream& json, qzl_json_losses* losses) {
    xC::RequireArgument(!losses || xC::IsSized(losses), "The losses have a wrong size.");
    IO::eMemoryStream target;
    eJsonLosses counted;
    const xC::eWarnings warnings;
    if (!JsonStreamToSdl(json, target, &counted, LimitsOf(document->limits))) {
        if (const IO::eFailure failure = json.Failure())
            throw xC::eRefusal{QZL_FILE, failure.text};
        throw xC::eRefusal{xC::StatusOf(warnings.message, QZL_MISTAKE), warnings.message};
    }
    const auto* const bytes = reinterpret_cast<const char*>(target.Buffer());
    document->Replace(eSDLDocument(std::string(bytes, static_cast<std::size_t>(target.Size()))));
    TellLosses(counted, document, losses);
    return QZL_OK;
}

} // namespace

qzl_status qzl_document_open_json(qzl_document* document, const char* name, size_t name_size, qzl_json_losses* losses) {
    return Run(document, [&] {
        const std::string file = xC::FileNameOf(name, name_size);
        const std::unique_ptr<IO::eStream> stream = xC::OpenStream(file);
        if (!stream || !stream->IsOpen())
            throw xC::eRefusal{QZL_FILE, stream ? stream->Failure().text : std::string()};
        return Convert(document, *stream, losses);
    });
}

qzl_status qzl_document_parse_json(qzl_document* document, const char* text, size_t text_size,
                                   qzl_json_losses* losses) {
    return Run(document, [&] {
        IO::eBufferStream stream(xC::TextOf(text, text_size));
        return Convert(document, stream, losses);
    });
}
