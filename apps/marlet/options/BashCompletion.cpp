#include "Usage.h"

namespace marlet::tool
{

namespace
{

std::string Options(const CommandSpec &command)
{
    std::string words;
    for (const OptionSpec &option : command.options)
        words += option.name + " ";
    return words + "--help";
}

} // namespace

std::string BashCompletion()
{
    std::string names;
    std::string cases;
    for (const CommandSpec *command : Commands()) {
        names += command->name + " ";
        cases += "        " + command->name + ") words='" + Options(*command) + "' ;;\n";
    }
    return "# bash completion for marlet\n"
           "_marlet() {\n"
           "    local current=${COMP_WORDS[COMP_CWORD]} words=\n"
           "    if ((COMP_CWORD == 1)) || [[ ${COMP_WORDS[1]} == help && $COMP_CWORD == 2 ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W '" +
           names +
           "help --version' -- \"$current\")\n"
           "        return\n"
           "    fi\n"
           "    case ${COMP_WORDS[1]} in\n" +
           cases +
           "    esac\n"
           "    if [[ $current == -* ]]; then\n"
           "        mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"$current\")\n"
           "    else\n"
           "        compopt -o filenames 2>/dev/null\n"
           "        mapfile -t COMPREPLY < <(compgen -f -- \"$current\")\n"
           "    fi\n"
           "}\n"
           "complete -F _marlet marlet\n";
}

} // namespace marlet::tool
