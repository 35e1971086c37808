// Recordings of which only a part is in memory, and that are cut while they are read.

#include <unistd.h>

#include "corv/stremo/events_stream_write.h"
#include "platform/windowed_content.h"
#include "stremo/event_file/event_file.h"
#include "stremo/event_file/writer.h"
#include "tests/stremo/ghw/support.h"
#include "tests/stremo/vcd/support.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

constexpr const char* kCut = "the file was cut while it was read";

// A file of which so many bytes are left to be read.
class CutSource final : public platform::ContentSource {
public:
    CutSource(const std::string& bytes, std::size_t& left) : bytes_(bytes), left_(left) {}
    const char* Read(std::uint64_t offset, unsigned char* to, std::size_t size) noexcept override {
        const bool whole = size <= left_;
        left_ -= whole ? size : left_;
        std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(offset), whole ? size : 0, to);
        return whole ? nullptr : kCut;
    }

private:
    const std::string& bytes_;
    std::size_t& left_;
};

std::unique_ptr<platform::FileContent> Windowed(const std::string& bytes, std::size_t& left) {
    return platform::MakeContent(std::make_unique<CutSource>(bytes, left), bytes.size());
}

using Open = std::unique_ptr<recording::Recording> (*)(const std::string&,
                                                       std::unique_ptr<platform::FileContent>);

// What stands for all events of a recording, and its notes; why not when it can't be read.
std::string SumOf(std::unique_ptr<recording::Recording> opened) {
    const auto reader = ReaderOf(std::move(opened));
    std::uint64_t sum = 0;
    int events = 0;
    const auto add = [&](std::int64_t time, int handle, std::uint64_t value) {
        for (const std::uint64_t number :
             {static_cast<std::uint64_t>(time), static_cast<std::uint64_t>(handle), value}) {
            sum = (sum ^ number) * 0x9E3779B97F4A7C15U;
        }
        ++events;
    };
    if (reader == nullptr || !ForEachEvent(*reader, add) || *LastStreamError() != '\0') {
        return LastStreamError();
    }
    return std::to_string(events) + " events " + std::to_string(sum) + NoteText(*reader);
}

// What is read in windows is what is read at once; wherever the file is cut meanwhile, an error
// comes of it.
void ExpectTheSame(Open open, const std::string& bytes) {
    const std::string whole = SumOf(open("f", std::make_unique<HeldContent>(bytes)));
    ASSERT_NE(whole.find(" events "), std::string::npos) << whole;
    std::size_t left = static_cast<std::size_t>(-1);
    EXPECT_EQ(SumOf(open("f", Windowed(bytes, left))), whole);
    const std::size_t most = static_cast<std::size_t>(-1) - left;
    for (std::size_t bytes_left = 0; bytes_left < most; bytes_left += most / 2 + 1) {
        left = bytes_left;
        EXPECT_EQ(SumOf(open("f", Windowed(bytes, left))), std::string("f: ") + kCut) << bytes_left;
    }
}

TEST(Windows, ShowAllOfAVcdFile) {
    std::mt19937 random(1);
    std::string text = "$timescale 1ps $end\n";
    for (int i = 0; i < 25'000; ++i) {
        text += "$var wire 8 a_long_code_" + std::to_string(i) + " v" + std::to_string(i) +
                std::string(200, 'n') + " [7:0] $end\n";
    }
    text += "$comment " + std::string(3'000'000, '-') + " $end $var integer 32 i i $end\n" +
            "$var wire 60000 w w $end $enddefinitions $end\n#0\n";
    for (int i = 1; i < 200'000; ++i) {
        const std::string number = std::to_string(random() % 25'000);
        text += "b" + std::to_string(random() % 2) + "01 a_long_code_" + number + "\n";
        text += i % 7 == 0 ? "#" + std::to_string(i) + "\n" : "";
        text += i % 100'000 == 0 ? "$comment " + std::string(2'000'000, 'c') + " $end\n" : "";
        text += i % 100'000 == 1 ? "b" + std::string(60'000, '1') + " w\nb1 i\nbx i\n" : "";
    }
    text.append(9'000'000, '\0');
    ExpectTheSame(recording::OpenVcd, text + "b1 w\n");
}

