// make_vcd MEGABYTES FILE: writes the input of the measurements on files.

#include <cstdio>
#include <cstdlib>

#include "vcd_input.h"

int main(int argc, char** argv) {
    const std::size_t megabytes = argc == 3 ? std::strtoull(argv[1], nullptr, 10) : 0;
    std::FILE* const file = megabytes > 0 ? std::fopen(argv[2], "wb") : nullptr;
    if (file == nullptr) {
        std::fprintf(stderr, "usage: make_vcd MEGABYTES FILE\n");
        return 2;
    }
    const std::string text = corv::bench::VcdInput().Make(megabytes * 1'000'000);
    const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    return std::fclose(file) == 0 && written ? 0 : 1;
}
