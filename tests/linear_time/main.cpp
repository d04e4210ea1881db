// SPDX-License-Identifier: BSL-1.0
#include <cstddef>
#include <cstdio>
#include <string>

#include "resources/hostile_documents.h"
#include "resources/hostile_shapes.h"

// Reads each hostile document in every way, and edits it, in two sizes. `check` counts the instructions of each Pass.

namespace linear_time {

// Never inlined, so that it can be found by its name.
void Pass(const std::string& text, bool asDocument);

[[gnu::noinline]] void Pass(const std::string& text, bool asDocument) {
    if (asDocument) {
        UseHostileDocument(text);
        EditHostileDocument(text);
        return;
    }
    for (const eHostileReading& reading : HostileReadings())
        ReadHostile(text, reading);
}

} // namespace linear_time

int main() {
    constexpr std::size_t kSize = 4 * 1024;
    for (const eHostileShape& shape : HostileShapes())
        for (const bool asDocument : {false, true})
            for (const std::size_t size : {kSize, 8 * kSize}) {
                const std::string text = shape.OfSize(size);
                linear_time::Pass(text, asDocument);
                std::printf("%zu\t%s%s\n", text.size(), shape.name, asDocument ? ", as a document" : "");
            }
}
