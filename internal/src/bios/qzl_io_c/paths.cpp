// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <iterator>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "document.h"

using xC::PathOf;
using xC::Run;

std::string_view xC::PathOf(const char* path, std::size_t size) {
    const std::string_view text = TextOf(path, size);
    const std::string mistake = text.empty() ? std::string() : eSDLDocument::PathMistake(text);
    if (!mistake.empty())
        throw eRefusal{QZL_BAD_ARGUMENT, mistake};
    return text;
}

const std::vector<eSDLNode>& qzl_document::NodesAt(std::string_view path) {
    if (searched && path == searchedPath)
        return found;
    searched = false;
    searchedPath = path;
    found = path.empty() ? std::vector<eSDLNode>{document.Root()} : document.FindAll(path);
    searched = true;
    return found;
}

namespace {

int32_t KindOf(const eSDLNode& node) {
    constexpr std::pair<eSDLKind, qzl_kind> kKinds[] = {
        {eSDLKind::Document, QZL_KIND_DOCUMENT}, {eSDLKind::Block, QZL_KIND_BLOCK},
        {eSDLKind::Word, QZL_KIND_WORD},         {eSDLKind::String, QZL_KIND_STRING},
        {eSDLKind::Int, QZL_KIND_INTEGER},       {eSDLKind::Float, QZL_KIND_FLOAT},
        {eSDLKind::Operator, QZL_KIND_OPERATOR}, {eSDLKind::Calculation, QZL_KIND_CALCULATION},
    };
    const auto* const known = std::ranges::find(kKinds, node.Kind(), [](const auto& row) { return row.first; });
    return known == std::end(kKinds) ? QZL_KIND_NONE : known->second;
}

qzl_node Described(qzl_document* handle, const eSDLNode& node) {
    const xError::ePlace place = node.Place();
    handle->name = node.Name();
    handle->mark = node.Mark();
    handle->text = node.Text();
    qzl_node told{};
    told.kind = KindOf(node);
    told.line = static_cast<uint32_t>(place.line);
    told.column = static_cast<uint32_t>(place.column);
    told.offset = place.offset;
    told.name = handle->name.c_str();
    told.mark = handle->mark.c_str();
    told.text = handle->text.c_str();
    told.text_size = handle->text.size();
    if (told.kind != QZL_KIND_BLOCK && told.kind != QZL_KIND_DOCUMENT)
        return told;
    for (const eSDLNode& child : node)
        ++(child.IsBlock() ? told.blocks : told.values);
    return told;
}

eSDLNode FirstAt(qzl_document* handle, const char* path, size_t size) {
    const std::string_view text = PathOf(path, size);
    const eSDLNode node = text.empty() ? handle->document.Root() : handle->document.Find(text);
    if (!node)
        throw xC::eRefusal{QZL_NOT_FOUND, "Nothing is at this path."};
    return node;
}

bool IsFollowedByValue(const eSDLNode& node) {
    return node.IsBlock() || node.Kind() == eSDLKind::Document || (node.Kind() == eSDLKind::Word && node.Value());
}

// The value that is meant; not good for a block without one.
eSDLNode ValueAt(const eSDLNode& node) {
    return IsFollowedByValue(node) ? node.Value() : node;
}

// Reads the value at the path as an eRead.
template <class eRead, class T>
qzl_status Get(qzl_document* handle, const char* path, size_t size, T* value) {
    return Run(handle, [&]() -> qzl_status {
        xC::RequireArgument(value != nullptr, "The place for the value is null.");
        const eSDLNode node = ValueAt(FirstAt(handle, path, size));
        if (!node)
            return QZL_NOT_FOUND;
        eRead read{};
        if (!node.Get(&read))
            return QZL_WRONG_KIND;
        *value = read;
        return QZL_OK;
    });
}

// Sets the value of what is at the path, with the item that is made for it.
template <class eMake>
qzl_status Set(qzl_document* handle, const char* path, size_t size, const eMake& make) {
    return Run(handle, [&]() -> qzl_status {
        const eSDLItem item = make();
        const eSDLNode node = FirstAt(handle, path, size);
        const eSDLNode old = ValueAt(node);
        eSDLDocument& document = handle->document;
        handle->Forget();
        const bool done = old ? document.Set(old, item) : static_cast<bool>(document.Append(node, item));
        return done ? QZL_OK : QZL_REFUSED;
    });
}

} // namespace

