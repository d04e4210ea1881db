// SPDX-License-Identifier: BSL-1.0
#pragma once

namespace xSDL {

// The text of schemas/schema.sdls, put here by the build.
extern const char kSchemaText[];

} // namespace xSDL
