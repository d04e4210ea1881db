// SPDX-License-Identifier: BSL-1.0
#include <iostream>

#include <qzl_io/sdl.h>
#include <qzl_io/version.h>

int main() {
    IO::eMemoryStream text;
    {
        eSDLWriter writer(&text);
        writer << "lamp" << 1200;
    }
    text.Seek(0, IO::eSeekDir::Begin);
    eSDLReader reader(&text, nullptr);
    std::cout << "qzl_io " QZL_IO_VERSION_TEXT ": " << reader.GetString();
    std::cout << " " << reader.GetInt() << "\n";
}
