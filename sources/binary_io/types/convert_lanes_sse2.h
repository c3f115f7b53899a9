// Floats to small integers with SSE2. Included inside the namespace of the instruction set.

/// Four 32-bit lanes. `truncate` takes the first of its floats and their type. A truncation gives the integer
/// indefinite, 2^31, for what 32 bits cannot hold.
struct Lanes
{
    typedef __m128i Ints;
    static constexpr std::uint64_t count = 4;
    static constexpr bool interleaves = false; // the compiler does it as well with vectors of this width

    static Ints truncate(const char* source, float)
    {
        return _mm_cvttps_epi32(_mm_castsi128_ps(_mm_loadu_si128(reinterpret_cast<const __m128i*>(source))));
    }
    static Ints truncate(const char* source, double)
    {
        return _mm_unpacklo_epi64(truncate_two(source), truncate_two(source + 2 * sizeof(double)));
    }
    static Ints truncate_two(const char* source)
    {
        return _mm_cvttpd_epi32(_mm_castsi128_pd(_mm_loadu_si128(reinterpret_cast<const __m128i*>(source))));
    }

    static Ints none() { return _mm_setzero_si128(); }
    static Ints either(Ints a, Ints b) { return _mm_or_si128(a, b); }
    static Ints is_indefinite(Ints value) { return _mm_cmpeq_epi32(value, _mm_set1_epi32(INT32_MIN)); }
    static bool any_of_bits(Ints value, std::int32_t bits)
    {
        const Ints zero = _mm_cmpeq_epi32(_mm_and_si128(value, _mm_set1_epi32(bits)), _mm_setzero_si128());
        return _mm_movemask_epi8(zero) != 0xffff;
    }

    /// 8 bytes to 8 doubles.
    static void widen_to_doubles(const char* bytes, char* doubles)
    {
        const Ints zero = _mm_setzero_si128();
        const Ints words = _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes)), zero);
        const Ints low = _mm_unpacklo_epi16(words, zero);
        const Ints high = _mm_unpackhi_epi16(words, zero);
        store_doubles(doubles, low);
        store_doubles(doubles + 16, _mm_unpackhi_epi64(low, low));
        store_doubles(doubles + 32, high);
        store_doubles(doubles + 48, _mm_unpackhi_epi64(high, high));
    }
    static void store_doubles(char* doubles, Ints two)
    {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(doubles), _mm_castpd_si128(_mm_cvtepi32_pd(two)));
    }

    /// The bits by which `store_uint8` and `store_uint16` show a value that they cannot store.
    static constexpr auto beyond_uint8 = static_cast<std::int32_t>(0xff00ff00);
    static constexpr auto beyond_uint16 = static_cast<std::int32_t>(0xffff0000);

    /// Stores two vectors as signed words with saturation, and gives what it stored.
    static Ints store_saturated(char* target, Ints a, Ints b)
    {
        const Ints packed = _mm_packs_epi32(a, b);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target), packed);
        return packed;
    }
    static Ints smaller_words(Ints a, Ints b) { return _mm_min_epi16(a, b); }
    static Ints larger_words(Ints a, Ints b) { return _mm_max_epi16(a, b); }
    static bool any_word(Ints words, std::int16_t value)
    {
        return _mm_movemask_epi8(_mm_cmpeq_epi16(words, _mm_set1_epi16(value))) != 0;
    }

    /// Stores two vectors of values from 0 to 65535. The result has a bit of `beyond_uint16` set where one was another.
    static Ints store_uint16(char* target, Ints a, Ints b)
    {
        // SSE2 narrows to signed words only: moved down by 2^15 and up again.
        const Ints half = _mm_set1_epi32(0x8000);
        const Ints packed = _mm_packs_epi32(_mm_sub_epi32(a, half), _mm_sub_epi32(b, half));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target), _mm_xor_si128(packed, _mm_set1_epi16(INT16_MIN)));
        return _mm_or_si128(a, b);
    }

    /// Stores four vectors of values from 0 to 255. The result has a bit of `beyond_uint8` set where one was another.
    static Ints store_uint8(char* target, Ints a, Ints b, Ints c, Ints d)
    {
        const Ints ab = _mm_packs_epi32(a, b);
        const Ints cd = _mm_packs_epi32(c, d);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target), _mm_packus_epi16(ab, cd));
        return _mm_or_si128(ab, cd);
    }

    /// Stores the low 16 bits of two vectors.
    static void store_low_16(char* target, Ints a, Ints b)
    {
        // SSE2 narrows with saturation only: the values are brought into range with their low bits kept.
        const Ints low_a = _mm_srai_epi32(_mm_slli_epi32(a, 16), 16);
        const Ints low_b = _mm_srai_epi32(_mm_slli_epi32(b, 16), 16);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(target), _mm_packs_epi32(low_a, low_b));
    }

    /// Stores the low 8 bits of four vectors.
    static void store_low_8(char* target, Ints a, Ints b, Ints c, Ints d)
    {
        const Ints low = _mm_set1_epi32(0xff);
        store_uint8(target, _mm_and_si128(a, low), _mm_and_si128(b, low), _mm_and_si128(c, low), _mm_and_si128(d, low));
    }
};
