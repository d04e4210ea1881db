// SPDX-License-Identifier: BSL-1.0
#pragma once

namespace IO::Platform {

// What a processor and a system tell of the processor's abilities.
struct eProcessorAnswers {
    unsigned leaf1c = 0;               // register ECX after CPUID with 1 in EAX
    unsigned leaf7b = 0;               // register EBX after CPUID with 7 in EAX, if it knows that question
    unsigned long long statesKept = 0; // the registers that the system keeps for each thread, as XCR0 has them
};

// Whether these are the abilities that functions marked QZL_IO_AVX2 need.
constexpr bool TellAvx2(const eProcessorAnswers& answers) {
    constexpr unsigned kPclmul = 1u << 1;
    constexpr unsigned kPopcnt = 1u << 23;
    constexpr unsigned kBmi = 1u << 3;
    constexpr unsigned kAvx2 = 1u << 5;
    constexpr unsigned long long kSse = 1u << 1;
    constexpr unsigned long long kAvx = 1u << 2;
    const auto has = [](unsigned long long answer, unsigned long long bits) { return (answer & bits) == bits; };
    return has(answers.leaf1c, kPclmul | kPopcnt) && has(answers.leaf7b, kBmi | kAvx2) &&
           has(answers.statesKept, kSse | kAvx);
}

} // namespace IO::Platform
