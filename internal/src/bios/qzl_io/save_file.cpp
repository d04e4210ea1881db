#include <qzl_io/streams/save_file.h>

#include <utility>

#include <qzl_base/convert.h>

#include "files/failure_text.h"
#include "platform/saved_file.h"

namespace IO {

struct eSaveFile::eSave {
    std::string name; // of the target, in UTF-8
    std::unique_ptr<Platform::eSavedFile> file;
    int handle = -1; // until the stream takes it
};

namespace {

constexpr int kMode = StreamMode::Write | StreamMode::Create;

template <class Save, class Name>
std::unique_ptr<Save> Begin(const Name& target, const std::string& text) {
    auto save = std::make_unique<Save>();
    save->name = text;
    save->file = Platform::BeginSave(target.c_str(), &save->handle);
    return save;
}

} // namespace

eSaveFile::eSaveFile(const eFileName& target, eSaveEnd end) : eSaveFile(Begin<eSave>(target, target.str()), end) {}

eSaveFile::eSaveFile(const eFileNameW& target, eSaveEnd end)
    : eSaveFile(Begin<eSave>(target, ToString(target.str())), end) {}

eSaveFile::eSaveFile(std::unique_ptr<eSave> begun, eSaveEnd end) : save(std::move(begun)), saveEnd(end) {
    if (!save->file)
        failure = FailureText("\"" + save->name + "\" cannot be saved");
    try {
        Open(kMode);
    } catch (...) {
        Abandon();
        throw;
    }
    if (IsOpen())
        Enable(StreamMode::Errors);
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
    if (!save->file)
        return false;
    Flush();
    const auto file = std::move(save->file);
    bool saved = Disabled(StreamMode::Bad);
    if (saved) {
        const int written = handle;
        handle.Leave();
        saved = file->TakePlace(written, saveEnd == eSaveEnd::OnDisk);
    }
    Abandon();
    if (!saved)
        failure = FailureText("\"" + save->name + "\" was not saved");
    if (!file->Kept().empty())
        failure += " The document is in \"" + file->Kept() + "\".";
    return saved;
}

int eSaveFile::CreateHandle(int) const {
    return std::exchange(save->handle, -1);
}

// Open reports nothing without Errors: Failure tells.
void eSaveFile::CreateHandleError() const {}

} // namespace IO
