#include "stremo/event_file/event_file.h"

#include <cstring>
#include <unordered_map>

#include "stremo/byte_code.h"
#include "stremo/checksum.h"

namespace corv::recording {
namespace {

constexpr std::size_t kHeaderChecksum = 56;  // its place in a record's header

// ---- signals ----

void WriteText(ByteWriter& out, std::string_view text) {
    out.Variable(text.size());
    out.Text(text);
}
// With a terminating zero, so that the reader can use it in place.
void WriteEndedText(ByteWriter& out, std::string_view text) {
    WriteText(out, text);
    out.Byte(0);
}

std::string_view ReadText(ByteReader& in) noexcept {
    const std::uint64_t length = in.Variable();
    return in.Text(length <= in.left() ? static_cast<std::size_t>(length) : in.left() + 1);
}
const char* ReadEndedText(ByteReader& in) noexcept {
    const std::string_view text = ReadText(in);
    if (in.Number<std::uint8_t>() != 0 || !in.ok()) {
        in.Fail();
        return "";
    }
    return text.data();
}

using TypeNumbers = std::unordered_map<std::string_view, std::uint64_t>;

// Writes each type once, numbered from 1.
TypeNumbers WriteTypes(ByteWriter& out, const SignalTable& signals) {
    TypeNumbers numbers;
    std::vector<std::string_view> types;
    for (std::uint32_t i = 0; i < signals.size(); ++i) {
        const std::string_view type = signals[i].type;
        if (!type.empty() && numbers.emplace(type, types.size() + 1).second) {
            types.push_back(type);
        }
    }
    out.Variable(types.size());
    for (const std::string_view type : types) {
        WriteEndedText(out, type);
    }
    return numbers;
}

std::vector<const char*> ReadTypes(ByteReader& in) {
    std::vector<const char*> types{""};
    for (std::uint64_t count = in.Variable(); count > 0 && in.ok(); --count) {
        types.push_back(ReadEndedText(in));
    }
    return types;
}

Signal ReadSignal(ByteReader& in, const std::vector<const char*>& types) noexcept {
    Signal signal;
    const unsigned flags = in.Number<std::uint8_t>();
    signal.composite = (flags & kComposite) != 0;
    signal.joins = (flags & kJoins) != 0;
    const std::uint64_t handle = in.Variable();
    signal.name = ReadText(in);
    signal.mode = static_cast<std::int32_t>(Unfold(in.Variable()));
    signal.latest = Unfold(in.Variable());
    const std::uint64_t type = in.Variable();
    const std::uint64_t members = signal.composite ? in.Variable() : 0;
    if (handle > 0x7FFFFFFF || type >= types.size() || members > 0x7FFFFFFF) {
        in.Fail();
        return signal;
    }
    signal.handle = static_cast<std::int32_t>(handle);
    signal.type = types[static_cast<std::size_t>(type)];
    signal.member_count = static_cast<std::uint32_t>(members);
    return signal;
}

}  // namespace

std::vector<unsigned char> WriteSignals(const SignalTable& signals) {
    std::vector<unsigned char> bytes;
    ByteWriter out(bytes);
    const TypeNumbers types = WriteTypes(out, signals);
    const std::vector<Property>& properties = signals.properties();
    auto property = properties.begin();
    out.Variable(signals.size());
    for (std::uint32_t i = 0; i < signals.size(); ++i) {
        const Signal& signal = signals[i];
        const auto type = types.find(signal.type);
        out.Byte((signal.composite ? kComposite : 0U) | (signal.joins ? kJoins : 0U));
        out.Variable(static_cast<std::uint32_t>(signal.handle));
        WriteText(out, signal.name);
        out.Variable(Fold(signal.mode));
        out.Variable(Fold(signal.latest));
        out.Variable(type == types.end() ? 0 : type->second);
        if (signal.composite) {
            out.Variable(signal.member_count);
        }
        const auto first = property;
        while (property != properties.end() && property->signal == i) {
            ++property;
        }
        out.Variable(static_cast<std::size_t>(property - first));
        for (auto at = first; at != property; ++at) {
            WriteText(out, at->key);
            WriteEndedText(out, at->value);
        }
    }
    return bytes;
}

bool ReadSignals(platform::Bytes content, SignalTable& signals) {
    ByteReader in(content);
    const std::vector<const char*> types = ReadTypes(in);
    for (std::uint64_t count = in.Variable(); count > 0; --count) {
        const Signal signal = ReadSignal(in, types);
        const std::uint32_t number = in.ok() ? signals.Add(signal) : kNone;
        if (number == kNone) {
            return false;
        }
        for (std::uint64_t left = in.Variable(); left > 0 && in.ok(); --left) {
            const std::string_view key = ReadText(in);
            const char* const value = ReadEndedText(in);
            signals.AddProperty(number, key, value);
        }
    }
    if (!in.ok() || !in.AtEnd() || !signals.whole()) {
        return false;
    }
    signals.Finish();
    return true;
}

// ---- records ----

void AppendRecord(std::vector<unsigned char>& out, std::uint64_t offset, RecordKind kind,
                  const BlockHead& head, platform::Bytes content, std::size_t checked) {
    const std::size_t start = out.size();
    ByteWriter writer(out);
    writer.Number(static_cast<std::uint32_t>(kind));
    writer.Number(std::uint32_t{0});
    writer.Number(std::uint64_t{content.size()});
    writer.Number(Checksum(content.first(checked), 0));
    writer.Number(static_cast<std::uint64_t>(head.first_time));
    writer.Number(static_cast<std::uint64_t>(head.last_time));
    writer.Number(head.events);
    writer.Number(std::uint64_t{checked});
    writer.Number(Checksum({out.data() + start, kHeaderChecksum}, offset));
    out.insert(out.end(), content.begin(), content.end());
    out.resize(start + static_cast<std::size_t>(RecordSize(content.size())));
}

std::optional<RecordHeader> ReadRecordHeader(const platform::FileContent& file,
                                             std::uint64_t offset) noexcept {
    const platform::Bytes bytes = file.BringPart(offset, kRecordHeaderSize);
    if (bytes.size() < kRecordHeaderSize ||
        LoadNumber<std::uint64_t>(bytes.data() + kHeaderChecksum) !=
            Checksum(bytes.first(kHeaderChecksum), offset)) {
        return std::nullopt;
    }
    ByteReader in(bytes);
    RecordHeader header{RecordKind{in.Number<std::uint32_t>()}};
    in.Number<std::uint32_t>();
    header.length = in.Number<std::uint64_t>();
    header.checksum = in.Number<std::uint64_t>();
    header.head.first_time = static_cast<std::int64_t>(in.Number<std::uint64_t>());
    header.head.last_time = static_cast<std::int64_t>(in.Number<std::uint64_t>());
    header.head.events = in.Number<std::uint64_t>();
    header.checked = in.Number<std::uint64_t>();
    return header;
}

std::optional<platform::Bytes> RecordContent(const platform::FileContent& file,
                                             std::uint64_t offset,
                                             const RecordHeader& header) noexcept {
    const platform::Bytes content = file.Part(offset + kRecordHeaderSize, header.length);
    return content.size() == header.length ? std::optional(content) : std::nullopt;
}

bool FitsChecksum(platform::Bytes content, const RecordHeader& header) noexcept {
    return header.checked <= content.size() &&
           Checksum(content.first(static_cast<std::size_t>(header.checked)), 0) == header.checksum;
}

std::optional<platform::Bytes> CheckedContent(const platform::FileContent& file,
                                              std::uint64_t offset, RecordKind kind) noexcept {
    const std::optional<RecordHeader> header = ReadRecordHeader(file, offset);
    if (!header || header->kind != kind) {
        return std::nullopt;
    }
    const std::optional<platform::Bytes> content = RecordContent(file, offset, *header);
    file.Bring(content.value_or(platform::Bytes()));
    return content && FitsChecksum(*content, *header) ? content : std::nullopt;
}

bool IsEventFile(platform::Bytes beginning) noexcept {
    return beginning.size() >= sizeof kFileMark &&
           std::memcmp(beginning.data(), kFileMark, sizeof kFileMark) == 0;
}

}  // namespace corv::recording
