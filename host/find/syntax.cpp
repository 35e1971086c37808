#include "host/find/syntax.h"

#include <algorithm>
#include <array>
#include <utility>

#include "corv/util/time_text.h"

namespace corv::find {
namespace {

using Kind = Node::Kind;

constexpr int kMostNesting = 200;

struct RelationRow {
    std::string_view sign;
    Relation relation;
};
constexpr std::array kRelations{
    RelationRow{"=", Relation::Equal},     RelationRow{"==", Relation::Equal},
    RelationRow{"/=", Relation::NotEqual}, RelationRow{"!=", Relation::NotEqual},
    RelationRow{"<", Relation::Less},      RelationRow{"<=", Relation::LessOrEqual},
    RelationRow{">", Relation::Greater},   RelationRow{">=", Relation::GreaterOrEqual},
    RelationRow{"?=", Relation::Matching},
};

std::string Quoted(const Word& word) {
    return word.kind == Word::Kind::End ? "the end" : "`" + std::string(word.text) + "`";
}

class Parser {
public:
    explicit Parser(std::string_view text) : words_(ReadWords(text)) {}

    std::unique_ptr<Node> Read() {
        auto node = ReadOr();
        if (Now().kind != Word::Kind::End) {
            Refuse("expected `and`, `or` or the end instead of " + Quoted(Now()));
        }
        return node;
    }

private:
    const Word& Now() const { return words_[at_]; }
    const Word& Ahead() const { return words_[std::min(at_ + 1, words_.size() - 1)]; }
    const Word& Take() { return words_[at_ + 1 < words_.size() ? at_++ : at_]; }
    bool TakeIf(std::string_view word) {
        const bool is = Now().Is(word);
        at_ += is ? 1U : 0U;
        return is;
    }
    [[noreturn]] void Refuse(const std::string& sentence) const {
        throw Refusal(Now().position, Now().text.size(), sentence);
    }
    void Expect(std::string_view word, const std::string& after) {
        if (!TakeIf(word)) {
            Refuse("expected `" + std::string(word) + "` " + after + " instead of " +
                   Quoted(Now()));
        }
    }

    using Part = std::unique_ptr<Node>;

    Part Make(Kind kind, std::size_t from) const {
        auto node = std::make_unique<Node>();
        node->kind = kind;
        node->position = from;
        return node;
    }
    // The node ends with the word that was taken last.
    Part Close(Part node) const {
        const Word& last = words_[at_ - 1];
        node->length = last.position + last.text.size() - node->position;
        return node;
    }

    Part ReadJoined(std::string_view word, Kind kind, Part (Parser::*read)()) {
        const std::size_t from = Now().position;
        Part left = (this->*read)();
        while (TakeIf(word)) {
            Part node = Make(kind, from);
            node->parts.push_back(std::move(left));
            node->parts.push_back((this->*read)());
            left = Close(std::move(node));
        }
        return left;
    }
    Part ReadOr() { return ReadJoined("or", Kind::Or, &Parser::ReadXor); }
    Part ReadXor() { return ReadJoined("xor", Kind::Xor, &Parser::ReadAnd); }
    Part ReadAnd() { return ReadJoined("and", Kind::And, &Parser::ReadFactor); }

    Part ReadFactor() {
        const Nested nested(*this);
        const std::size_t from = Now().position;
        if (TakeIf("not")) {
            Part node = Make(Kind::Not, from);
            node->parts.push_back(ReadFactor());
            return Close(std::move(node));
        }
        Part node = ReadPrimary();
        while (Now().Is("for") || Now().Is("within") || (Now().Is("not") && Ahead().Is("within"))) {
            node = ReadEnding(std::move(node), from);
        }
        return node;
    }

    Part ReadEnding(Part part, std::size_t from) {
        const bool negated = TakeIf("not");
        const bool within = Now().Is("within");
        ++at_;
        Part node = Make(within ? Kind::Within : Kind::HeldFor, from);
        node->negated = negated;
        node->time = within ? ReadTime() : ReadLength();
        node->parts.push_back(std::move(part));
        if (within) {
            node->side = TakeIf("before")  ? Node::Side::Before
                         : TakeIf("after") ? Node::Side::After
                                           : Node::Side::Around;
            if (node->side == Node::Side::Around) {
                Expect("of", "(or `before` or `after`) after the time");
            }
            node->parts.push_back(ReadPrimary());
        }
        return Close(std::move(node));
    }

