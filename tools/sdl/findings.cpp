// SPDX-License-Identifier: BSL-1.0
#include "findings.h"

#include <iostream>
#include <string_view>

#include <qzl_io/version.h>

#include "files.h"
#include "json_text.h"
#include "reports.h"
#include "terminal.h"

namespace {

bool IsError(const xError::eDiagnostic& mistake) {
    return mistake.severity == xError::eDiagnostic::eSeverity::Error;
}

class eText : public eFindingsOutput {
public:
    void Take(const eFindings& findings) override {
        static const auto colors = terminal::TakesColours() ? xError::eColors::With : xError::eColors::Without;
        unsigned long long shown = 0;
        for (const xError::eDiagnostic& mistake : findings.mistakes) {
            std::cout << xError::Render(mistake, colors);
            shown += IsError(mistake);
        }
        if (shown < findings.errors)
            std::cout << ShownName(findings.file) << ": " << Counted(findings.errors - shown, "more error") << '\n';
    }
};

// Members of a JSON object, one after the other.
class eMembers {
public:
    explicit eMembers(std::string* target) : text(*target) { text += '{'; }
    ~eMembers() { text += '}'; }
    eMembers(const eMembers&) = delete;
    eMembers& operator=(const eMembers&) = delete;

    std::string& Name(const char* name) {
        text.append(first ? "\"" : ",\"").append(name).append("\":");
        first = false;
        return text;
    }
    void Text(const char* name, std::string_view value) { json_text::AppendString(&Name(name), value); }
    void TextIfAny(const char* name, std::string_view value) {
        if (!value.empty())
            Text(name, value);
    }
    void Number(const char* name, unsigned long long value) { Name(name) += std::to_string(value); }
    void Number(const char* name, int value) { Name(name) += std::to_string(value); }

private:
    std::string& text;
    bool first = true;
};

template <class eItems, class eAppend>
void AppendArray(std::string* text, const eItems& items, const eAppend& append) {
    *text += '[';
    for (const auto& item : items) {
        if (&item != &items.front())
            *text += ',';
        append(item);
    }
    *text += ']';
}

// --- JSON ---

void AddPlace(eMembers* members, const xError::ePlace& place) {
    members->Text("file", place.source);
    members->Number("line", place.line);
    members->Number("column", place.column);
    members->Number("byteColumn", place.byteColumn);
    members->Number("offset", place.offset);
}

void AppendJson(std::string* text, const xError::eDiagnostic& mistake) {
    eMembers members(text);
    AddPlace(&members, mistake.excerpt.place);
    members.Text("severity", IsError(mistake) ? "error" : "warning");
    members.Text("message", mistake.message);
    members.TextIfAny("expected", mistake.expected);
    members.TextIfAny("found", mistake.found);
    members.TextIfAny("suggestion", mistake.suggestion);
    if (mistake.notes.empty())
        return;
    AppendArray(&members.Name("notes"), mistake.notes, [&](const xError::eDiagnostic::eNote& note) {
        eMembers noted(text);
        AddPlace(&noted, note.excerpt.place);
        noted.Text("message", note.message);
    });
}

class eJson : public eFindingsOutput {
public:
    void Take(const eFindings& findings) override {
        for (const xError::eDiagnostic& mistake : findings.mistakes) {
            std::string text;
            AppendJson(&text, mistake);
            std::cout << (any ? ",\n" : "[\n") << text;
            any = true;
        }
    }
    void End() override { std::cout << (any ? "\n]\n" : "[]\n"); }

private:
    bool any = false;
};

// --- SARIF ---

// A relative reference or a file URI.
std::string UriOf(std::string_view name) {
    constexpr std::string_view kPlain = "-._~/:";
    constexpr char kDigits[] = "0123456789ABCDEF";
    const bool drive = name.size() > 2 && name[1] == ':';
    std::string uri = name.starts_with('/') ? "file://" : drive ? "file:///" : "";
    for (const char character : name) {
        const auto byte = static_cast<unsigned char>(character);
        const bool letter = (byte | 0x20) >= 'a' && (byte | 0x20) <= 'z';
        const bool plain = kPlain.find(character) != std::string_view::npos && (character != ':' || drive);
        if (letter || (byte >= '0' && byte <= '9') || plain)
            uri += character;
        else
            uri.append(1, '%').append(1, kDigits[byte >> 4]).append(1, kDigits[byte & 15]);
    }
    return uri;
}

void AddMessage(eMembers* members, std::string* text, std::string_view message) {
    members->Name("message");
    eMembers(text).Text("text", message);
}

void AddLocation(eMembers* members, std::string* text, const xError::ePlace& place) {
    members->Name("physicalLocation");
    eMembers physical(text);
    physical.Name("artifactLocation");
    eMembers(text).Text("uri", UriOf(place.source));
    physical.Name("region");
    eMembers region(text);
    region.Number("startLine", place.line);
    region.Number("startColumn", place.column);
    region.Number("byteOffset", place.offset);
}

std::string WholeMessage(const xError::eDiagnostic& mistake) {
    std::string message = mistake.message;
    if (!mistake.expected.empty())
        message += " Expected " + mistake.expected + (mistake.found.empty() ? "." : ", found " + mistake.found + ".");
    if (!mistake.suggestion.empty())
        message += " Did you mean '" + mistake.suggestion + "'?";
    return message;
}

void AppendSarif(std::string* text, const xError::eDiagnostic& mistake) {
    eMembers members(text);
    members.Text("level", IsError(mistake) ? "error" : "warning");
    AddMessage(&members, text, WholeMessage(mistake));
    members.Name("locations") += '[';
    {
        eMembers location(text);
        AddLocation(&location, text, mistake.excerpt.place);
    }
    *text += ']';
    if (mistake.notes.empty())
        return;
    AppendArray(&members.Name("relatedLocations"), mistake.notes, [&](const xError::eDiagnostic::eNote& note) {
        eMembers noted(text);
        AddLocation(&noted, text, note.excerpt.place);
        AddMessage(&noted, text, note.message);
    });
}

class eSarif : public eFindingsOutput {
public:
    eSarif() {
        std::cout << "{\"$schema\":\"https://json.schemastore.org/sarif-2.1.0.json\",\"version\":\"2.1.0\",\"runs\":[{"
                     "\"tool\":{\"driver\":{\"name\":\"sdl\",\"version\":\"" QZL_IO_VERSION_TEXT "\"}},"
                     "\"columnKind\":\"unicodeCodePoints\",\"results\":[";
    }
    void Take(const eFindings& findings) override {
        for (const xError::eDiagnostic& mistake : findings.mistakes) {
            std::string text;
            AppendSarif(&text, mistake);
            std::cout << (any ? ",\n" : "\n") << text;
            any = true;
        }
    }
    void End() override { std::cout << "]}]}\n"; }

private:
    bool any = false;
};

} // namespace

std::unique_ptr<eFindingsOutput> TextOutput() {
    return std::make_unique<eText>();
}

std::unique_ptr<eFindingsOutput> JsonOutput() {
    return std::make_unique<eJson>();
}

std::unique_ptr<eFindingsOutput> SarifOutput() {
    return std::make_unique<eSarif>();
}
