// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include <qzl_base/export.h>

// A lock that its owner may enter again. Each Enter needs its Leave on the same thread.
class QZL_BASE_API eCriticalSection {
public:
    eCriticalSection();
    eCriticalSection(const eCriticalSection&) = delete;
    eCriticalSection& operator=(const eCriticalSection&) = delete;

    virtual void Enter();
    virtual void Leave();
    virtual ~eCriticalSection();

private:
    std::recursive_mutex mutex;
};

// Holds a critical section from construction to destruction.
class eCriticalSectionLock {
public:
    explicit eCriticalSectionLock(eCriticalSection& entered) : section(entered) { section.Enter(); }
    ~eCriticalSectionLock() { section.Leave(); }
    eCriticalSectionLock(const eCriticalSectionLock&) = delete;
    eCriticalSectionLock& operator=(const eCriticalSectionLock&) = delete;

private:
    eCriticalSection& section;
};

// A pointer for each thread, initially null, in a thread-local-storage index of the operating system.
//
// If the system has no index left, the constructor reports the error "Thread Storage Overflow : %1%" with the system's
// error code. If the error handler returns, the pointers are kept in a map under a lock instead, slower but with the
// same results.
class QZL_BASE_API eThreadIndex {
public:
    eThreadIndex();
    ~eThreadIndex();
    eThreadIndex(const eThreadIndex&) = delete;
    eThreadIndex& operator=(const eThreadIndex&) = delete;

    // The calling thread's pointer.
    void* Get() const;
    void Set(void* value);

private:
    unsigned long index = 0;
    bool allocated = false;
    mutable std::mutex fallbackMutex;
    std::map<unsigned long long, void*> fallback; // by thread number, used if no index is allocated
};

// An object of type T for each thread that asks for it, created by T's default constructor. The objects live until the
// storage is destroyed, even after their threads have ended; the storage must outlive its use by any thread.
template <class T>
class eCriticalResource {
public:
    eCriticalResource() = default;
    eCriticalResource(const eCriticalResource&) = delete;
    eCriticalResource& operator=(const eCriticalResource&) = delete;

    // The calling thread's object.
    T& Get() {
        if (void* object = index.Get())
            return *static_cast<T*>(object);
        return Make();
    }

private:
    T& Make() {
        auto object = std::make_unique<T>();
        T& made = *object;
        {
            eCriticalSectionLock lock(section);
            objects.push_back(std::move(object));
        }
        index.Set(&made);
        return made;
    }

    eThreadIndex index;
    eCriticalSection section;
    std::vector<std::unique_ptr<T>> objects;
};
