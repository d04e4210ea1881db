#pragma once

#include <ostream>

// Prints what the system services know: the machine, the working folders and the entries of the current folder.
void ShowSystem(std::ostream& out);
