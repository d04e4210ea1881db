// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/collectors.h>

#include <algorithm>
#include <mutex>
#include <vector>

namespace xCollectors::xGlobal {

namespace {

struct eEntry {
    unsigned long long id;
    std::string group;
    void (*init)();
    void (*exit)();
};

class eRegistry {
public:
    // Never destroyed, since static objects register and unregister in any order.
    static eRegistry& Instance() {
        static eRegistry& registry = *new eRegistry;
        return registry;
    }

    unsigned long long Add(const std::string& group, void (*init)(), void (*exit)()) {
        std::lock_guard lock(mutex);
        entries.push_back({++lastId, group, init, exit});
        return lastId;
    }

    void Remove(unsigned long long id) {
        std::lock_guard lock(mutex);
        std::erase_if(entries, [id](const eEntry& entry) { return entry.id == id; });
    }

    bool Has(unsigned long long id) const {
        std::lock_guard lock(mutex);
        return std::any_of(entries.begin(), entries.end(), [id](const eEntry& entry) { return entry.id == id; });
    }

    std::vector<eEntry> Group(const std::string& group) const {
        std::lock_guard lock(mutex);
        std::vector<eEntry> members;
        for (const eEntry& entry : entries)
            if (entry.group == group)
                members.push_back(entry);
        return members;
    }

private:
    mutable std::mutex mutex;
    std::vector<eEntry> entries;
    unsigned long long lastId = 0;
};

void Run(const std::vector<eEntry>& entries, void (*eEntry::*function)()) {
    for (const eEntry& entry : entries)
        if (entry.*function && eRegistry::Instance().Has(entry.id))
            (entry.*function)();
}

} // namespace

eGlobalFunctionRegistrator::eGlobalFunctionRegistrator(const std::string& group, void (*init)(), void (*exit)())
    : id(eRegistry::Instance().Add(group, init, exit)) {}

eGlobalFunctionRegistrator::~eGlobalFunctionRegistrator() {
    eRegistry::Instance().Remove(id);
}

void Init(const std::string& group) {
    Run(eRegistry::Instance().Group(group), &eEntry::init);
}

void Exit(const std::string& group) {
    auto members = eRegistry::Instance().Group(group);
    std::reverse(members.begin(), members.end());
    Run(members, &eEntry::exit);
}

} // namespace xCollectors::xGlobal
