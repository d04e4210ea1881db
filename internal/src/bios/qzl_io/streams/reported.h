// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <qzl_base/stack_entry.h>
#include <qzl_io/streams/stream.h>

namespace IO {

// Describes a stream in the context of a report that is made about it.
class eReportedStream : public xDebug::eStackEntry {
public:
    explicit eReportedStream(const eStream& of) : stream(of) {}
    ~eReportedStream() override { LeaveStack(); }
    eReportedStream(const eReportedStream&) = delete;
    eReportedStream& operator=(const eReportedStream&) = delete;

    std::string DSE_Title() const override { return stream.Dump(); }
    std::string DSE_Full() const override { return stream.Failure().text; }

private:
    const eStream& stream;
};

} // namespace IO
