#include "tiff_handle.h"

#include <tiffio.h>

#include <array>
#include <cstdarg>
#include <cstdio>
#include <new>

namespace {

[[gnu::format(printf, 4, 0)]] int keep_message(TIFF*, void* target, const char*, const char* format, va_list arguments)
{
    std::array<char, 512> buffer = {};
    std::vsnprintf(buffer.data(), buffer.size(), format, arguments);
    *static_cast<std::string*>(target) = buffer.data();
    return 1;
}

} // namespace

void TiffCloser::operator()(tiff* file) const
{
    TIFFClose(file);
}

TiffHandle open_tiff(const std::string& path, const char* mode, TiffMessages& messages)
{
    TIFFOpenOptions* const options = TIFFOpenOptionsAlloc();
    if (options == nullptr)
        throw std::bad_alloc();
    TIFFOpenOptionsSetErrorHandlerExtR(options, keep_message, &messages.error);
    TIFFOpenOptionsSetWarningHandlerExtR(options, keep_message, &messages.warning);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, static_cast<tmsize_t>(max_tiff_bytes));
    TiffHandle file(TIFFOpenExt(path.c_str(), mode, options));
    TIFFOpenOptionsFree(options);
    return file;
}
