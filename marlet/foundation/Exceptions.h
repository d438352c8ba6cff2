#pragma once

#include <marlet/foundation/Strings.h>

#include <exception>

namespace marlet::project
{

/// An element of the file has a version above the highest one that this library reads.
class MARLET_EXPORT InvalidProjectVersionException : public std::exception
{
public:
    const char *what() const noexcept override;
};

/// An exception whose words are made where it is thrown.
class MARLET_EXPORT MessageException : public std::exception
{
public:
    explicit MessageException(NarrowString message);
    const char *what() const noexcept override;

private:
    NarrowString message_;
};

/// A wrong tag, a missing element or a missing attribute. The message has two lines.
class MARLET_EXPORT XmlParseException : public MessageException
{
public:
    /// What is not where it has to be.
    enum class Missing : int { Unknown, Element, Attribute };

    using MessageException::MessageException;
    XmlParseException(NarrowString message, Missing missing, NarrowString name);
    ~XmlParseException() override;

    /// These are for the program, not for what().
    Missing WhatIsMissing() const { return missing_; }
    /// The tag, or the name of the attribute; empty if that is not known.
    const NarrowString &MissingName() const { return name_; }

private:
    Missing missing_ = Missing::Unknown;
    NarrowString name_;
};

/// The project uses a plug-in that the manager does not have.
class MARLET_EXPORT MissingPluginException : public MessageException
{
public:
    using MessageException::MessageException;
    ~MissingPluginException() override;
};

/// The project was saved with a newer version of a plug-in than the one that is loaded.
class MARLET_EXPORT InvalidPluginVersionException : public MessageException
{
public:
    using MessageException::MessageException;
    ~InvalidPluginVersionException() override;
};

/// A file cannot be read or written, or is no text. what() is the path and the reason, with ": " between
/// them.
class MARLET_EXPORT FileException : public MessageException
{
public:
    FileException(NarrowString path, NarrowString reason);
    ~FileException() override;

    /// In the bytes of the operating system.
    const NarrowString &Path() const { return path_; }
    /// The operating system's own words, or what is wrong with the text.
    const NarrowString &Reason() const { return reason_; }

private:
    NarrowString path_;
    NarrowString reason_;
};

/// The contents of a file do not make up a document. The code and the detail are for the program, not for
/// what().
class MARLET_EXPORT ProjectException : public std::exception
{
public:
    /// The code of a required property that is absent; the detail is the property's name.
    static constexpr int kMissingProperty = 9;
    /// The code of a 3D effect that the host's factory did not make; the detail is empty.
    static constexpr int kMissingEffect = 10;

    ProjectException(int code, NarrowString detail);
    const char *what() const noexcept override;

    int Code() const { return code_; }
    const NarrowString &Detail() const { return detail_; }

private:
    int code_;
    NarrowString detail_;
};

} // namespace marlet::project
