/// The failure of callers that miss a key.
#pragma once

#include <VelaBase/export.h>

#include <stdexcept>
#include <string>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

/// A parameter is missing; the text is "No parameter 'name'". The library itself throws none.
class VELA_API NoParameterError : public std::invalid_argument
{
public:
    explicit NoParameterError(const std::string& name);
    NoParameterError(const NoParameterError& other);
    NoParameterError(NoParameterError&& other) noexcept;
    ~NoParameterError() override;
    NoParameterError& operator=(const NoParameterError& other);
    NoParameterError& operator=(NoParameterError&& other) noexcept;
};

VELA_ABI_NAMESPACE_END
}
