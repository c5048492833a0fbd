// The failure of a property value wrapper: a value of the wrong kind, or an entry without a
// value buffer. The message is one of the fixed texts of the wrappers.
#pragma once

#include <exception>
#include <string>

class PropertyException : public std::exception {
public:
    explicit PropertyException(const std::string& message) : message_(message) {}
    const char* what() const noexcept override { return message_.c_str(); }

private:
    std::string message_;
};
