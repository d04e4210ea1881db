// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <memory>
#include <string>

namespace IO::Platform {

// A document that is being saved: it is written to a temporary file beside the target, which replaces the target in one
// step when the document is complete.
//
// | target                                            | how it gets the document                                     |
// |---------------------------------------------------|--------------------------------------------------------------|
// | a file with one name, or missing                  | in one step                                                  |
// | a link                                            | the file it leads to is saved; on Linux that may be missing  |
// | a file with several names, or one whose owner or  | copied from the complete temporary file, not in one step     |
// | access rights a new file cannot have              |                                                              |
// | a device, a pipe; on Windows a stream of a file   | written directly; there is no temporary file                 |
//
// A temporary file that a program left when it was killed is removed by the next save to the same target.
class eSavedFile {
public:
    // Removes the temporary file, unless it has replaced the target or was kept. Close the handle first.
    virtual ~eSavedFile() = default;

    // Closes the handle from BeginSave and puts the document in the target's place. With `toDisk` it is on the disk
    // when this returns. False if the system refused; TakeRefusal then tells why, and a complete document is kept in
    // the file that Kept names.
    virtual bool TakePlace(int handle, bool toDisk) = 0;

    // The file that keeps a document that could not be put in place, as UTF-8 text for people; empty if there is none.
    virtual const std::string& Kept() const = 0;
};

// Creates the temporary file and opens it. Null if the target is read-only or a folder, or if its folder takes no new
// file; TakeRefusal then tells why. The target is not touched.
template <class Char>
std::unique_ptr<eSavedFile> BeginSave(const Char* target, int* handle);

// Whether the target can be saved to. Creates a missing target without content; an existing one stays as it is.
// TakeRefusal tells why not.
template <class Char>
bool PrepareSave(const Char* target);

} // namespace IO::Platform
