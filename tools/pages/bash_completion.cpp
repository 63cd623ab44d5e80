// The completion of bash, for qrx_cli and qrx_sim. The functions are the same whatever the tables hold; the lists in
// them come from the tables.
#include <string>
#include <vector>

#include "sim/firmware/factory.h"
#include "sim/launcher/control_command.h"
#include "sim/launcher/image_command.h"
#include "sim/launcher/options.h"
#include "tools/pages/pages.h"
#include "tools/pages/text.h"
#include "tools/pages/usage_text.h"

namespace qrx::pages {
namespace {

constexpr const char* kHead = R"bash(# bash completion for qrx_cli and qrx_sim.
# Made by qrx_pages from what the programs say of themselves. Do not edit.

)bash";

constexpr const char* kTool = R"bash(
# The command that the word stands for, by its full name or by as much of it as is unique.
_qrx_cli_command()
{
    local word=${1,,} command found=()
    for command in $_qrx_cli_commands $_qrx_cli_hidden; do
        [[ $command == "$word" ]] && { printf '%s' "$command"; return; }
        [[ $command == "$word"* ]] && found+=("$command")
    done
    [[ ${#found[@]} -eq 1 ]] && printf '%s' "${found[0]}"
}

# The ids of the controllers that there are.
_qrx_cli_ids()
{
    local node
    for node in /dev/nvme*; do
        [[ $node =~ ^/dev/nvme([0-9]+)$ ]] && printf '%s ' "${BASH_REMATCH[1]}"
    done
}

# _qrx_words <list>: those of the list that begin with the current word.
_qrx_words()
{
    local word
    COMPREPLY=()
    set -f  # "?" is a command
    for word in $1; do
        [[ $word == "$cur"* ]] && COMPREPLY+=("$word")
    done
    set +f
}

_qrx_files()
{
    mapfile -t COMPREPLY < <(compgen -f -- "$cur")
    compopt -o filenames 2>/dev/null
}

# _qrx_cli_words <first>: completes the words of the command line from there on.
_qrx_cli_words()
{
    local at=$1 command option=$prev values
    ((at < COMP_CWORD)) && [[ ${COMP_WORDS[at]} =~ ^[0-9]+$ ]] && ((++at))
    if ((at == COMP_CWORD)); then
        if ((at == $1)); then
            _qrx_words "$_qrx_cli_commands $(_qrx_cli_ids)"
        else
            _qrx_words "$_qrx_cli_commands"
        fi
        return
    fi
    command=$(_qrx_cli_command "${COMP_WORDS[at]}")
    # bash splits --option=value into three words.
    if [[ $cur == = ]]; then
        cur=
    elif [[ $prev == = ]]; then
        option=${COMP_WORDS[COMP_CWORD - 2]}
    fi
    if [[ ${option,,} == -output ]]; then
        _qrx_files
        return
    fi
    values=$(_qrx_cli_values "$command" "$option")
    case $values in
    '<file>') _qrx_files ;;
    '<value>') ;;
    ?*) _qrx_words "$values" ;;
    *)
        if [[ $cur == -* ]]; then
            _qrx_words "$(_qrx_cli_options "$command") -output"
        elif [[ $command == help || $command == '?' ]]; then
            _qrx_words "$_qrx_cli_commands"
        fi
        ;;
    esac
}

_qrx_cli()
{
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]}
    COMPREPLY=()
    _qrx_cli_words 1
}
complete -F _qrx_cli qrx_cli
)bash";

