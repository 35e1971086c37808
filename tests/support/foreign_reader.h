#pragma once

#include "corv/stremo/events_stream_read.h"
#include "corv/stremo/streams.h"
#include "tests/support/test.h"

namespace corv::test {

// A reader of a host's: the operations of all readers and nothing else.
class ForeignReader : public stremo::IEventsStreamRead {
public:
    explicit ForeignReader(stremo::IEventsStreamRead* reader) : reader_(reader) {}
    const char* GetFormatName() override { return reader_->GetFormatName(); }
    int GetSignalCount() override { return reader_->GetSignalCount(); }
    int GetSubSignalHandle(int parent, int index) override {
        return reader_->GetSubSignalHandle(parent, index);
    }
    int GetSignalHandle(int index) override { return reader_->GetSignalHandle(index); }
    void GetSignalInfo(int handle, bool& has_members, int& count, CString& name, int& mode,
                       std::int64_t& max_time) override {
        reader_->GetSignalInfo(handle, has_members, count, name, mode, max_time);
    }
    const char* GetSignalProperty(int handle, const char* key) override {
        return reader_->GetSignalProperty(handle, key);
    }
    const char* GetTypeString(int handle) override { return reader_->GetTypeString(handle); }
    bool Seek(const std::int64_t* time) override { return reader_->Seek(time); }
    const std::int64_t* GetCurrentTime() override { return reader_->GetCurrentTime(); }
    int Next() override { return reader_->Next(); }
    bool ReadValue(void* value) override { return reader_->ReadValue(value); }
    bool GetCachedValue(int handle, void* value) override {
        return reader_->GetCachedValue(handle, value);
    }
    void MarkStart(const std::int64_t* time) override { reader_->MarkStart(time); }

private:
    std::unique_ptr<stremo::IEventsStreamRead> reader_;
};

// Registered for as long as it lives; several tests may use one name after the other.
class ForeignStream {
public:
    explicit ForeignStream(const std::string& path) {
        EXPECT_TRUE(stremo::RegisterStream(kName, [path]() -> stremo::IEventsStreamRead* {
            stremo::IEventsStreamRead* const reader = stremo::CreateStreamRead(path.c_str());
            return reader != nullptr ? new ForeignReader(reader) : nullptr;
        }));
    }
    ~ForeignStream() { stremo::UnregisterStream(kName); }
    ForeignStream(const ForeignStream&) = delete;
    ForeignStream& operator=(const ForeignStream&) = delete;

    static constexpr const char* kName = "Host:Stream";
};

}  // namespace corv::test
