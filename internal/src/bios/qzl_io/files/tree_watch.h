// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <utility>
#include <vector>

#include <qzl_io/system/tree.h>

#include "platform/file_handle.h"
#include "platform/folder.h"

namespace IO::System {

using Platform::eEntry;
using Platform::eEntryKind;

// Listens to a walk for a caller who wants to know what becomes of a tree. Walks without a caller who asks have none.
class eTreeWatch {
public:
    virtual ~eTreeWatch() = default;

    // The folder that the walk is in, below its root.
    void Enter(const eEntry& entry) { trail.push_back(entry); }
    void Leave() { trail.pop_back(); }

    // What has become of an entry of that folder.
    virtual void Done(eEntryKind kind, unsigned long long bytes) = 0;
    virtual void Passed(eEntryKind kind, unsigned long long bytes) = 0; // left alone, as it should be
    virtual void Failed(eTreeStep step, const eEntry& entry, unsigned long long bytes, int reason) = 0;
    // The folder itself could not be listed to its end, or its root could not be dealt with.
    virtual void FolderFailed(eTreeStep step, int reason) = 0;

    // An entry has been dealt with, unless the reason is noted.
    void Tell(bool done, eTreeStep step, const eEntry& entry, unsigned long long bytes) {
        if (done)
            Done(entry.kind, bytes);
        else if (!stopped)
            Failed(step, entry, bytes, Platform::TakeRefusal());
    }

    // Bytes of the current file have been copied. False if the copy should stop.
    virtual bool Copying(unsigned long long copied) = 0;

    // An entry was found when the tree was counted.
    virtual void Counted(eEntryKind kind, unsigned long long bytes) = 0;

    // Whether the operation is to stop.
    bool IsStopped() const { return stopped; }

    // During its lifetime, what stands in the way of a copy is removed from its target: names are those of the target,
    // and only failures count.
    class eClearing {
    public:
        explicit eClearing(eTreeWatch* told) : watch(told), before(told && std::exchange(told->clearing, true)) {}
        ~eClearing() {
            if (watch)
                watch->clearing = before;
        }
        eClearing(const eClearing&) = delete;
        eClearing& operator=(const eClearing&) = delete;

    private:
        eTreeWatch* watch;
        bool before;
    };

protected:
    std::vector<eEntry> trail;
    bool clearing = false;
    bool stopped = false;
};

} // namespace IO::System
