#pragma once

#include <memory>
#include <string_view>

namespace marlet::project
{

class Project;
struct ExchangeOptions;

/// A project with the timeline of a text: the one that the text was written of, with what has changed since,
/// or a new one. @throws ExchangeException
std::shared_ptr<Project> ReadOtio(std::string_view bytes, const ExchangeOptions &options);

} // namespace marlet::project
