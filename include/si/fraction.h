/// Exact rational numbers: the exponents of physical dimensions.
#pragma once

#include <VelaBase/export.h>

#include <string>

namespace si {
VELA_ABI_NAMESPACE_BEGIN

/// A numerator and a denominator of 32 bits.
///
/// Nothing here throws and no denominator is checked: n/0 is a fraction like any other. Results that
/// 32 bits cannot hold wrap around; `INT_MIN` is its own negative.
class VELA_API fraction
{
public:
    /// 0/1
    constexpr fraction() : numerator_(0), denominator_(1) {}
    /// n/1
    constexpr fraction(int n) : numerator_(n), denominator_(1) {}
    /// n/d, reduced.
    fraction(int n, int d);

    /// n/d as it stands, not reduced: what a unit record of a file holds.
    static fraction unreduced(int n, int d);

    int numerator() const { return numerator_; }
    int denominator() const { return denominator_; }

    /// Each of these reduces its result.
    fraction& operator*=(const fraction& other);
    fraction& operator/=(const fraction& other);
    fraction& operator+=(const fraction& other);
    fraction& operator-=(const fraction& other);

    /// Compare both numbers literally: 2/4 that was not reduced differs from 1/2, and -1/2 from 1/-2.
    friend bool operator==(const fraction& left, const fraction& right)
    {
        return left.numerator_ == right.numerator_ && left.denominator_ == right.denominator_;
    }
    friend bool operator!=(const fraction& left, const fraction& right) { return !(left == right); }

    /// Divides both numbers by their greatest common divisor; 0/d becomes 0/1.
    ///
    /// The divisor comes out of Euclid's loop with its sign, which follows from the signed remainders
    /// and is kept: -1/2 reduces to 1/-2, a stable form. n/0 becomes 1/0, without n's sign.
    void reduce();

    /// Reads a fraction such as "3", "-3", "1/2", "(1/2)" or "(-1/2)", without reducing it, and answers
    /// whether the text was one. After a failure either number may have changed.
    ///
    /// An optional "(", an optional "-", digits, and optionally "/" and digits. A ")" has to be last when
    /// "(" was first, and comes only after a denominator. Wanted, though it looks wrong: "(2)" fails,
    /// "1/2)" is taken, "1/" has the denominator 0, missing digits count as 0, and a denominator has no sign.
    /// Numbers above 32 bits wrap around.
    bool parse(const std::string& text);

private:
    int numerator_;
    int denominator_;
};

VELA_ABI_NAMESPACE_END
}
