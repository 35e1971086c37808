#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/hints.h"

namespace corv::signals {

// Keeps the smallest of many keys at hand while one key after the other changes: a tree of matches
// between the keys, whose nodes hold the losers, the larger ones. The winner's new key plays the
// matches on its way up again, as many as the number of keys has binary digits, and each match is
// decided without a branch: there is nothing for the processor to guess wrong.
class LoserTree {
public:
    struct Player {
        std::int64_t key;
        std::uint32_t index;
    };

    // Takes the memory for that many keys; Build needs none then.
    void Reserve(std::size_t count) {
        losers_.resize(count);
        winners_.resize(count);
    }

    // Plays all matches for the keys, at least two.
    void Build(const std::int64_t* keys) noexcept {
        const std::size_t count = losers_.size();
        const auto winner = [&](std::size_t node) {
            const std::size_t index = node - count;
            return node < count ? winners_[node]
                                : Player{keys[index], static_cast<std::uint32_t>(index)};
        };
        for (std::size_t node = count - 1; node > 0; --node) {
            const Player left = winner(2 * node);
            const Player right = winner(2 * node + 1);
            const bool right_wins = right.key < left.key;
            winners_[node] = right_wins ? right : left;
            losers_[node] = right_wins ? left : right;
        }
        top_ = winners_[1];
    }

    // The smallest key and its index.
    Player Top() const noexcept { return top_; }

    // Gives the winner another key.
    void ReplaceTop(std::int64_t key) noexcept {
        std::int64_t best = key;
        std::uint32_t index = top_.index;
        for (std::size_t node = (index + losers_.size()) / 2; node > 0; node /= 2) {
            Player& loser = losers_[node];
            const std::int64_t other = loser.key;
            const std::uint32_t change =
                (loser.index ^ index) & platform::Opaque(-static_cast<std::uint32_t>(other < best));
            const std::int64_t smaller = std::min(platform::Opaque(best), other);
            loser = {other ^ best ^ smaller, loser.index ^ change};
            best = smaller;
            index ^= change;
        }
        top_ = {best, index};
    }

private:
    // The children of node n are 2n and 2n + 1; the keys follow the last node. The first one is
    // not used.
    std::vector<Player> losers_;
    std::vector<Player> winners_;
    Player top_{};
};

}  // namespace corv::signals
