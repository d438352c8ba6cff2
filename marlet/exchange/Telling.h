#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/LoadReport.h>
#include <marlet/foundation/Strings.h>

#include <vector>

namespace marlet::project
{

struct ExchangeOptions;

/// Adds an entry to the report of the options, if they have one. The line is that of the foreign text, or 0.
void Tell(const ExchangeOptions &options, LoadEntry::Severity severity, const NarrowString &what,
          int line = 0, const std::vector<kytl::KyID> &ids = {});

/// @throws ExchangeException "Line 7: …"
[[noreturn]] void RefuseLine(int line, const NarrowString &what);

/// The path of a file that a text names, from the folder of the options where it is relative.
WideString MeantPath(const ExchangeOptions &options, const WideString &path);
/// What a text says of a file: its path from that folder where it lies in it.
WideString WrittenPath(const ExchangeOptions &options, const WideString &path);

} // namespace marlet::project
