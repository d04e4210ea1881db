// SPDX-License-Identifier: BSL-1.0
#include <qzl_io/streams/read_transaction.h>

#include <utility>

namespace IO {

eReadTransaction::eReadTransaction(eStream& of) noexcept
    : stream(&of), mark(of.Position()), wasBad(of.Enabled(StreamMode::Bad)) {}

eReadTransaction::~eReadTransaction() {
    try {
        RollBack();
    } catch (...) {
        // The handler has had the report, and the position is back.
    }
}

bool eReadTransaction::Commit() {
    const bool complete = stream && stream->Disabled(StreamMode::Bad | StreamMode::Failed) && !stream->BeforeStart() &&
                          stream->ToEnd() >= 0;
    if (complete)
        stream = nullptr;
    else
        RollBack();
    return complete;
}

void eReadTransaction::RollBack() {
    eStream* const from = std::exchange(stream, nullptr);
    if (!from)
        return;
    from->ReturnTo(mark);
    if (!wasBad && !from->loss.what)
        from->Disable(StreamMode::Bad);
}

} // namespace IO
