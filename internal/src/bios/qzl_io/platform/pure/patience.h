#pragma once

#include <chrono>
#include <functional>
#include <thread>
#include <utility>

#include "platform/pure/answer.h"

namespace IO::System {

using Platform::eAnswer;

// Asks again for what a system refuses for a moment, with pauses that grow. An entry is waited for less than a quarter
// of a second. What was waited for in vain is added up: after a second of that no entry is waited for any more, so
// that many refused entries do not hold an operation up. One for each operation.
class ePatience {
public:
    using ePause = std::chrono::milliseconds;
    using eSleep = std::function<void(ePause)>;

    static constexpr ePause kPauses[] = {ePause(5), ePause(10), ePause(20), ePause(40), ePause(80)};
    static constexpr ePause kLimitInVain{1000};

    explicit ePatience(eSleep pausing = &std::this_thread::sleep_for<ePause::rep, ePause::period>)
        : sleep(std::move(pausing)) {}

    // True when it was done, at once or in the end.
    template <class Ask>
    bool Get(Ask ask) {
        const eAnswer answer = ask();
        return answer == eAnswer::Done || (answer == eAnswer::Busy && GetLater(ask));
    }

    // The same for the removal of a folder: that it is Full may pass, too, when all in it has been removed.
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
        for (const ePause pause : kPauses) {
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
    ePause inVain{0};
};

} // namespace IO::System
