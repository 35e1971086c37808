#include "stremo/ghw/notes.h"

#include <algorithm>

namespace corv::ghw {

void Notes::Add(std::size_t offset, std::string_view sentence) {
    constexpr std::size_t kMost = 100;
    // searched from the end, since it mostly is the one that was added last
    const auto same = std::find_if(notes_.rbegin(), notes_.rend(),
                                   [&](const Note& note) { return note.sentence == sentence; });
    if (same != notes_.rend()) {
        ++same->count;
    } else if (notes_.size() < kMost) {
        notes_.push_back({offset, std::string(sentence), 1});
    } else {
        ++unsaid_;
    }
}

std::vector<std::string> Notes::Sentences() const {
    std::vector<Note> sorted = notes_;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const Note& a, const Note& b) { return a.offset < b.offset; });
    std::vector<std::string> sentences;
    for (const Note& note : sorted) {
        sentences.push_back("byte " + std::to_string(note.offset) + ": " + note.sentence);
        if (note.count > 1) {
            sentences.back() += " (" + std::to_string(note.count) + " times)";
        }
    }
    if (unsaid_ > 0) {
        sentences.push_back("and " + std::to_string(unsaid_) + " more remarks");
    }
    return sentences;
}

}  // namespace corv::ghw
