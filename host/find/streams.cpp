#include "host/find/streams.h"

#include <algorithm>
#include <deque>
#include <utility>

#include "host/source.h"

namespace corv::find {
namespace {

using host::Later;

// The earlier of two times of which each may be missing.
std::int64_t Earlier(std::int64_t a, std::int64_t b) {
    return a < 0 ? b : b < 0 ? a : std::min(a, b);
}

class ListedLevelStream final : public Level {
public:
    ListedLevelStream(bool at_first, const TimeList& changes)
        : at_first_(at_first), cursor_(changes) {}
    bool AtFirst() const override { return at_first_; }
    std::int64_t Next() override { return cursor_.Next(); }

private:
    bool at_first_;
    TimeList::Cursor cursor_;
};

class NotStream final : public Level {
public:
    explicit NotStream(LevelPtr level) : level_(std::move(level)) {}
    bool AtFirst() const override { return !level_->AtFirst(); }
    std::int64_t Next() override { return level_->Next(); }

private:
    LevelPtr level_;
};

class JoinedStream final : public Level {
public:
    JoinedStream(LevelPtr left, LevelPtr right, std::function<bool(bool, bool)> join)
        : left_(std::move(left)),
          right_(std::move(right)),
          join_(std::move(join)),
          is_left_(left_->AtFirst()),
          is_right_(right_->AtFirst()),
          next_left_(left_->Next()),
          next_right_(right_->Next()),
          at_first_(join_(is_left_, is_right_)),
          is_(at_first_) {}

    bool AtFirst() const override { return at_first_; }

    std::int64_t Next() override {
        while (true) {
            const std::int64_t time = Earlier(next_left_, next_right_);
            if (time < 0) {
                return -1;
            }
            Advance(time, *left_, is_left_, next_left_);
            Advance(time, *right_, is_right_, next_right_);
            if (join_(is_left_, is_right_) != is_) {
                is_ = !is_;
                return time;
            }
        }
    }

private:
    static void Advance(std::int64_t time, Level& level, bool& is, std::int64_t& next) {
        if (next == time) {
            is = !is;
            next = level.Next();
        }
    }

    LevelPtr left_, right_;
    std::function<bool(bool, bool)> join_;
    bool is_left_, is_right_;
    std::int64_t next_left_, next_right_;
    bool at_first_;
    bool is_;
};

class BeforeStream final : public Level {
public:
    explicit BeforeStream(LevelPtr level) : level_(std::move(level)) {}
    bool AtFirst() const override { return level_->AtFirst(); }
    std::int64_t Next() override {
        const std::int64_t time = level_->Next();
        return time < 0 ? -1 : Later(time, 1);
    }

private:
    LevelPtr level_;
};

template <class Stream>
class UntilStream : public Stream {
public:
    UntilStream(std::unique_ptr<Stream> stream, std::int64_t end)
        : stream_(std::move(stream)), end_(end) {}
    std::int64_t Next() override {
        const std::int64_t time = stream_->Next();
        return time <= end_ ? time : -1;
    }

protected:
    std::unique_ptr<Stream> stream_;

private:
    std::int64_t end_;
};

class UntilLevel final : public UntilStream<Level> {
public:
    using UntilStream::UntilStream;
    bool AtFirst() const override { return stream_->AtFirst(); }
};

class HeldForStream final : public Level {
public:
    HeldForStream(LevelPtr level, std::int64_t time, std::int64_t start)
        : level_(std::move(level)), time_(time), begin_(level_->AtFirst() ? start : -1) {}

    bool AtFirst() const override { return false; }

    std::int64_t Next() override {
        if (std::exchange(is_, false)) {
            return end_;
        }
        while (true) {
            const std::int64_t begin = begin_ >= 0 ? begin_ : level_->Next();
            if (begin < 0) {
                return -1;
            }
            begin_ = -1;
            end_ = level_->Next();
            const std::int64_t since = Later(begin, time_);
            if (end_ < 0 || since < end_) {
                is_ = end_ >= 0;
                return since;
            }
        }
    }

private:
    LevelPtr level_;
    std::int64_t time_;
    std::int64_t begin_;  // of a stretch that is there at first, until it is read
    std::int64_t end_ = -1;
    bool is_ = false;
};

class QuietForStream final : public Level {
public:
    QuietForStream(MomentsPtr changes, std::int64_t time, std::int64_t start, bool known)
        : changes_(std::move(changes)), time_(time), last_(start), next_(changes_->Next()) {
        if (!known || next_ == start) {
            last_ = next_;
            next_ = next_ < 0 ? -1 : changes_->Next();
        }
    }

    bool AtFirst() const override { return false; }

    std::int64_t Next() override {
        if (is_) {
            is_ = false;
            last_ = next_;
            next_ = next_ < 0 ? -1 : changes_->Next();
            return last_;
        }
        while (last_ >= 0) {
            const std::int64_t since = Later(last_, time_);
            if (next_ < 0 || since < next_) {
                is_ = next_ >= 0;
                last_ = is_ ? last_ : -1;
                return since;
            }
            last_ = next_;
            next_ = changes_->Next();
        }
        return -1;
    }

private:
    MomentsPtr changes_;
    std::int64_t time_;
    std::int64_t last_;  // the change after which it is quiet, -1: there is none
    std::int64_t next_;
    bool is_ = false;
};

class ListedMomentsStream final : public Moments {
public:
    explicit ListedMomentsStream(const TimeList& times) : cursor_(times) {}
    std::int64_t Next() override { return cursor_.Next(); }

private:
    TimeList::Cursor cursor_;
};

class EdgesStream final : public Moments {
public:
    EdgesStream(LevelPtr level, bool rising)
        : level_(std::move(level)), is_(level_->AtFirst()), rising_(rising) {}

