// SPDX-License-Identifier: BSL-1.0
#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <qzl_base/error.h>
#include <qzl_io/streams.h>

#include "streams/plain_stream.h"
#include "streams/probe.h"

#include "require.h"
#include "script.h"
#include "target.h"
#include "work_folder.h"

// The bytes are operations on three streams with the same content: one whose reports return, one whose reports throw,
// and a model that takes one plain step after another on a vector of bytes. After each operation their states, contents
// and reports are compared.

namespace {

using IO::eSeekDir;
namespace Mode = IO::StreamMode;

// What error reports do, and their messages.
struct eReporting {
    bool throwing = false;
    std::vector<std::string> messages;
};

eReporting& Reporting() {
    static eReporting reporting;
    [[maybe_unused]] static const auto previous = xError::SetErrorHandler([](const xError::eReport& report) {
        if (reporting.throwing)
            throw xError::eException(report);
        reporting.messages.push_back(report.message);
    });
    return reporting;
}

// Runs an operation with reports that throw.
template <class eOperation>
void RunThrowing(const eOperation& operation) {
    Reporting().throwing = true;
    try {
        operation();
    } catch (const xError::eException&) {
        // The stream is what it is after a report that returns.
    }
    Reporting().throwing = false;
}

// A stream of the given class as a copy or, if it is moved, as itself in another place.
template <class eClass>
std::unique_ptr<IO::eStream> AnotherOf(IO::eStream& stream, bool moved) {
    auto& original = static_cast<eClass&>(stream);
    return moved ? std::make_unique<eClass>(std::move(original)) : std::make_unique<eClass>(original);
}

// A stream, its twin whose reports throw, their model, and what their class does.
struct eTrio {
    std::unique_ptr<IO::eStream> stream;
    std::unique_ptr<IO::eStream> twin;
    std::unique_ptr<ePlainStream> plain;
    std::string (*stored)(const IO::eStream& stream, bool ofTwin) = nullptr;
    std::unique_ptr<IO::eStream> (*another)(IO::eStream& stream, bool moved) = nullptr;
    std::unique_ptr<std::string> bytes = {}; // of views
    std::unique_ptr<std::string> twinBytes = {};
};

std::string StoredInMemory(const IO::eStream& stream, bool) {
    const unsigned long long held = std::min(stream.Size(), eInside::BufferSizeOf(stream));
    return {reinterpret_cast<const char*>(stream.Buffer()), stream.Buffer() ? held : 0};
}

std::string AllOfView(const IO::eStream& stream, bool) {
    return {reinterpret_cast<const char*>(stream.Buffer()), eInside::BufferSizeOf(stream)};
}

eTrio MemoryTrio(eScript& script) {
    const unsigned long long size = 1 + script.Below(48);
    const unsigned long long growth = script.Below(3) == 0 ? 1 + script.Below(50) : 0;
    return {std::make_unique<IO::eMemoryStream>(size, growth), std::make_unique<IO::eMemoryStream>(size, growth),
            std::make_unique<ePlainMemory>(size, growth), StoredInMemory, AnotherOf<IO::eMemoryStream>};
}

eTrio ViewTrio(eScript& script) {
    std::string text(script.Text());
    if (text.empty())
        text = "v";
    const unsigned long long used = script.Below(text.size() + 1);
    auto bytes = std::make_unique<std::string>(text), twinBytes = std::make_unique<std::string>(text);
    const auto view = [&](const std::string& of) {
        return std::make_unique<IO::eBufferStream>(reinterpret_cast<const unsigned char*>(of.data()), of.size(), used);
    };
    auto stream = view(*bytes), twin = view(*twinBytes);
    return {std::move(stream),
            std::move(twin),
            std::make_unique<ePlainView>(text, used),
            AllOfView,
            AnotherOf<IO::eBufferStream>,
            std::move(bytes),
            std::move(twinBytes)};
}

const eWorkFolder& WorkFolder() {
    static const eWorkFolder folder;
    return folder;
}

eTrio FileTrio(eScript& script) {
    constexpr unsigned short kModes[] = {0x001, 0x002, 0x003, 0x201, 0x202, 0x203, 0x206, 0x207};
    const unsigned short mode = kModes[script.Below(std::size(kModes))];
    const std::string_view piece = script.Text();
    std::string content(piece);
    for (unsigned long long times = script.Below(4) == 0 ? script.Byte() : 0; times > 0; --times)
        content += piece;
    const std::string name = WorkFolder().Write("file", content);
    const std::string twinName = WorkFolder().Write("twin", content);
    auto stream = std::make_unique<IO::eFileStream>(), twin = std::make_unique<IO::eFileStream>();
    stream->Open(name, mode);
    twin->Open(twinName, mode);
    return {std::move(stream), std::move(twin), std::make_unique<ePlainFile>(name, content, mode),
            [](const IO::eStream&, bool ofTwin) { return WorkFolder().Read(ofTwin ? "twin" : "file"); },
            AnotherOf<IO::eFileStream>};
}

eTrio TrioOf(eScript& script) {
    switch (script.Below(8)) {
    case 0:
        return FileTrio(script);
    case 1:
    case 2:
    case 3:
        return ViewTrio(script);
    default:
        return MemoryTrio(script);
    }
}

// Makes one operation of a script with all three, and compares them.
class eComparison {
public:
    eComparison(eTrio& streams, eScript& source)
        : trio(streams),
          plain(*streams.plain),
          script(source),
          memory(dynamic_cast<IO::eMemoryStream*>(streams.stream.get()) != nullptr),
          file(dynamic_cast<IO::eFileStreamBase*>(streams.stream.get()) != nullptr) {}

