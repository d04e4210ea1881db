// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/sdl/json_to_sdl.h>

#include <fstream>
#include <iostream>

int main() {
    std::ofstream("lamp.json") << R"({"lamp": 1200})";
    if (JsonToSdl(eFileName("lamp.json"), eFileName("converted.sdl")))
        std::cout << std::ifstream("converted.sdl").rdbuf();
}
