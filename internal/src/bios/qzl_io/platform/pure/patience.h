// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <chrono>
#include <functional>
#include <span>
#include <thread>
#include <utility>

#include "platform/pure/answer.h"

namespace IO::System {

using Platform::eAnswer;

// Repeats requests that a system refuses temporarily, with increasing pauses: for less than a quarter of a second for
// an entry, for half a second for a document to be saved. Waits that did not help are added up: after one second in
// total no entry is waited for any more, so that many refused entries do not hold up an operation. Each operation has
// its own object.
class ePatience {
public:
    using ePause = std::chrono::milliseconds;
    using eSleep = std::function<void(ePause)>;

    static constexpr ePause kPauses[] = {ePause(5), ePause(10), ePause(20), ePause(40), ePause(80)};
    static constexpr ePause kPausesOfSave[] = {ePause(5),  ePause(10),  ePause(20), ePause(40),
                                               ePause(80), ePause(160), ePause(185)};
    static constexpr ePause kLimitInVain{1000};

    explicit ePatience(eSleep pausing = &std::this_thread::sleep_for<ePause::rep, ePause::period>)
        : sleep(std::move(pausing)) {}
    explicit ePatience(std::span<const ePause> increasing) : ePatience() { pauses = increasing; }

    // True if the request was done, at once or in the end.
    template <class Ask>
    bool Get(Ask ask) {
        const eAnswer answer = ask();
        return answer == eAnswer::Done || (answer == eAnswer::Busy && GetLater(ask));
    }

    // Get for the removal of a folder: if everything in it has been removed, Full may pass, too.
    template <class Ask>
    bool GetRemoved(bool emptied, Ask ask) {
        return Get([emptied, &ask] {
            const eAnswer answer = ask();
            return answer == eAnswer::Full && emptied ? eAnswer::Busy : answer;
        });
    }

private:
    template <class Ask>
    bool GetLater(Ask& ask) {
        if (inVain >= kLimitInVain)
            return false;
        ePause waited{0};
        for (const ePause pause : pauses) {
            sleep(pause);
            waited += pause;
            const eAnswer answer = ask();
            if (answer != eAnswer::Busy)
                return answer == eAnswer::Done;
        }
        inVain += waited;
        return false;
    }

    eSleep sleep;
    std::span<const ePause> pauses = kPauses;
    ePause inVain{0};
};

} // namespace IO::System