    void Run() {
        constexpr int kMostSteps = 200;
        constexpr unsigned long long kLargest = 1 << 17;
        try {
            for (int step = 0; step < kMostSteps && !script.IsOver() && plain.Size() < kLargest; ++step)
                Step();
        } catch (const ePlainStream::eNoBytes&) {
            // The plain steps have no bytes to continue with.
        }
    }

private:
    template <class eOperation>
    void Both(const eOperation& operation) {
        operation(*trio.stream);
        RunThrowing([&] { operation(*trio.twin); });
    }

    void Step() {
        Reporting().messages.clear();
        reported = plain.Reports().size();
        const bool astray = plain.Astray();
        const bool moves = astray || script.Below(4) == 0;
        if (moves)
            Move(astray);
        else
            Operate();
        Compare();
    }

    void RequireSame(bool same, const char* part) {
        if (!same)
            Require(false, what + std::string(": ") + part);
    }

    void Compare() {
        RequireSame(trio.stream->Position() == plain.Position(), "the position");
        RequireSame(trio.stream->Size() == plain.Size(), "the size");
        RequireSame(trio.stream->Eos() == plain.Eos(), "the end");
        RequireSame(eInside::FlagsOf(*trio.stream) == plain.Flags(), "the flags");
        RequireEqual(eInside::DumpOf(*trio.stream), plain.Dump(), what);
        const std::vector<std::string> expected(plain.Reports().begin() + static_cast<std::ptrdiff_t>(reported),
                                                plain.Reports().end());
        RequireSame(Reporting().messages == expected, "the reports");
        CompareTwin();
        plain.Calls().Clear();
    }

    // The state, without the name of a file.
    static std::string StateOf(const IO::eStream& stream) {
        const std::string dump = eInside::DumpOf(stream);
        return dump.substr(dump.rfind('('));
    }

    void CompareTwin() {
        RequireSame(StateOf(*trio.twin) == StateOf(*trio.stream), "the state after a report that throws");
        RequireSame(eInside::FlagsOf(*trio.twin) == plain.Flags(), "the flags after a report that throws");
        const unsigned long long held = std::min(trio.stream->Size(), eInside::BufferSizeOf(*trio.stream));
        const bool comparable = !file && trio.stream->Buffer() && trio.twin->Buffer();
        RequireSame(!comparable || std::memcmp(trio.stream->Buffer(), trio.twin->Buffer(), held) == 0,
                    "the content after a report that throws");
    }

