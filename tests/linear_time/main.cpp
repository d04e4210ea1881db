#include <cstddef>
#include <cstdio>
#include <string>

#include "resources/hostile_shapes.h"

// Reads each hostile document in every way, in two sizes. `check` counts the instructions of each Pass.

namespace linear_time {

// Never inlined, so that it can be found by its name.
void Pass(const std::string& text);

[[gnu::noinline]] void Pass(const std::string& text) {
    for (const eHostileReading& reading : HostileReadings())
        ReadHostile(text, reading);
}

} // namespace linear_time

int main() {
    constexpr std::size_t kSize = 4 * 1024;
    for (const eHostileShape& shape : HostileShapes())
        for (const std::size_t size : {kSize, 8 * kSize}) {
            const std::string text = shape.OfSize(size);
            linear_time::Pass(text);
            std::printf("%zu\t%s\n", text.size(), shape.name);
        }
}
