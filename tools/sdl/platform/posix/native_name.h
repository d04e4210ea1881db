// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <qzl_io/file_name.h>

// The name of a file, as the command line gives it, in the form that can name every file of the system.
inline eFileName NativeName(const std::string& name) {
    return {name};
}