    void CompareStored() {
        std::string found = trio.stored(*trio.stream, false), expected = plain.Stored();
        if (file && strayed) { // past the data the content of the file is unspecified
            found.resize(plain.Size());
            expected.resize(plain.Size());
        }
        RequireEqual(found, expected, what);
    }

    std::size_t Length() {
        const unsigned length = script.Byte();
        return length < 192 ? length % 32 : (length - 191) * std::size_t{40};
    }
    std::string SomeBytes() {
        std::string bytes(script.Text());
        if (script.Below(8) == 7)
            bytes.resize(Length(), 'b');
        return bytes;
    }

    // A place mostly within the data, sometimes near the end, rarely before the start.
    unsigned long long SomePlace() {
        const unsigned choice = script.Byte();
        const unsigned long long size = plain.Size();
        if (choice < 192)
            return script.Number(3) % (size + 1);
        const auto near = static_cast<long long>(size + choice % 5) - 2;
        return near < 0 && choice < 250 ? 0 : static_cast<unsigned long long>(near);
    }

    void Move(bool astray) {
        what = "a move";
        strayed = strayed || astray;
        if (astray) {
            const unsigned long long to = script.Number(3) % (std::min<unsigned long long>(plain.Size(), 1 << 17) + 1);
            plain.Seek(to, eSeekDir::Begin);
            Both([&](IO::eStream& stream) { stream.Seek(to, eSeekDir::Begin); });
            plain.Disable(Mode::Bad);
            Both([](IO::eStream& stream) { stream.Disable(Mode::Bad); });
            return;
        }
        const unsigned long long to = SomePlace();
        switch (script.Below(5)) {
        case 0:
            plain.Seek(to, eSeekDir::Begin);
            return Both([&](IO::eStream& stream) { stream.Seek(to, eSeekDir::Begin); });
        case 1: {
            const unsigned long long by = to - plain.Position();
            plain.Seek(by, eSeekDir::Current);
            return Both([&](IO::eStream& stream) { stream.Seek(by, eSeekDir::Current); });
        }
        case 2: {
            const unsigned long long back = plain.Size() - to;
            plain.Seek(back, eSeekDir::End);
            return Both([&](IO::eStream& stream) { stream.Seek(back, eSeekDir::End); });
        }
        case 3: {
            const unsigned long long by = to - plain.Position();
            plain.Skip(by);
            return Both([&](IO::eStream& stream) { stream.Skip(by); });
        }
        default:
            plain.Seek(0, eSeekDir::Begin);
            return Both([](IO::eStream& stream) { stream.Reset(); });
        }
    }

    struct eOperation {
        const char* name;
        bool writes;
        void (eComparison::*run)();
    };
    static std::span<const eOperation> Operations();

    void Operate() {
        const eOperation& operation = Operations()[script.Below(Operations().size())];
        what = operation.name;
        if (file && operation.writes && !plain.Has(Mode::Write)) // the file would be shorter than the stream
            return;
        (this->*operation.run)();
    }