    std::int64_t ReadTime() {
        const Word word = Take();
        if (word.kind != Word::Kind::Literal) {
            throw Refusal(word.position, word.text.size(),
                          "expected a time such as 20ns instead of " + Quoted(word));
        }
        Problem problem;
        const auto time = ParseTime(word.text, &problem);
        if (!time) {
            throw Refusal(word.position + problem.position, problem.length, problem.sentence);
        }
        if (*time < 0) {
            throw Refusal(word.position, word.text.size(), "the time is negative");
        }
        return *time;
    }

    std::int64_t ReadLength() {
        const Word& word = Now();
        const std::int64_t length = ReadTime();
        if (length == 0) {
            throw Refusal(word.position, word.text.size(), "the time must be above 0");
        }
        return length;
    }

    Part ReadPrimary() {
        const std::size_t from = Now().position;
        if (TakeIf("(")) {
            Part node = ReadOr();
            Expect(")", "at the end of the parenthesis");
            return node;
        }
        const bool calls = Ahead().Is("(");
        if (calls && (Now().Is("changes") || Now().Is("unknown"))) {
            Part node = Make(Now().Is("changes") ? Kind::Changes : Kind::Unknown, from);
            at_ += 2;
            node->left = ReadSignal();
            Expect(")", "after the signal");
            return Close(std::move(node));
        }
        for (const auto& [word, kind] :
             {std::pair{"rising", Kind::Rising}, std::pair{"falling", Kind::Falling}}) {
            if (calls && Now().Is(word)) {
                return ReadCall(kind, from);
            }
        }
        if (calls && Now().Is("before") && !IsOperandBefore()) {
            return ReadCall(Kind::Before, from);
        }
        return ReadComparison(from);
    }

    Part ReadCall(Kind kind, std::size_t from) {
        at_ += 2;
        Part node = Make(kind, from);
        node->parts.push_back(ReadOr());
        Expect(")", "after the condition");
        return Close(std::move(node));
    }

    // Whether `before(SIGNAL) =` is next.
    bool IsOperandBefore() const {
        return at_ + 4 < words_.size() && words_[at_ + 2].kind == Word::Kind::Name &&
               words_[at_ + 3].Is(")") && FindRelation(words_[at_ + 4]) != nullptr;
    }

    static const RelationRow* FindRelation(const Word& word) {
        for (const RelationRow& row : kRelations) {
            if (word.kind == Word::Kind::Sign && word.text == row.sign) {
                return &row;
            }
        }
        return nullptr;
    }

    Operand ReadSignal() {
        if (Now().kind != Word::Kind::Name) {
            Refuse("expected the name of a signal instead of " + Quoted(Now()));
        }
        return {Take(), false};
    }

    Operand ReadOperand() {
        if (Now().Is("before") && Ahead().Is("(")) {
            at_ += 2;
            Operand operand = ReadSignal();
            operand.before = true;
            Expect(")", "after the signal");
            return operand;
        }
        if (Now().kind != Word::Kind::Name && Now().kind != Word::Kind::Literal) {
            Refuse("expected a signal or a value instead of " + Quoted(Now()));
        }
        return {Take(), false};
    }

    Part ReadComparison(std::size_t from) {
        Part node = Make(Kind::Level, from);
        node->left = ReadOperand();
        if (const RelationRow* const row = FindRelation(Now())) {
            ++at_;
            node->kind = Kind::Compare;
            node->relation = row->relation;
            node->right = ReadOperand();
            if (FindRelation(Now()) != nullptr) {
                Refuse("a comparison has two sides; join two of them with `and`");
            }
        } else if (TakeIf("stable")) {
            Expect("for", "after `stable`");
            node->kind = Kind::StableFor;
            node->time = ReadLength();
        }
        return Close(std::move(node));
    }

    // A level of nesting, as long as it lives.
    class Nested {
    public:
        explicit Nested(Parser& parser) : parser_(parser) {
            if (++parser_.depth_ > kMostNesting) {
                parser_.Refuse("the condition is nested too deep");
            }
        }
        Nested(const Nested&) = delete;
        Nested& operator=(const Nested&) = delete;
        ~Nested() { --parser_.depth_; }

    private:
        Parser& parser_;
    };

    std::vector<Word> words_;
    std::size_t at_ = 0;
    int depth_ = 0;
};

}  // namespace

std::unique_ptr<Node> ReadCondition(std::string_view text) {
    return Parser(text).Read();
}

}  // namespace corv::find
