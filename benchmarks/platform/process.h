// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>
#include <vector>

namespace bench::platform {

// The processor's name; "unknown processor" if the system does not tell it.
std::string ProcessorName();

// The number of processors that the system schedules on.
unsigned ProcessorCount();

// The bytes of memory that the process holds now; 0 if the system does not tell.
size_t Resident();

// The most bytes of memory held since ResetPeak(); 0 if the system does not tell.
size_t Peak();

// Returns unused memory to the system and starts the peak again at what is held now. False if the system cannot.
bool ResetPeak();

// From now on large blocks are returned to the system as soon as they are freed, whatever was freed before, so that a
// peak shows what is needed and not what the allocator keeps.
void ReturnLargeBlocks();

// Runs this program again with other arguments and returns what it printed; empty if it failed.
std::string RunSelf(const std::vector<std::string>& arguments);

// Runs a command without a shell, with its output in the file, and waits for its end. Throws std::system_error if it
// cannot be started, std::runtime_error if it fails.
void RunCommand(const std::vector<std::string>& words, const std::string& output = "/dev/null");

// The seconds of the processor that all commands so far took.
double SecondsOfCommands();

// A folder in memory if the system has one with this many bytes of room, else the folder for temporary files.
std::string FastFolder(size_t room);

} // namespace bench::platform