    void ReadBytes() {
        const std::size_t n = Length();
        const std::string expected = plain.Read(n);
        std::string read(n, '?');
        trio.stream->Read(read.data(), n);
        Require(read.substr(expected.size()) == std::string(n - expected.size(), '?'), "what is not read stays");
        read.resize(expected.size());
        RequireEqual(read, expected, "the bytes read");
        RunThrowing([&] { trio.twin->Read(read.data(), n <= read.size() ? n : read.size()); });
        if (n > read.size())
            RunThrowing([&] {
                char more;
                trio.twin->Read(&more, 1);
            });
    }
    void WriteBytes() {
        const std::string bytes = SomeBytes();
        plain.Write(bytes);
        Both([&](IO::eStream& stream) { stream.Write(bytes.data(), bytes.size()); });
    }
    void WriteOwnBytes() {
        const std::string bytes = SomeBytes();
        plain.Write(bytes);
        Both([&](IO::eStream& stream) {
            std::vector<char> block(bytes.begin(), bytes.end());
            stream.WriteReleasing(block.data(), block.size());
        });
    }
    void CopyOut() {
        const unsigned long long n = script.Flag() ? Length() : 0;
        const std::string expected = plain.CopyTo(n);
        Both([&](IO::eStream& stream) {
            IO::eMemoryStream target(1);
            stream.CopyTo(target, n);
            RequireEqual(Content(target), expected, "the copied bytes");
        });
    }
    void Append() {
        const unsigned long long n = Length();
        std::string text = "begin";
        const unsigned long long taken = trio.stream->AppendTo(&text, n);
        Require(taken <= n && text.size() == 5 + taken && text.starts_with("begin"), "the bytes appended to a text");
        std::string twinText;
        trio.twin->AppendTo(&twinText, n);
        if (taken > 0)
            RequireEqual(text.substr(5), plain.Read(taken), "the text appended");
    }
    void Clear() {
        plain.Clear();
        Both([](IO::eStream& stream) { stream.Clear(); });
        CompareStored();
    }
    void CallTrunc() {
        plain.Trunc();
        Both([](IO::eStream& stream) { stream.Trunc(); });
        CompareStored();
    }
    void CallFlush() {
        plain.Flush();
        Both([](IO::eStream& stream) { stream.Flush(); });
        CompareStored();
    }
    void CallOverflow() {
        if (memory && plain.Size() < script.Number(2)) // which would otherwise only grow
            return;
        plain.Overflow();
        Both([](IO::eStream& stream) { stream.Overflow(); });
    }
    void CallUnderflow() {
        plain.Underflow();
        Both([](IO::eStream& stream) { stream.Underflow(); });
    }

    template <class V>
    void PutValue() {
        const auto value = static_cast<V>(script.Number(8));
        plain.Place({reinterpret_cast<const char*>(&value), sizeof value});
        Both([&](IO::eStream& stream) { stream << value; });
    }
    void PutBytes() {
        const auto value = static_cast<unsigned int>(script.Number(4));
        const unsigned n = 1 + script.Below(4);
        plain.Place({reinterpret_cast<const char*>(&value), n});
        Both([&](IO::eStream& stream) { stream.Bytes(static_cast<int>(n), value); });
    }
    template <class V>
    void GetValue() {
        const bool there = plain.Holds(sizeof(V));
        const std::string expected = plain.Take(sizeof(V));
        Both([&](IO::eStream& stream) {
            V value = 0;
            stream >> value;
            Require(!there || std::memcmp(&value, expected.data(), sizeof(V)) == 0, "a value read");
        });
    }
    void PeekValue() {
        const bool there = plain.Holds(8);
        const std::string expected = plain.Look(8);
        Both([&](IO::eStream& stream) {
            const unsigned long long value = stream.Uint64();
            Require(!there || std::memcmp(&value, expected.data(), 8) == 0, "a value seen");
        });
    }
    void PutText() {
        std::string text = SomeBytes();
        text.resize(std::min(text.find('\0'), text.size()));
        plain.PutText(text);
        trio.stream->operator<<(text);
        RunThrowing([&] { trio.twin->operator<<(text); });
    }
    void GetText() {
        const bool there = plain.Holds(1);
        if (file && !there) // whose buffer past the data is unspecified, and so is the length
            return;
        const std::string expected = plain.GetText();
        Both([&](IO::eStream& stream) {
            const std::string text = stream.GetString();
            if (there)
                RequireEqual(text, expected, "a text read");
        });
    }
    void GetLine() {
        const char delimiter = script.Flag() ? '\n' : static_cast<char>(script.Byte());
        const std::string expected = plain.GetLine(delimiter);
        Both([&](IO::eStream& stream) { RequireEqual(stream.GetLine(delimiter), expected, "a line read"); });
    }

