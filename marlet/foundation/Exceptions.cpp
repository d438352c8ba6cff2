#include <marlet/foundation/Exceptions.h>

#include <utility>

namespace marlet::project
{

const char *InvalidProjectVersionException::what() const noexcept
{
    return "The project file was saved by a newer version of the application than this one.";
}

MessageException::MessageException(NarrowString message) : message_(std::move(message))
{
}

const char *MessageException::what() const noexcept
{
    return message_.c_str();
}

XmlParseException::XmlParseException(NarrowString message, Missing missing, NarrowString name)
    : MessageException(std::move(message)), missing_(missing), name_(std::move(name))
{
}

XmlParseException::~XmlParseException() = default;

MissingPluginException::~MissingPluginException() = default;

InvalidPluginVersionException::~InvalidPluginVersionException() = default;

FileException::FileException(NarrowString path, NarrowString reason)
    : MessageException(path + ": " + reason), path_(std::move(path)), reason_(std::move(reason))
{
}

FileException::~FileException() = default;

ProjectException::ProjectException(int code, NarrowString detail) : code_(code), detail_(std::move(detail))
{
}

const char *ProjectException::what() const noexcept
{
    return "The contents of the project file cannot be read.";
}

} // namespace marlet::project
