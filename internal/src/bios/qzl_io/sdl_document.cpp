// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/document.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include <qzl_base/convert.h>
#include <qzl_io/sdl/names.h>
#include <qzl_io/streams.h>

#include "document/body.h"
#include "document/mistakes.h"
#include "document/numbers.h"
#include "document/path.h"
#include "sdl/calculation.h"
#include "sdl/number.h"
#include "streams/read_text.h"

using xSDL::eDocumentBody;
using xSDL::eFound;
using xSDL::ePosition;

namespace {

// A number as a reader takes it as an operand.
bool ToOperand(const xSDL::eLexeme& token, float* value) {
    const std::string_view text(token.begin, token.length);
    switch (token.type) {
    case sdlInt:
    case sdlHex:
        *value = static_cast<float>(xSDL::TextToInt(text));
        return true;
    case sdlFloat:
        *value = xSDL::TextToFloat(text);
        return true;
    default:
        return false;
    }
}

// The result of (+ 1 2); false if it has none.
bool Calculate(std::string_view text, float* result) {
    const std::string copy = std::string(text) + std::string(xSDL::kTextEnd, '\0');
    const char* at = copy.data() + 1;
    char operation = 0;
    bool first = true;
    for (int line = 0;;) {
        xSDL::eLexeme token;
        float operand = 0;
        if (!xSDL::CutToken(&at, &line, &token))
            return false;
        if (token.type == sdlClose)
            return !first;
        if (operation == 0) {
            operation = *token.begin;
            continue;
        }
        if (!ToOperand(token, &operand))
            return false;
        *result = first ? operand : xSDL::Combined(operation, *result, operand);
        first = false;
    }
}

template <class T>
bool GetNumber(const eFound& found, T* value) {
    double number = 0;
    if (found.kind == eSDLKind::Calculation) {
        float result = 0;
        if (!Calculate(found.text, &result))
            return false;
        number = static_cast<double>(result);
    } else if ((found.kind != eSDLKind::Int && found.kind != eSDLKind::Float) ||
               !xSDL::numbers::ToDouble(found.text, &number)) {
        return false;
    }
    *value = static_cast<T>(number);
    return true;
}

bool IsOneToken(std::string_view text, eSDLParserLexType* type) {
    const std::string padded = std::string(text) + std::string(xSDL::kTextEnd, '\0');
    int line = 0;
    xSDL::eLexeme token;
    xSDL::CutAt(padded.data(), &line, &token);
    *type = token.type;
    return token.length == text.size();
}

bool IsIdentifier(std::string_view word) {
    eSDLParserLexType type{};
    return IsOneToken(word, &type) && type == sdlIdent;
}

// As after the # that begins one.
bool IsMark(std::string_view mark) {
    const std::string text = std::string(mark) + std::string(xSDL::kTextEnd, '\0');
    return xSDL::PassMark(text.data()) == text.data() + mark.size();
}

// With room for what a source needs behind it.
std::string CopyOf(std::string_view text) {
    std::string copy = IO::EmptyText(text.size() + xSDL::kTextEnd);
    copy += text;
    return copy;
}

} // namespace

// --- eSDLNode ---

eSDLKind eSDLNode::Kind() const {
    if (!body)
        return eSDLKind::None;
    if (eDocumentBody::IsRoot(*this))
        return eSDLKind::Document;
    ePosition position;
    eFound found;
    return body->Look(*this, &position, &found) ? found.kind : eSDLKind::None;
}

std::string eSDLNode::Text() const {
    ePosition position;
    eFound found;
    if (body && eDocumentBody::IsRoot(*this))
        return body->Text();
    if (!body || !body->Look(*this, &position, &found))
        return {};
    return found.kind == eSDLKind::Block ? body->TextBetween(position, found.after) : std::string(found.text);
}

std::string_view eSDLNode::Name() const {
    ePosition position;
    eFound found;
    if (!body || eDocumentBody::IsRoot(*this) || !body->Look(*this, &position, &found))
        return {};
    return body->NameAt(position, found);
}

bool eSDLNode::Is(std::string_view name) const {
    return xSDL::IsSameWord(Name(), name);
}

std::string_view eSDLNode::Mark() const {
    ePosition position;
    eFound found;
    if (!body || !body->Look(*this, &position, &found) || found.kind != eSDLKind::Block)
        return {};
    return found.text.substr(std::min<std::size_t>(found.text.size(), 2));
}

bool eSDLNode::IsHidden() const {
    ePosition position;
    eFound found;
    return body && body->Look(*this, &position, &found) && found.hidden;
}

