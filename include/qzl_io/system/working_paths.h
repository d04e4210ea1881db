#pragma once

#include <string>

#include <qzl_base/strings.h>

#include <qzl_io/export.h>

namespace IO::System {

// The folders that an application works in, asked for by their role. All four roles are the folder of the running
// program's executable (Path::WorkingDir): forward slashes, a trailing "/", empty when the system does not tell it.
// Nothing is created and no file is touched.
class QZL_IO_API eWorkingPaths {
public:
    // The application's name has no influence on the folders.
    eWorkingPaths(const std::string& application);
    eWorkingPaths(const eWorkingPaths&);
    eWorkingPaths& operator=(const eWorkingPaths&);
    virtual ~eWorkingPaths();

    // Data shared by all users of the machine.
    const std::string& AppDataAllUsers() const;
    // Data of the current user.
    const std::string& AppDataUser() const;
    // The user's documents.
    const std::string& MyDocuments() const;
    // The folder to work in.
    const std::string& Working() const;

private:
    eStrings folders;
};

// The same over wide text.
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
