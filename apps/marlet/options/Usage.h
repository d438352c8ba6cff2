#pragma once

#include "Command.h"

#include <string>
#include <vector>

namespace marlet::tool
{

/// All commands, in the order in which they are shown.
const std::vector<const CommandSpec *> &Commands();
/// Null if there is none of that name.
const CommandSpec *FindCommand(const std::string &name);

/// What the tool is called with: everything, or one command.
std::string GeneralUsage();
std::string CommandUsage(const CommandSpec &command);

/// "marlet 1.2.3"
std::string VersionLine();

// Made from what the commands say of themselves, so that they cannot tell of others.

/// The tool's page of the manual, for man.
std::string ManPage();
/// A script that a shell reads to complete commands, options and file names: bash, which an empty name stands
/// for, zsh or fish. @throws UsageError for any other
std::string Completion(const std::string &shell);

} // namespace marlet::tool
