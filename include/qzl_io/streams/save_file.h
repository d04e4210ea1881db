// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <memory>
#include <string>

#include <qzl_io/export.h>
#include <qzl_io/file_name.h>
#include <qzl_io/streams/stream_file.h>

namespace IO {

// What is certain when Commit returns true.
enum class eSaveEnd : int {
    OnDisk = 0,  // the new document is on the disk: it is there even after a power failure
    InMemory = 1 // the system has the new document: after a power failure the file has the old one or the new one
};

// A stream that saves a document: the target keeps its old content until Commit replaces it with the new document in
// one step, and for ever if Commit is not called.
//
//     IO::eSaveFile file("settings.bin");
//     file << version << settings;
//     if (!file.Commit())
//         Show(file.Failure().text);
//
// The document is written to a temporary file beside the target, ".NAME.saving", which then replaces the target. So the
// folder needs room for both files and the permission to create one. A temporary file that a program left when it was
// killed is removed by the next save to the same target. The target keeps its permissions, owner and attributes; on
// Windows its access rights, attributes, time of creation and named streams. If the target's folder is exchanged for a
// link meanwhile, the document is saved in the folder in which the save began; Windows refuses the exchange.
//
// | target                                                  | result                                                 |
// |---------------------------------------------------------|--------------------------------------------------------|
// | missing                                                 | Commit creates it                                      |
// | read-only, a folder, or in a folder without permission  | the stream is not open; Failure tells why              |
// | a link                                                  | the file it leads to is saved. If that is missing, it  |
// |                                                         | is created on Linux; on Windows the stream is not open |
// | a file with several names, or one whose owner or access | Commit copies the complete document into it, which is  |
// | rights a new file cannot have                           | not one step; the document is kept until that is done  |
// | a device or a pipe                                      | written directly                                       |
//
// It opens once, in its constructor: Open by its base class is an error that throws if Errors is passed ("A save file
// opens only once!").
class QZL_IO_API eSaveFile final : public eFileStreamBase {
public:
    explicit eSaveFile(const eFileName& target, eSaveEnd end = eSaveEnd::OnDisk);
    explicit eSaveFile(const eFileNameW& target, eSaveEnd end = eSaveEnd::OnDisk);
    // Without Commit, removes the temporary file.
    ~eSaveFile() override;
    eSaveFile(const eSaveFile&) = delete;
    eSaveFile& operator=(const eSaveFile&) = delete;

    // Closes the stream and puts the document in the target's place. True if every byte is there, as the save's end
    // says. False if the stream is Bad or the system refuses, and on every call after the first; Failure names the
    // target and tells why. On Windows a target that is in use (by a virus scanner, an indexer) is waited for, half a
    // second at most. A complete document that cannot be put in place is kept beside the target, in "NAME.unsaved", and
    // Failure names that file.
    bool Commit();

protected:
    int CreateHandle(int openFlags) const override;
    void CreateHandleError() const override;

private:
    struct eSave;

    using eFileStreamBase::Close;
    using eFileStreamBase::Open;

    eSaveFile(std::unique_ptr<eSave> begun, eSaveEnd end);
    void Abandon();
    void TellNotSaved(int refusal, const std::string& kept);

    std::unique_ptr<eSave> save;
    eSaveEnd saveEnd;
};

} // namespace IO
