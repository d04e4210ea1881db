// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <google/protobuf/io/zero_copy_stream_impl_lite.h>

#include <string>

#include "../platform/raw_file.h"

namespace bench {

// System calls under protobuf's adaptors, as protobuf's own file streams use them.
class eRawOutput : public google::protobuf::io::CopyingOutputStream {
public:
    explicit eRawOutput(const std::string& name) : file(name.c_str(), platform::eRawFile::Writing) {}
    bool Write(const void* bytes, int size) override {
        file.Write(bytes, static_cast<size_t>(size));
        return true;
    }

private:
    platform::eRawFile file;
};

class eRawInput : public google::protobuf::io::CopyingInputStream {
public:
    explicit eRawInput(const std::string& name) : file(name.c_str(), platform::eRawFile::Reading) {}
    int Read(void* bytes, int size) override { return static_cast<int>(file.Read(bytes, static_cast<size_t>(size))); }

private:
    platform::eRawFile file;
};

} // namespace bench
