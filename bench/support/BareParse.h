#pragma once

#include <marlet/foundation/Strings.h>

#include <memory>

namespace pugi
{
class xml_document;
}

namespace bench
{

/// What any program has to do that reads a document: pugixml's tree of the text and a walk over its nodes. An
/// empty pointer if it does not parse.
std::shared_ptr<pugi::xml_document> ParseAndWalk(const marlet::project::WideString &text);

} // namespace bench
