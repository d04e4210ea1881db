// SPDX-License-Identifier: BSL-1.0
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <qzl_base/error.h>
#include <qzl_io/sdl/reader.h>
#include <qzl_io/streams.h>

#include "call.h"
#include "platform/named_files.h"

using xC::Run;

namespace xC {

// Reads every token as an application's reader finds it, whatever the names of its blocks.
class eTokens : public eSDLReader {
public:
    eTokens(IO::eStream* stream, const eSDLLimits& limits) : eSDLReader(stream, nullptr, limits) {
        CheckRange(true);
        begin = Parser().Cptr();
        beforeText = Place().offset;
    }

    // Reads the next token, whose text is kept in `kept`. Reports and throws at what is wrong.
    qzl_status Next(qzl_token* token, std::string* kept);
    qzl_status SkipRest();

private:
    void RequireEnd();
    void TakeBlockEnd();
    void TakeInteger(qzl_token* token);

    const char* begin;
    unsigned long long beforeText; // a byte-order mark
    unsigned long long depth = 0;
    bool afterBrace = false;
};

qzl_status eTokens::Next(qzl_token* token, std::string* kept) {
    kept->clear();
    const bool first = afterBrace;
    afterBrace = false;
    if (!Get()) {
        RequireEnd();
        return QZL_END;
    }
    switch (Token().type) {
    case sdlBlockStart:
        token->kind = QZL_KIND_BLOCK;
        *kept = Token().text;
        token->depth = depth++;
        afterBrace = true;
        return QZL_OK;
    case sdlBlockEnd:
        TakeBlockEnd();
        token->kind = QZL_KIND_BLOCK_END;
        break;
    case sdlIdent:
        token->kind = first ? QZL_KIND_NAME : QZL_KIND_WORD;
        *kept = Token().text;
        break;
    case sdlString:
        Back();
        token->kind = QZL_KIND_STRING;
        *kept = GetString();
        break;
    case sdlInt:
        TakeInteger(token);
        break;
    case sdlFloat:
        Back();
        token->kind = QZL_KIND_FLOAT;
        token->number = GetDouble();
        break;
    case sdlOperator:
        token->kind = QZL_KIND_OPERATOR;
        *kept = Token().text;
        break;
    default:
        Complain("No token begins like this!");
    }
    token->depth = depth;
    return QZL_OK;
}

void eTokens::TakeInteger(qzl_token* token) {
    Back();
    token->kind = QZL_KIND_INTEGER;
    token->integer = GetInt64();
    token->number = static_cast<double>(token->integer);
}

void eTokens::TakeBlockEnd() {
    if (depth == 0)
        Complain("Nothing is open that this } could close!");
    --depth;
}

void eTokens::RequireEnd() {
    if (Place().offset < beforeText + static_cast<unsigned long long>(Parser().Cptr() - begin))
        Complain("The string has no end!");
    if (depth > 0)
        *this >> endb;
}

qzl_status eTokens::SkipRest() {
    if (depth == 0)
        return QZL_REFUSED;
    SkipBlock();
    --depth;
    afterBrace = false;
    return QZL_OK;
}

} // namespace xC

struct qzl_reader : xC::eHandle {
    qzl_reader() { Begin({}); }

    void Begin(std::string_view content) {
        IO::eBufferStream stream(content);
        Begin(stream);
    }
    void Begin(IO::eStream& stream) { tokens.emplace(&stream, xC::SDLLimitsOf(limits)); }
    // What comes before a text is opened.
    void Reset() {
        stopped.Clear();
        source.clear();
        tokens.reset();
    }
    // Does a step of reading, after a mistake the same as before.
    template <class eStep>
    qzl_status Step(const eStep& step);

    std::optional<xC::eTokens> tokens; // none after a failed opening, which is an empty text
    qzl_limits limits = xC::kNoLimits;
    std::string text;     // of the token
    xC::eTelling stopped; // the mistake that ended the reading
};

template <class eStep>
qzl_status qzl_reader::Step(const eStep& step) {
    if (stopped.Status() != QZL_OK) {
        told = stopped;
        return told.Status();
    }
    try {
        return step();
    } catch (const xError::eException&) {
        told.TakeException(source);
        stopped = told;
        return told.Status();
    }
}

qzl_status qzl_reader_new(qzl_reader** reader) {
    return xC::Make(reader);
}

void qzl_reader_free(qzl_reader* reader) {
    delete reader;
}

qzl_status qzl_reader_error(const qzl_reader* reader, qzl_mistake* error) {
    return xC::TellError(reader, error);
}

qzl_status qzl_reader_limit(qzl_reader* reader, const qzl_limits* limits) {
    return Run(reader, [&] {
        xC::TakeLimits(limits, &reader->limits);
        return QZL_OK;
    });
}

qzl_status qzl_reader_open(qzl_reader* reader, const char* name, size_t name_size) {
    return Run(reader, [&] {
        const std::string file = xC::FileNameOf(name, name_size);
        reader->Reset();
        const std::unique_ptr<IO::eStream> stream = xC::OpenStream(file);
        if (!stream || !stream->IsOpen())
            throw xC::eRefusal{QZL_FILE, stream ? stream->Failure().text : std::string()};
        reader->source = file;
        reader->Begin(*stream);
        return QZL_OK;
    });
}

qzl_status qzl_reader_parse(qzl_reader* reader, const char* text, size_t text_size, const char* name,
                            size_t name_size) {
    return Run(reader, [&] {
        const std::string_view begun = xC::TextOf(text, text_size);
        const std::string called(xC::TextOf(name, name_size));
        reader->Reset();
        reader->source = called;
        reader->Begin(begun);
        return QZL_OK;
    });
}

qzl_status qzl_reader_next(qzl_reader* reader, qzl_token* token) {
    return Run(reader, [&]() -> qzl_status {
        xC::RequireArgument(xC::IsSized(token), "The token has a wrong size.");
        return reader->Step([&]() -> qzl_status {
            qzl_token next{};
            const qzl_status status = reader->tokens ? reader->tokens->Next(&next, &reader->text) : QZL_END;
            if (status != QZL_OK)
                return status;
            next.text = reader->text.c_str();
            next.text_size = reader->text.size();
            return xC::Fill(token, next);
        });
    });
}

qzl_status qzl_reader_skip_block(qzl_reader* reader) {
    return Run(reader, [&] {
        return reader->Step([&]() -> qzl_status { return reader->tokens ? reader->tokens->SkipRest() : QZL_REFUSED; });
    });
}

qzl_status qzl_reader_place(qzl_reader* reader, uint64_t* offset, uint32_t* line, uint32_t* column) {
    return Run(reader, [&] {
        const xError::ePlace place = reader->tokens ? reader->tokens->Place() : xError::ePlace();
        if (offset)
            *offset = place.offset;
        if (line)
            *line = static_cast<uint32_t>(place.line);
        if (column)
            *column = static_cast<uint32_t>(place.column);
        return QZL_OK;
    });
}
