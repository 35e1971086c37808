// Takes a formula through signals and an event file to the texts that a viewer shows.

#include <corv/corv.h>

#include <cstdio>
#include <iostream>

int main() try {
    const corv::Stimulus stimulus("0 0,1 10,0 20 -r 40");
    std::cout << "clk: " << stimulus.Formula() << '\n';

    corv::Signal clk("tb\\clk", corv::Type("std_logic"));
    clk.Add(stimulus, 0, 100);
    corv::Signal bus("tb\\bus", corv::Type("std_logic_vector(3 downto 0)"));
    bus.Add(0, "0000");
    bus.Add(30, "X\"A\"");
    corv::SaveSignals("end_to_end.evt", {clk, bus});

    const corv::Recording run("end_to_end.evt");
    for (const corv::Signal& signal : run.Signals()) {
        std::cout << signal.Name() << ": " << signal.GetType().Vhdl() << '\n';
    }
    for (const auto& [time, value] : run.Events("tb.clk", 0, 50)) {
        std::cout << time << " ps: " << value << '\n';
    }
    run.Load({run.Find("tb.bus")});
    std::cout << "at 55 ps: " << run.Find("tb.bus").ValueAt(55).value_or("no value") << '\n';
    return std::remove("end_to_end.evt");
} catch (const corv::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
}
