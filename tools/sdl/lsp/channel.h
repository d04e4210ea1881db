// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <istream>
#include <optional>
#include <ostream>
#include <string>

#include <nlohmann/json.hpp>

// Messages of the language server protocol on a pair of streams: a header with the length, an empty line, a JSON text.
class eChannel {
public:
    eChannel(std::istream& source, std::ostream& target) : in(source), out(target) {}

    // The next message, as text. Nothing at the end of the input, which may come within a message. Throws eTrouble if
    // what comes is no message, since then it cannot be told where the next one begins.
    std::optional<std::string> Read();

    // Throws eTrouble if it cannot be written.
    void Write(const nlohmann::json& message);

private:
    std::optional<unsigned long long> ReadLength();

    std::istream& in;
    std::ostream& out;
};
