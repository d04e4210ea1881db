// SPDX-License-Identifier: BSL-1.0
#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

#include <qzl_io/sdl.h>
#include <qzl_io/streams.h>

// Converts a JSON document that is not in a file, and tells what SDL cannot express of it.
int main() {
    constexpr std::string_view kJson = R"({"lamp": {"power": 1.5, "on": true}, "2nd lamp": null})";

    IO::eMemoryStream json;
    json.Write(kJson.data(), kJson.size());
    json.Seek(0, IO::eSeekDir::Begin);

    IO::eMemoryStream sdl;
    eJsonLosses losses;
    if (!JsonStreamToSdl(json, sdl, &losses))
        return EXIT_FAILURE;

    std::cout << std::string(reinterpret_cast<const char*>(sdl.Buffer()), sdl.Size());
    std::cout << losses.booleans << " boolean became a number; the name at " << losses.firstName
              << " does not read back as one word\n";
    return losses.names == 1 && losses.booleans == 1 ? EXIT_SUCCESS : EXIT_FAILURE;
}
