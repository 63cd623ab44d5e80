// From a line to a handler: the splitter of shell lines and the search of the command tables.
#include <cassert>
#include <cstdio>
#include <cstring>

#include "api/src/interface/globals.h"
#include "cli/Public/common.h"

Command_Info* pCmdTable = nullptr;
QRX_U16 cmdTableSize = 0;

int parse(int* num, char** argv, char* command)
{
    const std::size_t length = std::strlen(command);
    std::size_t position = 0;  // where the current word starts
    *num = 0;
    const auto store = [&] {
        if (*num == kMaxWords) {
            return false;
        }
        argv[(*num)++] = command + position;
        return true;
    };

    for (std::size_t idx = 0; idx < length;) {
        const char c = command[idx];
        if (c == ' ' || c == '\t') {
            command[idx] = '\0';
            if (!store()) {
                return -1;
            }
            ++idx;
            while (command[idx] == ' ') {  // blanks only: a tab here opens an empty word
                ++idx;
            }
            position = idx;
            continue;
        }
        if (c == '"') {
            const char* closing = std::strchr(command + idx + 1, '"');
            if (closing == nullptr) {
                return 0;
            }
            idx = static_cast<std::size_t>(closing - command);
        }
        ++idx;
        if (idx == length && !store()) {
            return -1;
        }
    }
    return 1;
}

int cmdSupportCheck(const char* /*cmd*/, int /*length*/)
{
    return 1;
}

int qrx::dispatch(int argc, char** argv, std::span<Command_Info> general, std::span<Command_Info> hidden)
{
    char noWord[] = "";
    char* const word = argc > 0 && argv[0] != nullptr ? argv[0] : noWord;
    strlwr(word);
    if (std::strcmp(word, "exit") == 0 || std::strcmp(word, "quit") == 0) {
        return -1;
    }
    const std::size_t inputCmdLen = std::strlen(word);
    const auto isExact = [&](const Command_Info& row) {
        return inputCmdLen + 1 == static_cast<std::size_t>(row.cmdLen);
    };
    std::size_t indfound = 0;
    int notExact = 0;
    bool isGeneralcmd = false;

    for (std::size_t i = 0; i < general.size(); ++i) {
        if (std::strncmp(word, general[i].cmd, inputCmdLen) != 0) {
            continue;
        }
        indfound = i;
        if (isExact(general[i])) {
            return general[i].cmdHandler(argc, argv, &general[i]);
        }
        ++notExact;
        isGeneralcmd = true;
    }
    for (std::size_t i = 0; i < hidden.size(); ++i) {
        if (std::strncmp(word, hidden[i].cmd, inputCmdLen) != 0) {
            continue;
        }
        indfound = i;
        if (isExact(hidden[i])) {
            // An exact hidden name that is also a prefix of a general one selects the general row of the same
            // number. No name of the two tables is such a prefix.
            assert(!isGeneralcmd || indfound < general.size());
            Command_Info& row = isGeneralcmd ? general[indfound] : hidden[indfound];
            return row.cmdHandler(argc, argv, &row);
        }
        ++notExact;
    }

    if (notExact == 1) {
        Command_Info& row = isGeneralcmd ? general[indfound] : hidden[indfound];
        return row.cmdHandler(argc, argv, &row);
    }
    if (notExact > 1) {
        std::fprintf(stream, "Ambiguous command '%s'!\n", word);
        return 1;
    }
    if (std::strstr(word, "--vid=0x") != nullptr || std::strstr(word, "--VID=0x") != nullptr) {
        return 0;
    }
    std::fprintf(stream, "Invalid command '%s'!\n", word);
    return 1;
}

int cmdDispatcher(int argc, char** argv)
{
    return qrx::dispatch(argc, argv, {pCmdTable, cmdTableSize}, {hiddenCmdTableV1, hiddenCmdTableV1Size()});
}
