/// Stacks with samples.
#pragma once

#include <VelaBase/export.h>
#include <VelaBase/vela_dt.h>
#include <VelaStacks/VStackInfo.h>

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <string>
#include <vector>

class VStackRegion;

namespace Vela {
VELA_ABI_NAMESPACE_BEGIN
class SampleBlock;
class SharedMemory;
class StackFiller;
VELA_ABI_NAMESPACE_END
}

/// A description and its samples, which lie in one block: axis 0 fastest, without gaps, each
/// `vela_dt_get_size(get_dt())` bytes.
///
/// For one thread at a time. Pointers to stacks must not be null. Virtual operations keep their order: other compiled
/// code counts on it.
class VELA_API VStackInterface : public virtual VStackInfoInterface
{
public:
    class iterator_base;
    template <class T>
    class typed_iterator;
    template <class T>
    class iterator;
    template <class T>
    class const_iterator;

    /// Becomes what `region` gives of `source`: first the description, as `create` makes it of a region, then the
    /// samples, converted to the type of `region`. What lies outside `source` becomes 0.
    ///
    /// `source` may be this stack, or one that shares its samples: then it works as if it had been copied first.
    ///
    /// Some things are as they are:
    /// - The region that is all of `source` in its order is copied as it is where the type stays, whatever type that is, and
    ///   as `vela_dt_convert` does it otherwise. Where that does not support the two types, as from complex to real, the
    ///   block is left as it was.
    /// - Any other region takes the real part then. Into a type that is not numeric it copies nothing; what lies outside
    ///   becomes 0 all the same.
    /// - A region that has nothing in common with `source` leaves the block as it was.
    /// - So does a region that is empty along an axis that it cuts away, where it is in the order of `source`; in any other
    ///   order the slice at `begin` counts.
    ///
    /// A block that has grown here has zeros where this says that it stays as it was. A block that is smaller than its
    /// description, since somebody who shares it has changed its size, is copied as far as it goes.
    ///
    /// @throws what `create` on a region throws; see there and at `VStackImp` for what is left
    /// @throws VelaError id -1 "Invalid type!": `source` has no numeric type where the new type is numeric, and the region,
    ///         which has something in common with `source`, is not all of it in its order; the description is the new one
    /// @throws VelaError id -1 "Out of memory": also where `source` shares samples with this stack and cannot be kept;
    ///         nothing has changed then
    virtual void copy(const VStackInterface* source, const VStackRegion& region) = 0;

    /// All of `source` in the type `dt`, 0 being its own.
    /// @throws as the other form
    virtual void copy(const VStackInterface* source, vela_dt dt) = 0;

    /// Releases the samples. The stack stays usable: it has no axes and no type. The lock of the description counts.
    virtual void destroy() = 0;

    /// The first sample; null where there are none. Good until the size of the block changes, here or in a stack that
    /// shares it.
    virtual const unsigned char* get_data_ptr() const = 0;
    virtual unsigned char* get_data_ptr() = 0;

    /// Moves the samples into a segment of shared memory, unless they are there already, and gives its id, by which
    /// another process attaches to them: see `Vela::SharedMemory`. The text belongs to the stack.
    /// Pointers into the block are void after the first call.
    /// @throws what `Vela::SharedMemory` throws; the samples stay where they were then
    virtual const char* share() const = 0;

    /// Walks the box `region` of this stack sample by sample, whatever type they have: see `iterators.h`.
    /// @throws VelaError id -1 "Invalid type!": the samples are not numeric
    /// @throws VelaError id -15 "Cannot create iterator over region exceeding the stack!"
    /// @throws what `VStackRegion::validate` throws
    boost::shared_ptr<iterator_base> get_iterator(const VStackRegion& region) const;

    ~VStackInterface() override;
};

/// The storage of a `VStackImp`, not for callers: samples in memory of this process or, once shared, in a segment of
/// shared memory. Copies share the block in either state; a copy that was made before its source went to shared memory
/// keeps the private block.
class VStackData
{
public:
    /// Private and empty.
    VStackData();
    /// Attaches to a segment.
    /// @throws what `Vela::SharedMemory` throws
    explicit VStackData(const std::string& id);
    VStackData(const VStackData& other);
    VStackData& operator=(const VStackData& other) = delete;
    ~VStackData();

