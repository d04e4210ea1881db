// SPDX-License-Identifier: BSL-1.0
#pragma once

// Puts the stand-ins into the import tables of the libraries, once for the process. Throws std::runtime_error if a
// library does not import a call.
void InstallCalls();
void InstallHeap();
