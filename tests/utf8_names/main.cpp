// SPDX-License-Identifier: BSL-1.0
#include <iostream>
#include <string>

#include <qzl_io/streams.h>
#include <qzl_io/system.h>

// A program whose narrow names are UTF-8: what it writes by a narrow name is found by the wide one, and listed by both.

namespace {

constexpr char kName[] = "utf8_names_work/\xce\xbb \xe6\x97\xa5\xe6\x9c\xac \xf0\x9f\x8c\x8d.txt";

bool IsListed() {
    const eFileName name(kName);
    for (const auto& entry : IO::eSearch("utf8_names_work/", "*.txt"))
        if (entry.Name() == name.GetItem(NameExt).str())
            return true;
    return false;
}

} // namespace

int main() {
    if (!IO::System::NamesAreUtf8()) {
        std::cout << "this system does not read the setting\n";
        return 77;
    }
    IO::System::Path::Create("utf8_names_work");
    {
        IO::eFileStream file(eFileName(kName), IO::StreamMode::Write | IO::StreamMode::Create);
        file.Write("content", 7);
    }
    const bool listed = IsListed();
    const bool found = IO::System::FileW::Size(IO::System::NameFromUtf8W(kName)) == 7;
    const bool removed = static_cast<bool>(IO::System::Path::DeleteTree("utf8_names_work"));
    std::cout << "listed " << listed << ", found " << found << ", removed " << removed << '\n';
    return listed && found && removed ? 0 : 1;
}
