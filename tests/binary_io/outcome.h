/// How a call ended, and whether that is what a manifest expects.
#pragma once

#include <VelaBase/VelaError.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <new>
#include <regex.h>
#include <stdexcept>
#include <string>

namespace vela_test {

/// An end without failure, or an exception with its text.
struct Outcome
{
    bool failed = false;
    std::string type; ///< as the manifests call it
    int id = 0;
    std::string message;
};

template <class Call>
Outcome outcome_of(Call call)
{
    try
    {
        call();
        return {};
    }
    catch (const VelaError& error)
    {
        return {true, "VelaError", error.get_id(), error.get_msg()};
    }
    catch (const std::invalid_argument& error)
    {
        return {true, "std::invalid_argument", 0, error.what()};
    }
    catch (const std::bad_alloc& error)
    {
        return {true, "std::bad_alloc", 0, error.what()};
    }
    catch (const std::exception& error)
    {
        return {true, "std::exception", 0, error.what()};
    }
}

inline void replace_all(std::string& text, const std::string& part, const std::string& by)
{
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + by.size()))
        text.replace(at, part.size(), by);
}

/// The whole text fits the expression. "\d" and "\n", the only escapes for characters in the manifests, are not known to
/// POSIX, and a point is any character there, as the manifests ask for by "(?s)".
inline bool fits_regex(const std::string& text, std::string expression)
{
    replace_all(expression, "(?s)", "");
    replace_all(expression, "\\d", "[0-9]");
    replace_all(expression, "\\n", "\n");
    regex_t compiled;
    if (regcomp(&compiled, ("^(" + expression + ")$").c_str(), REG_EXTENDED | REG_NOSUB) != 0)
        throw std::invalid_argument("not a regular expression: " + expression);
    const bool found = regexec(&compiled, text.c_str(), 0, nullptr, 0) == 0;
    regfree(&compiled);
    return found;
}

/// One alternative of an expected failure: each field that it names has to fit.
inline bool fits_alternative(const Outcome& outcome, const nlohmann::json& alternative)
{
    const std::string type = alternative.at("type").get<std::string>();
    if (type != "any" && type != outcome.type)
        return false;
    if (alternative.contains("id") && outcome.id != alternative.at("id").get<int>())
        return false;
    if (alternative.contains("message") && outcome.message != alternative.at("message").get<std::string>())
        return false;
    return !alternative.contains("message_regex") ||
           fits_regex(outcome.message, alternative.at("message_regex").get<std::string>());
}

/// The outcome is one that the manifest expects.
inline testing::AssertionResult fits(const Outcome& outcome, const nlohmann::json& expected)
{
    const std::string result = expected.at("result").get<std::string>();
    bool found = result == "ok_or_error" || (result == "ok" && !outcome.failed);
    if (result == "error" && outcome.failed)
        for (const nlohmann::json& alternative : expected.at("any_of"))
            found = found || fits_alternative(outcome, alternative);
    if (found)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << (outcome.failed
                                               ? "failed with id " + std::to_string(outcome.id) + ": " + outcome.message
                                               : std::string("did not fail"))
                                       << ", expected: " << expected.dump();
}

} // namespace vela_test
