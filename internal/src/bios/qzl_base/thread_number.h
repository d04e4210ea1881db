#pragma once

// A number that is the calling thread's own for the life of the program: above 0 and never given to another thread.
unsigned long long ThreadNumber() noexcept;