    std::int64_t Next() override {
        while (true) {
            const std::int64_t time = level_->Next();
            is_ = !is_;
            if (time < 0 || is_ == rising_) {
                return time;
            }
        }
    }

private:
    LevelPtr level_;
    bool is_;
    bool rising_;
};

class DuringStream final : public Moments {
public:
    DuringStream(MomentsPtr moments, LevelPtr level)
        : moments_(std::move(moments)),
          level_(std::move(level)),
          is_(level_->AtFirst()),
          change_(level_->Next()) {}

    std::int64_t Next() override {
        while (true) {
            const std::int64_t time = moments_->Next();
            while (change_ >= 0 && change_ <= time) {
                is_ = !is_;
                change_ = level_->Next();
            }
            if (time < 0 || is_) {
                return time;
            }
        }
    }

private:
    MomentsPtr moments_;
    LevelPtr level_;
    bool is_;
    std::int64_t change_;
};

// The times that both have, or that either has.
class MergedStream final : public Moments {
public:
    MergedStream(MomentsPtr left, MomentsPtr right, bool both)
        : left_(std::move(left)),
          right_(std::move(right)),
          both_(both),
          next_left_(left_->Next()),
          next_right_(right_->Next()) {}

    std::int64_t Next() override {
        while (true) {
            const std::int64_t time = Earlier(next_left_, next_right_);
            const bool in_both = next_left_ == next_right_;
            if (time < 0) {
                return -1;
            }
            next_left_ = next_left_ == time ? left_->Next() : next_left_;
            next_right_ = next_right_ == time ? right_->Next() : next_right_;
            if (!both_ || in_both) {
                return time;
            }
        }
    }

private:
    MomentsPtr left_, right_;
    bool both_;
    std::int64_t next_left_, next_right_;
};

class WithinStream final : public Moments {
public:
    WithinStream(MomentsPtr moments, MomentsPtr others, std::int64_t time, Node::Side side,
                 bool negated)
        : moments_(std::move(moments)),
          others_(std::move(others)),
          next_other_(others_->Next()),
          earlier_by_(side == Node::Side::Before ? 0 : time),
          later_by_(side == Node::Side::After ? 0 : time),
          negated_(negated) {}

    std::int64_t Next() override {
        while (true) {
            const std::int64_t time = moments_->Next();
            if (time < 0 || HasOther(time) != negated_) {
                return time;
            }
        }
    }

private:
    bool HasOther(std::int64_t time) {
        const std::int64_t until = Later(time, later_by_);
        for (; next_other_ >= 0 && next_other_ <= until; next_other_ = others_->Next()) {
            near_.push_back(next_other_);
        }
        while (!near_.empty() && near_.front() < time - earlier_by_) {
            near_.pop_front();
        }
        return !near_.empty();
    }

    MomentsPtr moments_;
    MomentsPtr others_;
    std::int64_t next_other_;
    std::int64_t earlier_by_, later_by_;
    bool negated_;
    std::deque<std::int64_t> near_;
};

}  // namespace

LevelPtr ListedLevel(bool at_first, const TimeList& changes) {
    return std::make_unique<ListedLevelStream>(at_first, changes);
}
LevelPtr Not(LevelPtr level) {
    return std::make_unique<NotStream>(std::move(level));
}
LevelPtr Join(LevelPtr left, LevelPtr right, std::function<bool(bool, bool)> join) {
    return std::make_unique<JoinedStream>(std::move(left), std::move(right), std::move(join));
}
LevelPtr Before(LevelPtr level) {
    return std::make_unique<BeforeStream>(std::move(level));
}
LevelPtr HeldFor(LevelPtr level, std::int64_t time, std::int64_t start) {
    return std::make_unique<HeldForStream>(std::move(level), time, start);
}
LevelPtr QuietFor(MomentsPtr changes, std::int64_t time, std::int64_t start, bool known_at_start) {
    return std::make_unique<QuietForStream>(std::move(changes), time, start, known_at_start);
}

LevelPtr Until(LevelPtr level, std::int64_t end) {
    return std::make_unique<UntilLevel>(std::move(level), end);
}
MomentsPtr Until(MomentsPtr moments, std::int64_t end) {
    return std::make_unique<UntilStream<Moments>>(std::move(moments), end);
}

MomentsPtr ListedMoments(const TimeList& times) {
    return std::make_unique<ListedMomentsStream>(times);
}
MomentsPtr Edges(LevelPtr level, bool rising) {
    return std::make_unique<EdgesStream>(std::move(level), rising);
}
MomentsPtr During(MomentsPtr moments, LevelPtr level) {
    return std::make_unique<DuringStream>(std::move(moments), std::move(level));
}
MomentsPtr Both(MomentsPtr left, MomentsPtr right) {
    return std::make_unique<MergedStream>(std::move(left), std::move(right), true);
}
MomentsPtr Either(MomentsPtr left, MomentsPtr right) {
    return std::make_unique<MergedStream>(std::move(left), std::move(right), false);
}
MomentsPtr Within(MomentsPtr moments, MomentsPtr others, std::int64_t time, Node::Side side,
                  bool negated) {
    return std::make_unique<WithinStream>(std::move(moments), std::move(others), time, side,
                                          negated);
}

}  // namespace corv::find
