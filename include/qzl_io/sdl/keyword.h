// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <atomic>
#include <cstddef>
#include <string_view>

#include <qzl_io/export.h>

namespace xSDL {
class eKeywordIndex;
}

// One entry of a keyword table. A table is the singly linked list of the words that an SDL file may use, with their
// ids.
//
// A table is declared once, as objects with static storage, in the order in which the words are searched:
//
//     static eSDLKeyword* sceneWords;
//     static eSDLKeyword lightWord(sceneWords, "light", 1);
//     static eSDLKeyword colorWord(sceneWords, "color", 2);
//
// From then on its first entry stands for the table. The constructor leaves `next` unchanged and relies on the zero
// that static storage starts with. Adding an entry takes constant time and is allowed whenever no other thread uses the
// table. An entry that has been searched must keep its name, id and place.
class QZL_IO_API eSDLKeyword {
public:
    // Appends the entry to the list that `head` starts; a null head is set to this entry. The name is not copied and
    // must outlive the entry.
    eSDLKeyword(eSDLKeyword*& head, const char* name, int id);
    ~eSDLKeyword();

    eSDLKeyword(const eSDLKeyword&) = delete;
    eSDLKeyword& operator=(const eSDLKeyword&) = delete;

    // The id of the first entry, from this one on, whose name equals `word`, ignoring the case of ASCII letters; 0 if
    // there is none. The time does not depend on the size of the table: the first search builds one index for the whole
    // table, and later entries are added to it. Any number of threads may search a table at once.
    int Find(const char* word) const { return FindIn(this, word); }

    // The name of the first entry, from this one on, with the given id; null if there is none. As fast as a search by
    // name.
    const char* Find(int identity) const { return FindIn(this, identity); }

    // Search a table by name or by id. A null table has no entries.
    static int FindIn(const eSDLKeyword* table, const char* name);
    static int FindIn(const eSDLKeyword* table, const char* name, std::size_t length);
    static const char* FindIn(const eSDLKeyword* table, int id);

    const char* name;  // as written in files
    int id;            // never 0, which means "not found"
    eSDLKeyword* next; // next entry of the table, null in the last one

private:
    friend class eSDLParser;
    friend class xSDL::eKeywordIndex;

    template <class... eSought>
    static const eSDLKeyword* FindFrom(const eSDLKeyword* entry, eSought... sought);
    static int IdFrom(const eSDLKeyword* entry, const char* name, std::size_t length);
    // The id, as FindIn returns it, if it takes no call to find.
    static bool FindAtOnce(const eSDLKeyword* table, std::string_view name, int* id);
    const xSDL::eKeywordIndex& Index(bool withNumbers) const;
    const xSDL::eKeywordIndex& RefreshIndex(bool withNumbers) const;

    eSDLKeyword* table;                              // the table's first entry, as found by the constructor
    std::size_t place = 0;                           // number of entries before this one
    eSDLKeyword* last;                               // in the first entry only: the last entry
    mutable std::atomic<xSDL::eKeywordIndex*> index; // in the first entry only: built by the first search
};

// Makes a table the current one of a reader or a writer during its lifetime.
template <class T>
class [[nodiscard]] eSDLKeywordsGuard {
public:
    eSDLKeywordsGuard(T& readerOrWriter, eSDLKeyword* table) : target(readerOrWriter) { target.PushKeywords(table); }
    ~eSDLKeywordsGuard() { target.PopKeywords(); }
    eSDLKeywordsGuard(const eSDLKeywordsGuard&) = delete;
    eSDLKeywordsGuard& operator=(const eSDLKeywordsGuard&) = delete;

private:
    T& target;
};
