// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/stack_entry.h>

#include <cstddef>
#include <mutex>
#include <new>
#include <vector>

#include "diagnostic_stack.h"
#include "thread_number.h"

namespace xDebug {

namespace {

// Sets a flag during its lifetime.
class eFlagged {
public:
    explicit eFlagged(bool& theFlag) : flag(theFlag) { flag = true; }
    ~eFlagged() { flag = false; }
    eFlagged(const eFlagged&) = delete;
    eFlagged& operator=(const eFlagged&) = delete;

private:
    bool& flag;
};

std::string TextsOf(const eStackEntry& entry) {
    std::string texts = entry.DSE_Title() + entry.DSE_Brief();
    const std::string full = entry.DSE_Full();
    if (texts.empty() && full.empty())
        return texts;
    texts += '\n';
    texts += full;
    if (texts.back() != '\n')
        texts += '\n';
    return texts;
}

std::string TextsOrNothing(const eStackEntry& entry) {
    try {
        return TextsOf(entry);
    } catch (...) {
        return {};
    }
}

} // namespace

std::string DiagnosticContext() {
    // Without this, a report made by an entry's text function would describe that entry again, without end.
    static thread_local bool describing = false;
    if (describing)
        return {};
    const eFlagged flagged(describing);
    try {
        return eDiagnosticStack::Instance().Describe();
    } catch (const std::bad_alloc&) {
        return {}; // rather than no report at all
    }
}

// Never destroyed, since static objects may be entries.
eDiagnosticStack& eDiagnosticStack::Instance() {
    static eDiagnosticStack& stack = *new eDiagnosticStack;
    return stack;
}

// The entries that one report describes. An entry becomes null when it leaves the stack.
class eDiagnosticStack::eDescription {
public:
    explicit eDescription(eDiagnosticStack& theStack) : stack(theStack) {
        std::lock_guard lock(stack.mutex);
        Note(ThreadNumber());
    }
    ~eDescription() {
        std::lock_guard lock(stack.mutex);
        for (eStackEntry* const entry : entries)
            if (entry)
                entry->awaited = nullptr;
    }
    eDescription(const eDescription&) = delete;
    eDescription& operator=(const eDescription&) = delete;

    std::string Text() {
        std::string text;
        for (eStackEntry*& entry : entries) {
            text += Describe(entry);
            if (&entry == lastOfMany)
                text += "... and " + std::to_string(more) + " more\n";
        }
        return text;
    }

private:
    static constexpr std::size_t kDescribedOfMany = 8;

    void Note(unsigned long long thread) {
        std::size_t many = 0;
        std::size_t last = 0;
        for (eStackEntry* entry = stack.newest; entry; entry = entry->older) {
            if (entry->thread != thread)
                continue;
            if (entry->oneOfMany && ++many > kDescribedOfMany)
                continue;
            if (entry->oneOfMany)
                last = entries.size();
            entries.push_back(entry);
        }
        for (eStackEntry*& entry : entries)
            entry->awaited = &entry;
        if (many > kDescribedOfMany) {
            more = many - kDescribedOfMany;
            lastOfMany = &entries[last];
        }
    }

    std::string Describe(eStackEntry*& noted) {
        eStackEntry* const entry = Claim(noted);
        if (!entry)
            return {};
        std::string texts = TextsOrNothing(*entry);
        Release(noted);
        return texts;
    }

    eStackEntry* Claim(eStackEntry*& noted) {
        std::lock_guard lock(stack.mutex);
        if (noted)
            noted->described = true;
        return noted;
    }

    void Release(eStackEntry*& noted) {
        {
            std::lock_guard lock(stack.mutex);
            if (noted)
                noted->described = false;
        }
        stack.released.notify_all();
    }

    eDiagnosticStack& stack;
    std::vector<eStackEntry*> entries;
    eStackEntry** lastOfMany = nullptr; // the place after which `more` are left out; null if all are described
    std::size_t more = 0;
};

std::string eDiagnosticStack::Describe() {
    return eDescription(*this).Text();
}

void eDiagnosticStack::Enter(eStackEntry& entry) noexcept {
    std::unique_lock lock(mutex);
    Remove(entry, lock);
    entry.thread = ThreadNumber();
    entry.older = newest;
    if (newest)
        newest->newer = &entry;
    newest = &entry;
}

void eDiagnosticStack::Leave(eStackEntry& entry) noexcept {
    std::unique_lock lock(mutex);
    Remove(entry, lock);
}

// If another thread is describing the entry, waits for that.
void eDiagnosticStack::Remove(eStackEntry& entry, std::unique_lock<std::mutex>& lock) noexcept {
    if (entry.thread != ThreadNumber())
        released.wait(lock, [&entry] { return !entry.described; });
    if (entry.thread == 0)
        return;
    if (entry.older)
        entry.older->newer = entry.newer;
    if (entry.newer)
        entry.newer->older = entry.older;
    else
        newest = entry.older;
    if (entry.awaited)
        *entry.awaited = nullptr;
    entry.older = nullptr;
    entry.newer = nullptr;
    entry.awaited = nullptr;
    entry.thread = 0;
    entry.described = false;
}

eStackEntry::eStackEntry() {
    EnterStack();
}

eStackEntry::eStackEntry(eNumber number) : oneOfMany(number == eNumber::Many) {
    EnterStack();
}

eStackEntry::eStackEntry(const eStackEntry& other) : oneOfMany(other.oneOfMany) {
    EnterStack();
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): changes nothing
eStackEntry& eStackEntry::operator=(const eStackEntry&) noexcept {
    return *this;
}

eStackEntry::~eStackEntry() {
    LeaveStack();
}

std::string eStackEntry::DSE_Title() const {
    return {};
}

std::string eStackEntry::DSE_Brief() const {
    return {};
}

std::string eStackEntry::DSE_Full() const {
    return {};
}

void eStackEntry::EnterStack() noexcept {
    eDiagnosticStack::Instance().Enter(*this);
}

void eStackEntry::LeaveStack() noexcept {
    eDiagnosticStack::Instance().Leave(*this);
}

} // namespace xDebug
