// The pages, each as the whole text of its file.
#pragma once

#include <string>
#include <vector>

#include "tools/pages/commands.h"

namespace qrx::pages {

std::string manualOfTheTool(const std::vector<Command>& commands);
std::string manualOfTheSimulator();
std::string bashCompletion(const std::vector<Command>& commands);
std::string zshCompletion(const std::vector<Command>& commands);
std::string commandReference(const std::vector<Command>& commands);  // docs/commands.md
std::string commandWords(const std::vector<Command>& commands);      // one on each line
std::string optionTables(const std::vector<Command>& commands);      // C++, for a fuzz target

}  // namespace qrx::pages
