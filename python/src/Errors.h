#pragma once

#include "Common.h"

#include <exception>
#include <optional>
#include <string>

namespace marlet::python
{

/// Becomes the Python exception of a name in marlet.errors. May be thrown without the interpreter's lock.
class Failure : public std::exception
{
public:
    /// @param error the name of its class, which lives as long as the program
    Failure(const char *error, std::string message) : error_(error), message_(std::move(message)) {}

    const char *what() const noexcept override { return message_.c_str(); }
    const char *Error() const { return error_; }

private:
    const char *error_;
    std::string message_;
};

/// What is known of a load that failed, for the attributes of a LoadError.
struct LoadFailure : Failure {
    LoadFailure(const char *error, std::string message) : Failure(error, std::move(message)) {}

    std::optional<std::string> path;
    std::optional<int> line;
    std::optional<int> column;
    std::string place;
};

/// Has exceptions of the library come out as those of marlet.errors.
void TranslateErrors();

} // namespace marlet::python
