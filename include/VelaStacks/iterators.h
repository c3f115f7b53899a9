/// Walks over the samples of a stack.
#pragma once

#include <VelaBase/export.h>
#include <VelaStacks/VStack.h>

#include <complex>
#include <cstdint>

class VStackRegion;

/// A walk over a box of a stack, sample by sample. The axis that stands first in the permutation of the region runs
/// fastest; axes that the permutation does not name stay at their `begin`, or at pixel 0 where `begin` does not reach
/// them.
///
///     const boost::shared_ptr<VStackInterface::iterator_base> it = stack->get_iterator(region);
///     for (float sample = 0; !it->at_end(); it->advance())
///     {
///         it->get_value(sample); // whatever type the samples have
///         sum += sample;
///     }
///
/// Samples are read and written as any of 20 types: the ten numeric ones, with "int8" being `char`, and `std::complex` of
/// them. They are converted as `vela_dt_convert` does, without saturation; of a complex sample that is read or written as
/// a real one the imaginary part is dropped, where `vela_dt_convert` refuses.
///
/// Nothing is tested at a read or a write. Behind the end they touch the last sample; in a box that was empty from the
/// start there is none, and they must not be called. The walk holds a plain pointer into the block of the stack: neither
/// the stack nor the size of its block may go while it lives. For one thread.
///
/// Virtual operations keep their order: other compiled code counts on it.
class VELA_API VStackInterface::iterator_base
{
public:
    /// Stores `value`, converted, at the current sample. Does not move.
    virtual void set_value(const std::uint64_t& value) = 0;
    virtual void set_value(const std::complex<std::uint64_t>& value) = 0;
    virtual void set_value(const std::uint32_t& value) = 0;
    virtual void set_value(const std::complex<std::uint32_t>& value) = 0;
    virtual void set_value(const std::uint16_t& value) = 0;
    virtual void set_value(const std::complex<std::uint16_t>& value) = 0;
    virtual void set_value(const std::uint8_t& value) = 0;
    virtual void set_value(const std::complex<std::uint8_t>& value) = 0;
    virtual void set_value(const std::int64_t& value) = 0;
    virtual void set_value(const std::complex<std::int64_t>& value) = 0;
    virtual void set_value(const std::int32_t& value) = 0;
    virtual void set_value(const std::complex<std::int32_t>& value) = 0;
    virtual void set_value(const std::int16_t& value) = 0;
    virtual void set_value(const std::complex<std::int16_t>& value) = 0;
    virtual void set_value(const char& value) = 0;
    virtual void set_value(const std::complex<char>& value) = 0;
    virtual void set_value(const double& value) = 0;
    virtual void set_value(const std::complex<double>& value) = 0;
    virtual void set_value(const float& value) = 0;
    virtual void set_value(const std::complex<float>& value) = 0;

    /// Gives the current sample, converted, in `out`. Does not move.
    virtual void get_value(std::uint64_t& out) const = 0;
    virtual void get_value(std::complex<std::uint64_t>& out) const = 0;
    virtual void get_value(std::uint32_t& out) const = 0;
    virtual void get_value(std::complex<std::uint32_t>& out) const = 0;
    virtual void get_value(std::uint16_t& out) const = 0;
    virtual void get_value(std::complex<std::uint16_t>& out) const = 0;
    virtual void get_value(std::uint8_t& out) const = 0;
    virtual void get_value(std::complex<std::uint8_t>& out) const = 0;
    virtual void get_value(std::int64_t& out) const = 0;
    virtual void get_value(std::complex<std::int64_t>& out) const = 0;
    virtual void get_value(std::int32_t& out) const = 0;
    virtual void get_value(std::complex<std::int32_t>& out) const = 0;
    virtual void get_value(std::int16_t& out) const = 0;
    virtual void get_value(std::complex<std::int16_t>& out) const = 0;
    virtual void get_value(char& out) const = 0;
    virtual void get_value(std::complex<char>& out) const = 0;
    virtual void get_value(double& out) const = 0;
    virtual void get_value(std::complex<double>& out) const = 0;
    virtual void get_value(float& out) const = 0;
    virtual void get_value(std::complex<float>& out) const = 0;

    virtual ~iterator_base();

    iterator_base(const iterator_base&) = delete;
    iterator_base& operator=(const iterator_base&) = delete;

    /// Whether the walk is over. A walk over no axes stands on its one sample for ever.
    bool at_end() const { return is_at_end; }

