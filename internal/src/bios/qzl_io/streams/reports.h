// SPDX-License-Identifier: BSL-1.0
#pragma once

// The reports of the stream core. The line numbers identify checks, not places in a file.

namespace IO::StreamReport {

inline constexpr char kSource[] = "internal/src/bios/qzl_io/stream";

inline constexpr char kReadBeyond[] = "Attempt to read beyond the stream!";
inline constexpr char kReadBeyondLimit[] = "Attempt to read beyond the limit!";
inline constexpr char kWriteBeyond[] = "Attempt to write beyond the stream!";
inline constexpr char kInvalidSeek[] = "Invalid seek location!";
inline constexpr char kInvalidRead[] = "Invalid read location!";
inline constexpr char kPlaceBuffer[] = "Stream.PlaceBuffer: ";
inline constexpr char kNoMemory[] = "Not enough memory!";
inline constexpr char kNoRoom[] = "The stream had no room for all bytes"; // told by Failure

inline constexpr int kPlaceBufferLine = 10;
inline constexpr int kInvalidReadLine = 20;
inline constexpr int kInvalidSeekLine = 30;
inline constexpr int kReadEndLine = 40;     // a bulk read reaches the end of the data
inline constexpr int kReadNothingLine = 41; // data remain by the count, but none can be read into the buffer
inline constexpr int kWriteNothingLine = 50;
inline constexpr int kValueReadLine = 60; // a value before the start or without a buffer
inline constexpr int kValueWriteLine = 61;
inline constexpr int kTruncLine = 62;   // ending the data before the start
inline constexpr int kListEndLine = 70; // fewer texts than the count of the list
inline constexpr int kTextLimitLine = 80;
inline constexpr int kWideTextLimitLine = 81;
inline constexpr int kListLimitLine = 82;
inline constexpr int kLineLimitLine = 83;

} // namespace IO::StreamReport
