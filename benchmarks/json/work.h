// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <qzl_io/sdl/json_to_sdl.h>

#include "../support/documents.h"
#include "../support/read_bare.h"
#include "../support/suite.h"
#include "../support/work_folder.h"

namespace bench {

// Whether the parser that the library was built with makes a tree of the document.
inline bool KeepsTree() {
    return JsonEngine() == "cpprestsdk";
}

// One JSON document to convert: strings, numbers or objects.
struct eJsonWork {
    std::string name;
    eDocument document;
    unsigned kilobytes;

    const std::string& Json() const { return Text(document, kilobytes, eFormat::Json); }
    double Count() const { return Values(document, kilobytes); }
    std::string Input() const {
        const std::string file = WorkFile(std::string(Name(document)) + ".json");
        WriteWhole(file, Json());
        return file;
    }
};

inline std::vector<eJsonWork> JsonWorks(const eOptions& options) {
    std::vector<eJsonWork> works;
    for (const eDocument document : {eDocument::Strings, eDocument::Numbers, eDocument::Records}) {
        const unsigned kilobytes = options.small ? 100 : 8000;
        const char* what = document == eDocument::Records ? "objects" : Name(document);
        works.push_back(
            {std::string("JSON to SDL, file to file: ") + what + ", " + SizeName(kilobytes), document, kilobytes});
    }
    return works;
}

// The checksum of the values in a converted file.
inline std::uint64_t SumOfConverted(const std::string& file) {
    const std::string text = ReadWhole(file);
    return ReadBare(text.c_str());
}

} // namespace bench
