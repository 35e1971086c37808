// Event files as bytes, damaged and cut ones, and what their writer refuses.

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include "corv/stremo/streams.h"
#include "platform/guard.h"
#include "stremo/event_file/event_file.h"
#include "stremo/stream_registry.h"
#include "tests/stremo/recording_model.h"
#include "tests/support/test.h"

namespace corv::test {
namespace {

using Content = MemoryFiles::Content;

// ---- bytes ----

// The worked example of docs/formats/event-file.md.
Model Example() {
    const char* const bit = "e#3#bitc2 01";
    Model model;
    ModelSignal vector{"v", "a#3#two1 rict1 0 e#3#bitc2 01", -1, 0, -1, {}, true};
    vector.members = {{"(1)", bit, 1, 0, -1, {}, false}, {"(0)", bit, 2, 0, -1, {}, false}};
    model.signals = {vector, {"n", "", 5, 1, -1, {}, false}};
    model.handles = {1, 2, 5};
    model.events = {{0, 1, 0},  {0, 2, 1},  {0, 5, 300}, {10, 5, 301},
                    {10, 1, 1}, {10, 2, 0}, {25, 5, 45}};
    return model;
}

// The bytes of the lines "    000010  53 49 47 53 ...   what they are".
Content BytesOfPage() {
    Content bytes;
    std::istringstream lines(FileText(TestFolder() + "/../docs/formats/event-file.md"));
    for (std::string line; std::getline(lines, line);) {
        std::size_t offset = 0;
        if (!line.starts_with("    0") || std::sscanf(line.c_str(), "%6zx", &offset) != 1) {
            continue;
        }
        EXPECT_EQ(offset, bytes.size()) << line;
        std::istringstream fields(line.substr(12, line.find("   ", 12) - 12));
        for (std::string field; fields >> field;) {
            bytes.push_back(static_cast<unsigned char>(std::stoul(field, nullptr, 16)));
        }
    }
    return bytes;
}

TEST(EventFile, HasTheBytesThatAreDocumented) {
    MemoryFiles files;
    const Writer writer = Write(files);
    const std::int64_t none = -1;
    const Model model = Example();
    writer->WriteCompositeSignal(-1, 2, "v", -1, -1, 0, &none);
    writer->WriteTypeInfo(-1, model.signals[0].type.c_str());
    for (const ModelSignal& member : model.signals[0].members) {
        writer->WriteScalarSignal(member.handle, member.name.c_str(), -1, 0, 0, &none);
        writer->WriteTypeInfo(member.handle, member.type.c_str());
    }
    writer->WriteScalarSignal(5, "n", -1, -1, 1, &none);
    writer->WriteProperty(5, "VBus", "x");
    for (const ModelEvent& event : model.events) {
        ASSERT_TRUE(writer->WriteEvent(event.handle, &event.time, &event.value, 4));
    }
    ASSERT_TRUE(writer->Close());
    EXPECT_EQ(files["run.evt"], BytesOfPage());
}

// ---- damage ----

// Blocks of three events, so that a small file has several, two pages and any kind of change.
Content DamageSample(Model& model) {
    RandomModel random(11);
    model = random.Make(3, 40);
    MemoryFiles files;
    const Writer writer = Write(files, 7);
    EXPECT_TRUE(WriteModel(*writer, model) && writer->Close());
    return files["run.evt"];
}

// All that can be asked of a file: the events, or those in front of what is damaged; places and
// single signals, which may fail but must not say anything else.
void ExpectTrueOrRefused(const Content& content, const Model& model, bool cut) {
    MemoryFiles files;
    files["run.evt"] = content;
    const Reader reader = Read(files);
    if (reader == nullptr) {
        EXPECT_STRNE(LastStreamError(), "");
        return;
    }
    const std::vector<ModelEvent> events = ReadEvents(*reader);
    ASSERT_LE(events.size(), model.events.size());
    EXPECT_TRUE(std::equal(events.begin(), events.end(), model.events.begin()));
    if (events.size() < model.events.size() && !cut) {
        EXPECT_EQ(std::string(LastStreamError()).find("run.evt: byte "), 0U);
    }
    const std::vector<ModelEvent>& truth = cut ? events : model.events;
    for (const int handle : model.handles) {
        const auto cursor = recording::OwnReader(reader.get())->OpenSignal(handle);
        for (const std::int64_t time : {std::int64_t{20'000}, std::int64_t{1} << 60}) {
            const std::int64_t next = cursor->NextTime(time);
            EXPECT_TRUE(*LastStreamError() != '\0' || next == TimeAfter(truth, handle, time));
            unsigned char bytes[16];
            const auto value = Number(cursor->Value(time, bytes), bytes);
            EXPECT_TRUE(*LastStreamError() != '\0' || value == ValueUpTo(truth, handle, time));
            EXPECT_TRUE(*LastStreamError() == '\0' || (next == -1 || !value));
        }
    }
}

TEST(EventFile, CutAnywhereGivesWhatIsWhole) {
    Model model;
    const Content whole = DamageSample(model);
    std::size_t most = 0;
    for (std::size_t length = 0; length < whole.size(); ++length) {
        SCOPED_TRACE(length);
        MemoryFiles files;
        files["run.evt"] = Content(whole.begin(), whole.begin() + static_cast<long>(length));
        ExpectTrueOrRefused(files["run.evt"], model, true);
        if (const Reader reader = Read(files)) {
            const std::size_t count = ReadEvents(*reader).size();
            EXPECT_STREQ(LastStreamError(), "");
            EXPECT_EQ(count, recording::OwnReader(reader.get())->EventCount());
            EXPECT_GE(count, most);
            EXPECT_EQ(recording::OwnReader(reader.get())->NoteCount(), 1);
            most = count;
        }
    }
    EXPECT_EQ(most, model.events.size());
}

TEST(EventFile, EveryFlippedByteIsFound) {
    Model model;
    const Content whole = DamageSample(model);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const unsigned flip : {0x01U, 0x80U, 0xFFU}) {
            SCOPED_TRACE(at);
            Content changed = whole;
            changed[at] = static_cast<unsigned char>(changed[at] ^ flip);
            ExpectTrueOrRefused(changed, model, false);
        }
    }
}

// A killed writer's file in which a byte is wrong besides: what comes behind is not passed over
// in silence.
TEST(EventFile, EveryFlippedByteOfACutFileIsFound) {
    Model model;
    Content whole = DamageSample(model);
    whole.erase(whole.end() - 700, whole.end());
    MemoryFiles files;
    files["run.evt"] = whole;
    model.events = ReadEvents(*Read(files));
    ASSERT_GT(model.events.size(), 10U);
    for (std::size_t at = 0; at < whole.size(); ++at) {
        SCOPED_TRACE(at);
        Content changed = whole;
        changed[at] ^= 0x10;
        ExpectTrueOrRefused(changed, model, false);
    }
}

TEST(EventFile, SeekPassesADamagedBlock) {
    Model model;
    Content content = DamageSample(model);
    const std::string tag = "BLCK";
    const auto first = std::search(content.begin(), content.end(), tag.begin(), tag.end());
    const auto second = std::search(first + 1, content.end(), tag.begin(), tag.end());
    second[recording::kRecordHeaderSize + 3] ^= 1;
    const std::size_t first_block = first[40];  // its events
    MemoryFiles files;
    files["run.evt"] = content;
    const Reader reader = Read(files);
    EXPECT_EQ(ReadEvents(*reader).size(), first_block);
    EXPECT_EQ(reader->Next(), -1);
    EXPECT_TRUE(Says(std::string(LastStreamError()), "does not match its checksum"));
    ExpectPlace(*reader, model, model.events.back().time, model.handles[0]);
    EXPECT_STREQ(LastStreamError(), "");
}

// ---- a disk that fails ----

TEST(EventFile, AFullDiskLosesNothingThatWasWhole) {
    RandomModel random(5);
    const Model model = random.Make(4, 60);
    MemoryFiles whole;
    const Writer complete = Write(whole, 9);
    ASSERT_TRUE(WriteModel(*complete, model) && complete->Close());
    for (std::size_t room = 0; room < whole["run.evt"].size(); room += 5) {
        MemoryFiles files;
        files.LimitRoom(room);
        const Writer writer = Write(files, 9);
        const bool written = WriteModel(*writer, model);
        EXPECT_EQ(writer->IsReady(), written);
        EXPECT_FALSE(writer->Close());
        EXPECT_FALSE(writer->Close());
        EXPECT_STREQ(LastStreamError(), "run.evt: the disk is full");
        ExpectTrueOrRefused(files["run.evt"], model, true);
    }
    MemoryFiles files;
    files.FailOnClose();
    const Writer writer = Write(files);
    EXPECT_TRUE(WriteModel(*writer, model));
    EXPECT_FALSE(writer->Close());
}

class EventFileOnDisk : public testing::Test {
protected:
    void SetUp() override {
        folder_ = std::filesystem::temp_directory_path() /
                  ("corv_stremo_" + std::to_string(std::random_device{}()));
        std::filesystem::create_directories(folder_ / "Sub");
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::string Name(const std::string& name) const { return folder_ / name; }
    bool WriteExample(const std::string& name) const {
        const Writer writer(stremo::CreateStreamWrite(Name(name).c_str()));
        return writer != nullptr && WriteModel(*writer, Example()) && writer->Close();
    }
    std::size_t CountEvents(const std::string& name) const {
        const Reader reader(stremo::CreateStreamRead(name.c_str()));
        return reader != nullptr ? ReadEvents(*reader).size() : 0;
    }
    void ExpectRefused(const std::string& name, const std::string& why) const {
        EXPECT_EQ(stremo::CreateStreamRead(name.c_str()), nullptr);
        EXPECT_EQ(LastStreamError(), name + ": " + why);
    }

    std::filesystem::path folder_;
};

TEST_F(EventFileOnDisk, IsFoundByItsNameInAnyCase) {
    ASSERT_TRUE(WriteExample("Sub/Run.evt"));
    EXPECT_EQ(CountEvents(Name("Sub/Run.evt")), 7U);
    EXPECT_EQ(CountEvents(Name("sub/run.EVT")), 7U);
    EXPECT_EQ(CountEvents(Name("SUB/./../Sub/run.evt")), 7U);
    ASSERT_TRUE(WriteExample("Sub/RUN.evt"));
    EXPECT_EQ(CountEvents(Name("Sub/RUN.evt")), 7U);
    ExpectRefused(Name("Sub/run.evt"), "several names differ from this one only in case");
    ExpectRefused(Name("Sub/other.evt"), "there is no such file");
    ExpectRefused(Name("none/run.evt"), "there is no such file");
}

TEST_F(EventFileOnDisk, WhatIsNoEventFileIsRefused) {
    ExpectRefused(Name("Sub"), "it is a folder");
    std::ofstream(Name("empty.evt")).flush();
    ExpectRefused(Name("empty.evt"), "it is empty");
    std::ofstream(Name("text.evt")) << "today, at noon";
    ExpectRefused(Name("text.evt"),
                  "it is not a recording of a known format: corv event file, VCD or GHW");
    const std::string_view packed("\xFE\0\0\0\0\0\0\2\x21\0\0\0\0\0\0\3\x78\x1F\x8B", 19);
    const std::string_view plain("\0\0\0\0\0\0\0\1\x49\0\0", 11);
    for (const std::string_view beginning : {packed, plain}) {
        std::ofstream(Name("run.fst"), std::ios::binary) << beginning;
        ExpectRefused(Name("run.fst"),
                      "it is an FST file, which is not read; convert it with fst2vcd first");
    }
    ExpectRefused("/dev/null", "it is not an ordinary file");
    EXPECT_EQ(stremo::CreateStreamRead(nullptr), nullptr);
    EXPECT_STREQ(LastStreamError(), "a name is missing");
    EXPECT_EQ(stremo::CreateStreamRead(std::string(100'000, 'a').c_str()), nullptr);
    EXPECT_EQ(std::string(LastStreamError()).substr(700), "aaa: the name is too long");
}

TEST_F(EventFileOnDisk, WhatCanNotBeWrittenIsRefused) {
    for (const auto& row :
         Table("Sub | it is a folder ;; none/run.evt | there is no such folder")) {
        EXPECT_EQ(stremo::CreateStreamWrite(Name(row[0]).c_str()), nullptr);
        EXPECT_EQ(LastStreamError(), Name(row[0]) + ": " + row[1]);
    }
    const Writer writer(stremo::CreateStreamWrite("/dev/full"));
    ASSERT_NE(writer, nullptr);
    EXPECT_FALSE(WriteModel(*writer, Example()) && writer->Close());
    EXPECT_STREQ(LastStreamError(), "/dev/full: the disk is full");
    EXPECT_FALSE(writer->Close());
}

// Whoever reads a recording that is written anew keeps the old one.
TEST_F(EventFileOnDisk, AReaderKeepsAFileThatIsWrittenAnew) {
    ASSERT_TRUE(WriteExample("run.evt"));
    const Reader reader(stremo::CreateStreamRead(Name("run.evt").c_str()));
    const Writer writer(stremo::CreateStreamWrite(Name("run.evt").c_str()));
    EXPECT_EQ(ReadEvents(*reader), Example().events);
    std::filesystem::remove(Name("run.evt"));
    const std::int64_t start = 0;
    EXPECT_TRUE(reader->Seek(&start));
    EXPECT_EQ(ReadEvents(*reader), Example().events);
}

// Records the numbers 0, 1, 2, ... at those times until it is killed.
[[noreturn]] void RecordForEver(const std::string& name) {
    const Writer writer(stremo::CreateStreamWrite(name.c_str()));
    const std::int64_t none = -1;
    writer->WriteScalarSignal(1, "n", -1, 0, 0, &none);
    for (std::int64_t time = 0;; ++time) {
        const auto value = static_cast<std::uint32_t>(time);
        writer->WriteEvent(1, &time, &value, sizeof value);
    }
}

TEST_F(EventFileOnDisk, AKilledRecorderLeavesWholeBlocks) {
    const std::string name = Name("killed.evt");
    for (const std::uintmax_t size : {10'000U, 1'000'000U}) {
        std::filesystem::remove(name);
        const pid_t recorder = fork();
        if (recorder == 0) {
            RecordForEver(name);
        }
        std::error_code error;
        while (!std::filesystem::exists(name) || std::filesystem::file_size(name, error) <= size) {
            usleep(100);
        }
        kill(recorder, SIGKILL);
        int status = 0;
        ASSERT_EQ(waitpid(recorder, &status, 0), recorder);
        ASSERT_TRUE(WIFSIGNALED(status));
        const Reader reader(stremo::CreateStreamRead(name.c_str()));
        ASSERT_NE(reader, nullptr) << LastStreamError();
        EXPECT_FALSE(GetStreamNotes(*reader).empty()) << "the user learns of it";
        const std::int64_t start = 0;
        ASSERT_TRUE(reader->Seek(&start));
        std::int64_t count = 0;
        for (; reader->Next() != -1; ++count) {
            std::uint64_t value[2] = {};
            ASSERT_TRUE(reader->ReadValue(value));
            ASSERT_EQ(*reader->GetCurrentTime(), count);
            ASSERT_EQ(value[0], static_cast<std::uint64_t>(count));
        }
        EXPECT_STREQ(LastStreamError(), "");
        EXPECT_GT(static_cast<std::uintmax_t>(count), size / 8);
    }
}

// ---- the writer ----

TEST(EventFileWriter, RefusesWhatMakesNoSenseAndGoesOn) {
    MemoryFiles files;
    const Writer writer = Write(files);
    const std::int64_t none = -1;
    const std::uint64_t value[2] = {3, 0};
    const std::uint64_t too_wide[2] = {3, 1};
    const std::int64_t times[] = {-1, 7, 6};
    EXPECT_FALSE(writer->WriteTypeInfo(-1, "x"));
    EXPECT_FALSE(writer->WriteProperty(1, "Stimulator", "x"));
    EXPECT_TRUE(writer->WriteCompositeSignal(4, 1, "c", -1, -1, 0, &none));
    EXPECT_FALSE(writer->WriteEvent(4, &times[1], value, 1));  // its member is missing
    EXPECT_FALSE(writer->WriteScalarSignal(4, "s", -1, -1, 0, &none));
    EXPECT_FALSE(writer->WriteScalarSignal(-2, "s", -1, -1, 0, &none));
    EXPECT_TRUE(writer->WriteScalarSignal(1, nullptr, -1, -1, 0, nullptr));
    EXPECT_FALSE(writer->WriteCompositeSignal(1, 0, "c", -1, -1, 0, &none));
    EXPECT_FALSE(writer->WriteTypeInfo(1, nullptr));
    EXPECT_FALSE(writer->WriteProperty(1, nullptr, "x"));
    EXPECT_FALSE(writer->WriteEvent(1, &times[0], value, 1));
    EXPECT_FALSE(writer->WriteEvent(1, nullptr, value, 1));
    EXPECT_FALSE(writer->WriteEvent(1, &times[1], nullptr, 1));
    EXPECT_FALSE(writer->WriteEvent(1, &times[1], value, 0));
    EXPECT_FALSE(writer->WriteEvent(1, &times[1], value, 17));
    EXPECT_FALSE(writer->WriteEvent(1, &times[1], too_wide, 16));
    EXPECT_FALSE(writer->WriteEvent(2, &times[1], value, 1));
    EXPECT_TRUE(writer->WriteEvent(1, &times[1], value, 16));
    EXPECT_FALSE(writer->WriteEvent(1, &times[2], value, 1));
    EXPECT_FALSE(writer->WriteEvent(4, &times[1], value, 1));
    EXPECT_FALSE(writer->WriteScalarSignal(2, "s", -1, -1, 0, &none));
    EXPECT_TRUE(writer->IsReady());
    EXPECT_TRUE(writer->WriteEvent(1, &times[1], value, 3));
    EXPECT_TRUE(writer->Close());
    EXPECT_FALSE(writer->IsReady());
    EXPECT_FALSE(writer->WriteEvent(1, &times[1], value, 1));
    EXPECT_STREQ(LastStreamError(), "run.evt: the file has been closed");
    EXPECT_TRUE(writer->Close());
    EXPECT_EQ(ReadEvents(*Read(files)), (std::vector<ModelEvent>{{7, 1, 3}, {7, 1, 3}}));
}

TEST(EventFileWriter, GivesUnusedHandles) {
    MemoryFiles files;
    const Writer writer = Write(files);
    const std::int64_t none = -1;
    EXPECT_TRUE(writer->WriteCompositeSignal(-1, 2, "a", -1, -1, 0, &none));
    EXPECT_TRUE(writer->WriteCompositeSignal(-1, 0, ".x", 99, 0, 0, &none));
    EXPECT_TRUE(writer->WriteProperty(-1, "VBus", "of x"));
    EXPECT_TRUE(writer->WriteScalarSignal(2147483647, ".y", 99, 1, 0, &none));
    EXPECT_TRUE(writer->WriteScalarSignal(-1, "b", -1, -1, 0, &none));
    EXPECT_TRUE(writer->WriteScalarSignal(1, "c", -1, -1, 0, &none));
    EXPECT_TRUE(writer->Close());
    const Reader reader = Read(files);
    const int a = reader->GetSignalHandle(0);
    const int x = reader->GetSubSignalHandle(a, 0);
    EXPECT_EQ(reader->GetSubSignalHandle(a, 1), 2147483647);
    EXPECT_EQ(reader->GetSignalHandle(2), 1);
    EXPECT_EQ((std::set<int>{a, x, reader->GetSignalHandle(1), 1, -1}).size(), 5U);
    EXPECT_STREQ(reader->GetSignalProperty(x, "vbus"), "of x");
    EXPECT_EQ(reader->GetTypeString(x), std::string());
    EXPECT_EQ(reader->GetTypeString(77), nullptr);
}

// ---- memory that runs out, names ----

TEST(EventFile, SurvivesFailingAllocations) {
    const Model model = Example();
    MemoryFiles files;
    Content whole;
    FailEveryAllocation(
        [&] { files["run.evt"].reserve(4096); },
        [&] {
            const Writer writer = platform::Guarded<Writer>(nullptr, [&] { return Write(files); });
            return writer != nullptr && WriteModel(*writer, model) && writer->Close();
        },
        [&](bool written) { EXPECT_TRUE(!written || *LastStreamError() == '\0'); });
    {
        const Writer writer = Write(files, 2);
        ASSERT_TRUE(WriteModel(*writer, model) && writer->Close());
        whole = files["run.evt"];
    }
    FailEveryAllocation([] {},
                        [&] {
                            std::size_t count = 0;
                            const Reader reader =
                                platform::Guarded<Reader>(nullptr, [&] { return Read(files); });
                            while (reader != nullptr && reader->Next() != -1) {
                                ++count;
                            }
                            return count;
                        },
                        [&](std::size_t count) { EXPECT_LE(count, model.events.size()); });
    EXPECT_EQ(ReadEvents(*Read(files)), model.events);
}

TEST(StreamRegistry, GivesNamesToReaders) {
    int made = 0;
    MemoryFiles files;
    const Writer writer = Write(files);
    ASSERT_TRUE(WriteModel(*writer, Example()) && writer->Close());
    const auto factory = [&]() -> stremo::IEventsStreamRead* {
        return ++made < 3 ? Read(files).release() : nullptr;
    };
    EXPECT_FALSE(stremo::RegisterStream("", factory));
    EXPECT_FALSE(stremo::RegisterStream(nullptr, factory));
    EXPECT_FALSE(stremo::RegisterStream("corv:replay:1", nullptr));
    EXPECT_TRUE(stremo::RegisterStream("corv:replay:1", factory));
    EXPECT_FALSE(stremo::RegisterStream("Corv:Replay:1", factory));
    for (const char* const name : {"corv:replay:1", "CORV:replay:1"}) {
        const Reader reader(stremo::CreateStreamRead(name));
        ASSERT_NE(reader, nullptr);
        EXPECT_EQ(ReadEvents(*reader), Example().events);
    }
    EXPECT_EQ(stremo::CreateStreamRead("corv:replay:1"), nullptr);
    EXPECT_STRNE(LastStreamError(), "");
    EXPECT_TRUE(recording::IsRegisteredStream("Corv:Replay:1"));
    EXPECT_TRUE(stremo::UnregisterStream("CORV:REPLAY:1"));
    EXPECT_FALSE(stremo::UnregisterStream("corv:replay:1"));
    EXPECT_EQ(stremo::CreateStreamRead("corv:replay:1"), nullptr);
    EXPECT_TRUE(stremo::RegisterStream("a", factory));
    recording::ResetStreams();
    EXPECT_FALSE(recording::IsRegisteredStream("a"));
}

}  // namespace
}  // namespace corv::test
