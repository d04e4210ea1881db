// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/system/working_paths.h>

#include <qzl_io/system/path.h>

namespace IO::System {

eWorkingPaths::eWorkingPaths(const std::string&) : folders(true) {
    folders.Add(Path::WorkingDir());
}
eWorkingPaths::eWorkingPaths(const eWorkingPaths&) = default;
eWorkingPaths& eWorkingPaths::operator=(const eWorkingPaths&) = default;
eWorkingPaths::~eWorkingPaths() = default;

const std::string& eWorkingPaths::AppDataAllUsers() const {
    return folders[0].str();
}
const std::string& eWorkingPaths::AppDataUser() const {
    return folders[0].str();
}
const std::string& eWorkingPaths::MyDocuments() const {
    return folders[0].str();
}
const std::string& eWorkingPaths::Working() const {
    return folders[0].str();
}

eWorkingPathsW::eWorkingPathsW(const std::wstring&) : folders(true) {
    folders.Add(PathW::WorkingDir());
}
eWorkingPathsW::eWorkingPathsW(const eWorkingPathsW&) = default;
eWorkingPathsW& eWorkingPathsW::operator=(const eWorkingPathsW&) = default;
eWorkingPathsW::~eWorkingPathsW() = default;

const std::wstring& eWorkingPathsW::AppDataAllUsers() const {
    return folders[0].str();
}
const std::wstring& eWorkingPathsW::AppDataUser() const {
    return folders[0].str();
}
const std::wstring& eWorkingPathsW::MyDocuments() const {
    return folders[0].str();
}
const std::wstring& eWorkingPathsW::Working() const {
    return folders[0].str();
}

} // namespace IO::System
