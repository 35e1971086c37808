// The sources keep to the floors that CONTRIBUTING.md lists.

#include "tests/support/test.h"

namespace corv::test {
namespace {

namespace fs = std::filesystem;

const fs::path kRoot = fs::path(TestFolder()).parent_path();

std::vector<std::string> LinesOf(const fs::path& file) {
    std::vector<std::string> lines;
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    return lines;
}

// The areas of the table whose rows begin with a number, each with its floor.
std::map<std::string, int> ReadFloors() {
    std::map<std::string, int> floors;
    for (const std::string& line : LinesOf(kRoot / "CONTRIBUTING.md")) {
        if (!line.starts_with("| ") || std::isdigit(static_cast<unsigned char>(line[2])) == 0) {
            continue;
        }
        const std::size_t end = line.find(" | ", line.find(" | ") + 1);
        for (std::size_t at = line.find('`'); at < end;) {
            const std::size_t close = line.find('`', at + 1);
            floors[line.substr(at + 1, close - at - 1)] = std::stoi(line.substr(2));
            at = line.find('`', close + 1);
        }
    }
    return floors;
}

// "corv/signals" of "corv/signals/signal.h", "signals" of "signals/type_cache.h", "corv" of what
// stands in no area.
std::string AreaOf(const std::string& path) {
    const bool is_public = path.starts_with("corv/");
    const std::size_t end = path.find('/', is_public ? 5 : 0);
    return end != path.npos ? path.substr(0, end) : "corv";
}

// What is wrong with an include, empty when nothing is.
std::string Problem(const std::map<std::string, int>& floors, const std::string& from,
                    const std::string& to) {
    const auto own = floors.find(from);
    const auto other = floors.find(to);
    if (own == floors.end() || other == floors.end()) {
        return "is on no floor";
    }
    const bool is_public = to.starts_with("corv");
    if ((from == "host" || from == "cli") && !is_public && to != "host" && to != "cli") {
        return "is private to the library";
    }
    return other->second < own->second || from == to || (other->second == own->second && is_public)
               ? ""
               : "is a step up";
}

TEST(Floors, NoFileIncludesAFloorAbove) {
    const std::map<std::string, int> floors = ReadFloors();
    ASSERT_GT(floors.size(), 20U);
    int includes = 0;
    for (const char* const folder : {"src", "include", "host", "cli"}) {
        const bool is_area = std::string(folder) == "host" || std::string(folder) == "cli";
        const fs::path base = is_area ? kRoot : kRoot / folder;
        for (const auto& entry : fs::recursive_directory_iterator(kRoot / folder)) {
            const std::string file = entry.path().lexically_relative(base).generic_string();
            if (!file.ends_with(".h") && !file.ends_with(".cpp")) {
                continue;
            }
            for (const std::string& line : LinesOf(entry.path())) {
                if (line.starts_with("#include \"")) {
                    const std::string included = line.substr(10, line.rfind('"') - 10);
                    EXPECT_EQ(Problem(floors, AreaOf(file), AreaOf(included)), "")
                        << file << " includes " << included;
                    ++includes;
                }
            }
        }
    }
    EXPECT_GT(includes, 1'000);
}

}  // namespace
}  // namespace corv::test
