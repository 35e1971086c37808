// Runs a fuzz entry over every file of the folders named on the command line, each file also with
// its end cut off and with single bytes changed, large files at places that lie evenly apart.

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

constexpr std::size_t kMostPlaces = 100;  // that change in a file

void Run(const std::string& bytes) {
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
}

void RunVariants(const std::string& bytes) {
    Run(bytes);
    const std::size_t step = bytes.size() / kMostPlaces + 1;
    for (std::size_t i = 0; i < bytes.size(); i += step) {
        Run(bytes.substr(0, i));
        for (const char other : {'(', '"', ',', '@', '-', '9', '\x80'}) {
            std::string changed = bytes;
            changed[i] = other;
            Run(changed);
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    std::size_t files = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& entry : std::filesystem::directory_iterator(argv[i])) {
            std::ifstream file(entry.path(), std::ios::binary);
            RunVariants({std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()});
            ++files;
        }
    }
    std::printf("%zu files replayed\n", files);
    return files == 0 ? 1 : 0;
}
