// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <filesystem>
#include <set>
#include <string>
#include <string_view>

#include "faults/torture.h"
#include "faults/work_folder.h"

// What a save has left in the folder, but for the files in which it keeps a document: each must be whole, and what the
// save said must name it, unless there was no memory to say so. A file that only a lost handle could have removed stays
// for the next save.
class eKeptDocuments {
public:
    eKeptDocuments(const eWorkFolder& folder, const std::string& target, const std::string& document,
                   std::string_view said, const eAftermath& after)
        : entries(folder.Entries()) {
        const std::string lasting = target + ".unsaved";
        for (const std::string& beside : {lasting, "." + target + ".saving"}) {
            const bool told = said.find("/" + beside + "\".") != std::string_view::npos && !after.complete;
            const bool ownedUp = after.handleCut || told || (after.noMemory && beside == lasting);
            if (!entries.contains(beside) || !ownedUp || (!after.handleCut && folder.Read(beside) != document))
                continue;
            kept = true;
            entries.erase(beside);
        }
        std::filesystem::remove(folder.Path() / lasting);
    }

    const std::set<std::string>& Entries() const { return entries; }
    bool Kept() const { return kept; }

private:
    std::set<std::string> entries;
    bool kept = false;
};
