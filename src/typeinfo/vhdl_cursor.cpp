#include "typeinfo/vhdl_cursor.h"

#include <utility>

#include "util/quote.h"
#include "util/suggest.h"

namespace corv::typeinfo {

using util::Quote;

bool VhdlCursor::Skip(std::string_view word) noexcept {
    const bool stands = words_.Next().Is(word);
    if (stands) {
        words_.Take();
    }
    return stands;
}

bool VhdlCursor::Expect(std::string_view word, std::string_view where) {
    return Skip(word) || FailAtNext(Quote(word).append(where), word);
}

bool VhdlCursor::Fail(std::string_view place, std::string sentence) {
    problem_ = {static_cast<std::size_t>(place.data() - text_.data()), place.size(),
                std::move(sentence)};
    return false;
}

bool VhdlCursor::FailAtNext(std::string_view expected, std::string_view hint) {
    const Word& next = words_.Next();
    if (next.kind == WordKind::Unclosed) {
        return Fail(next.text, next.text == "\\"
                                   ? "no closing `\\` on the line of this extended identifier"
                                   : "no closing `*/` for this comment");
    }
    std::string sentence = "expected ";
    sentence += expected;
    if (next.kind == WordKind::End) {
        return Fail(next.text, sentence + ", but the text ends");
    }
    util::NearestWord nearest(next.text);
    nearest.Offer(hint);
    sentence += ", found " + Quote(next.text);
    if (next.kind == WordKind::Name && nearest.Found().empty()) {
        sentence += IsReserved(next.text)           ? ", a reserved word"
                    : HasWrongUnderscore(next.text) ? ", whose underscores no name may have"
                                                    : "";
    }
    return Fail(next.text, sentence + util::DidYouMean(nearest.Found(), ""));
}

}  // namespace corv::typeinfo
