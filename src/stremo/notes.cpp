#include "stremo/notes.h"

#include <algorithm>

#include "util/quote.h"

namespace corv::recording {

void Notes::Add(std::size_t offset, std::string_view sentence) {
    constexpr std::size_t kMost = 100;
    if (Counts(sentence)) {
        return;
    }
    if (notes_.size() < kMost) {
        notes_.push_back({offset, std::string(sentence), std::string(sentence), 1});
    } else {
        ++unsaid_;
    }
}

void Notes::Add(std::size_t offset, std::string_view pattern, std::string_view word) {
    if (Counts(pattern)) {
        return;
    }
    std::string sentence(pattern);
    if (const std::size_t at = sentence.find('%'); at != std::string::npos) {
        sentence.replace(at, 1, util::Quote(word));
    }
    notes_.push_back({offset, std::string(pattern), std::move(sentence), 1});
}

bool Notes::Counts(std::string_view pattern) {
    // mostly it is the one that was added last
    const auto same = std::find_if(notes_.rbegin(), notes_.rend(),
                                   [&](const Note& note) { return note.pattern == pattern; });
    if (same == notes_.rend()) {
        return false;
    }
    ++same->count;
    return true;
}

std::vector<std::string> Notes::Sentences(
    const std::function<std::string(std::size_t)>& place) const {
    std::vector<Note> sorted = notes_;
    std::stable_sort(sorted.begin(), sorted.end(),
                     [](const Note& a, const Note& b) { return a.offset < b.offset; });
    std::vector<std::string> sentences;
    for (const Note& note : sorted) {
        sentences.push_back(place(note.offset) + ": " + note.sentence);
        if (note.count > 1) {
            sentences.back() += " (" + std::to_string(note.count) + " times)";
        }
    }
    if (unsaid_ > 0) {
        sentences.push_back("and " + std::to_string(unsaid_) + " more remarks");
    }
    return sentences;
}

}  // namespace corv::recording