qzl_status qzl_document_count(qzl_document* document, const char* path, size_t path_size, size_t* count) {
    return Run(document, [&] {
        xC::RequireArgument(count != nullptr, "The place for the count is null.");
        *count = document->NodesAt(PathOf(path, path_size)).size();
        return QZL_OK;
    });
}

qzl_status qzl_document_find(qzl_document* document, const char* path, size_t path_size, size_t index, qzl_node* node) {
    return Run(document, [&]() -> qzl_status {
        xC::RequireArgument(xC::IsSized(node), "The node has a wrong size.");
        const std::vector<eSDLNode>& nodes = document->NodesAt(PathOf(path, path_size));
        if (index >= nodes.size())
            return QZL_NOT_FOUND;
        return xC::Fill(node, Described(document, nodes[index]));
    });
}

qzl_status qzl_document_get_bool(qzl_document* document, const char* path, size_t path_size, int32_t* value) {
    return Get<bool>(document, path, path_size, value);
}

qzl_status qzl_document_get_integer(qzl_document* document, const char* path, size_t path_size, int64_t* value) {
    return Get<long long>(document, path, path_size, value);
}

qzl_status qzl_document_get_number(qzl_document* document, const char* path, size_t path_size, double* value) {
    return Get<double>(document, path, path_size, value);
}

qzl_status qzl_document_get_string(qzl_document* document, const char* path, size_t path_size, const char** text,
                                   size_t* text_size) {
    return Run(document, [&]() -> qzl_status {
        const eSDLNode node = ValueAt(FirstAt(document, path, path_size));
        if (!node)
            return QZL_NOT_FOUND;
        if (node.Kind() == eSDLKind::Word)
            document->text = node.Name();
        else if (!node.Get(&document->text))
            return QZL_WRONG_KIND;
        xC::GiveText(document->text, text, text_size);
        return QZL_OK;
    });
}

qzl_status qzl_document_set_bool(qzl_document* document, const char* path, size_t path_size, int32_t value) {
    return Set(document, path, path_size, [&] { return eSDLItem(value != 0); });
}

qzl_status qzl_document_set_integer(qzl_document* document, const char* path, size_t path_size, int64_t value) {
    return Set(document, path, path_size, [&] { return eSDLItem(static_cast<long long>(value)); });
}

qzl_status qzl_document_set_number(qzl_document* document, const char* path, size_t path_size, double value) {
    return Set(document, path, path_size, [&] { return eSDLItem(value); });
}

qzl_status qzl_document_set_string(qzl_document* document, const char* path, size_t path_size, const char* text,
                                   size_t text_size) {
    return Set(document, path, path_size, [&] { return eSDLItem(xC::TextOf(text, text_size)); });
}

qzl_status qzl_document_set_word(qzl_document* document, const char* path, size_t path_size, const char* word,
                                 size_t word_size) {
    return Set(document, path, path_size, [&] { return eSDLItem::Word(xC::TextOf(word, word_size)); });
}

qzl_status qzl_document_insert(qzl_document* document, const char* path, size_t path_size, int32_t where,
                               const char* text, size_t text_size) {
    return Run(document, [&]() -> qzl_status {
        xC::RequireArgument(where >= QZL_WITHIN && where <= QZL_AFTER, "The place is none of QZL_WITHIN and its like.");
        const eSDLItem item = eSDLItem::Source(xC::TextOf(text, text_size));
        const eSDLNode node = FirstAt(document, path, path_size);
        eSDLDocument& edited = document->document;
        document->Forget();
        const eSDLNode inserted = where == QZL_WITHIN   ? edited.Append(node, item)
                                  : where == QZL_BEFORE ? edited.InsertBefore(node, item)
                                                        : edited.InsertAfter(node, item);
        return inserted ? QZL_OK : QZL_REFUSED;
    });
}

qzl_status qzl_document_rename(qzl_document* document, const char* path, size_t path_size, const char* name,
                               size_t name_size) {
    return Run(document, [&]() -> qzl_status {
        const std::string_view wanted = xC::TextOf(name, name_size);
        const eSDLNode node = FirstAt(document, path, path_size);
        document->Forget();
        return document->document.Rename(node, wanted) ? QZL_OK : QZL_REFUSED;
    });
}

qzl_status qzl_document_remove(qzl_document* document, const char* path, size_t path_size) {
    return Run(document, [&]() -> qzl_status {
        const eSDLNode node = FirstAt(document, path, path_size);
        document->Forget();
        return document->document.Remove(node) ? QZL_OK : QZL_REFUSED;
    });
}
