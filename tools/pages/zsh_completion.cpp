// The completion of zsh, for qrx_cli.
#include <string>
#include <vector>

#include "tools/pages/pages.h"
#include "tools/pages/text.h"

namespace qrx::pages {
namespace {

constexpr const char* kHead = R"zsh(#compdef qrx_cli
# zsh completion for qrx_cli.
# Made by qrx_pages from what the program says of itself. Do not edit.

)zsh";

constexpr const char* kBody = R"zsh(
# _qrx_cli_command <word>: the command that it stands for, by its full name or by as much as is unique, in REPLY.
_qrx_cli_command()
{
    local word=${1:l} command
    local -a found
    REPLY=
    for command in $_qrx_cli_commands $_qrx_cli_hidden; do
        if [[ $command == $word ]]; then
            REPLY=$command
            return
        fi
        [[ ${command[1,$#word]} == $word ]] && found+=($command)
    done
    (( $#found == 1 )) && REPLY=$found[1]
}

_qrx_cli()
{
    local at=2 option REPLY key
    local -a ids
    [[ $words[2] == <-> ]] && (( CURRENT > 2 )) && at=3
    if (( CURRENT == at )); then
        ids=(/dev/nvme<->(N:t:s/nvme//))
        (( at == 2 )) && compadd -a ids
        compadd -l -d _qrx_cli_lines -a _qrx_cli_commands
        return
    fi
    _qrx_cli_command $words[at]
    option=$words[CURRENT-1]
    if [[ $words[CURRENT] == --*=* ]]; then
        option=${words[CURRENT]%%=*}
        compset -P '*='
    fi
    if [[ ${option:l} == -output ]]; then
        _files
        return
    fi
    key="$REPLY $option"
    case $_qrx_cli_values[$key] in
    '<file>') _files ;;
    '<value>') ;;
    ?*) compadd -- ${=_qrx_cli_values[$key]} ;;
    *)
        if [[ $words[CURRENT] == -* ]]; then
            compadd -- ${=_qrx_cli_options[$REPLY]} -output
        elif [[ $REPLY == (help|'?') ]]; then
            compadd -l -d _qrx_cli_lines -a _qrx_cli_commands
        fi
        ;;
    esac
}

_qrx_cli "$@"
)zsh";

constexpr std::size_t kNameWidth = 18;

}  // namespace

std::string zshCompletion(const std::vector<Command>& commands)
{
    std::string words = "typeset -ga _qrx_cli_commands _qrx_cli_hidden _qrx_cli_lines\n_qrx_cli_commands=(\n";
    std::string lines = "_qrx_cli_lines=(\n";
    std::string hidden = "_qrx_cli_hidden=(\n";
    std::string options = "typeset -gA _qrx_cli_options _qrx_cli_values\n_qrx_cli_options=(\n";
    std::string values =
        "# What may stand behind an option of a command: a list of words, <file> or <value>.\n"
        "_qrx_cli_values=(\n";
    for (const Command& command : commands) {
        const std::string word = "    " + quoted(command.word) + "\n";
        if (command.listed) {
            std::string padded = command.word;
            padded.resize(std::max(padded.size() + 1, kNameWidth), ' ');
            words += word;
            lines += "    " + quoted(padded + sentence(command.brief)) + "\n";
        } else {
            hidden += word;
        }
        std::vector<std::string> spellings;
        for (const Option& option : usefulOptions(command)) {
            for (const std::string& spelling : option.spellings()) {
                spellings.push_back(spelling);
                if (option.takesArgument(spelling)) {
                    values += "    " + quoted(command.word + " " + spelling) + " " +
                              quoted(!option.words.empty() ? joined(option.words, " ")
                                                           : (takesFile(option) ? "<file>" : "<value>")) +
                              "\n";
                }
            }
        }
        options += "    " + quoted(command.word) + " " + quoted(joined(spellings, " ")) + "\n";
    }
    return kHead + words + ")\n" + hidden + ")\n" + lines + ")\n" + options + ")\n" + values + ")\n" + kBody;
}

}  // namespace qrx::pages
