// Runs the transcripts of this folder: commands and what they must print.
//
//     # a remark
//     $ corv clock --period 10ns        a command for the shell, in an empty folder of its own
//     | record   10.000000;2;1;0;50;0   a line of standard output
//     ! corv: warning: ...              a line of standard error
//     = 1                               the exit code, when it is not 0
//
// With CORV_UPDATE_TRANSCRIPTS set, the files are rewritten with what the commands print.

#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/test.h"

namespace {

namespace fs = std::filesystem;

const fs::path kFolder = fs::path(corv::test::TestFolder()) / "cli";

// Every line with a mark in front; a last line that was not ended shows as such.
std::string Marked(std::string_view mark, const std::string& text) {
    std::string out;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        out += std::string(mark) + (line.empty() ? "" : " ") + line + "\n";
    }
    return text.empty() || text.back() == '\n' ? out : out + "(no line end)\n";
}

// A folder of its own for each test, gone afterwards.
class Folder {
public:
    Folder() {
        std::string name = (fs::temp_directory_path() / "corv-XXXXXX").string();
        path_ = mkdtemp(name.data());
    }
    ~Folder() { fs::remove_all(path_); }
    const fs::path& Path() const { return path_; }

private:
    fs::path path_;
};

class Transcript : public testing::TestWithParam<std::string> {
protected:
    void SetUp() override {
        for (const char* name : {"CORV_COLORS", "NO_COLOR", "COLUMNS"}) {
            unsetenv(name);
        }
        setenv("LC_ALL", "C", 1);
        const std::string path = std::getenv("PATH");
        setenv("PATH",
               (fs::path(corv::test::ProgramFile()).parent_path().string() + ":" + path).c_str(),
               1);
        setenv("DATA", kFolder.c_str(), 1);
    }

    std::string Run(const std::string& command) const {
        const std::string out = (folder_.Path() / "..out").string();
        const std::string err = (folder_.Path() / "..err").string();
        const std::string line = "cd '" + folder_.Path().string() + "' && { " + command + "\n} >'" +
                                 out + "' 2>'" + err + "' </dev/null";
        const int status = std::system(line.c_str());
        const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        return Marked("|", corv::test::FileText(out)) + Marked("!", corv::test::FileText(err)) +
               (code == 0 ? "" : "= " + std::to_string(code) + "\n");
    }

private:
    Folder folder_;
};

TEST_P(Transcript, PrintsWhatItSays) {
    const fs::path path = kFolder / (GetParam() + ".transcript");
    const std::string expected = corv::test::FileText(path);
    std::istringstream lines(expected);
    std::string actual;
    int commands = 0;
    for (std::string line; std::getline(lines, line);) {
        const bool output =
            !line.empty() && std::string_view("|!=(").find(line[0]) != std::string_view::npos;
        actual += output ? "" : line + "\n";
        if (line.starts_with("$ ")) {
            actual += Run(line.substr(2));
            ++commands;
        }
    }
    if (std::getenv("CORV_UPDATE_TRANSCRIPTS")) {
        std::ofstream(path, std::ios::binary) << actual;
    }
    EXPECT_GT(commands, 0);
    EXPECT_EQ(expected, actual);
}

std::vector<std::string> TranscriptNames() {
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : fs::directory_iterator(kFolder)) {
        if (entry.path().extension() == ".transcript") {
            names.push_back(entry.path().stem().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

INSTANTIATE_TEST_SUITE_P(Cli, Transcript, testing::ValuesIn(TranscriptNames()),
                         [](const auto& instance) { return instance.param; });

}  // namespace
