// Writes completion scripts for three shells. They contain the words of all commands and options;
// only files and the signals of recordings are looked up when the user presses Tab, the latter with
// `corv info --names`.

#include <algorithm>
#include <memory>

#include "cli/command.h"
#include "cli/description.h"
#include "cli/options.h"
#include "cli/output.h"

namespace corv::cli {
namespace {

// Puts a text in single quotes for a shell script. A quote in the text would end the quoted word,
// so it is replaced by `quote`, which each shell spells differently.
std::string Quote(std::string_view text, std::string_view quote) {
    std::string out = "'";
    for (const char c : text) {
        out += c == '\'' ? std::string(quote) : std::string(1, c);
    }
    return out + "'";
}

std::string Join(const std::vector<std::string>& words, std::string_view between) {
    std::string out;
    for (const std::string& word : words) {
        out += (out.empty() ? "" : std::string(between)) + word;
    }
    return out;
}

std::vector<std::string> NamesOf(const OptionInfo& option) {
    std::vector<std::string> names{option.long_name};
    if (!option.short_name.empty()) {
        names.push_back(option.short_name);
    }
    return names;
}

// Returns the words that may come next: commands, the words of an operand, and options.
std::vector<std::string> WordsOf(const CommandInfo& command) {
    std::vector<std::string> words;
    for (const CommandInfo& inner : command.commands) {
        words.push_back(inner.name);
    }
    for (const OptionInfo& operand : command.operands) {
        const auto choices = operand.Choices();
        words.insert(words.end(), choices.begin(), choices.end());
    }
    for (const OptionInfo& option : command.options) {
        const auto names = NamesOf(option);
        words.insert(words.end(), names.begin(), names.end());
    }
    return words;
}

bool TakesFile(const CommandInfo& command) {
    return std::any_of(command.operands.begin(), command.operands.end(),
                       [](const OptionInfo& operand) { return operand.IsFile(); });
}

std::string BashAction(const OptionInfo& option) {
    const std::string words = Join(option.Choices(), " ");
    return option.IsFile()             ? "_corv_files \"$cur\"; "
           : option.IsSignal()         ? "_corv_signals \"$(_corv_file)\" \"$cur\"; "
           : option.IsRecordedSignal() ? "_corv_files \"$cur\" :; "
           : words.empty()             ? ""
                                       : "COMPREPLY=($(compgen -W '" + words + "' -- \"$cur\")); ";
}

std::string BashValues(const CommandInfo& command) {
    std::string out;
    for (const OptionInfo& option : command.options) {
        if (option.value.empty()) {
            continue;
        }
        std::vector<std::string> patterns;
        for (const std::string& name : NamesOf(option)) {
            patterns.push_back("'" + command.path + " " + name + "'");
        }
        out += "        " + Join(patterns, "|") + ") " + BashAction(option) + "return ;;\n";
    }
    return out;
}

// The functions that the completion for bash calls. The names of signals do not pass through
// compgen -W, which would expand what is in them. The option filenames makes bash quote the names
// of files and signals when it inserts them.
constexpr std::string_view kBashHelpers = R"shell(# bash completion of corv
_corv_files() {  # what they begin with; whether something follows them
    local IFS=$'\n'
    compopt -o filenames 2>/dev/null
    [[ $2 ]] && compopt -o nospace 2>/dev/null
    COMPREPLY+=($(compgen -f -- "$1"))
}
_corv_file() {  # the recording on the command line
    local word
    for word in "${COMP_WORDS[@]:2}"; do
        word=${word//[\'\"\\]/}
        [[ -f $word ]] && { printf %s "$word"; return; }
    done
}
_corv_signals() {  # the recording; what their names begin with
    local name begin=${2#[\'\"]}
    begin=${begin//\\/}
    [[ -f $1 ]] || return 0
    compopt -o filenames 2>/dev/null
    while IFS= read -r name; do
        [[ ${name,,} == "${begin,,}"* ]] && COMPREPLY+=("$name")
    done < <(command corv info --names -- "$1" 2>/dev/null)
    return 0
}
)shell";

// Bash splits words at colons, so "--replay FILE:" ends in a word that is only a colon.
constexpr std::string_view kBashReplay = R"shell(    if [[ $prev == : || $cur == : ]]; then
        local at=$((COMP_CWORD - 1))
        [[ $cur == : ]] && cur= || at=$((at - 1))
        [[ ${COMP_WORDS[at-1]} == --replay ]] && _corv_signals "${COMP_WORDS[at]}" "$cur"
        return
    fi
)shell";

std::string Bash(const CommandInfo& program) {
    std::string paths, values, words, files;
    for (const CommandInfo* command : AllCommands(program)) {
        if (command != &program) {
            paths += (paths.empty() ? "'" : "|'") + command->path + "'";
        }
        values += BashValues(*command);
        words +=
            "        '" + command->path + "') words='" + Join(WordsOf(*command), " ") + "' ;;\n";
        if (TakesFile(*command)) {
            files += (files.empty() ? "'" : "|'") + command->path + "'";
        }
    }
    return std::string(kBashHelpers) +
           "_corv() {\n"
           "    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}\n"
           "    local command=corv words= i\n"
           "    COMPREPLY=()\n"
           "    for ((i = 1; i < COMP_CWORD; i++)); do\n"
           "        case \"$command ${COMP_WORDS[i]}\" in\n"
           "        " +
           paths +
           ") command+=\" ${COMP_WORDS[i]}\" ;;\n"
           "        esac\n"
           "    done\n" +
           std::string(kBashReplay) + "    case \"$command $prev\" in\n" + values +
           "    esac\n"
           "    case \"$command\" in\n" +
           words +
           "    esac\n"
           "    case \"$command\" in\n"
           "        " +
           files +
           ") [[ $cur == -* ]] || { _corv_files \"$cur\"; return; } ;;\n"
           "    esac\n"
           "    COMPREPLY=($(compgen -W \"$words\" -- \"$cur\"))\n"
           "}\n"
           "complete -F _corv corv\n";
}

// Escapes a text inside an argument of zsh's _arguments, which is divided by brackets and colons.
std::string ZshText(std::string_view text) {
    std::string out;
    for (const char c : text) {
        out += c == '[' || c == ']' || c == ':' || c == '\\' ? "\\" : "";
        out += c;
    }
    return out;
}

std::string ZshAction(const OptionInfo& option) {
    const std::string choices = Join(option.Choices(), " ");
    return option.IsFile()             ? "_files"
           : option.IsSignal()         ? "_corv_names"
           : option.IsRecordedSignal() ? "_corv_replay"
           : choices.empty()           ? " "
                                       : "(" + choices + ")";
}

std::string ZshArguments(const CommandInfo& command) {
    std::string out;
    for (const OptionInfo& option : command.options) {
        const auto names = NamesOf(option);
        const std::string tail =
            "[" + ZshText(option.text) + "]" +
            (option.value.empty() ? "" : ":" + ZshText(option.value) + ":" + ZshAction(option));
        for (const std::string& name : names) {
            std::string argument = option.repeatable ? "*" : "(" + Join(names, " ") + ")";
            argument += name + tail;
            out += " \\\n        " + Quote(argument, "'\\''");
        }
    }
    for (const OptionInfo& operand : command.operands) {
        out += " \\\n        " +
               Quote(":" + ZshText(operand.long_name) + ":" + ZshAction(operand), "'\\''");
    }
    return out;
}

std::string ZshFunction(const CommandInfo& command) {
    std::string name = "_" + command.path;
    for (char& c : name) {
        c = c == ' ' ? '_' : c;
    }
    std::string out = name + "() {\n";
    if (command.commands.empty()) {
        return out + "    _arguments -s" + ZshArguments(command) + "\n}\n";
    }
    std::string names, calls;
    for (const CommandInfo& inner : command.commands) {
        names += " \\\n            " + Quote(inner.name + ":" + ZshText(inner.summary), "'\\''");
        calls += "        " + inner.name + ") " + name + "_" + inner.name + " ;;\n";
    }
    return out + "    local state line\n    local -a commands\n    _arguments -C" +
           ZshArguments(command) +
           " \\\n        '1: :->command' '*:: :->arguments'\n"
           "    case $state in\n    command)\n        commands=(" +
           names +
           ")\n        _describe command commands ;;\n"
           "    arguments)\n        case $words[1] in\n" +
           calls + "        esac ;;\n    esac\n}\n";
}

// clang-format off
constexpr std::string_view kZshHelpers = R"(#compdef corv
_corv_signals() {
    local -a names
    names=("${(@f)$(command corv info --names -- "${(Q)1}" 2>/dev/null)}")
    compadd -M 'm:{a-zA-Z}={A-Za-z}' -a names
}
_corv_names() {
    local word
    for word in "${(Q)words[@]:1}"; do
        [[ -f $word ]] && { _corv_signals "$word"; return }
    done
}
_corv_replay() {
    if compset -P '*:'; then
        _corv_signals "${${IPREFIX%:}##*=}"
    else
        _files -S :
    fi
}
)";
// clang-format on

std::string Zsh(const CommandInfo& program) {
    std::string out(kZshHelpers);
    for (const CommandInfo* command : AllCommands(program)) {
        out += ZshFunction(*command);
    }
    return out + "_corv \"$@\"\n";
}

// Returns the start of a line that applies if all commands of the path were given and none of the
// commands under it.
std::string FishCondition(const CommandInfo& command) {
    std::string seen = "true";
    const std::string below = command.path.substr(std::min<std::size_t>(5, command.path.size()));
    for (std::size_t at = 0; at < below.size();) {
        const std::size_t end = std::min(below.find(' ', at), below.size());
        seen += "; and __fish_seen_subcommand_from " + below.substr(at, end - at);
        at = end + 1;
    }
    for (const CommandInfo& inner : command.commands) {
        seen += "; and not __fish_seen_subcommand_from " + inner.name;
    }
    return "complete -c corv -n '" + seen + "'";
}

constexpr std::string_view kFishHelpers = R"shell(# fish completion of corv
function __corv_signals
    command corv info --names -- $argv[1] 2>/dev/null
end
function __corv_names
    for word in (commandline -opc)[2..-1]
        if test -f $word
            __corv_signals $word
            return
        end
    end
end
function __corv_replay
    set -l parts (string split -m1 : -- (commandline -ct))
    if test (count $parts) -gt 1
        for name in (__corv_signals $parts[1])
            echo $parts[1]:$name
        end
    else
        __fish_complete_path $parts[1]
    end
end
complete -c corv -f
)shell";

std::string FishValue(const OptionInfo& option) {
    const std::string choices = Join(option.Choices(), " ");
    return option.value.empty()        ? ""
           : option.IsFile()           ? " -r -F"
           : option.IsSignal()         ? " -x -a '(__corv_names)'"
           : option.IsRecordedSignal() ? " -x -a '(__corv_replay)'"
           : choices.empty()           ? " -x"
                                       : " -x -a '" + choices + "'";
}

std::string Fish(const CommandInfo& program) {
    std::string out(kFishHelpers);
    for (const CommandInfo* command : AllCommands(program)) {
        const std::string head = FishCondition(*command);
        for (const CommandInfo& inner : command->commands) {
            out += head + " -a " + inner.name + " -d " + Quote(inner.summary, "\\'") + "\n";
        }
        for (const OptionInfo& operand : command->operands) {
            const std::string choices = Join(operand.Choices(), " ");
            if (!choices.empty() || operand.IsFile()) {
                out += head;
                out += operand.IsFile() ? " -F\n" : " -a '" + choices + "'\n";
            }
        }
        for (const OptionInfo& option : command->options) {
            out += head + " -l " + option.long_name.substr(2) +
                   (option.short_name.empty() ? "" : " -s " + option.short_name.substr(1)) +
                   FishValue(option) + " -d " + Quote(option.text, "\\'") + "\n";
        }
    }
    return out;
}

}  // namespace

void AddCompletion(CLI::App& program, Action& chosen) {
    constexpr const char* kShells = "bash|zsh|fish";
    CLI::App* command = program.add_subcommand("completion", "write completions for a shell");
    auto shell = std::make_shared<std::string>();
    command->add_option("SHELL", *shell, "The shell")
        ->required()
        ->type_name(kShells)
        ->check(OneOf(kShells));
    command->footer("source <(corv completion bash)");
    command->callback([&chosen, &program, shell] {
        chosen = [&program, shell] {
            const CommandInfo described = Describe(program);
            WriteOutput("", *shell == "bash"  ? Bash(described)
                            : *shell == "zsh" ? Zsh(described)
                                              : Fish(described));
            return kFine;
        };
    });
}

}  // namespace corv::cli
