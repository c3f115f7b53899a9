/// How the program fails.
#pragma once

#include <exception>
#include <stdexcept>
#include <string>

/// The program was asked for something that it does not do: exit status 2.
class UsageFailure : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// The message of a failure; of one of the library with the system's text in brackets where there is one.
std::string message_of(const std::exception& error);

/// One line on standard error: the program's name and `message`.
void report(const std::string& message);
