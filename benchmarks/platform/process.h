#pragma once

#include <string>
#include <vector>

namespace bench::platform {

// The processor's own name, "unknown processor" where the system does not tell.
std::string ProcessorName();

// How many processors the system schedules on.
unsigned ProcessorCount();

// Bytes of memory that the process holds at this moment; 0 where the system does not tell.
size_t Resident();

// The most bytes of memory held since ResetPeak(); 0 where the system does not tell.
size_t Peak();

// Hands unused memory back and starts the peak anew from what is held now. False where the system cannot.
bool ResetPeak();

// From here on large blocks go back to the system as soon as they are freed, whatever was freed before; so a peak
// shows what is needed and not what the allocator keeps.
void ReturnLargeBlocks();

// Runs this program once more with other arguments and returns what it printed, empty when it failed.
std::string RunSelf(const std::vector<std::string>& arguments);

// A folder in memory where the system has one with this many bytes of room, else the one for temporary files.
std::string FastFolder(size_t room);

// A number that no other running process has.
long ProcessNumber();

} // namespace bench::platform
