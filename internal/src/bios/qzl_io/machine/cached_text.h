// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <utility>

namespace IO::System {

// A text that is queried once. Invariant: once `filled` is set, the text is not empty and never changes.
template <class Char>
class eCachedText {
public:
    // The text. While it is empty, `ask` is called, without a lock and by several threads at once if they coincide; the
    // first result that is not empty is kept. An empty result returns a separate text, which stays empty.
    template <class Ask>
    const std::basic_string<Char>& Get(Ask ask) {
        if (!filled.load(std::memory_order_acquire))
            Keep(ask());
        return filled.load(std::memory_order_acquire) ? text : none;
    }

private:
    void Keep(std::basic_string<Char> answer) {
        const std::lock_guard lock(filling);
        if (answer.empty() || !text.empty())
            return;
        text = std::move(answer);
        filled.store(true, std::memory_order_release);
    }

    std::mutex filling;
    std::atomic<bool> filled = false;
    std::basic_string<Char> text;
    const std::basic_string<Char> none;
};

} // namespace IO::System