TEST(Windows, ShowAllOfAGhwFile) {
    std::mt19937 random(1);
    GhwFile file;
    const GhwFile::Number bit = file.Enumeration("bit", {"'0'", "'1'"});
    std::string values;
    for (GhwFile::Number i = 1; i <= 20'000; ++i) {
        file.Signal(std::to_string(random()) + std::string(300, 'n'), bit, {i});
        values += '\0';
    }
    file.Snapshot(0, values);
    std::string lists;
    for (int i = 0; i < 500'000; ++i) {
        lists += GhwFile::Bit(1 + random() % 20'000, static_cast<int>(random() % 2)) +
                 GhwFile::Step(1'000'000'000);
    }
    file.Cycles(0, lists + GhwFile::End());
    ExpectTheSame(recording::OpenGhw, file.Bytes());
}

TEST(Windows, ShowAllOfAnEventFile) {
    MemoryFiles files;
    auto created = files.Create("f");
    const auto writer = recording::MakeEventFileWriter("f", std::move(created.file), 4096);
    std::mt19937 random(1);
    for (int i = 0; i < 500; ++i) {
        ASSERT_TRUE(writer->WriteScalarSignal(i, "s", -1, i, 0, nullptr));
    }
    for (std::int64_t time = 0; time < 200'000; ++time) {
        const std::uint64_t value = random();
        ASSERT_TRUE(writer->WriteEvent(static_cast<int>(random() % 500), &time, &value, 8));
    }
    ASSERT_TRUE(writer->Close());
    const std::string bytes(files["f"].begin(), files["f"].end());
    const Open open = [](const std::string& name, std::unique_ptr<platform::FileContent> content) {
        return recording::OpenEventFileIn(name, std::move(content), 100'000);
    };
    ExpectTheSame(open, bytes);

    // places at random, of blocks that come and go
    std::size_t left = static_cast<std::size_t>(-1);
    const auto whole = ReaderOf(open("f", std::make_unique<HeldContent>(bytes)));
    const auto part = ReaderOf(open("f", Windowed(bytes, left)));
    for (int i = 0; i < 2000; ++i) {
        const auto time = static_cast<std::int64_t>(random() % 200'000);
        const int handle = static_cast<int>(random() % 500);
        std::uint64_t expected[2] = {};
        std::uint64_t value[2] = {};
        ASSERT_TRUE(whole->Seek(&time) && part->Seek(&time));
        ASSERT_EQ(part->GetCachedValue(handle, value), whole->GetCachedValue(handle, expected));
        ASSERT_EQ(value[0], expected[0]);
        ASSERT_EQ(part->Next(), whole->Next());
    }
}

// What was looked at stays what it was; the rest is an error, and no signal ends the process.
TEST(Windows, OutliveTheFile) {
    const std::string name = testing::TempDir() + std::to_string(getpid()) + "cut.bin";
    std::ofstream(name, std::ios::binary) << std::string(1'000'000, 'x');
    const auto opened = platform::SystemFiles().Open(name);
    ASSERT_NE(opened.file, nullptr);
    EXPECT_EQ(opened.file->BringPart(0, 10)[9], 'x');
    std::filesystem::resize_file(name, 100);
    EXPECT_EQ(opened.file->BringPart(0, 10)[9], 'x');
    EXPECT_EQ(opened.file->failure(), nullptr);
    EXPECT_EQ(opened.file->BringPart(999'990, 10)[9], '\0');
    EXPECT_STREQ(opened.file->failure(), kCut);
    std::filesystem::remove(name);
}

TEST(Windows, SayWhyAFileCannotBeOpened) {
    const std::string loop = testing::TempDir() + std::to_string(getpid()) + "loop";
    std::filesystem::remove(loop);
    std::filesystem::create_symlink(std::filesystem::path(loop).filename(), loop);
    EXPECT_STREQ(platform::SystemFiles().Open(loop).failure, "its symbolic links lead in a circle");
    std::filesystem::remove(loop);
    EXPECT_STREQ(platform::SystemFiles().Open("/").failure, "it is a folder");
    EXPECT_STREQ(platform::SystemFiles().Open("/none").failure, "there is no such file");
}

}  // namespace
}  // namespace corv::test
