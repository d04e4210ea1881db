// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <exception>
#include <string>
#include <utility>

#include <qzl_io/system/tree.h>

#include "files/tree_watch.h"
#include "streams/failure_text.h"

namespace IO::System {

// Collects the result of an operation and calls its caller.
template <class Name>
class eTreeReport final : public eTreeWatch {
public:
    using eText = typename Name::eText;

    // The names of the source and the target, which is unused unless the operation copies, as paths.
    eTreeReport(const eTreeTask& wanted, const eText& sourcePath, const eText& targetPath)
        : task(wanted), source(sourcePath), target(targetPath) {}

    // Whether the tree is to be counted.
    bool Counts() const { return task.progress && task.countFirst; }
    void BeginCount() { progress.counting = true; }
    void EndCount() { progress.counting = false; }

    void Done(eEntryKind kind, unsigned long long bytes) override {
        if (clearing)
            return Call();
        Add(&result.done, kind, bytes);
        Passed(kind, bytes);
    }

    void Passed(eEntryKind kind, unsigned long long bytes) override {
        copying = 0;
        Add(&progress.now, kind, bytes);
        Call();
    }

    void Failed(eTreeStep step, const eEntry& entry, unsigned long long bytes, int reason) override {
        trail.push_back(entry);
        Keep(step, reason);
        trail.pop_back();
        if (!clearing)
            Passed(entry.kind, bytes);
    }

    // What cannot be listed is told when the work is done, not when the tree is counted.
    void FolderFailed(eTreeStep step, int reason) override {
        if (!progress.counting)
            Keep(step, reason);
    }

    // The names as they were given lead to nothing that the operation works on.
    void NamesNothing(const eText& given) { Keep(eTreeStep::Open, eText(given), {0, "The name names no folder."}); }

    bool Copying(unsigned long long copied) override {
        copying = copied;
        Call();
        return !stopped;
    }

    void Counted(eEntryKind kind, unsigned long long bytes) override {
        Add(&progress.all, kind, bytes);
        Call();
    }

    // The end of the operation. An exception of the caller's function is thrown here.
    eTreeResultOf<Name> Take() {
        Platform::TakeRefusal();
        if (thrown)
            std::rethrow_exception(thrown);
        result.cancelled = stopped;
        return std::move(result);
    }

private:
    static void Add(eTreeCount* count, eEntryKind kind, unsigned long long bytes) {
        (kind == eEntryKind::Folder ? count->folders : count->files) += 1;
        count->bytes += bytes;
    }

    // Calls of the system may be on the stack, so nothing is thrown through them.
    void Call() {
        if (!task.progress || stopped)
            return;
        eTreeProgress told = progress;
        told.now.bytes += copying;
        try {
            stopped = !task.progress(told);
        } catch (...) {
            thrown = std::current_exception();
            stopped = true;
        }
    }

    void Keep(eTreeStep step, int reason) {
        if (result.failures.size() >= result.kMostFailures) {
            ++result.failed;
            return;
        }
        eText name = clearing ? target : source;
        for (const eEntry& entry : trail) {
            eText part;
            Platform::EntryText(entry, &part);
            name += part;
            name += '/';
        }
        if (!trail.empty())
            name.pop_back();
        Keep(step, std::move(name), {reason, FailureText(NotDone(step), reason)});
    }

    void Keep(eTreeStep step, eText name, eFailure reason) {
        ++result.failed;
        characters += name.size();
        if (characters <= result.kMostCharacters)
            result.failures.push_back({Name(name), step, std::move(reason)});
    }

    static const char* NotDone(eTreeStep step) {
        switch (step) {
        case eTreeStep::Create:
            return "The folder could not be created";
        case eTreeStep::Copy:
            return "The file could not be copied";
        case eTreeStep::Remove:
            return "It could not be removed";
        case eTreeStep::Open:
            break;
        }
        return "The folder could not be read";
    }

    const eTreeTask& task;
    const eText source;
    const eText target;
    eTreeProgress progress;
    unsigned long long copying = 0;    // bytes of the current file
    unsigned long long characters = 0; // of the failures' names
    eTreeResultOf<Name> result;
    std::exception_ptr thrown;
};

} // namespace IO::System