    /// Moves to the next sample; stays on the last one when the walk is over.
    void advance()
    {
        if (rank != 0 && position[0] + 1 < sizes[0])
        {
            ++position[0];
            data += strides[0];
        }
        else
            carry();
    }

protected:
    /// An empty `region` is at its end at once, whatever else is wrong with it. So is one that is empty only in this
    /// stack, since an axis that it walks has no pixels.
    /// @throws VelaError id -15 "Cannot create iterator over region exceeding the stack!": the box, or the slice along an
    ///         axis that is not walked, lies outside the stack, or outside the block that the stack has
    /// @throws what `VStackRegion::validate` throws
    iterator_base(const VStackInterface* stack, const VStackRegion& region);
    iterator_base(VStackInterface* stack, const VStackRegion& region);

    /// @throws VelaError id -1 "Invalid iterator type!": the samples of `stack` have another type
    static void check_type(const VStackInterface* stack, vela_dt expected, const char* func, int line);

private:
    iterator_base() = default;
    std::uint64_t start(const VStackInterface* stack, const VStackRegion& region);
    void carry();

protected:
    std::uint64_t rank = 0;            ///< number of axes that are walked
    std::uint64_t* position = nullptr; ///< along each of them, in the order of the walk
    std::uint64_t* sizes = nullptr;    ///< start of the one allocation that holds all three
    std::uint64_t* strides = nullptr;  ///< in bytes
    unsigned char* data = nullptr;     ///< the current sample

private:
    bool is_at_end = false;
};

/// Reads and writes samples of the type `T`.
template <class T>
class VELA_API VStackInterface::typed_iterator : public VStackInterface::iterator_base
{
public:
    void set_value(const std::uint64_t& value) override;
    void set_value(const std::complex<std::uint64_t>& value) override;
    void set_value(const std::uint32_t& value) override;
    void set_value(const std::complex<std::uint32_t>& value) override;
    void set_value(const std::uint16_t& value) override;
    void set_value(const std::complex<std::uint16_t>& value) override;
    void set_value(const std::uint8_t& value) override;
    void set_value(const std::complex<std::uint8_t>& value) override;
    void set_value(const std::int64_t& value) override;
    void set_value(const std::complex<std::int64_t>& value) override;
    void set_value(const std::int32_t& value) override;
    void set_value(const std::complex<std::int32_t>& value) override;
    void set_value(const std::int16_t& value) override;
    void set_value(const std::complex<std::int16_t>& value) override;
    void set_value(const char& value) override;
    void set_value(const std::complex<char>& value) override;
    void set_value(const double& value) override;
    void set_value(const std::complex<double>& value) override;
    void set_value(const float& value) override;
    void set_value(const std::complex<float>& value) override;

    void get_value(std::uint64_t& out) const override;
    void get_value(std::complex<std::uint64_t>& out) const override;
    void get_value(std::uint32_t& out) const override;
    void get_value(std::complex<std::uint32_t>& out) const override;
    void get_value(std::uint16_t& out) const override;
    void get_value(std::complex<std::uint16_t>& out) const override;
    void get_value(std::uint8_t& out) const override;
    void get_value(std::complex<std::uint8_t>& out) const override;
    void get_value(std::int64_t& out) const override;
    void get_value(std::complex<std::int64_t>& out) const override;
    void get_value(std::int32_t& out) const override;
    void get_value(std::complex<std::int32_t>& out) const override;
    void get_value(std::int16_t& out) const override;
    void get_value(std::complex<std::int16_t>& out) const override;
    void get_value(char& out) const override;
    void get_value(std::complex<char>& out) const override;
    void get_value(double& out) const override;
    void get_value(std::complex<double>& out) const override;
    void get_value(float& out) const override;
    void get_value(std::complex<float>& out) const override;

    /// The current sample; then moves to the next one.
    T* operator++(int)
    {
        T* const current = reinterpret_cast<T*>(data);
        advance();
        return current;
    }

protected:
    using iterator_base::iterator_base;
};

/// A walk over a stack that has samples of the type `T`.
template <class T>
class VELA_API VStackInterface::iterator : public VStackInterface::typed_iterator<T>
{
public:
    /// @throws what `iterator_base` and `check_type` throw
    iterator(VStackInterface* stack, const VStackRegion& region);
};

