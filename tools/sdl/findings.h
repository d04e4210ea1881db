// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <qzl_base/diagnostic.h>

// What is wrong in a document.
struct eFindings {
    std::string file;
    unsigned long long errors = 0;             // in all
    std::vector<xError::eDiagnostic> mistakes; // warnings among them; of many, the first
};

// A form in which findings are printed on standard output.
class eFindingsOutput {
public:
    virtual ~eFindingsOutput() = default;

    virtual void Take(const eFindings& findings) = 0;
    virtual void End() {}
};

std::unique_ptr<eFindingsOutput> TextOutput();
std::unique_ptr<eFindingsOutput> JsonOutput();
// The format of logs that code hosts and editors read.
std::unique_ptr<eFindingsOutput> SarifOutput();
