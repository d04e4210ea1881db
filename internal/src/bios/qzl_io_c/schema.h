// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <optional>

#include <qzl_io/sdl/schema.h>

#include "call.h"

struct qzl_schema : xC::eHandle {
    // Takes the rules of a document, or those that are right.
    qzl_status TakeRules(const eSDLDocument& document);

    std::optional<eSDLSchema> rules;
    xC::eTelling shown; // the mistake that was asked for last
};
