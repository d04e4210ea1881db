#pragma once

#include <algorithm>
#include <vector>

// A list of ids that is also handled as a set. The single-id operations are virtual, and the operations on whole
// lists go through them, so a subclass that redefines what "present" means is heard everywhere.
template <class T>
class eIdsGeneric : public std::vector<T> {
public:
    using std::vector<T>::vector;
    eIdsGeneric() = default;
    eIdsGeneric(const eIdsGeneric&) = default;
    eIdsGeneric& operator=(const eIdsGeneric&) = default;

    virtual ~eIdsGeneric() = default;

    // Appends `id`; false, and nothing changes, when it is present already.
    virtual bool Add(T id) {
        if (Has(id)) {
            return false;
        }
        this->push_back(id);
        return true;
    }

    // Appends all of `other` in order; false, and nothing changes, when any of it is present already.
    virtual bool Add(const eIdsGeneric& other) {
        if (HasAny(other)) {
            return false;
        }
        const std::vector<T> added(other);
        this->insert(this->end(), added.begin(), added.end());
        return true;
    }

    // Removes each of `other` once; what is not present is passed over.
    virtual void Remove(const eIdsGeneric& other) {
        const std::vector<T> removed(other);
        for (const T& id : removed) {
            Remove(id);
        }
    }

    // Removes the first `id`, the later ones move up; false when there is none.
    virtual bool Remove(T id) {
        const auto found = std::find(this->begin(), this->end(), id);
        if (found == this->end()) {
            return false;
        }
        this->erase(found);
        return true;
    }

    virtual bool Has(T id) const { return std::find(this->begin(), this->end(), id) != this->end(); }

    // Replaces the ids of `other` by these.
    virtual void CopyTo(eIdsGeneric& other) const { other.AssignFrom(*this); }

    // Replaces these ids by those of `other`.
    virtual void Assign(const eIdsGeneric& other) { AssignFrom(other); }

    // True when at least one of `other` is present.
    virtual bool HasAny(const eIdsGeneric& other) const {
        return std::any_of(other.begin(), other.end(), [this](const T& id) { return Has(id); });
    }

private:
    void AssignFrom(const std::vector<T>& ids) { std::vector<T>::operator=(ids); }
};

class eIds : public eIdsGeneric<int> {
public:
    using eIdsGeneric<int>::eIdsGeneric;
};
