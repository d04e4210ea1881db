// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/ids.h>

#include <cstddef>
#include <string>
#include <type_traits>
#include <vector>

#include <gmock/gmock.h>

#include "support/interface.h"

using testing::ElementsAre;

namespace {

eIds Ids(std::initializer_list<int> ids) {
    eIds list;
    list.insert(list.end(), ids);
    return list;
}

// Ids that compare equal without regard to sign.
class eUnsignedIds : public eIds {
public:
    bool Has(int id) override { return eIds::Has(id) || eIds::Has(-id); }
};

TEST(Ids, AreAVectorOfIntegers) {
    static_assert(std::is_base_of_v<eIdsGeneric<int>, eIds>);
    static_assert(std::is_base_of_v<std::vector<int>, eIdsGeneric<int>>);
    static_assert(std::has_virtual_destructor_v<eIds>);
    EXPECT_TRUE(eIds().empty());
}

TEST(Ids, AddAppendsOnlyWhatIsNotPresent) {
    eIds ids;
    EXPECT_TRUE(ids.Add(3));
    EXPECT_TRUE(ids.Add(1));
    EXPECT_FALSE(ids.Add(3));
    EXPECT_THAT(ids, ElementsAre(3, 1));
}

TEST(Ids, AddingAListIsAllOrNothing) {
    eIds ids = Ids({1, 2});
    EXPECT_FALSE(ids.Add(Ids({3, 2})));
    EXPECT_THAT(ids, ElementsAre(1, 2));
    EXPECT_TRUE(ids.Add(Ids({4, 3, 4})));
    EXPECT_THAT(ids, ElementsAre(1, 2, 4, 3, 4));
    EXPECT_TRUE(ids.Add(eIds()));
    EXPECT_FALSE(ids.Add(ids));
    EXPECT_THAT(ids, ElementsAre(1, 2, 4, 3, 4));
}

TEST(Ids, RemoveErasesTheFirstOccurrence) {
    eIds ids = Ids({5, 6, 5});
    EXPECT_TRUE(ids.Remove(5));
    EXPECT_THAT(ids, ElementsAre(6, 5));
    EXPECT_FALSE(ids.Remove(7));
    EXPECT_THAT(ids, ElementsAre(6, 5));
}

TEST(Ids, RemovingAListRemovesEachOfItOnce) {
    eIds ids = Ids({1, 2, 3, 2});
    ids.Remove(Ids({2, 9, 1}));
    EXPECT_THAT(ids, ElementsAre(3, 2));
    ids.Remove(ids);
    EXPECT_TRUE(ids.empty());
}

TEST(Ids, HasLooksForOneAndHasAnyForOneOfMany) {
    const eIds ids = Ids({1, 2});
    EXPECT_TRUE(ids.Has(2));
    EXPECT_FALSE(ids.Has(3));
    EXPECT_TRUE(ids.HasAny(Ids({3, 2})));
    EXPECT_FALSE(ids.HasAny(Ids({3, 4})));
    EXPECT_FALSE(ids.HasAny(eIds()));
}

TEST(Ids, CopyToAndAssignReplaceTheOtherSide) {
    const eIds ids = Ids({1, 2});
    eIds copied = Ids({7});
    ids.CopyTo(copied);
    EXPECT_THAT(copied, ElementsAre(1, 2));
    eIds assigned = Ids({8, 9, 10});
    assigned.Assign(ids);
    EXPECT_THAT(assigned, ElementsAre(1, 2));
    assigned.Assign(assigned);
    EXPECT_THAT(assigned, ElementsAre(1, 2));
}

// Records the operations that are called.
class eNotingIds : public eIds {
public:
    using eIds::eIds;

    bool Add(int id) override { return Note("Add 1"), eIds::Add(id); }
    bool Add(const eIds& other) override { return Note("Add n"), eIds::Add(other); }
    void Remove(const eIds& other) override { Note("Remove n"), eIds::Remove(other); }
    bool Remove(int id) override { return Note("Remove 1"), eIds::Remove(id); }
    bool Has(int id) override { return Note("Has"), eIds::Has(id); }
    void CopyTo(eIds& other) const override { Note("CopyTo"), eIds::CopyTo(other); }
    void Assign(const eIds& other) override { Note("Assign"), eIds::Assign(other); }
    bool HasAny(const eIds& other) override { return Note("HasAny"), eIds::HasAny(other); }

    mutable std::vector<std::string> noted;

private:
    void Note(const char* operation) const { noted.push_back(operation); }
};

TEST(Ids, EachOperationCanBeOverriddenAndIsCalledThroughTheBase) {
    eNotingIds noting;
    eIds& ids = noting;
    eIds copy;
    const eIds two = Ids({1, 2});
    EXPECT_TRUE(ids.Add(3));
    EXPECT_TRUE(ids.Add(two));
    EXPECT_TRUE(ids.Remove(3));
    ids.Remove(two);
    ids.Assign(two);
    ids.CopyTo(copy);
    EXPECT_THAT(copy, ElementsAre(1, 2));
    EXPECT_TRUE(ids.HasAny(two));
    EXPECT_THAT(noting.noted, ElementsAre("Add 1", "Has", "Add n", "HasAny", "Has", "Has", "Remove 1", "Remove n",
                                          "Remove 1", "Remove 1", "Assign", "CopyTo", "HasAny", "Has"));
}

TEST(Ids, OperationsKeepTheirSlots) {
    const std::ptrdiff_t slots[] = {
        Slot(static_cast<bool (eIds::*)(int)>(&eIds::Add)),
        Slot(static_cast<bool (eIds::*)(const eIds&)>(&eIds::Add)),
        Slot(static_cast<void (eIds::*)(const eIds&)>(&eIds::Remove)),
        Slot(static_cast<bool (eIds::*)(int)>(&eIds::Remove)),
        Slot(static_cast<bool (eIds::*)(int)>(&eIds::Has)),
        Slot(&eIds::CopyTo),
        Slot(&eIds::Assign),
        Slot(static_cast<bool (eIds::*)(const eIds&)>(&eIds::HasAny)),
    };
    EXPECT_THAT(slots, ElementsAre(2, 3, 4, 5, 6, 7, 8, 9));
}

TEST(Ids, SetOperationsGoThroughARedefinedHas) {
    eUnsignedIds ids;
    const eIds& seen = ids;
    EXPECT_TRUE(ids.Add(1));
    EXPECT_FALSE(ids.Add(-1));
    EXPECT_TRUE(ids.HasAny(Ids({-1})));
    EXPECT_TRUE(seen.Has(-1));
    EXPECT_TRUE(seen.HasAny(Ids({-1})));
    EXPECT_FALSE(seen.Has(2));
    EXPECT_FALSE(static_cast<eIds&>(ids).Add(Ids({-1, 5})));
    EXPECT_THAT(ids, ElementsAre(1));
}

} // namespace
