// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <memory>
#include <string>
#include <vector>

// During its lifetime, the library's calls refuse what Windows refuses and Wine accepts: plain names too long for the
// call, and "\\?\" names that are not in the form on disk (with "/" or "." or ".."). It records all names, in order.
class eStrictNames {
public:
    eStrictNames();
    ~eStrictNames();
    eStrictNames(const eStrictNames&) = delete;
    eStrictNames& operator=(const eStrictNames&) = delete;

    const std::vector<std::wstring>& Given() const;

private:
    struct eReplacements;
    std::unique_ptr<eReplacements> replacements;
};
