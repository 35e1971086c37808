#include "platform/files.h"
#include "tests/support/other_programs.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

namespace fs = std::filesystem;

std::string Text(platform::Bytes bytes) {
    return {bytes.begin(), bytes.end()};
}

// Writes one character; why it could not be done.
std::string Write(const std::string& name, unsigned char c) {
    auto created = platform::SystemFiles().Create(name);
    const char* failure = created.failure;
    if (created.file != nullptr) {
        failure = created.file->Append({&c, 1});
        EXPECT_EQ(created.file->Close(), nullptr);
    }
    return failure != nullptr ? failure : "";
}

TEST(FileOutput, LeavesReadersWhatTheyHave) {
    const TemporaryFolder folder;
    const std::string name = folder.Path("a");
    fs::create_directory(folder.Path("d"));
    fs::create_symlink("d/target", folder.Path("link"));
    for (const std::string& output : {name, folder.Path("link"), folder.Path("d/../link")}) {
        ASSERT_EQ(Write(output, '1'), "");
        fs::permissions(output, fs::perms(0640));
        const auto reader = platform::SystemFiles().Open(output);
        ASSERT_NE(reader.file, nullptr);
        EXPECT_EQ(Write(output, '2'), "");
        EXPECT_EQ(Text(reader.file->BringPart(0, 10)), "1");
        EXPECT_EQ(FileText(output), "2");
        EXPECT_EQ(fs::status(output).permissions(), fs::perms(0640));
    }
    EXPECT_TRUE(fs::is_symlink(folder.Path("link")));
    EXPECT_EQ(FileText(folder.Path("d/target")), "2");
}

TEST(FileOutput, SaysWhyThereIsNone) {
    const TemporaryFolder folder;
    EXPECT_EQ(Write(folder.Path("no/a"), '1'), "there is no such folder");
    EXPECT_EQ(Write(folder.Path(""), '1'), "it is a folder");
    EXPECT_EQ(Write("/dev/full", '1'), "the disk is full");
    EXPECT_EQ(Write("/dev/null", '1'), "");
}

}  // namespace
}  // namespace corv::test
