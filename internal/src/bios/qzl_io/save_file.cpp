// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/streams/save_file.h>

#include <utility>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>

#include "files/whole_name.h"
#include "platform/file_handle.h"
#include "platform/saved_file.h"

namespace IO {

struct eSaveFile::eSave {
    std::unique_ptr<Platform::eSavedFile> file;
    int handle = -1; // until the stream takes it
    int refusal = 0; // the system's number for why there is no file

    // What Failure tells.
    std::string notBegun;
    std::string notSaved;
    std::string kept;
};

namespace {

namespace SaveReport {
constexpr char kSource[] = "internal/src/bios/qzl_io/save_file";
constexpr int kOpenAgainLine = 10;
constexpr char kOpenAgain[] = "A save file opens only once!";
} // namespace SaveReport

constexpr int kMode = StreamMode::Write | StreamMode::Create;

template <class Save, class Name>
std::unique_ptr<Save> Begin(const Name& target, const std::string& text) {
    auto save = std::make_unique<Save>();
    save->notBegun = "\"" + text + "\" cannot be saved";
    save->notSaved = "\"" + text + "\" was not saved";
    save->file = Platform::BeginSave(System::WholeText(target), &save->handle);
    if (!save->file)
        save->refusal = Platform::TakeRefusal();
    return save;
}

} // namespace

eSaveFile::eSaveFile(const eFileName& target, eSaveEnd end) : eSaveFile(Begin<eSave>(target, target.str()), end) {}

eSaveFile::eSaveFile(const eFileNameW& target, eSaveEnd end)
    : eSaveFile(Begin<eSave>(target, ToString(target.str())), end) {}

eSaveFile::eSaveFile(std::unique_ptr<eSave> begun, eSaveEnd end) : save(std::move(begun)), saveEnd(end) {
    try {
        Open(kMode);
    } catch (...) {
        Abandon();
        throw;
    }
    if (IsOpen())
        Enable(StreamMode::Errors);
    else
        loss = {save->notBegun.c_str(), save->file ? loss.number : save->refusal, nullptr};
}

eSaveFile::~eSaveFile() {
    Abandon();
}

// The document is of no use any more: its last bytes need not be written. The file is closed before it is removed.
void eSaveFile::Abandon() {
    Disable(StreamMode::Write | StreamMode::Modified);
    Close();
}

bool eSaveFile::Commit() {
    if (handle == -1)
        return false;
    Flush();
    const auto file = std::move(save->file);
    bool saved = Disabled(StreamMode::Bad) && !loss.what;
    int refusal = loss.number;
    if (saved) {
        const int written = handle;
        handle.Leave();
        saved = file->TakePlace(written, saveEnd == eSaveEnd::OnDisk);
        refusal = Platform::TakeRefusal();
    }
    Abandon();
    if (!saved)
        TellNotSaved(refusal, file->Kept());
    return saved;
}

void eSaveFile::TellNotSaved(int refusal, const std::string& kept) {
    if (!kept.empty())
        save->kept = " The document is in \"" + kept + "\".";
    Enable(StreamMode::Bad);
    loss = {save->notSaved.c_str(), refusal, save->kept.c_str()};
}

int eSaveFile::CreateHandle(int) const {
    return std::exchange(save->handle, -1);
}

// The constructor opens without Errors, so this is somebody who opens the stream as an eFileStreamBase.
void eSaveFile::CreateHandleError() const {
    xError::Fatal(SaveReport::kSource, SaveReport::kOpenAgainLine, SaveReport::kOpenAgain);
}

} // namespace IO
