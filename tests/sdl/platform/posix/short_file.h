// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <filesystem>
#include <string>
#include <system_error>

// A file that the system says is a page long, whatever it contains; "" if there is none.
inline std::string FileShorterThanItSays() {
    const std::string name = "/sys/devices/system/cpu/online";
    std::error_code error;
    const auto size = std::filesystem::file_size(name, error);
    return error || size < 1000 ? "" : name;
}
