// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <qzl_io/sdl.h>

#include "documents.h"
#include "scene_words.h"

namespace bench {

// Writes one record as it is in the documents.
inline void WriteRecord(eSDLWriter& writer, const eRecord& record) {
    writer << block{wordItem} << record.name << record.count << endl;
    writer << block{wordPos} << record.position[0] << record.position[1] << record.position[2] << endb << endl;
    writer << block{wordTag} << ident{record.tag} << endb << endl;
    writer << block{wordIds} << record.ids[0] << record.ids[1] << record.ids[2] << endb << endl;
    writer << endb << endl;
}

} // namespace bench