bool eSDLNode::IsClosed() const {
    ePosition position;
    eFound found;
    return body && body->Look(*this, &position, &found) && found.kind == eSDLKind::Block && found.closed;
}

eSDLNode::eIterator eSDLNode::begin() const {
    ePosition position;
    eFound found;
    return body && body->FirstChild(*this, &position, &found) ? eIterator(body->NodeAt(position)) : eIterator();
}

eSDLNode eSDLNode::Next() const {
    ePosition position;
    eFound found;
    if (!body || eDocumentBody::IsRoot(*this) || !body->Look(*this, &position, &found))
        return {};
    position = found.after;
    return body->FindItem(&position, &found) ? body->NodeAt(position) : eSDLNode();
}

eSDLNode eSDLNode::Parent() const {
    ePosition position;
    return body && body->Locate(*this, &position) ? body->Parent(position) : eSDLNode();
}

eSDLNode eSDLNode::Value(std::size_t index) const {
    const eSDLKind kind = Kind();
    if (kind == eSDLKind::Word) {
        eSDLNode item = Next();
        for (; index > 0 && item && !item.IsBlock(); --index)
            item = item.Next();
        return item.IsBlock() ? eSDLNode() : item;
    }
    return eDocumentBody::Child(*this, xSDL::eCounted::Values, {}, index);
}

eSDLNode eSDLNode::Find(std::string_view path) const {
    const std::vector<eSDLNode> found = xSDL::ePath(path).Find(*this, 1);
    return found.empty() ? eSDLNode() : found.front();
}

std::vector<eSDLNode> eSDLNode::FindAll(std::string_view path) const {
    return xSDL::ePath(path).Find(*this, eSDLDocument::kAll);
}

bool eSDLNode::Get(int* value) const {
    ePosition position;
    eFound found;
    if (!body || !body->Look(*this, &position, &found) || found.kind != eSDLKind::Int)
        return false;
    int read = 0;
    if (found.text != "0x" && !_FromString(&read, found.text.data(), found.text.data() + found.text.size()))
        return false;
    *value = read;
    return true;
}

bool eSDLNode::Get(long long* value) const {
    ePosition position;
    eFound found;
    long long read = 0;
    if (!body || !body->Look(*this, &position, &found) || found.kind != eSDLKind::Int ||
        !xSDL::numbers::ToInteger(found.text, &read))
        return false;
    *value = read;
    return true;
}

bool eSDLNode::Get(float* value) const {
    ePosition position;
    eFound found;
    float read = 0;
    if (!body || !body->Look(*this, &position, &found))
        return false;
    if (found.kind == eSDLKind::Calculation)
        return Calculate(found.text, value);
    if (found.kind != eSDLKind::Int && found.kind != eSDLKind::Float)
        return false;
    _FromString(&read, found.text.data(), found.text.data() + found.text.size());
    if (!std::isfinite(read))
        return false;
    *value = read;
    return true;
}

bool eSDLNode::Get(double* value) const {
    ePosition position;
    eFound found;
    return body && body->Look(*this, &position, &found) && GetNumber(found, value);
}

bool eSDLNode::Get(bool* value) const {
    long long read = 0;
    if (!Get(&read))
        return false;
    *value = read != 0;
    return true;
}

bool eSDLNode::Get(std::string* value) const {
    ePosition position;
    eFound found;
    if (!body || !body->Look(*this, &position, &found) || found.kind != eSDLKind::String)
        return false;
    value->assign(found.text.substr(1, found.text.size() - 2));
    ConvertEscSequence(value, false);
    return true;
}

xError::ePlace eSDLNode::Place() const {
    return Excerpt().place;
}

xError::eExcerpt eSDLNode::Excerpt() const {
    ePosition position;
    eFound found;
    if (body && eDocumentBody::IsRoot(*this))
        return body->Excerpt(body->First(), 0);
    if (!body || !body->Look(*this, &position, &found))
        return {};
    return body->Excerpt(position, found.text.size());
}

bool eSDLNode::operator==(const eSDLNode& other) const {
    return eDocumentBody::IsSame(*this, other);
}

// --- eSDLItem ---

eSDLItem::eSDLItem(int value) : eSDLItem(eSDLKind::Int, ToString(value, false), true) {}

eSDLItem::eSDLItem(long long value) : eSDLItem(eSDLKind::Int, ToString(value, false), true) {}

eSDLItem::eSDLItem(float value) : eSDLItem(eSDLKind::Float, ToString(value), std::isfinite(value)) {}

