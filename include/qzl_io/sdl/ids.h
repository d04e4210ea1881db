// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <algorithm>
#include <vector>

class eIds;
template <class T>
class eIdsGeneric;

// The list type that the operations of eIdsGeneric<T> on whole lists take.
template <class T>
struct eIdsOf {
    using type = eIdsGeneric<T>;
};
template <>
struct eIdsOf<int> {
    using type = eIds;
};

// A list of ids that can also be used as a set. All operations are virtual, and those on whole lists call those on
// single ids, so a subclass that redefines what "present" means changes both.
template <class T>
class eIdsGeneric : public std::vector<T> {
public:
    using eList = typename eIdsOf<T>::type;

    using std::vector<T>::vector;
    eIdsGeneric() = default;
    eIdsGeneric(const eIdsGeneric&) = default;
    eIdsGeneric& operator=(const eIdsGeneric&) = default;

    virtual ~eIdsGeneric() = default;

    // Appends `id`. If it is already present, returns false and changes nothing.
    virtual bool Add(T id) {
        if (Has(id)) {
            return false;
        }
        this->push_back(id);
        return true;
    }

    // Appends all of `other` in order. If any of them is already present, returns false and changes nothing.
    virtual bool Add(const eList& other) {
        if (HasAny(other)) {
            return false;
        }
        const std::vector<T> added(other);
        this->insert(this->end(), added.begin(), added.end());
        return true;
    }

    // Removes each id of `other` once; ids that are not present are ignored.
    virtual void Remove(const eList& other) {
        const std::vector<T> removed(other);
        for (const T& id : removed) {
            Remove(id);
        }
    }

    // Removes the first `id`, and later ids move up; false if there is none.
    virtual bool Remove(T id) {
        const auto found = std::find(this->begin(), this->end(), id);
        if (found == this->end()) {
            return false;
        }
        this->erase(found);
        return true;
    }

    virtual bool Has(T id) { return std::find(this->begin(), this->end(), id) != this->end(); }

    // Replaces the ids of `other` by those of this list.
    virtual void CopyTo(eList& other) const { other.std::template vector<T>::operator=(*this); }

    // Replaces the ids of this list by those of `other`.
    virtual void Assign(const eList& other) { std::vector<T>::operator=(other); }

    // True if at least one id of `other` is present.
    virtual bool HasAny(const eList& other) {
        return std::any_of(other.begin(), other.end(), [this](const T& id) { return Has(id); });
    }

    // Has and HasAny for const lists. A subclass that overrides the non-const forms must not change the list in them.
    bool Has(T id) const { return const_cast<eIdsGeneric*>(this)->Has(id); }
    bool HasAny(const eList& other) const { return const_cast<eIdsGeneric*>(this)->HasAny(other); }
};

class eIds : public eIdsGeneric<int> {
public:
    using eIdsGeneric<int>::eIdsGeneric;
};
