#include "stimulus/check_custom_formula.h"

#include <memory>

#include "corv/stremo/stream_error.h"
#include "stimulus/custom_formula.h"
#include "stimulus/recorded_signals.h"

namespace corv::stimulus {

std::optional<CustomProblem> CheckCustomFormula(std::string_view formula) {
    const auto parts = ReadCustomFormula(formula);
    if (!parts) {
        return CustomProblem{formula,
                             "a custom formula names a recording and a signal in it, such as "
                             "`/custom run.evt, top.clk`"};
    }
    const std::unique_ptr<stremo::IEventsStreamRead> reader(
        stremo::CreateStreamRead(parts->file.c_str()));
    if (!reader) {
        return CustomProblem{formula, LastStreamError()};
    }
    frame::ComPtr<ISignalContainer> signals;
    if (FindRecordedSignal(*reader, parts->signal.c_str(), signals) == nullptr) {
        return CustomProblem{
            formula, "the recording `" + parts->file + "` has no signal `" + parts->signal + "`"};
    }
    return std::nullopt;
}

}  // namespace corv::stimulus
