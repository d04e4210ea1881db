// SPDX-License-Identifier: BSL-1.0
#include <qzl_base/error.h>
#include <qzl_io/qzl_io.h>

#include <iostream>
#include <string_view>
#include <thread>

static_assert(QZL_IO_VERSION >= 10000 && QZL_IO_VERSION / 10000 == QZL_IO_VERSION_MAJOR);
static_assert(std::string_view(QZL_IO_VERSION_TEXT).starts_with(char('0' + QZL_IO_VERSION_MAJOR)));

static eSDLKeyword* words;
static eSDLKeyword lamp(words, "lamp", 1);

static void Write(const eFileName& file) {
    eSDLWriter writer(file);
    writer.PushKeywords(words);
    writer << block{lamp.id} << "sun" << 1200 << endb;
}

static void Read(const eFileName& file) {
    const eFileName title = file.GetItem(Title);
    eSDLReader reader(file, title.c_str(), nullptr);
    std::cout << reader.GetString() << " " << reader.GetInt() << ", ";
}

int main() {
    const eFileName file("lamp.sdl");
    Write(file);
    std::thread(Read, file).join();
    try {
        xError::Error(__FILE__, __LINE__, "reported across the library's border", false);
    } catch (const xError::eException& error) {
        std::cout << error.what() << "\n";
    }
}
