#include "host/packed_source.h"

#include "tests/support/test.h"

#include <unistd.h>
#include <zlib.h>

namespace corv::host {
namespace {

// Some megabytes, a part of which packs well.
std::string SomeText(std::size_t size, unsigned seed) {
    std::mt19937 random(seed);
    std::string text;
    while (text.size() < size) {
        text += std::string(random() % 200, 'a') + std::to_string(random());
    }
    return text;
}

// A file of this process, since tests run beside each other.
std::string FileName() {
    return testing::TempDir() + "packed" + std::to_string(getpid()) + ".gz";
}

// Appends to the file.
void Pack(const std::string& text) {
    const gzFile file = gzopen(FileName().c_str(), "ab");
    gzwrite(file, text.data(), static_cast<unsigned>(text.size()));
    gzclose(file);
}

void WriteFile(const std::string& bytes) {
    std::ofstream(FileName(), std::ios::binary) << bytes;
}

class PackedSource : public testing::Test {
protected:
    void TearDown() override { std::remove(FileName().c_str()); }
};

// All of it in order, and parts at random.
void ExpectHolds(IStreamSource& source, const std::string& text) {
    ASSERT_EQ(source.GetSize(), text.size());
    std::string read(text.size(), '\0');
    ASSERT_EQ(source.Read(0, read.data(), read.size()), nullptr);
    EXPECT_EQ(read, text);
    std::mt19937 random(1);
    for (int i = 0; i < 10; ++i) {
        const std::size_t offset = random() % text.size();
        std::string part(std::min<std::size_t>(text.size() - offset, random() % 100'000), '\0');
        ASSERT_EQ(source.Read(offset, part.data(), part.size()), nullptr);
        EXPECT_EQ(part, text.substr(offset, part.size())) << offset;
    }
}

TEST_F(PackedSource, ReadsAnyPart) {
    WriteFile("");
    const std::string first = SomeText(10'000'000, 1);
    const std::string second = SomeText(5'000'000, 2);
    Pack(first);
    Pack(second);  // behind the other one in one file
    double done = 0;
    const PackedStream packed = OpenPacked(FileName(), [&](double part) { done = part; });
    EXPECT_EQ(packed.problem, "");
    EXPECT_GT(done, 0.5);
    ExpectHolds(*packed.source, first + second);
    std::istringstream pipe(test::FileText(FileName()));
    const PackedStream kept = KeepPacked(pipe);
    EXPECT_EQ(kept.problem, "");
    ExpectHolds(*kept.source, first + second);
}

TEST_F(PackedSource, KeepsWhatIsNotPacked) {
    for (const std::size_t size : {1U, 1U << 20, 3'000'000U}) {
        const std::string text = SomeText(size, 3).substr(0, size);
        std::istringstream pipe(text);
        ExpectHolds(*KeepPacked(pipe).source, text);
    }
    std::istringstream none("");
    EXPECT_EQ(KeepPacked(none).source->GetSize(), 0U);
}

TEST_F(PackedSource, UnpacksAsFarAsTheFileIsWhole) {
    WriteFile("");
    const std::string text = SomeText(6'000'000, 4);
    Pack(text);
    const std::string whole = test::FileText(FileName());
    WriteFile(whole.substr(0, whole.size() * 9 / 10));
    const PackedStream cut = OpenPacked(FileName(), {});
    EXPECT_EQ(cut.problem, "the packed file is cut: what can be unpacked is read");
    EXPECT_GT(cut.source->GetSize(), text.size() / 2);
    ExpectHolds(*cut.source, text.substr(0, cut.source->GetSize()));

    std::string damaged = whole;
    damaged[whole.size() - 6] ^= 1;  // of the sum
    WriteFile(damaged);
    const PackedStream sum = OpenPacked(FileName(), {});
    EXPECT_EQ(sum.problem.rfind("the packed file is damaged (", 0), 0U) << sum.problem;
    EXPECT_EQ(sum.source->GetSize(), text.size());

    // cut after it was opened
    WriteFile(whole);
    const PackedStream later = OpenPacked(FileName(), {});
    WriteFile(whole.substr(0, 10));
    std::string part(100, '\0');
    EXPECT_STREQ(later.source->Read(text.size() - 100, part.data(), 100),
                 "the packed file was changed while it was read");
}

}  // namespace
}  // namespace corv::host