eSDLItem::eSDLItem(double value) : eSDLItem(eSDLKind::Float, xSDL::numbers::ToText(value), std::isfinite(value)) {}

eSDLItem::eSDLItem(bool value) : eSDLItem(eSDLKind::Int, value ? "1" : "0", true) {}

eSDLItem::eSDLItem(std::string_view value) : eSDLItem(eSDLKind::String, "\"", true) {
    AppendEscaped(&text, value);
    text += '"';
}

eSDLItem eSDLItem::Number(std::string_view text) {
    eSDLParserLexType type{};
    double value = 0;
    const bool number = IsOneToken(text, &type) && (type == sdlInt || type == sdlHex || type == sdlFloat);
    return {type == sdlFloat ? eSDLKind::Float : eSDLKind::Int, std::string(text),
            number && xSDL::numbers::ToDouble(text, &value)};
}

eSDLItem eSDLItem::Word(std::string_view name) {
    return {eSDLKind::Word, std::string(name), IsIdentifier(name)};
}

eSDLItem eSDLItem::Block(std::string_view name, std::string_view mark) {
    const bool hidden = mark.find('#') != std::string_view::npos;
    const std::string between = mark.empty() || name.empty() ? "" : " ";
    const std::string opening = mark.empty() ? "{" : "{#" + std::string(mark);
    eSDLItem block(hidden ? eSDLKind::None : eSDLKind::Block, opening + between + std::string(name) + "}",
                   (name.empty() || IsIdentifier(name)) && IsMark(mark));
    block.single = false;
    return block;
}

eSDLItem eSDLItem::Source(std::string_view source) {
    const auto blank = [](char c) { return c != 0 && xSDL::Has(xSDL::stBetween, c); };
    while (!source.empty() && blank(source.front()))
        source.remove_prefix(1);
    while (!source.empty() && blank(source.back()))
        source.remove_suffix(1);
    eSDLItem item(eSDLKind::None, std::string(source), false);
    const eSDLDocument document(source);
    for (const eSDLPart& part : document.Parts()) {
        if (part.kind == eSDLKind::Outside || part.kind == eSDLKind::Bad)
            return item;
        item.endsInComment = part.kind == eSDLKind::Comment;
    }
    if (const auto first = document.begin(); !(first == eSDLNode::eIterator()))
        item.first = first->Kind();
    item.good = !source.empty() && document.ErrorCount() == 0;
    item.single = false;
    return item;
}

// --- eSDLParts ---

eSDLParts::eIterator eSDLParts::begin() const {
    eIterator first;
    first.body = body;
    first.Advance();
    return first;
}

void eSDLParts::eIterator::Advance() {
    if (stage == eStage::Before) {
        stage = eStage::Within;
        const ePosition begin = body->First();
        piece = begin.piece;
        offset = begin.offset;
        if (!body->Before().empty()) {
            part = {eSDLKind::Outside, body->Before(), {}, 0};
            return;
        }
    }
    const ePosition position{piece, offset};
    if (stage == eStage::Within && !body->IsEnd(position)) {
        TakeAt();
        return;
    }
    const bool after = std::exchange(stage, eStage::After) == eStage::Within && !body->After().empty();
    part = after ? eSDLPart{eSDLKind::Outside, body->After(), {}, 0} : eSDLPart();
}

void eSDLParts::eIterator::TakeAt() {
    const ePosition position{piece, offset};
    const eFound found = body->See(position);
    const bool block = found.kind == eSDLKind::Block;
    if (found.kind == eSDLKind::BlockEnd)
        --depth;
    part = {found.kind, found.text, body->NodeAt(position), depth};
    if (found.kind == eSDLKind::BlockEnd)
        part.node = body->Parent(position);
    if (block)
        ++depth;
    const ePosition next = block ? xSDL::eDocumentBody::Inside(position, found) : found.after;
    piece = next.piece;
    offset = next.offset;
}

// --- eSDLDocument ---

// Bound to a reference, a constant of an exported class is imported from here on Windows.
constexpr std::size_t eSDLDocument::kAll; // NOLINT(readability-redundant-declaration): it makes the place

eSDLDocument::eSDLDocument() : eSDLDocument(std::string_view()) {}

eSDLDocument::eSDLDocument(std::string_view text, std::string name, const eSDLLimits& limits)
    : body(std::make_unique<eDocumentBody>(CopyOf(text), std::move(name), limits)) {}

eSDLDocument::eSDLDocument(const char* text, std::string name, const eSDLLimits& limits)
    : eSDLDocument(std::string_view(text ? text : ""), std::move(name), limits) {}

