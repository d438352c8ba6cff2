#pragma once

#include "output/Colors.h"

#include <marlet/foundation/LoadReport.h>
#include <marlet/foundation/TextPlace.h>

#include <optional>
#include <string>

namespace marlet::tool
{

/// "FILE:LINE:COLUMN", as compilers name places; of what stands nowhere the file alone.
std::string PlaceName(const std::string &file, const std::optional<project::TextPlace> &place);

/// "FILE:LINE:COLUMN: loss: what", so that editors jump there; in colours if the stream has them.
std::string PlaceLine(const std::string &file, const std::optional<project::TextPlace> &place,
                      project::LoadEntry::Severity severity, const std::string &what,
                      Stream stream = Stream::Out);

/// Where an entry stands, if anywhere.
std::optional<project::TextPlace> PlaceOf(const project::LoadEntry &entry);
/// What it says, with the path of the element in brackets.
std::string WhatAndWhere(const std::string &what, const std::string &path);

/// "the plug-in "Blur" 1.2.0.0 is missing, for 3 uses"
std::string PluginText(const project::UnresolvedPlugin &plugin);

/// Tells on standard error of something that does not keep a command from going on.
void Warn(const std::string &file, const std::string &message);

} // namespace marlet::tool
