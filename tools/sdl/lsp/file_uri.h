// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

// The addresses by which editors name files: file:///folder/name, in UTF-8, with %XX for other characters.

std::optional<std::filesystem::path> PathOfUri(std::string_view uri);
std::string UriOfPath(const std::filesystem::path& path);
