#include "host/signal_name.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/support/table.h"

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
        abc|a*c|1 ;; abc|a*d|0 ;; a.b.c|**.c|1 ;; _|*|1 ;; a|**b|0 ;; a.bc.d|a.b*.d|1 ;; a(3)|a*|0 ;; a(3)|a(*)|1)");
    for (const auto& row : rows) {
        EXPECT_EQ(FitsGlob(row[0], row[1]), row[2] == "1") << row[0] << " " << row[1];
    }
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
        tb.u1.data(6 downto 4)|tb.u1.data(6 downto 4) ;; tb.u1.data[6:4]|tb.u1.data(6:4)
        tb.u1.data(9 downto 4)|_ ;; tb.clk(1 downto 0)|_ ;; tb.rec.**|tb.rec.a tb.rec.b tb.rec.b(3) tb.rec.b(2) tb.rec.b(1) tb.rec.b(0))");
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

}  // namespace
}  // namespace corv::host
