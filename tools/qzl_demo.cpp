#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <string_view>

#include <CLI/CLI.hpp>

#include <qzl_base/convert.h>
#include <qzl_base/error.h>
#include <qzl_io/sdl.h>

#include "outline.h"
#include "show_system.h"
#include "terminal.h"

// Shows the library at work on a JSON document: converts it to SDL and reads that back.

namespace {

constexpr int kLinesShown = 12;
constexpr std::size_t kNamesShown = 8;

struct eArguments {
    std::string json;
    std::string sdl;
    bool system = false;
};

class eStopwatch {
public:
    double Seconds() const { return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count(); }

private:
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

// A new folder that only its owner may use, with a name that nobody can guess: the temporary folder is everybody's.
std::filesystem::path NewFolder() {
    std::random_device random;
    for (;;) {
        auto folder = std::filesystem::temp_directory_path() / ("qzl_demo_" + std::to_string(random()));
        if (std::filesystem::create_directory(folder)) {
            std::filesystem::permissions(folder, std::filesystem::perms::owner_all);
            return folder;
        }
    }
}

std::string DefaultOutput(const std::string& json) {
    return (NewFolder() / std::filesystem::path(json).stem()).generic_string() + ".sdl";
}

std::string Speed(unsigned long long bytes, double seconds) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(1) << seconds * 1000 << " ms, "
         << static_cast<double>(bytes) / (1e6 * std::max(seconds, 1e-9)) << " MB/s";
    return text.str();
}

void PrintFirstLines(const std::string& name) {
    std::ifstream file(std::filesystem::path(name), std::ios::binary);
    std::string line;
    int shown = 0;
    for (; shown < kLinesShown && std::getline(file, line); ++shown)
        std::cout << "  " << line.substr(0, line.find('\r')) << '\n';
    if (file.peek() != std::ifstream::traits_type::eof())
        std::cout << "  ...\n";
}

void ReportProgress(int line) {
    terminal::ShowProgress("reading line " + std::to_string(line));
}

bool Convert(const eArguments& arguments) {
    terminal::ShowProgress("converting " + arguments.json);
    const eStopwatch watch;
    const bool converted = JsonToSdl(eFileName(arguments.json), eFileName(arguments.sdl));
    const double seconds = watch.Seconds();
    terminal::EndProgress();
    if (!converted)
        return false;
    const auto jsonSize = std::filesystem::file_size(arguments.json);
    std::cout << arguments.json << " (" << jsonSize << " bytes)\n  -> " << arguments.sdl << " ("
              << std::filesystem::file_size(arguments.sdl) << " bytes) in " << Speed(jsonSize, seconds) << "\n\n";
    PrintFirstLines(arguments.sdl);
    return true;
}

void ReadBack(const std::string& sdl) {
    const eStopwatch watch;
    const eOutline outline(eFileName(sdl), ReportProgress);
    const double seconds = watch.Seconds();
    terminal::EndProgress();
    std::cout << "\nread back through eSDLReader in " << Speed(std::filesystem::file_size(sdl), seconds) << "\n";
    outline.PrintCounts(std::cout);
    std::cout << "\noutline\n";
    outline.PrintBlocks(std::cout, kNamesShown);
}

int Run(eArguments arguments) {
    if (arguments.system) {
        ShowSystem(std::cout);
        return EXIT_SUCCESS;
    }
    if (arguments.json.empty())
        arguments.json = std::string(QZL_EXAMPLES_DIR) + "/scene.json";
    if (arguments.sdl.empty())
        arguments.sdl = DefaultOutput(arguments.json);
    if (!Convert(arguments))
        return EXIT_FAILURE;
    ReadBack(arguments.sdl);
    return EXIT_SUCCESS;
}

// A context marks the place in a line with the byte 171, which is not UTF-8; on a terminal it is shown as "»".
std::string ForTerminal(const std::string& text) {
    constexpr std::string_view kIllFormed = "\xEF\xBF\xBD";
    constexpr std::string_view kMark = "\xC2\xBB";
    std::string shown = ToString(ToStringW(text));
    for (std::size_t at = shown.find(kIllFormed); at != std::string::npos;
         at = shown.find(kIllFormed, at + kMark.size()))
        shown.replace(at, kIllFormed.size(), kMark);
    return shown;
}

void PrintReport(const xError::eReport& report) {
    terminal::EndProgress();
    std::cerr << "qzl_demo: " << report.message << '\n';
    std::istringstream context(ForTerminal(report.context));
    for (std::string line; std::getline(context, line);)
        std::cerr << "    " << line << '\n';
}

// Shows each warning when it first occurs, and counts the repetitions of its message.
class eWarnings {
public:
    void Take(const xError::eReport& report) {
        if (++counts[report.message] == 1)
            PrintReport(report);
    }

    ~eWarnings() {
        for (const auto& [message, count] : counts)
            if (count > 1)
                std::cerr << "qzl_demo: " << count << " times: " << message << '\n';
    }

private:
    std::map<std::string, int> counts;
};

int RunReporting(eArguments arguments) {
    eWarnings warnings;
    xError::SetWarningHandler([&](const xError::eReport& report) { warnings.Take(report); });
    try {
        return Run(std::move(arguments));
    } catch (const xError::eException& error) {
        PrintReport(error.Report());
    } catch (const std::exception& error) {
        terminal::EndProgress();
        std::cerr << "qzl_demo: " << error.what() << '\n';
    }
    return EXIT_FAILURE;
}

} // namespace

// NOLINTNEXTLINE(bugprone-exception-escape): if there is no memory for the options, nothing has been done yet
int main(int argc, char** argv) {
    eArguments arguments;
    CLI::App app("Converts a JSON document to SDL, reads it back and shows what is in it.\n"
                 "Without a document it uses the project's sample scene.");
    app.add_option("IN.json", arguments.json, "the JSON document");
    app.add_option("OUT.sdl", arguments.sdl, "the SDL file; by default a file in a new folder in the temporary one");
    app.add_flag("--system", arguments.system, "show what the system services know about this machine instead");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    const int result = RunReporting(std::move(arguments));
    xError::SetWarningHandler(nullptr);
    return result;
}