    /// In bytes.
    std::uint64_t size() const;
    /// Null where there are no bytes.
    const unsigned char* data() const;
    unsigned char* data();
    /// Empties a private block, for all who share it, and leaves a shared one: private and empty afterwards.
    void clear();
    /// New bytes are 0, unless the block is told to leave them; old ones stay.
    /// @throws std::runtime_error "Cannot resize shared data": in shared memory, also if the size stays
    /// @throws std::bad_alloc
    void resize(std::uint64_t size_bytes);
    /// Goes to shared memory where it is not there yet, and gives the id.
    /// @throws what `Vela::SharedMemory` throws; the samples are where they were then
    const char* share();

    /// Null in shared memory.
    const boost::shared_ptr<Vela::SampleBlock>& private_block() { return local; }

private:
    boost::shared_ptr<Vela::SampleBlock> local; ///< exactly one of the two is set
    boost::shared_ptr<Vela::SharedMemory> shared;
};

/// A stack in memory.
///
/// Its copies share the samples: what one writes the others see. Each has a description of its own, and the block has
/// the size that was last asked for by any of them.
///
/// Every `create` gives the block the size of the new description; old bytes stay, new ones are 0. Sizes of one axis need
/// their type: `create({0}, dt)` is the form on another stack, with a null pointer, and
/// `create(std::vector<std::uint64_t>{0}, dt)` is what was meant. A failure leaves the new description with the old block:
/// @throws VelaError id -1 "Unknown type of elements": there are elements, and their type has no size. Without sizes
///         and type there is one element of no type, so this cannot be created.
/// @throws VelaError id -1 "The size increases the maximum size": more bytes than can be counted
/// @throws VelaError id -1 "Out of memory"
/// @throws std::runtime_error "Cannot resize shared data": the samples are in shared memory, from `share` to `destroy`,
///         and never change their size, not even to the same one
class VELA_API VStackImp : public VStackInterface, public VStackInfoImp
{
public:
    /// A stack of zeros. Throws what the same constructor of `VStackInfoImp` and `create` throw.
    VStackImp(Ome::Type type, const std::vector<std::uint64_t>& sizes, Ome::DimensionOrder order);

    /// `rank` axes of size 0, no sample type and no samples.
    explicit VStackImp(std::uint64_t rank = 0);

    /// A stack that lives elsewhere, in another process for instance: takes its description, then attaches to the segment
    /// that `stack.share()` names. The samples are not copied, and belong to whoever has shared them: see `Vela::SharedMemory`.
    /// Throws what the same constructor of `VStackInfoImp` throws, and what `Vela::SharedMemory` does where there is no
    /// such segment.
    /// @throws VelaError id -1 "Shared memory smaller than the stack!": the segment has not the bytes that the description
    ///         asks for
    explicit VStackImp(const Remote::Stack& stack);

    /// Shares the samples.
    VStackImp(const VStackImp& other);
    VStackImp& operator=(const VStackImp&) = delete;
    ~VStackImp() override;

    void create(const std::vector<std::uint64_t>& new_sizes, vela_dt new_dt) override;
    void create(const VStackInfoInterface* info, vela_dt new_dt) override;
    void create(const VStackInfoInterface* info, const VStackRegion& region) override;

    void copy(const VStackInterface* source, const VStackRegion& region) override;
    void copy(const VStackInterface* source, vela_dt new_dt) override;
    void destroy() override;
    const unsigned char* get_data_ptr() const override;
    unsigned char* get_data_ptr() override;
    const char* share() const override;

    /// The size of the block in bytes. That of the description differs while the block is shared with a stack that
    /// has another size, and after a failed `create`.
    std::uint64_t get_block_size() const;

private:
    friend class Vela::StackFiller;

    void resize();

    mutable VStackData data; ///< sharing moves the bytes and keeps their values
};