/// The same for a constant stack. Nothing keeps it from writing: that is up to its user.
template <class T>
class VELA_API VStackInterface::const_iterator : public VStackInterface::typed_iterator<T>
{
public:
    /// @throws what `iterator_base` and `check_type` throw
    const_iterator(const VStackInterface* stack, const VStackRegion& region);
};

extern template class VStackInterface::typed_iterator<std::uint64_t>;
extern template class VStackInterface::typed_iterator<std::complex<std::uint64_t>>;
extern template class VStackInterface::typed_iterator<std::uint32_t>;
extern template class VStackInterface::typed_iterator<std::complex<std::uint32_t>>;
extern template class VStackInterface::typed_iterator<std::uint16_t>;
extern template class VStackInterface::typed_iterator<std::complex<std::uint16_t>>;
extern template class VStackInterface::typed_iterator<std::uint8_t>;
extern template class VStackInterface::typed_iterator<std::complex<std::uint8_t>>;
extern template class VStackInterface::typed_iterator<std::int64_t>;
extern template class VStackInterface::typed_iterator<std::complex<std::int64_t>>;
extern template class VStackInterface::typed_iterator<std::int32_t>;
extern template class VStackInterface::typed_iterator<std::complex<std::int32_t>>;
extern template class VStackInterface::typed_iterator<std::int16_t>;
extern template class VStackInterface::typed_iterator<std::complex<std::int16_t>>;
extern template class VStackInterface::typed_iterator<char>;
extern template class VStackInterface::typed_iterator<std::complex<char>>;
extern template class VStackInterface::typed_iterator<double>;
extern template class VStackInterface::typed_iterator<std::complex<double>>;
extern template class VStackInterface::typed_iterator<float>;
extern template class VStackInterface::typed_iterator<std::complex<float>>;
extern template class VStackInterface::iterator<std::uint64_t>;
extern template class VStackInterface::iterator<std::complex<std::uint64_t>>;
extern template class VStackInterface::iterator<std::uint32_t>;
extern template class VStackInterface::iterator<std::complex<std::uint32_t>>;
extern template class VStackInterface::iterator<std::uint16_t>;
extern template class VStackInterface::iterator<std::complex<std::uint16_t>>;
extern template class VStackInterface::iterator<std::uint8_t>;
extern template class VStackInterface::iterator<std::complex<std::uint8_t>>;
extern template class VStackInterface::iterator<std::int64_t>;
extern template class VStackInterface::iterator<std::complex<std::int64_t>>;
extern template class VStackInterface::iterator<std::int32_t>;
extern template class VStackInterface::iterator<std::complex<std::int32_t>>;
extern template class VStackInterface::iterator<std::int16_t>;
extern template class VStackInterface::iterator<std::complex<std::int16_t>>;
extern template class VStackInterface::iterator<char>;
extern template class VStackInterface::iterator<std::complex<char>>;
extern template class VStackInterface::iterator<double>;
extern template class VStackInterface::iterator<std::complex<double>>;
extern template class VStackInterface::iterator<float>;
extern template class VStackInterface::iterator<std::complex<float>>;
extern template class VStackInterface::const_iterator<std::uint64_t>;
extern template class VStackInterface::const_iterator<std::complex<std::uint64_t>>;
extern template class VStackInterface::const_iterator<std::uint32_t>;
extern template class VStackInterface::const_iterator<std::complex<std::uint32_t>>;
extern template class VStackInterface::const_iterator<std::uint16_t>;
extern template class VStackInterface::const_iterator<std::complex<std::uint16_t>>;
extern template class VStackInterface::const_iterator<std::uint8_t>;
extern template class VStackInterface::const_iterator<std::complex<std::uint8_t>>;
extern template class VStackInterface::const_iterator<std::int64_t>;
extern template class VStackInterface::const_iterator<std::complex<std::int64_t>>;
extern template class VStackInterface::const_iterator<std::int32_t>;
extern template class VStackInterface::const_iterator<std::complex<std::int32_t>>;
extern template class VStackInterface::const_iterator<std::int16_t>;
extern template class VStackInterface::const_iterator<std::complex<std::int16_t>>;
extern template class VStackInterface::const_iterator<char>;
extern template class VStackInterface::const_iterator<std::complex<char>>;
extern template class VStackInterface::const_iterator<double>;
extern template class VStackInterface::const_iterator<std::complex<double>>;
extern template class VStackInterface::const_iterator<float>;
extern template class VStackInterface::const_iterator<std::complex<float>>;
