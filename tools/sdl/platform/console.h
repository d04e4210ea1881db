// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <vector>

// The program's standard streams and its command line.

namespace console {

enum class eStream { Input, Output, Error };

bool IsTerminal(eStream stream);

// Makes standard input and output pass bytes unchanged, and a terminal show UTF-8 and colours.
void Prepare();

// The command line without the program's name, in UTF-8; on systems whose arguments are bytes, those bytes.
std::vector<std::string> Arguments(int argc, char** argv);

} // namespace console
