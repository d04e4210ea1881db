// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <memory>
#include <type_traits>
#include <utility>

namespace IO {

// Owns a thing (a block of memory, a handle, a stream) together with its copies; the last owner releases it. Nothing is
// allocated before the first copy is made. Like streams, an object and its copies are used by one thread at a time.
//
// eRelease defines the value for nothing, kNone, and releases any other: static void Release(thing).
template <class eRelease>
class eShare {
public:
    using eThing = std::remove_const_t<decltype(eRelease::kNone)>;

    // Owns nothing.
    eShare() noexcept = default;
    // Owns the thing alone.
    explicit eShare(eThing owned) noexcept : thing(owned) {}
    // Becomes another owner. Throws std::bad_alloc if there is no memory to count the owners.
    eShare(const eShare& other) : owners(other.Joined()), thing(other.thing) {}
    // The other one then owns nothing.
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

    // True if there is no other owner.
    bool Sole() const noexcept { return owners.use_count() <= 1; }

    // Gives up ownership, and releases the thing if this is the last owner. If the release throws, this object already
    // owns nothing.
    void Reset() {
        const eThing mine = thing;
        if (Leave() && mine != eRelease::kNone)
            eRelease::Release(mine);
    }
    // Gives up ownership without a release. True for the last owner, whose caller then owns the thing.
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

    mutable std::shared_ptr<const char> owners; // empty until the first copy
    eThing thing = eRelease::kNone;
};

} // namespace IO
