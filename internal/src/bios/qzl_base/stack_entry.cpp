#include <qzl_base/stack_entry.h>

#include "diagnostic_stack.h"
#include "thread_number.h"

namespace xDebug {

namespace {

// Sets a flag for its own lifetime.
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
    // A report made by an entry's own text function would describe that entry again, without end.
    static thread_local bool describing = false;
    if (describing)
        return {};
    const eFlagged flagged(describing);
    return eDiagnosticStack::Instance().Describe();
}

// Never destroyed, since static objects may be entries.
eDiagnosticStack& eDiagnosticStack::Instance() {
    static eDiagnosticStack& stack = *new eDiagnosticStack;
    return stack;
}

void eDiagnosticStack::Enter(eStackEntry& entry) noexcept {
    std::lock_guard lock(mutex);
    entry.thread = ThreadNumber();
    entry.older = newest;
    if (newest)
        newest->newer = &entry;
    newest = &entry;
}

void eDiagnosticStack::Leave(eStackEntry& entry) noexcept {
    std::unique_lock lock(mutex);
    if (entry.thread == 0)
        return;
    if (entry.thread != ThreadNumber())
        released.wait(lock, [&entry] { return !entry.described; });
    Unlink(entry);
}

void eDiagnosticStack::Unlink(eStackEntry& entry) noexcept {
    if (entry.older)
        entry.older->newer = entry.newer;
    if (entry.newer)
        entry.newer->older = entry.older;
    else
        newest = entry.older;
    entry.older = nullptr;
    entry.newer = nullptr;
    entry.thread = 0;
}

std::string eDiagnosticStack::Describe() {
    std::string context;
    for (eStackEntry* entry : EntriesOf(ThreadNumber())) {
        if (!Claim(entry))
            continue;
        const std::string texts = TextsOrNothing(*entry);
        Release(entry);
        context += texts;
    }
    return context;
}

std::vector<eStackEntry*> eDiagnosticStack::EntriesOf(unsigned long long thread) {
    std::lock_guard lock(mutex);
    std::vector<eStackEntry*> entries;
    for (eStackEntry* entry = newest; entry; entry = entry->older)
        if (entry->thread == thread)
            entries.push_back(entry);
    return entries;
}

bool eDiagnosticStack::Listed(const eStackEntry* sought) const noexcept {
    for (const eStackEntry* entry = newest; entry; entry = entry->older)
        if (entry == sought)
            return true;
    return false;
}

bool eDiagnosticStack::Claim(eStackEntry* entry) {
    std::lock_guard lock(mutex);
    if (!Listed(entry) || entry->thread != ThreadNumber())
        return false;
    entry->described = true;
    return true;
}

void eDiagnosticStack::Release(eStackEntry* entry) {
    {
        std::lock_guard lock(mutex);
        if (Listed(entry))
            entry->described = false;
    }
    released.notify_all();
}

eStackEntry::eStackEntry() {
    EnterStack();
}

eStackEntry::eStackEntry(const eStackEntry&) {
    EnterStack();
}

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