// NOLINTBEGIN(performance-noexcept-move-constructor): both make an empty body, which takes memory
eSDLDocument::eSDLDocument(eSDLDocument&& other) : eSDLDocument() {
    body.swap(other.body);
}

eSDLDocument& eSDLDocument::operator=(eSDLDocument&& other) {
    eSDLDocument taken(std::move(other));
    body.swap(taken.body);
    return *this;
}
// NOLINTEND(performance-noexcept-move-constructor)

eSDLDocument::~eSDLDocument() = default;

bool eSDLDocument::Take(IO::eStream& stream, std::string name, const eSDLLimits& limits) {
    IO::eFailure failure;
    std::string text;
    if (!stream.IsOpen())
        failure = IO::FailureOf(stream, "The file could not be opened.");
    else if (stream.Remaining() > limits.sourceBytes)
        failure = {0, eDocumentBody::kSourceLimit};
    else if (!IO::ReadText(stream, static_cast<std::size_t>(stream.Remaining()), xSDL::kTextEnd, &text))
        failure = IO::FailureOf(stream, "The source could not be read to its end.");
    if (failure)
        text.clear();
    body = std::make_unique<eDocumentBody>(std::move(text), std::move(name), limits);
    body->Failure() = failure;
    return !failure;
}

bool eSDLDocument::Open(const eFileName& file, const eSDLLimits& limits) {
    const std::unique_ptr<IO::eStream> stream(IO::GetStream(file, IO::StreamMode::Read));
    return Take(*stream, file.str(), limits);
}

bool eSDLDocument::Open(const eFileNameW& file, const eSDLLimits& limits) {
    const std::unique_ptr<IO::eStream> stream(IO::GetStream(file, IO::StreamMode::Read));
    return Take(*stream, ToString(file.str()), limits);
}

bool eSDLDocument::Open(IO::eStream& stream, const eSDLLimits& limits) {
    return Take(stream, {}, limits);
}

bool eSDLDocument::SaveTo(IO::eSaveFile& file) const {
    if (file.IsOpen())
        Write(file);
    file.Commit();
    body->Failure() = file.Failure();
    return !body->Failure();
}

bool eSDLDocument::Save(const eFileName& name, IO::eSaveEnd end) const {
    IO::eSaveFile file(name, end);
    return SaveTo(file);
}

bool eSDLDocument::Save(const eFileNameW& name, IO::eSaveEnd end) const {
    IO::eSaveFile file(name, end);
    return SaveTo(file);
}

void eSDLDocument::Write(IO::eStream& stream) const {
    body->ForEachPart([&stream](std::string_view part) { stream.Write(part.data(), part.size()); });
}

const IO::eFailure& eSDLDocument::Failure() const {
    return body->Failure();
}

const std::string& eSDLDocument::Name() const {
    return body->Name();
}

std::string eSDLDocument::Text() const {
    return body->Text();
}

unsigned long long eSDLDocument::Size() const {
    return body->Size();
}

std::vector<xError::eDiagnostic> eSDLDocument::Errors(std::size_t most) const {
    return xSDL::ListMistakes(body->Current(), body->Lines(), body->Name(), most);
}

std::size_t eSDLDocument::ErrorCount() const {
    return body->Current().ErrorCount();
}

eSDLNode eSDLDocument::Root() const {
    return body->Root();
}

std::string eSDLDocument::PathMistake(std::string_view path) {
    return xSDL::ePath(path).Mistake();
}

eSDLParts eSDLDocument::Parts() const {
    return eSDLParts(body.get());
}

bool eSDLDocument::Set(const eSDLNode& node, const eSDLItem& value) {
    return IsOwn(node) && body->Set(node, value);
}

bool eSDLDocument::Rename(const eSDLNode& block, std::string_view name) {
    return IsOwn(block) && body->Rename(block, name);
}

eSDLNode eSDLDocument::InsertBefore(const eSDLNode& node, const eSDLItem& item) {
    return IsOwn(node) ? body->InsertBefore(node, item) : eSDLNode();
}

eSDLNode eSDLDocument::InsertAfter(const eSDLNode& node, const eSDLItem& item) {
    return IsOwn(node) ? body->InsertAfter(node, item) : eSDLNode();
}

eSDLNode eSDLDocument::Append(const eSDLNode& parent, const eSDLItem& item) {
    return IsOwn(parent) ? body->Append(parent, item) : eSDLNode();
}

bool eSDLDocument::Remove(const eSDLNode& node) {
    return IsOwn(node) && body->Remove(node);
}

bool eSDLDocument::IsOwn(const eSDLNode& node) const {
    return node.body == body.get();
}
