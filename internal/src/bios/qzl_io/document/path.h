// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <qzl_io/sdl/document.h>

namespace xSDL {

// A path as eSDLDocument describes it.
class ePath {
public:
    struct eValue {
        eSDLKind kind = eSDLKind::None; // Int, Float, String or Word
        std::string text;               // of a string without its escapes
        double number = 0;
        std::optional<long long> integer;

        bool Equals(const eSDLNode& node) const;
    };

    struct eFilter {
        bool byIndex = false;
        std::size_t index = 0;
        std::string name;
        eValue value;
    };

    struct eStep {
        enum class eKind { Name, Any, Index } kind = eKind::Name;
        std::string name;
        std::size_t index = 0;
        std::vector<eFilter> filters;
    };

    explicit ePath(std::string_view text);

    // What is wrong with it; empty if nothing is.
    const std::string& Mistake() const { return mistake; }
    const std::vector<eStep>& Steps() const { return steps; }

    // The nodes at the path within the node, at most so many.
    std::vector<eSDLNode> Find(const eSDLNode& node, std::size_t most) const;

private:
    class eReading;
    class eMatches;

    std::string mistake;
    std::vector<eStep> steps;
};

} // namespace xSDL
