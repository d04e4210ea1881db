// SPDX-License-Identifier: BSL-1.0
#pragma once

#include <functional>
#include <vector>

#include <qzl_io/file_name.h>
#include <qzl_io/streams/failure.h>

// What the operations on folder trees that tell (Path::CopyTree, DeleteTree and PurgeTree) say and are told:
//
//     IO::System::eTreeTask task;
//     task.progress = [&](const IO::System::eTreeProgress& at) { return Show(at.now.bytes, at.all.bytes), !stopped; };
//     const IO::System::eTreeResult result = IO::System::Path::CopyTree("c:/data", "d:/backup", task);
//     for (const auto& failure : result.failures)
//         Warn(failure.name, failure.reason.text);

namespace IO::System {

// A number of entries of a tree.
struct eTreeCount {
    unsigned long long folders = 0;
    unsigned long long files = 0; // and links, devices and pipes
    unsigned long long bytes = 0; // in the files
};

// How far an operation has come.
struct eTreeProgress {
    eTreeCount now;        // what has been dealt with, whether it could be done or not
    eTreeCount all;        // what there was to do when the tree was counted; zeros if it was not
    bool counting = false; // the tree is still being counted: `all` grows, and nothing has been done
};

// What a caller asks of an operation beside its work.
struct eTreeTask {
    // Called on the caller's thread after each entry, and at least once for each 4 MiB of a file; on Windows, within a
    // file whenever the system reports progress. False cancels the operation; so does an exception, which the operation
    // passes on once it has stopped. May be empty.
    std::function<bool(const eTreeProgress&)> progress;

    // Whether the tree is counted before anything is done, if there is `progress`. That walks over it once more.
    bool countFirst = true;
};

// What could not be done with an entry.
enum class eTreeStep {
    Open,   // the folder could not be listed, or not to its end
    Create, // the folder could not be created in the target
    Copy,   // the file or link could not be copied
    Remove, // the entry could not be removed
};

// One failure, and its reason.
template <class Name>
struct eTreeFailureOf {
    // The entry's full name: the folder's name as it was given and the names below it. That of the source in a copy,
    // unless something in the target could not be removed. A narrow name on Windows has a "?" for each character that
    // the code page lacks, and then names nothing.
    Name name;
    eTreeStep step = eTreeStep::Open;
    eFailure reason; // the system's error number, and a sentence with the system's own words
};
using eTreeFailure = eTreeFailureOf<eFileName>;
using eTreeFailureW = eTreeFailureOf<eFileNameW>;

// What has become of an operation.
template <class Name>
struct eTreeResultOf {
    // The failures in order: at most 1,000, whose names have at most 1,048,576 characters in all. So a result has a
    // limited size, however many failures there are.
    static constexpr unsigned long long kMostFailures = 1'000;
    static constexpr unsigned long long kMostCharacters = 1'048'576;
    std::vector<eTreeFailureOf<Name>> failures;
    unsigned long long failed = 0; // the number of all failures

    eTreeCount done;        // what has been copied or removed
    bool cancelled = false; // the operation was stopped; what it had done by then stays done

    // Whether everything has been done.
    explicit operator bool() const noexcept { return failed == 0 && !cancelled; }
};
using eTreeResult = eTreeResultOf<eFileName>;
using eTreeResultW = eTreeResultOf<eFileNameW>;

} // namespace IO::System
