// Floats to small integers with AVX2. Included inside the namespace of the instruction set.

/// Eight 32-bit lanes; see the SSE2 form.
struct Lanes
{
    typedef __m256i Ints;
    static constexpr std::uint64_t count = 8;
    static constexpr bool interleaves = true;

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

    static void widen_to_doubles(const char* bytes, char* doubles)
    {
        const Ints ints = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes)));
        store(doubles, _mm256_castpd_si256(_mm256_cvtepi32_pd(_mm256_castsi256_si128(ints))));
        store(doubles + 32, _mm256_castpd_si256(_mm256_cvtepi32_pd(_mm256_extracti128_si256(ints, 1))));
    }

    static Ints load(const char* source) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(source)); }
    static void store(char* target, Ints value) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(target), value); }

    /// 32 bytes of each of two arrays of 4-byte or 8-byte values to 64 bytes of pairs.
    template <std::uint64_t size>
    static void interleave(const char* first, const char* second, char* pairs)
    {
        const Ints a = load(first);
        const Ints b = load(second);
        // Within halves: the quarters of the pairs come out in the order 0, 2 and 1, 3.
        const Ints low = size == 4 ? _mm256_unpacklo_epi32(a, b) : _mm256_unpacklo_epi64(a, b);
        const Ints high = size == 4 ? _mm256_unpackhi_epi32(a, b) : _mm256_unpackhi_epi64(a, b);
        store(pairs, _mm256_permute2x128_si256(low, high, 0x20));
        store(pairs + 32, _mm256_permute2x128_si256(low, high, 0x31));
    }

    /// The reverse.
    template <std::uint64_t size>
    static void deinterleave(const char* pairs, char* first, char* second)
    {
        const Ints a = load(pairs);
        const Ints b = load(pairs + 32);
        const __m256 a_words = _mm256_castsi256_ps(a);
        const __m256 b_words = _mm256_castsi256_ps(b);
        const Ints even =
            size == 4 ? _mm256_castps_si256(_mm256_shuffle_ps(a_words, b_words, 0x88)) : _mm256_unpacklo_epi64(a, b);
        const Ints odd =
            size == 4 ? _mm256_castps_si256(_mm256_shuffle_ps(a_words, b_words, 0xdd)) : _mm256_unpackhi_epi64(a, b);
        store(first, _mm256_permute4x64_epi64(even, 0xd8));
        store(second, _mm256_permute4x64_epi64(odd, 0xd8));
    }
};
