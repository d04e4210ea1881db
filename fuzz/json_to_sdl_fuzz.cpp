#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <system_error>

#include <qzl_base/error.h>
#include <qzl_io/sdl.h>

// Any bytes as a JSON document for JsonToSdl: it fails with a warning or writes a file, and that file can be read to
// its end or to a syntax error (member names have no quotes, so not every document reads back).

namespace {

// Reads tokens of any kind, up to a character that begins none.
class eTokens : public eSDLReader {
public:
    using eSDLReader::eSDLReader;

    void ReadAll() {
        while (Get() && Token().type != sdlError) {
        }
    }
};

// In a new folder with a name that nobody can guess: the temporary folder is everybody's.
struct eFiles {
    eFiles() {
        std::random_device random;
        do
            folder = std::filesystem::temp_directory_path() / ("qzl_fuzz_" + std::to_string(random()));
        while (!std::filesystem::create_directory(folder));
        xError::SetWarningHandler([](const xError::eReport&) {});
    }
    ~eFiles() {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    eFiles(const eFiles&) = delete;
    eFiles& operator=(const eFiles&) = delete;

    eFileName Name(const char* name) const { return (folder / name).generic_string(); }

    std::filesystem::path folder;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const eFiles files;
    const eFileName json = files.Name("in.json");
    const eFileName sdl = files.Name("out.sdl");
    std::ofstream(json.str(), std::ios::binary)
        .write(reinterpret_cast<const char*>(data), static_cast<std::streamsize>(size));
    if (!JsonToSdl(json, sdl))
        return 0;
    try {
        eTokens(sdl, nullptr).ReadAll();
    } catch (const xError::eException&) {
        return 0;
    }
    return 0;
}