    void GetFileLine() {
        constexpr unsigned long long kLongest = 4000; // the plain way takes the square of a line's length
        if (!file || plain.Size() > plain.Position() + kLongest)
            return;
        const std::string expected = static_cast<ePlainFile&>(plain).GetLine();
        Both([&](IO::eStream& stream) {
            RequireEqual(static_cast<IO::eFileStreamBase&>(stream).GetLine(), expected, "a line of a file");
        });
    }
    void Resize() {
        if (!memory)
            return;
        const unsigned long long size = script.Number(2) % (2 * plain.Size() + 20);
        const bool extend = script.Flag();
        static_cast<ePlainMemory&>(plain).ResizeBuffer(size, extend);
        Both([&](IO::eStream& stream) { static_cast<IO::eMemoryStream&>(stream).ResizeBuffer(size, extend); });
    }
    void ShiftLeft() {
        if (!memory)
            return;
        const unsigned long long n = script.Number(2) % (plain.Size() + 2);
        const bool expected = static_cast<ePlainMemory&>(plain).ShiftLeft(n);
        Both([&](IO::eStream& stream) {
            Require(static_cast<IO::eMemoryStream&>(stream).ShiftLeft(n) == expected, "a shift");
        });
        CompareStored();
    }

    // Goes on with a copy of each stream, or with the streams in another place. The originals live until the end or are
    // destroyed at once.
    void Exchange() {
        const bool moved = script.Flag(), kept = script.Flag() && originals.size() < kMostOriginals;
        for (std::unique_ptr<IO::eStream>* stream : {&trio.stream, &trio.twin}) {
            std::unique_ptr<IO::eStream> another = trio.another(**stream, moved);
            std::swap(*stream, another);
            if (kept)
                originals.push_back(std::move(another));
        }
    }

    static constexpr std::size_t kMostOriginals = 8;

    eTrio& trio;
    ePlainStream& plain;
    eScript& script;
    const bool memory, file;
    std::size_t reported = 0; // by the model, before the operation
    bool strayed = false;
    std::vector<std::unique_ptr<IO::eStream>> originals;
    const char* what = ""; // the operation
};

std::span<const eComparison::eOperation> eComparison::Operations() {
    static const eOperation operations[] = {
        {"Read", false, &eComparison::ReadBytes},
        {"Write", true, &eComparison::WriteBytes},
        {"WriteReleasing", true, &eComparison::WriteOwnBytes},
        {"CopyTo", false, &eComparison::CopyOut},
        {"AppendTo", false, &eComparison::Append},
        {"Clear", true, &eComparison::Clear},
        {"Trunc", true, &eComparison::CallTrunc},
        {"Flush", false, &eComparison::CallFlush},
        {"Overflow", false, &eComparison::CallOverflow},
        {"Underflow", false, &eComparison::CallUnderflow},
        {"put 1 byte", true, &eComparison::PutValue<unsigned char>},
        {"put 2 bytes", true, &eComparison::PutValue<unsigned short>},
        {"put 4 bytes", true, &eComparison::PutValue<int>},
        {"put 8 bytes", true, &eComparison::PutValue<long long>},
        {"Bytes", true, &eComparison::PutBytes},
        {"get 1 byte", false, &eComparison::GetValue<unsigned char>},
        {"get 2 bytes", false, &eComparison::GetValue<short>},
        {"get 4 bytes", false, &eComparison::GetValue<unsigned int>},
        {"get 8 bytes", false, &eComparison::GetValue<unsigned long long>},
        {"look at 8 bytes", false, &eComparison::PeekValue},
        {"put a text", true, &eComparison::PutText},
        {"get a text", false, &eComparison::GetText},
        {"GetLine", false, &eComparison::GetLine},
        {"GetLine of a file", false, &eComparison::GetFileLine},
        {"ResizeBuffer", false, &eComparison::Resize},
        {"ShiftLeft", false, &eComparison::ShiftLeft},
        {"a copy", false, &eComparison::Exchange},
    };
    return operations;
}

} // namespace

void Check(std::string_view input) {
    Reporting();
    eScript script(input);
    eTrio trio = TrioOf(script);
    eComparison(trio, script).Run();
}

// The input as content of a stream in memory and of a file, written and read in small pieces and in lines.
void Work(std::string_view input) {
    Reporting();
    IO::eMemoryStream memory(1, 4096);
    for (std::size_t at = 0; at < input.size(); at += 7)
        memory << input[at] << std::string(input.substr(at, 6));
    memory.Reset();
    IO::eFileStream file(WorkFolder().Name("work"), Mode::Read | Mode::Write | Mode::Create);
    memory.CopyTo(file, 0);
    file.Reset();
    while (!file.Eos())
        file.GetLine();
}
