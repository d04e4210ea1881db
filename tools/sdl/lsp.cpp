// SPDX-License-Identifier: BSL-1.0
#include <cstdint>
#include <iostream>

#include "lsp/channel.h"
#include "lsp/server.h"
#include "verb.h"

namespace {

eEnd Serve() {
    eChannel channel(std::cin, std::cout);
    return eServer(channel).Serve() ? eEnd::Fine : eEnd::Findings;
}

} // namespace

eVerb::eRun DeclareLsp(CLI::App* verb) {
    verb->add_flag_function(
        "--stdio", [](std::int64_t) {}, "talk on standard input and output, as always");
    return Serve;
}
