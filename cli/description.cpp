#include "cli/description.h"

#include <algorithm>
#include <iterator>
#include <sstream>

namespace corv::cli {
namespace {

constexpr std::string_view kFiles[] = {"FILE", "IN", "OUT"};  // operands

OptionInfo DescribeOption(const CLI::Option& option) {
    OptionInfo info;
    if (!option.get_snames().empty()) {
        info.short_name = "-" + option.get_snames().front();
    }
    info.long_name =
        option.get_positional() ? option.get_name(true) : "--" + option.get_lnames().front();
    info.value = option.get_items_expected_max() == 0 ? "" : option.get_type_name();
    if (std::find(std::begin(kFiles), std::end(kFiles), info.long_name) != std::end(kFiles)) {
        info.value = "FILE";
    }
    info.text = option.get_description();
    info.required = option.get_required();
    info.repeatable = option.get_expected_max() > 1;
    return info;
}

std::string PathOf(const CLI::App& app) {
    return (app.get_parent() ? PathOf(*app.get_parent()) + " " : "") + app.get_name();
}

}  // namespace

std::vector<std::string> OptionInfo::Choices() const {
    std::vector<std::string> choices;
    std::istringstream words(value);
    if (value.find('|') != std::string::npos) {
        for (std::string word; std::getline(words, word, '|');) {
            choices.push_back(word);
        }
    }
    return choices;
}

std::string OptionInfo::Names() const {
    return short_name.empty() ? long_name : short_name + ", " + long_name;
}

std::string CommandInfo::Usage() const {
    std::string usage = path;
    for (const OptionInfo& option : options) {
        if (option.required) {
            usage += " " + (option.short_name.empty() ? option.long_name : option.short_name) +
                     " " + option.value + (option.repeatable ? " ..." : "");
        }
    }
    usage += commands.empty() ? " [OPTION]..." : " COMMAND ...";
    for (const OptionInfo& operand : operands) {
        usage += " " + operand.long_name;
    }
    return usage;
}

CommandInfo Describe(const CLI::App& app) {
    CommandInfo info;
    info.name = app.get_name();
    info.path = PathOf(app);
    const std::string text = app.get_description();
    const std::size_t line = std::min(text.find('\n'), text.size());
    info.summary = text.substr(0, line);
    info.details = text.substr(std::min(line + 1, text.size()));
    info.examples = app.get_footer();
    for (const CLI::Option* option : app.get_options()) {
        (option->get_positional() ? info.operands : info.options)
            .push_back(DescribeOption(*option));
    }
    for (const CLI::App* command : app.get_subcommands({})) {
        info.commands.push_back(Describe(*command));
    }
    return info;
}

std::vector<const CommandInfo*> AllCommands(const CommandInfo& program) {
    std::vector<const CommandInfo*> all{&program};
    for (const CommandInfo& command : program.commands) {
        const auto inner = AllCommands(command);
        all.insert(all.end(), inner.begin(), inner.end());
    }
    return all;
}

}  // namespace corv::cli
