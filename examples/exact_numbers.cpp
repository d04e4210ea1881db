// SPDX-License-Identifier: BSL-1.0
#include <cstdint>
#include <iostream>
#include <string>

#include <qzl_base/error.h>
#include <qzl_io/sdl.h>

// Writes and reads numbers of 64 bits without a change, and has a reader report what it would change.

int main() {
    const double third = 1.0 / 3;
    const std::uint64_t identifier = 18446744073709551615u;

    IO::eMemoryStream document;
    {
        eSDLWriter writer(&document);
        writer << third << identifier << 300;
    }
    document.Reset();
    eSDLReader reader(&document, nullptr);
    double number = 0;
    std::uint64_t integer = 0;
    reader >> number >> integer;
    if (number != third || integer != identifier) {
        std::cerr << "The numbers have changed.\n";
        return 1;
    }

    reader.CheckRange(true);
    try {
        char small = 0;
        reader >> small; // would be 44 without the check
    } catch (const xError::eException& exception) {
        std::cout << exception.what() << '\n' << exception.Report().context;
        return 0;
    }
    std::cerr << "A number that does not fit was not reported.\n";
    return 1;
}
