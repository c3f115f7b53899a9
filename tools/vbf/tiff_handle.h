/// libtiff without its messages on standard error.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

struct tiff;

/// The most bytes that libtiff takes at once.
constexpr std::uint64_t max_tiff_bytes = std::uint64_t{2} * 1024 * 1024 * 1024;

struct TiffCloser
{
    void operator()(tiff* file) const;
};

typedef std::unique_ptr<tiff, TiffCloser> TiffHandle;

/// What libtiff said last.
struct TiffMessages
{
    std::string error;
    std::string warning;
};

/// Null where libtiff fails. `messages` is kept up to date; it has to outlive the handle and stay where it is.
TiffHandle open_tiff(const std::string& path, const char* mode, TiffMessages& messages);