constexpr const char* kSimulator = R"bash(
_qrx_sim()
{
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD - 1]} at
    COMPREPLY=()
    for ((at = 1; at < COMP_CWORD; ++at)); do
        case ${COMP_WORDS[at]} in
        --)
            if ((at + 1 == COMP_CWORD)); then
                mapfile -t COMPREPLY < <(compgen -c -- "$cur")
            elif [[ ${COMP_WORDS[at + 1]##*/} == qrx_cli ]]; then
                _qrx_cli_words $((at + 2))
            else
                _qrx_files
            fi
            return
            ;;
        ctl)
            case $prev in
            --state | --control | save | mount-table) _qrx_files ;;
            --*) ;;
            *) _qrx_words "$_qrx_sim_controls" ;;
            esac
            return
            ;;
        make-image)
            if [[ $cur == -* ]]; then
                _qrx_words "$_qrx_sim_image_options"
            else
                _qrx_files
            fi
            return
            ;;
        esac
    done
    [[ $prev == = ]] && prev=${COMP_WORDS[COMP_CWORD - 2]}
    [[ $cur == = ]] && prev=${COMP_WORDS[COMP_CWORD - 1]} cur=
    case $prev in
    --scenario) _qrx_words "$_qrx_sim_scenarios" ;;
    --state | --trace | --mtab | --control) _qrx_files ;;
    --transport) _qrx_words 'auto seccomp preload' ;;
    --clock) _qrx_words 'running stopped' ;;
    --fault) ;;
    *) _qrx_words "$_qrx_sim_options ctl make-image --" ;;
    esac
}
complete -F _qrx_sim qrx_sim
)bash";

// Names as a shell's list.
std::string list(const std::string& variable, const std::vector<std::string>& words)
{
    return variable + "=" + quoted(joined(words, " ")) + "\n";
}

std::vector<std::string> wordsOf(const std::vector<Command>& commands, bool listed)
{
    std::vector<std::string> words;
    for (const Command& command : commands) {
        if (command.listed == listed) {
            words.push_back(command.word);
        }
    }
    return words;
}

std::string optionLists(const std::vector<Command>& commands)
{
    std::string text = "\n# The options of a command.\n_qrx_cli_options()\n{\n    case $1 in\n";
    for (const Command& command : commands) {
        std::vector<std::string> spellings;
        for (const Option& option : usefulOptions(command)) {
            for (const std::string& spelling : option.spellings()) {
                spellings.push_back(spelling);
            }
        }
        text += "    " + quoted(command.word) + ") echo " + quoted(joined(spellings, " ")) + " ;;\n";
    }
    return text + "    esac\n}\n";
}

std::string valueLists(const std::vector<Command>& commands)
{
    std::string text =
        "\n# What may stand behind an option of a command: a list of words, <file>, <value>, or nothing.\n"
        "_qrx_cli_values()\n{\n    case \"$1 $2\" in\n";
    for (const Command& command : commands) {
        for (const Option& option : usefulOptions(command)) {
            std::vector<std::string> patterns;
            for (const std::string& spelling : option.spellings()) {
                if (option.takesArgument(spelling)) {
                    patterns.push_back(quoted(command.word + " " + spelling));
                }
            }
            if (!patterns.empty()) {
                text += "    " + joined(patterns, " | ") + ") echo " +
                        quoted(!option.words.empty() ? joined(option.words, " ")
                                                     : (takesFile(option) ? "<file>" : "<value>")) +
                        " ;;\n";
            }
        }
    }
    return text + "    esac\n}\n";
}

std::vector<std::string> firstWords(const std::vector<UsageText::Entry>& entries)
{
    std::vector<std::string> words;
    words.reserve(entries.size());
    for (const UsageText::Entry& entry : entries) {
        words.push_back(entry.term.substr(0, entry.term.find(' ')));
    }
    return words;
}

}  // namespace

std::string bashCompletion(const std::vector<Command>& commands)
{
    std::vector<std::string> scenarios;
    scenarios.reserve(sim::scenarios().size());
    for (const sim::Scenario& scenario : sim::scenarios()) {
        scenarios.emplace_back(scenario.name);
    }
    return kHead + list("_qrx_cli_commands", wordsOf(commands, true)) +
           list("_qrx_cli_hidden", wordsOf(commands, false)) +
           list("_qrx_sim_options", firstWords(readUsage(sim::usage()).entries)) +
           list("_qrx_sim_image_options", firstWords(readUsage(sim::image_usage()).entries)) +
           list("_qrx_sim_controls", firstWords(readUsage(sim::control_usage()).entries)) +
           list("_qrx_sim_scenarios", scenarios) + optionLists(commands) + valueLists(commands) + kTool + kSimulator;
}

}  // namespace qrx::pages
