#include <corv/corv.h>

#include <iostream>

int main() {
    const char* formula = "'0' 0, '1' 35ns";
    for (const corv::FormulaProblem& problem : corv::CheckFormula(formula)) {
        std::cerr << "column " << problem.position + 1 << ": " << problem.sentence << '\n';
    }
    CStimulus reset;
    if (reset.Create(formula, 0) == 0) {
        return 1;
    }
    for (auto t = reset.GetNextEventTime(-1); t != -1; t = reset.GetNextEventTime(t)) {
        CString value;
        reset.GetValue(t, value);
        double number = static_cast<double>(t);
        int unit = 1;
        ScaleNumberNoFloat(&number, &unit);  // 35000 ps is 35 ns
        std::cout << number << ' ' << UnitNameFromID(static_cast<unsigned>(unit)) << ": " << value
                  << '\n';
    }
    CString normal;
    reset.GenerateFormula(normal);
    std::cout << "normal form: " << normal << '\n';
}
