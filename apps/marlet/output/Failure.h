#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace marlet::tool
{

/// A failure that a person is told of as "marlet: SUBJECT: message". Without a subject of its own it concerns
/// the file that the command works on.
class Failure : public std::runtime_error
{
public:
    explicit Failure(const std::string &message) : runtime_error(message) {}
    Failure(std::string subject, const std::string &message)
        : runtime_error(message), subject_(std::move(subject))
    {
    }

    const std::string &Subject() const { return subject_; }

private:
    std::string subject_;
};

/// The words that the tool was called with make no sense: the usage is shown.
class UsageError : public std::runtime_error
{
public:
    using runtime_error::runtime_error;
};

/// That nothing of the kind has the name, and which names there are.
Failure NoSuch(const std::string &kind, const std::string &name, const std::vector<std::string> &choices);

/// What the operating system says of an error number.
std::string SystemMessage(int error);

} // namespace marlet::tool
