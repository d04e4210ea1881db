// SPDX-License-Identifier: BSL-1.0
#include <chrono>
#include <iomanip>
#include <iostream>
#include <ostream>
#include <string>
#include <string_view>

#include <qzl_io/system.h>

#include "terminal.h"
#include "verb.h"

namespace {

constexpr int kLabelWidth = 16;
constexpr int kSizeWidth = 14;

void PrintFact(std::ostream& out, std::string_view label, const std::string& fact) {
    out << "  " << std::left << std::setw(kLabelWidth) << label
        << (fact.empty() ? "(unknown)" : terminal::Printable(fact)) << '\n';
}

void PrintMachine(std::ostream& out) {
    out << "machine\n";
    PrintFact(out, "computer", IO::System::MachineName());
    PrintFact(out, "user", IO::System::UserName());
    PrintFact(out, "version", IO::System::WindowsVersion());
    // The id ends at its first zero, but the text that holds it does not.
    PrintFact(out, "product id", IO::System::ProductId());
    PrintFact(out, "disk serial", IO::System::HDDSerialNumber());
}

void PrintSystem(std::ostream& out) {
    const IO::System::eSystemFacts facts = IO::System::SystemFacts("sdl");
    out << "system\n";
    PrintFact(out, "name", facts.name);
    PrintFact(out, "version", facts.version);
    if (!facts.distribution.empty())
        PrintFact(out, "distribution", facts.distribution);
    PrintFact(out, "made for", facts.architecture);
    PrintFact(out, "runs on", facts.machineArchitecture);
    PrintFact(out, "processors", std::to_string(facts.processors));
    PrintFact(out, "memory", std::to_string(facts.memory) + " bytes");
    PrintFact(out, "id for sdl", facts.machineId);
    PrintFact(out, "narrow names", IO::System::NamesAreUtf8() ? "UTF-8" : "the system's code page");
}

void PrintUserFolders(std::ostream& out) {
    using IO::System::eUserFolder;
    const auto print = [&out](std::string_view label, eUserFolder folder) {
        PrintFact(out, label, IO::System::NameToUtf8(IO::System::UserFolderW(folder)));
    };
    out << "folders of the user\n";
    print("settings", eUserFolder::Settings);
    print("data", eUserFolder::Data);
    print("cache", eUserFolder::Cache);
    print("temporary", eUserFolder::Temporary);
    print("documents", eUserFolder::Documents);
}

void PrintWorkingPaths(std::ostream& out) {
    const IO::System::eWorkingPaths paths("sdl");
    out << "working paths\n";
    PrintFact(out, "all users", paths.AppDataAllUsers());
    PrintFact(out, "user", paths.AppDataUser());
    PrintFact(out, "documents", paths.MyDocuments());
    PrintFact(out, "working", paths.Working());
}

// "2026-11-20 14:05", UTC.
std::string Shown(IO::eFileTime time) {
    using namespace std::chrono;
    constexpr unsigned long long kTicksPerMinute = 60ull * 10'000'000;
    const sys_days first = year(1601) / January / 1;
    const auto moment = first + minutes(time.Ticks() / kTicksPerMinute);
    const auto day = floor<days>(moment);
    const year_month_day date(day);
    const hh_mm_ss clock(moment - day);
    const auto two = [](auto number) { return (number < 10 ? "0" : "") + std::to_string(number); };
    return std::to_string(static_cast<int>(date.year())) + "-" + two(static_cast<unsigned>(date.month())) + "-" +
           two(static_cast<unsigned>(date.day())) + " " + two(clock.hours().count()) + ":" +
           two(clock.minutes().count());
}

void PrintEntry(std::ostream& out, const IO::eSearch& entry) {
    out << "  " << Shown(entry.ModifyTime()) << std::right << std::setw(kSizeWidth);
    if (entry.IsFile())
        out << entry.Size();
    else
        out << "folder";
    out << "  " << terminal::Printable(entry.Name()) << (entry.IsLink() ? " (link)" : "") << '\n';
}

void PrintCurrentFolder(std::ostream& out) {
    unsigned long long files = 0;
    unsigned long long bytes = 0;
    unsigned long long folders = 0;
    out << "current folder\n";
    for (IO::eSearch search("./", "*.*"); search.Valid(); search.Next()) {
        if (!search.IsFile() && !search.IsSubfolder())
            continue;
        PrintEntry(out, search);
        files += search.IsFile();
        folders += search.IsSubfolder();
        bytes += search.Size();
    }
    out << "  " << files << " files of " << bytes << " bytes, " << folders << " folders\n";
    if (IO::System::eSpace space; IO::System::GetSpace("./", &space))
        out << "  " << space.free << " of " << space.total << " bytes are free\n";
}

eEnd ShowSystem() {
    PrintMachine(std::cout);
    PrintSystem(std::cout);
    PrintUserFolders(std::cout);
    PrintWorkingPaths(std::cout);
    PrintCurrentFolder(std::cout);
    return eEnd::Fine;
}

} // namespace

eVerb::eRun DeclareSystem(CLI::App*) {
    return ShowSystem;
}
