#include <Json/NoParameterError.h>

namespace Json {
VELA_ABI_NAMESPACE_BEGIN

NoParameterError::NoParameterError(const std::string& name) : std::invalid_argument("No parameter '" + name + "'") {}

NoParameterError::NoParameterError(const NoParameterError&) = default;
NoParameterError::NoParameterError(NoParameterError&&) noexcept = default;
NoParameterError::~NoParameterError() = default;
NoParameterError& NoParameterError::operator=(const NoParameterError&) = default;
NoParameterError& NoParameterError::operator=(NoParameterError&&) noexcept = default;

VELA_ABI_NAMESPACE_END
}
