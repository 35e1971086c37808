#include <corv/corv.h>

#include <iostream>

int main() {
    const corv::Stimulus reset("'0' 0, '1' 35ns");
    for (const auto& [time, value] : reset.Events()) {
        std::cout << corv::FormatTime(time) << ": " << value << '\n';
    }
    std::cout << "normal form: " << reset.Formula() << '\n';
}
