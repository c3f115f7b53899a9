/// Visibility and namespace macros of every public header.
#pragma once

/// Marks what the shared library exports; everything else is hidden.
#if defined(__GNUC__)
#define VELA_API __attribute__((visibility("default")))
#else
#define VELA_API
#endif

/// Lets the compiler hold the arguments of a printf-like member against its format.
#if defined(__GNUC__)
#define VELA_PRINTF_FORMAT(format_index, first_argument) __attribute__((format(printf, format_index, first_argument)))
#else
#define VELA_PRINTF_FORMAT(format_index, first_argument)
#endif

/// The contents of the namespaces `si`, `Json`, `Ome`, `Remote` and `Vela` stand in an inline
/// namespace, so that another library of the same process may export names such as `Json::Value` too.
#define VELA_ABI_NAMESPACE_BEGIN inline namespace vela_1 {
#define VELA_ABI_NAMESPACE_END }
