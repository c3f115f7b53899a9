/// Writes that pass the cache by.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace Vela::detail {

/// A row to where nobody looks soon. Whole lines go straight to memory: they are not read before, and push nothing
/// out of the cache.
inline void stream_row(const unsigned char* source, unsigned char* target, std::uint64_t size_bytes)
{
#if defined(__SSE2__)
    constexpr std::uint64_t line = 64;
    const std::uint64_t to_line = (line - reinterpret_cast<std::uintptr_t>(target) % line) % line;
    const std::uint64_t head = std::min(to_line, size_bytes);
    std::memcpy(target, source, head);
    std::uint64_t done = head;
    for (; done + line <= size_bytes; done += line)
    {
        __m128i words[4];
        std::memcpy(words, source + done, line);
        auto* const out = reinterpret_cast<__m128i*>(target + done);
        _mm_stream_si128(out, words[0]);
        _mm_stream_si128(out + 1, words[1]);
        _mm_stream_si128(out + 2, words[2]);
        _mm_stream_si128(out + 3, words[3]);
    }
    std::memcpy(target + done, source + done, size_bytes - done);
#else
    std::memcpy(target, source, size_bytes);
#endif
}

/// Behind the last of them: from here on others see all of them in order.
inline void end_streaming()
{
#if defined(__SSE2__)
    _mm_sfence();
#endif
}

/// Asks for a row that is read soon.
inline void prefetch_row(const unsigned char* source, std::uint64_t size_bytes)
{
#if defined(__GNUC__)
    constexpr std::uint64_t line = 64;
    for (std::uint64_t i = 0; i < size_bytes; i += line)
        __builtin_prefetch(source + i);
#endif
}

} // namespace Vela::detail
