// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <functional>
#include <random>
#include <string>
#include <string_view>

#include <qzl_base/error.h>
#include <qzl_io/file_name.h>

// One of the threads of a test that does everything at once: what it may use alone, and what it has found wrong.
class eWorker {
public:
    eWorker(const std::string& testFolder, unsigned threadNumber)
        : number(threadNumber), shared(testFolder), own(testFolder + std::to_string(threadNumber) + "/") {}

    unsigned Random(unsigned end) { return static_cast<unsigned>(random()) % end; }
    std::string RandomText(unsigned longest) {
        std::string text(Random(longest + 1), ' ');
        for (char& letter : text)
            letter = static_cast<char>(1 + Random(127));
        return text;
    }

    // Keeps the first failure, since assertions of the test framework do not belong in many threads at once.
    void Expect(bool right, std::string_view promise) {
        if (!right && failure.empty())
            failure = "thread " + std::to_string(number) + ": " + std::string(promise);
    }

    // Does what reports once, as an error or a warning with this message and with this text in its context, and expects
    // the report to arrive at a handler, on this thread.
    void ExpectReport(bool isError, const std::string& message, const std::string& context,
                      const std::function<void()>& reporting);

    // A handler for errors or warnings: every report must be one that its thread expects.
    static xError::eHandler Handler(bool isError);
    // The reports that have arrived and that no thread expected, one in each line.
    static std::string Unexpected();

    eFileName Own(const std::string& name) const { return eFileName(own + name); }
    eFileName Shared(const std::string& name) const { return eFileName(shared + name); }

    const unsigned number;
    const std::string shared; // the test's folder, with a slash
    const std::string own;    // this thread's folder in it, with a slash
    std::string failure;

private:
    std::minstd_rand random{number + 1};
};
