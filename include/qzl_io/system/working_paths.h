// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <string>

#include <qzl_base/strings.h>

#include <qzl_io/export.h>

namespace IO::System {

// The folders that an application works in, by their role. All four roles are the folder of the running program's
// executable (Path::WorkingDir), with forward slashes and a trailing "/"; empty if the system does not tell it. Nothing
// is created and no file is touched.
class QZL_IO_API eWorkingPaths {
public:
    // Paths for an application of that name, which does not affect them.
    eWorkingPaths(const std::string& application);
    eWorkingPaths(const eWorkingPaths&);
    eWorkingPaths& operator=(const eWorkingPaths&);
    virtual ~eWorkingPaths();

    // The folder for data that all users of the machine share.
    const std::string& AppDataAllUsers() const;
    // The folder for data of the current user.
    const std::string& AppDataUser() const;
    // The folder for the user's documents.
    const std::string& MyDocuments() const;
    // The folder that the application works in.
    const std::string& Working() const;

private:
    eStrings folders;
};

// The folders as wide texts.
class QZL_IO_API eWorkingPathsW {
public:
    eWorkingPathsW(const std::wstring& application);
    eWorkingPathsW(const eWorkingPathsW&);
    eWorkingPathsW& operator=(const eWorkingPathsW&);
    virtual ~eWorkingPathsW();

    const std::wstring& AppDataAllUsers() const;
    const std::wstring& AppDataUser() const;
    const std::wstring& MyDocuments() const;
    const std::wstring& Working() const;

private:
    eStringsW folders;
};

} // namespace IO::System
