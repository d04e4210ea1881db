#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace IO {

// Owns a thing (a block of memory, a handle, a stream) together with its copies: the last of them that lets go releases
// it. Nothing is allocated before the first copy is made. Like the streams, it serves one thread at a time, and so do
// its copies taken together.
//
// eRelease names what stands for nothing, kNone, and releases anything else: static void Release(thing).
template <class eRelease>
class eShare {
public:
    using eThing = std::remove_const_t<decltype(eRelease::kNone)>;

    // Owns nothing.
    eShare() noexcept = default;
    // Owns the thing, alone.
    explicit eShare(eThing owned) noexcept : thing(owned) {}
    // Another owner. Throws std::bad_alloc where there is no memory to count them.
    eShare(const eShare& other) : owners(other.Joined()), thing(other.thing) {}
    // The other one owns nothing then.
    eShare(eShare&& other) noexcept
        : owners(std::move(other.owners)), thing(std::exchange(other.thing, eRelease::kNone)) {}
    eShare& operator=(eShare other) noexcept {
        std::swap(owners, other.owners);
        std::swap(thing, other.thing);
        return *this;
    }
    ~eShare() { Reset(); }

    operator const eThing&() const noexcept { return thing; }
    const eThing* operator->() const noexcept { return &thing; }

    // Nobody else owns the thing.
    bool Sole() const noexcept { return owners.use_count() <= 1; }

    // Lets go. What the release throws finds nothing owned here any more.
    void Reset() {
        const eThing mine = thing;
        if (Leave() && mine != eRelease::kNone)
            eRelease::Release(mine);
    }
    // Lets go without a release. True for the last owner, whose caller has the thing now.
    bool Leave() noexcept {
        const bool last = Sole();
        owners.reset();
        thing = eRelease::kNone;
        return last;
    }

private:
    std::shared_ptr<const char> Joined() const {
        if (!owners && thing != eRelease::kNone)
            owners = std::make_shared<const char>('\0');
        return owners;
    }

    mutable std::shared_ptr<const char> owners; // empty while there has been no copy
    eThing thing = eRelease::kNone;
};

} // namespace IO
