#pragma once

#include <string>
#include <vector>

namespace marlet::project
{
class MediaAsset;
}

namespace marlet::tool
{

class JsonWriter;

/// What a media asset answers of its file: its status, and a line for each stream.
std::vector<std::string> MediaFactLines(const project::MediaAsset &media);

/// The same as members of the object that is open.
void WriteMediaFacts(JsonWriter &json, const project::MediaAsset &media);

} // namespace marlet::tool
