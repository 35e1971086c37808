#include "host/signal_name.h"

#include "corv/typeinfo/vhdl_type.h"
#include "host/name_pattern.h"
#include "host/signal_trace.h"
#include "tests/support/test.h"

namespace corv::host {
namespace {

TEST(SignalName, OneFormForAllSpellings) {
    const auto rows =
        test::Table(R"(tb/u1/Clk|tb.u1.clk ;; tb\u1\clk|tb.u1.clk ;; TB.u1.a[3]|tb.u1.a(3)
        /tb/clk|tb.clk ;; tb.\Ex.T\.a|tb.\Ex.T\.a ;; a[7:4]|a(7:4) ;; s(3).F|s(3).f ;; _|_)");
    for (const auto& row : rows) {
        EXPECT_EQ(PlainName(row[0]), row[1]) << row[0];
    }
    EXPECT_EQ(ShownName("tb\\u1\\Clk"), "tb.u1.Clk");
}

TEST(SignalName, Globs) {
    const auto rows = test::Table(R"(a.b|*.b|1 ;; a.b|*|0 ;; a.b|**|1 ;; a.b.c|a.**|1 ;; a.b.c|a.*|0
        abc|a*c|1 ;; abc|a*d|0 ;; a.b.c|**.c|1 ;; _|*|1 ;; a|**b|0 ;; a.bc.d|a.b*.d|1 ;; a(3)|a*|0 ;; a(3)|a(*)|1
        abc|a?c|1 ;; a.c|a?c|0 ;; a(3)|a??)|0 ;; a(3)|a(?)|1 ;; abc|a[a-c]c|1 ;; abc|a[!a-c]c|0 ;; axc|A[!A-C]C|1
        abc|a[xB]c|1 ;; a.c|a[.]c|0 ;; ab-|ab[x-]|1 ;; ab[|ab[|1 ;; a(3)|a[3]|1 ;; a(3)|*[3]|1
        gen(3).u.d|gen[3].**|1 ;; g3.d|g[0-4].d|1 ;; TB/U1\clk|tb.u?.CLK|1 ;; a.b|***|1 ;; ab|a**b|1
        t.\Weird Na.me!\|*.*Weird*|1 ;; t.\Weird Name!\|**Weird*|1 ;; t.\Weird Name!\|**Weird Name!\|1
        t.\Weird Name!\|**weird*|0 ;; t.\Weird\.q|t.\We*\.Q|1 ;; t.\a\|t.a|0 ;; t.\aB\|t.\a[A-C]*|1)");
    for (const auto& row : rows) {
        EXPECT_EQ(FitsGlob(row[0], row[1]), row[2] == "1") << row[0] << " " << row[1];
    }
}

// What a pattern of "*", "**", "?" and letters means, by trying every length of every star.
bool Fits(std::string_view name, std::string_view pattern) {
    if (pattern.empty()) {
        return name.empty();
    }
    const bool wild = pattern[0] == '*' || pattern[0] == '?';
    if (pattern[0] != '*') {
        return !name.empty() && (wild ? name[0] != '.' : name[0] == pattern[0]) &&
               Fits(name.substr(1), pattern.substr(1));
    }
    const bool across = pattern.starts_with("**");
    const std::string_view rest = pattern.substr(across ? 2 : 1);
    for (std::size_t taken = 0; taken <= name.size(); ++taken) {
        if (Fits(name.substr(taken), rest)) {
            return true;
        }
        if (taken < name.size() && !across && name[taken] == '.') {
            return false;
        }
    }
    return false;
}

TEST(SignalName, GlobsMeanWhatTryingAllLengthsMeans) {
    std::mt19937 random(7);
    const auto text = [&](std::string_view letters, int most) {
        std::string made = "a";  // no separator in front
        for (int i = std::uniform_int_distribution<int>(0, most)(random); i > 0; --i) {
            made += letters[random() % letters.size()];
        }
        return made;
    };
    int fitting = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::string name = text("ab.", 9);
        const std::string pattern = text("ab.**?", 7);
        const bool fits = Fits(name, pattern);
        fitting += fits ? 1 : 0;
        ASSERT_EQ(FitsGlob(name, pattern), fits) << name << " " << pattern;
    }
    EXPECT_GT(fitting, 1000);
}

TEST(SignalName, GlobsOfAnyLengthEndAtOnce) {
    const std::string name(2000, 'a');
    std::string pattern;
    for (int i = 0; i < 200; ++i) {
        pattern += i % 2 == 0 ? "**a" : "*a";
    }
    EXPECT_TRUE(FitsGlob(name, pattern));
    EXPECT_FALSE(FitsGlob(name, pattern + "b"));
    EXPECT_FALSE(FitsGlob(name, std::string(100'000, '?')));
}

TEST(SignalName, SelectsSignalsMembersAndSlices) {
    frame::ComPtr<ISignalContainer> signals;
    ASSERT_EQ(CreateSignalContainer(signals.Out(), nullptr), S_OK);
    const char* const types[] = {
        "e#3#bitc2 01", "a#22#bit_vector(7 downto 0)1 ricd7 0 e#3#bitc2 01",
        "r#1#r2 a e#3#bitc2 01 b a#22#bit_vector(3 downto 0)1 ricd3 0 e#3#bitc2 01"};
    const char* const names[] = {"tb\\clk", "tb\\u1\\Data", "tb\\rec"};
    for (int i = 0; i < 3; ++i) {
        frame::ComPtr<ISignal> signal;
        ASSERT_EQ(signals->NewSignal(types[i], signal.Out()), S_OK);
        signal->SetName(names[i]);
        signals->Add(signal.get());
    }
    const auto rows =
        test::Table(R"(TB.clk|tb.clk ;; tb/u1/data|tb.u1.Data ;; tb.u1.data[3]|tb.u1.Data(3)
        tb.rec.b|tb.rec.b ;; tb.rec.b(2)|tb.rec.b(2) ;; tb.*|tb.clk tb.rec ;; tb.u2.x|_
        tb.u1.data(6 downto 4)|tb.u1.Data(6 downto 4) ;; tb.u1.data[6:4]|tb.u1.Data(6:4)
        tb.u1.data(9 downto 4)|_ ;; tb.clk(1 downto 0)|_ ;; tb.rec.**|tb.rec.a tb.rec.b
        **|tb.clk tb.u1.Data tb.rec ;; **.rec**|tb.rec ;; **.b|tb.rec.b ;; **.b(*)|tb.rec.b(3) tb.rec.b(2) tb.rec.b(1) tb.rec.b(0)
        **a[3]|tb.u1.Data(3) ;; tb.*.DAT?[7:6]|tb.u1.Data(7:6) ;; **3)|_ ;; **(3)|tb.u1.Data(3) tb.rec.b(3) ;; tb.[c-r]??|tb.clk tb.rec
        tb.u[1].data|tb.u1.Data ;; tb.u1.data(0 downto -2000000000)|_)");
    for (const auto& row : rows) {
        std::string found;
        for (const NamedSignal& named : SelectSignals(*signals, row[0])) {
            found += (found.empty() ? "" : " ") + named.name;
            EXPECT_EQ(named.signal->GetWave() == nullptr, named.signal->GetSubSignals() != nullptr);
        }
        EXPECT_EQ(found, row[1]) << row[0];
    }
    const auto slice = SelectSignals(*signals, "tb.u1.data(5 downto 4)");
    ASSERT_EQ(slice.size(), 1U);
    const auto bit = SelectSignals(*signals, "tb.u1.data(5)");
    ISignal* element = nullptr;
    ASSERT_EQ(slice[0].signal->GetSubSignals()->GetAt(0, &element), S_OK);
    EXPECT_EQ(element->GetWave(), bit.at(0).signal->GetWave());
}

void AddSignal(ISignalContainer& signals, const char* type, const char* name) {
    frame::ComPtr<ISignal> signal;
    ASSERT_EQ(signals.NewSignal(type, signal.Out()), S_OK);
    signal->SetName(name);
    signals.Add(signal.get());
}

TEST(SignalName, PrefersWhatIsWrittenExactlyAndDeclared) {
    frame::ComPtr<ISignalContainer> signals;
    ASSERT_EQ(CreateSignalContainer(signals.Out(), nullptr), S_OK);
    const char* const bit = "e#3#bitc2 01";
    AddSignal(*signals, "a#22#bit_vector(7 downto 0)1 ricd7 0 e#3#bitc2 01", "a");
    for (const char* const name : {"CLK", "clk", "a(3)", "\\b*\\", "b1"}) {
        AddSignal(*signals, bit, name);
    }
    const auto rows = test::Table(R"(clk|clk ;; CLK|CLK ;; Clk|CLK ;; a(3)|a(3) ;; a[3]|a(3)
        A|a ;; c*|CLK clk ;; \b*\|\b*\ ;; b*|b1)");
    for (const auto& row : rows) {
        std::string found;
        for (const NamedSignal& named : SelectSignals(*signals, row[0])) {
            found += (found.empty() ? "" : " ") + named.name;
            EXPECT_EQ(named.signal->GetParent(), nullptr) << row[0];
        }
        EXPECT_EQ(found, row[1]) << row[0];
    }
}

TEST(SignalName, SlicesArraysOfVectors) {
    frame::ComPtr<ISignalContainer> signals;
    ASSERT_EQ(CreateSignalContainer(signals.Out(), nullptr), S_OK);
    CString type;
    ASSERT_TRUE(TypeFromVhdl("array (0 to 3) of bit_vector(1 downto 0)", type));
    AddSignal(*signals, type, "mem");
    const auto slice = SelectSignals(*signals, "mem(1 to 2)");
    ASSERT_EQ(slice.size(), 1U);
    const auto leaves = LeavesOf(*slice[0].signal);
    ASSERT_EQ(leaves.size(), 4U);
    EXPECT_EQ(leaves[2]->GetWave(), SelectSignals(*signals, "mem(2)(1)").at(0).signal->GetWave());
}

}  // namespace
}  // namespace corv::host
