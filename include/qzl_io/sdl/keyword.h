#pragma once

#include <atomic>
#include <cstddef>

#include <qzl_io/export.h>

namespace xSDL {
class eKeywordIndex;
}

// One entry of a keyword table, the singly linked list of the words that an SDL file may use and of their identities.
//
// A table is declared once, as objects with static storage, in the order in which the words are searched:
//
//     static eSDLKeyword* sceneWords;
//     static eSDLKeyword lightWord(sceneWords, "light", 1);
//     static eSDLKeyword colorWord(sceneWords, "color", 2);
//
// and is known from then on by its first entry. The constructor leaves `next` alone and relies on the zero that static
// storage starts with. Entries may be added at any time while no other thread uses the table, in a time that does not
// grow with it; an entry that has been searched keeps its name, identity and place.
class QZL_IO_API eSDLKeyword {
public:
    // Appends the entry to the list that head starts; a null head becomes this entry. The name is kept as a pointer.
    eSDLKeyword(eSDLKeyword*& head, const char* name, int id);
    ~eSDLKeyword();

    eSDLKeyword(const eSDLKeyword&) = delete;
    eSDLKeyword& operator=(const eSDLKeyword&) = delete;

    // Identity of the first entry, from this one on, whose name equals the given one, the case of ASCII letters
    // ignored; 0 when there is none. The time taken does not grow with the table: the first search builds an index,
    // one for the table whatever entry is asked, which later entries join. Any number of threads may search one table
    // at once.
    int Find(const char* word) const { return FindIn(this, word); }

    // Name of the first entry, from this one on, with the given identity; null when there is none. As fast.
    const char* Find(int identity) const { return FindIn(this, identity); }

    // The same for a table that may be null and then has no entries.
    static int FindIn(const eSDLKeyword* table, const char* name);
    static int FindIn(const eSDLKeyword* table, const char* name, std::size_t length);
    static const char* FindIn(const eSDLKeyword* table, int id);

    const char* name;  // as written in files
    int id;            // never 0, which is the answer that nothing was found
    eSDLKeyword* next; // next entry of the table, null in the last one

private:
    friend class xSDL::eKeywordIndex;

    template <class... eSought>
    static const eSDLKeyword* FindFrom(const eSDLKeyword* entry, eSought... sought);
    const xSDL::eKeywordIndex& Index(bool withNumbers) const;
    const xSDL::eKeywordIndex& RefreshIndex(bool withNumbers) const;

    eSDLKeyword* table;                              // the first entry of the table, as the constructor found it
    std::size_t place;                               // number of entries before this one in it
    eSDLKeyword* last;                               // first entry only: the one added last
    mutable std::atomic<xSDL::eKeywordIndex*> index; // first entry only: made by the first search
};
