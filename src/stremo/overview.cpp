#include "stremo/overview.h"

#include <algorithm>
#include <vector>

#include "stremo/block_view.h"
#include "stremo/byte_code.h"

namespace corv::recording {
namespace {

// Thins out the events of one leaf. Of several events at one time the last counts, so an event
// waits until a later one comes. Of the changes in a column the first two are passed on at once and
// the last one when the column ends: enough for a picture to decide between nothing, an edge and a
// dense band, and to know the value at the column's end.
class ThinLeaf {
public:
    ThinLeaf(int handle, std::span<const std::int64_t> borders)
        : handle_(handle), borders_(borders) {}

    // Sets the value before the first event.
    void Begin(std::uint64_t value) {
        if (time_ < 0) {
            known_ = true;
            value_ = value;
        }
    }

    // Returns false for a time before the last one, which only a damaged file has.
    bool Add(std::int64_t time, std::uint64_t value, IStreamOverview& overview) {
        if (time != time_) {
            if (time < time_) {
                return false;
            }
            Settle(overview);
            time_ = time;
        }
        next_ = value;
        return true;
    }

    void Finish(IStreamOverview& overview) {
        Settle(overview);
        TellLast(overview);
    }

private:
    static constexpr int kToldAtOnce = 2;

    void Settle(IStreamOverview& overview) {
        if (time_ < 0 || (known_ && next_ == value_)) {
            return;
        }
        known_ = true;
        value_ = next_;
        if (time_ < borders_.front()) {
            return;
        }
        if (time_ >= column_end_) {
            TellLast(overview);
            column_end_ = *std::upper_bound(borders_.begin(), borders_.end() - 1, time_);
            told_ = 0;
        }
        if (told_ < kToldAtOnce) {
            Tell(time_, overview);
            ++told_;
        } else {
            last_ = time_;
        }
        shown_ = value_;
    }

    void TellLast(IStreamOverview& overview) {
        if (last_ >= 0) {
            Tell(last_, overview, shown_);
            last_ = -1;
        }
    }

    void Tell(std::int64_t time, IStreamOverview& overview) { Tell(time, overview, value_); }
    void Tell(std::int64_t time, IStreamOverview& overview, std::uint64_t value) {
        unsigned char bytes[16];
        StoreValue(bytes, value);
        overview.Take(handle_, time, bytes);
    }

    int handle_;
    std::span<const std::int64_t> borders_;
    bool known_ = false;
    int told_ = 0;             // changes in the column
    std::uint64_t value_ = 0;  // before the event that waits
    std::uint64_t next_ = 0;   // its value
    std::uint64_t shown_ = 0;  // of the latest change in the column
    std::int64_t time_ = -1;   // of the event that waits
    std::int64_t column_end_ = -1;
    std::int64_t last_ = -1;  // of a change in the column that has not been passed on
};

class Overview {
public:
    Overview(BlockStore& blocks, const SignalTable& signals, std::span<const int> handles,
             std::span<const std::int64_t> borders, IStreamOverview& overview)
        : blocks_(blocks), signals_(signals), borders_(borders), overview_(overview) {
        places_.resize(signals.leaf_count(), kNone);
        for (const int handle : handles) {
            const std::uint32_t leaf = signals.FindLeaf(handle);
            if (leaf != kNone && places_[leaf] == kNone) {
                places_[leaf] = static_cast<std::uint32_t>(leaves_.size());
                leaves_.emplace_back(handle, borders);
                channels_.push_back(signals.LeafChannel(leaf));
            }
        }
        std::sort(channels_.begin(), channels_.end());
        channels_.erase(std::unique(channels_.begin(), channels_.end()), channels_.end());
    }

    bool Read() {
        const auto first = blocks_.FindFrom(borders_.front());
        for (std::size_t i = first.value_or(0); first && i < blocks_.Count(); ++i) {
            const std::optional<BlockView> view = OpenBlock(blocks_, i, signals_);
            if (!view) {
                return false;
            }
            if (view->MomentTime(0) >= borders_.back()) {
                return Finish();
            }
            if (!ReadBlock(*view)) {
                blocks_.Blame(i);
                return false;
            }
        }
        if (first && !blocks_.EndsThere()) {
            blocks_.BlameEnd();
        }
        return first && blocks_.EndsThere() && Finish();
    }

private:
    bool Finish() {
        for (ThinLeaf& leaf : leaves_) {
            leaf.Finish(overview_);
        }
        return true;
    }

    // If few of many channels are wanted, they are looked up; otherwise walking through all is
    // faster.
    bool ReadBlock(const BlockView& view) {
        if (channels_.size() < signals_.channel_count() / kGroupChannels) {
            return std::all_of(channels_.begin(), channels_.end(), [&](std::uint32_t channel) {
                ChannelState state;
                return view.StartOf(channel, state) &&
                       ReadChannel(view, channel, state, view.ColumnOf(channel));
            });
        }
        auto wanted = channels_.begin();
        return view.ForChangingChannels(
            [&](std::uint32_t channel, ChannelState& state, const ByteReader& column) {
                wanted = std::lower_bound(wanted, channels_.end(), channel);
                return wanted == channels_.end() || *wanted != channel ||
                       ReadChannel(view, channel, state, column);
            });
    }

    bool ReadChannel(const BlockView& view, std::uint32_t number, ChannelState& state,
                     const ByteReader& column) {
        const Channel& channel = signals_.channel(number);
        const std::uint32_t* const places = places_.data() + channel.first_leaf;
        ForElements(state.known, channel.count, [&](unsigned element) {
            if (places[element] != kNone) {
                leaves_[places[element]].Begin(state.values[element]);
            }
        });
        bool rising = true;
        const auto add = [&](std::uint32_t moment, std::uint32_t mask) {
            const std::int64_t time = view.MomentTime(moment);
            ForElements(mask, channel.count, [&](unsigned element) {
                rising = rising &&
                         (places[element] == kNone ||
                          leaves_[places[element]].Add(time, state.values[element], overview_));
            });
            return rising;
        };
        const std::uint32_t end = view.FindMoment(borders_.back());
        return ReadColumn(column, state, channel.count, end, end == view.moments(), add);
    }

    BlockStore& blocks_;
    const SignalTable& signals_;
    std::span<const std::int64_t> borders_;
    IStreamOverview& overview_;
    std::vector<std::uint32_t> places_;  // by leaf: index into leaves_, kNone for the others
    std::vector<ThinLeaf> leaves_;
    std::vector<std::uint32_t> channels_;  // those with wanted leaves, in order
};

}  // namespace

bool ReadOverview(BlockStore& blocks, const SignalTable& signals, std::span<const int> handles,
                  std::span<const std::int64_t> borders, IStreamOverview& overview) {
    return Overview(blocks, signals, handles, borders, overview).Read();
}

}  // namespace corv::recording
