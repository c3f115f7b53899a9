// Floats to small integers with AVX2. Included inside the namespace of the instruction set.

/// Eight 32-bit lanes; see the SSE2 form.
struct Lanes
{
    typedef __m256i Ints;
    static constexpr std::uint64_t count = 8;

    static Ints truncate(const char* source, float)
    {
        return _mm256_cvttps_epi32(_mm256_castsi256_ps(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(source))));
    }
    static Ints truncate(const char* source, double)
    {
        return _mm256_inserti128_si256(_mm256_castsi128_si256(truncate_four(source)),
                                       truncate_four(source + 4 * sizeof(double)), 1);
    }
    static __m128i truncate_four(const char* source)
    {
        return _mm256_cvttpd_epi32(_mm256_castsi256_pd(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(source))));
    }

    static Ints none() { return _mm256_setzero_si256(); }
    static Ints either(Ints a, Ints b) { return _mm256_or_si256(a, b); }
    static Ints is_indefinite(Ints value) { return _mm256_cmpeq_epi32(value, _mm256_set1_epi32(INT32_MIN)); }
    static bool any_of_bits(Ints value, std::int32_t bits)
    {
        return _mm256_testz_si256(value, _mm256_set1_epi32(bits)) == 0;
    }

    static constexpr auto beyond_uint8 = static_cast<std::int32_t>(0xff00ff00);
    static constexpr auto beyond_uint16 = static_cast<std::int32_t>(0xffff0000);

    static Ints store_saturated(char* target, Ints a, Ints b)
    {
        // Packing works within halves: the quarters come out as a0 b0 a1 b1.
        const Ints packed = _mm256_permute4x64_epi64(_mm256_packs_epi32(a, b), 0xd8);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(target), packed);
        return packed;
    }
    static Ints smaller_words(Ints a, Ints b) { return _mm256_min_epi16(a, b); }
    static Ints larger_words(Ints a, Ints b) { return _mm256_max_epi16(a, b); }
    static bool any_word(Ints words, std::int16_t value)
    {
        return _mm256_movemask_epi8(_mm256_cmpeq_epi16(words, _mm256_set1_epi16(value))) != 0;
    }

    static Ints store_uint16(char* target, Ints a, Ints b)
    {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(target),
                            _mm256_permute4x64_epi64(_mm256_packus_epi32(a, b), 0xd8));
        return _mm256_or_si256(a, b);
    }

    static Ints store_uint8(char* target, Ints a, Ints b, Ints c, Ints d)
    {
        // The eighths come out as a0 b0 c0 d0 a1 b1 c1 d1.
        const Ints order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
        const Ints ab = _mm256_packs_epi32(a, b);
        const Ints cd = _mm256_packs_epi32(c, d);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(target),
                            _mm256_permutevar8x32_epi32(_mm256_packus_epi16(ab, cd), order));
        return _mm256_or_si256(ab, cd);
    }

    static void store_low_16(char* target, Ints a, Ints b)
    {
        const Ints low = _mm256_set1_epi32(0xffff);
        store_uint16(target, _mm256_and_si256(a, low), _mm256_and_si256(b, low));
    }

    static void store_low_8(char* target, Ints a, Ints b, Ints c, Ints d)
    {
        const Ints low = _mm256_set1_epi32(0xff);
        store_uint8(target, _mm256_and_si256(a, low), _mm256_and_si256(b, low), _mm256_and_si256(c, low),
                    _mm256_and_si256(d, low));
    }
};
