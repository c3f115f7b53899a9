/// The description of a stack: everything but its samples.
#pragma once

#include <Json/SignalingReference.h>
#include <Json/Value.h>
#include <Ome/Image.h>
#include <Ome/enums.h>
#include <VelaBase/export.h>
#include <VelaBase/vela_dt.h>
#include <VelaStacks/VStackPosition.h>
#include <si/value.h>

#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <string>
#include <vector>

class VStackRegion;

namespace Remote {
VELA_ABI_NAMESPACE_BEGIN
struct Stack;
VELA_ABI_NAMESPACE_END
}

/// What a stack is: sample type, sizes, and for each axis a length, an offset, a label, a unit, labels of its columns and
/// their positions; for the whole stack a name, a description, units of the samples, a position in global axes, and
/// the OME record.
///
/// Axes are counted from 0; axis 0 runs fastest in memory. The columns of an axis are the pixels along it. Lengths,
/// offsets and column positions are in the unit of their axis; the offset is the position of the middle of the axis. An
/// axis is equidistant until it is given column positions.
///
/// **Record.** Name, description, date, sample type, order of dimensions, sizes, lengths and offsets also stand, or only
/// stand, in the OME record `meta_data()`. A stack with samples has at most five axes, since the record has no more. While
/// a description has no elements, lengths and offsets that are set wait: they are entered when elements come, as far as
/// the record can express them. Those of the channel axis, which it never can, fail at once. A length that waited follows
/// the size of its axis when that changes, so it may be set before a stack grows; a pixel size that somebody has written
/// into the record since is overwritten then. An offset that waited is entered once, for the planes and the time
/// increment that the first elements bring: planes that come later have none. So the first growth matters. By three
/// planes at once, all three get their positions; by one, the others get none, and one frame alone has no time
/// increment, so an offset in time is never entered.
///
/// **Lock.** The description of a stack that is final, on disk for instance, is locked. Then everything that changes
/// it fails, but for `set_stack_position` and what is written through `meta_data`:
/// @throws VelaError id -1 "Cannot set values. Object locked!": from every operation marked "lock"
///
/// **Axis.** Operations on one axis hold it against the rank, behind the lock and before anything else:
/// @throws VelaError id -15 "Invalid axis specified!": from every operation that takes an `axis`
///
/// For one thread at a time; `get_stack_position`, `get_col_positions`, `get_name` and `get_description` change what
/// they look at. Pointers to descriptions must not be null. References that getters give are good until the description
/// changes.
///
/// Virtual operations keep their order: other compiled code counts on it.
class VELA_API VStackInfoInterface
{
public:
    /// Gives the stack a sample type and sizes. What is known of its axes stays; new ones have the length 1.0 and the
    /// offset 0.0. Lock. With `dt` 0 the type becomes unknown and the record keeps the one it has.
    /// @throws VelaError id -1 "The product exceeds the maximum size.": more elements than can be counted; the type is set
    /// @throws std::invalid_argument "Unsupported data type": the record has no such type; `dt` is set, the sizes are not
    /// @throws std::invalid_argument "Unsupported number of sizes": elements along more than five axes; type and sizes are
    ///         set, the record is not
    /// @throws std::bad_cast "bad cast": a size above the signed 64-bit integers, or something in the record that its field
    ///         may not hold; type and sizes are set, the record has what comes before in `Ome::Image::set_sizes`
    virtual void create(const std::vector<std::uint64_t>& sizes, vela_dt dt) = 0;

    /// The type and sizes of another stack, then `set_info`. Lock. `dt` 0 takes the type too.
    /// @throws what the form on sizes and `set_info` throw
    virtual void create(const VStackInfoInterface* info, vela_dt dt) = 0;

    /// Describes what `region` gives of another stack, as it comes out of `VStackRegion::validate`. Lock.
    ///
    /// Label, column labels and column positions come along, columns outside the stack with "" and 0. Length and offset
    /// are those of the box, but the begin counts in pixels, not in their size, in the offset: this is wanted. Name and
    /// description are copied, units are not. Axes that the stack does not have stay as they were here.
    ///
    /// A description that is used again keeps what it has of columns where the axis of the stack has none: its column
    /// labels where that has no labels, its column positions where that is equidistant. They may then not be as many as
    /// there are columns, as after a change of sizes. This is wanted; a new description has none.
    ///
    /// The position keeps its global axes. An axis that is cut away moves the origin by the position of its slice if it
    /// is not equidistant, by its offset if it is: that ignores the slice, and this is wanted. Columns of the
    /// matrix move one after the other in the new matrix, so a permutation reads what it has written: this is wanted.
    /// @throws what `VStackRegion::validate` and the form on sizes throw
    virtual void create(const VStackInfoInterface* info, const VStackRegion& region) = 0;

    /// Takes lengths, offsets, labels, description, name, column labels and positions, and the position in global axes
    /// from another stack, in this order. Lock. Units, units of the samples, raw metadata and date are not copied:
    /// this is wanted. What the record cannot express is left out of it.
    /// @throws VelaError id -15 "Wrong number of labels!": the other stack has got another size since its columns were
    ///         labelled; or what else the single operations throw. What comes before is taken.
    virtual void set_info(const VStackInfoInterface* info) = 0;

    /// Lock. The name stands in the record.
    virtual void set_name(const std::string& name) = 0;

    /// Enters the time of the call into the record, with the offset of local time from UTC. Lock.
    virtual void set_acquisition_date() = 0;

    /// Lock. The description stands in the record.
    virtual void set_description(const std::string& description) = 0;

    /// The physical length of an axis. Lock. It is also entered into the record, see `Ome::Image::set_len`.
    /// @throws what that throws, such as std::invalid_argument "Unsupported physical dimension": the channel axis, also while
    ///         there are no elements. The length is set then, and the record stays as it was.
    virtual void set_len(std::uint64_t axis, double len) = 0;

    /// The lengths of all axes; what is missing stays. Lock. Entries behind the rank are entered into the record, too,
    /// but while there are no elements they are dropped if they are not for the channel axis.
    /// @throws as the other form; all lengths are set then, and the record up to the axis that failed
    virtual void set_len(const std::vector<double>& lens) = 0;

    /// The offset of an axis, which is the position of its middle. Lock. It is also entered into the record, see
    /// `Ome::Image::set_off`.
    /// @throws what that throws, such as std::bad_cast for times that are not above 0, or std::invalid_argument
    ///         "Unsupported physical dimension": the channel axis, also while there are no elements. The offset is set then.
    virtual void set_off(std::uint64_t axis, double off) = 0;

    /// The offsets of all axes; what is missing stays. Lock. Entries behind the rank are entered into the record,
    /// too, but while there are no elements they are dropped if they are not for the channel axis.
    /// @throws as the other form; all offsets are set then, and the record up to the axis that failed
    virtual void set_off(const std::vector<double>& offs) = 0;

    /// The labels of all axes; what is missing stays, what is too much is not taken. Lock.
    virtual void set_labels(const std::vector<std::string>& labels) = 0;

    /// No lock.
    /// @throws VelaError id -1 "Invalid global stack position!": `VStackPosition::is_valid_for` this stack says no
    virtual void set_stack_position(const VStackPosition& position) = 0;

    /// One label for each column, or an empty vector for none. Lock.
    /// @throws VelaError id -15 "Wrong number of labels!"
    virtual void set_col_labels(std::uint64_t axis, const std::vector<std::string>& labels) = 0;

    /// One position for each column: the axis is not equidistant any more. An empty vector makes it so again. Lock.
    /// @throws VelaError id -15 "Wrong number of positions!"
    virtual void set_col_positions(std::uint64_t axis, const std::vector<double>& positions) = 0;

    /// Lock.
    virtual void set_label(std::uint64_t axis, const std::string& label) = 0;

    /// The unit of an axis. Lock.
    virtual void set_units(std::uint64_t axis, const si::value& units) = 0;

    /// The unit of the samples. Lock.
    virtual void set_data_units(const si::value& units) = 0;

    /// The bytes of all samples in the type `dt`, 0 being their own: the size of one, which is 0 where there is none,
    /// times their number, of which the low 64 bits.
    virtual std::uint64_t get_size(vela_dt dt) const = 0;

    /// The product of the sizes; 1 for a stack without axes.
    virtual std::uint64_t get_number_of_elements() const = 0;

    /// The number of axes.
    virtual std::uint64_t get_rank() const = 0;

    virtual const std::vector<std::uint64_t>& get_sizes() const = 0;

    /// The sample type, 0 where none is set.
    virtual vela_dt get_dt() const = 0;

    /// From the record, where one that is not set becomes the empty text.
    virtual const std::string& get_description() const = 0;

    /// From the record, where one that is not set becomes the empty text.
    virtual const std::string& get_name() const = 0;

    virtual const std::vector<double>& get_lengths() const = 0;
    virtual const std::vector<double>& get_offsets() const = 0;
    virtual const std::vector<std::string>& get_labels() const = 0;

    /// One label for each column, or none; or those of the columns that the axis had before its size changed.
    virtual const std::vector<std::string>& get_col_labels(std::uint64_t axis) const = 0;

    /// The position of each column. Where the vector is not as long as the axis, that of an equidistant axis is filled,
    /// from `offset - length / 2 + step / 2` in steps of `length / size`, and that of any other cleared. A vector
    /// that is filled stays when length or offset change: this is wanted.
    virtual std::vector<double>& get_col_positions(std::uint64_t axis) const = 0;

    /// The position of one column; for an equidistant axis by length and offset, whatever vector there is.
    /// @throws VelaError id -15 "Invalid pixel position!": no such column, or no position for it
    virtual double get_col_position(std::uint64_t axis, std::uint64_t pixel) const = 0;

    virtual bool is_equidistant(std::uint64_t axis) const = 0;

    /// The position in global axes. One that is not valid for this stack is made anew first, one global axis
    /// for each axis.
    virtual const VStackPosition& get_stack_position() const = 0;

    virtual std::uint64_t get_dimension_size(std::uint64_t axis) const = 0;
    virtual double get_length(std::uint64_t axis) const = 0;
    virtual double get_offset(std::uint64_t axis) const = 0;
    virtual const std::string& get_label(std::uint64_t axis) const = 0;

    /// The unit of an axis. Where it has no dimension and the axis has a label, it is guessed: a label that ends in
    /// X, Y or Z is a length in metres, or in micrometres where the length of the axis is above 0.01. A unit that is not
    /// valid is the number one there.
    virtual si::value get_units(std::uint64_t axis) const = 0;

    virtual const si::value& get_data_units() const = 0;

    /// The metadata as text, as the source of the stack had it; empty in most stacks.
    virtual const std::string& get_meta_data_string() const = 0;

    /// The OME record of the stack, which lives as long as the description. Sizes, lengths and offsets that are written
    /// here do not change the description. No lock.
    virtual Ome::Image<Json::SignalingReference>& meta_data() = 0;

    virtual ~VStackInfoInterface();

    VStackInfoInterface& operator=(const VStackInfoInterface&) = delete;

protected:
    VStackInfoInterface() = default;
    VStackInfoInterface(const VStackInfoInterface&) = default;
};

/// The implementation of descriptions, and the base of the stacks in memory and in files.
class VELA_API VStackInfoImp : public virtual VStackInfoInterface
{
public:
    /// The record has this type and order of dimensions.
    /// @throws std::invalid_argument "Unsupported stack type": "bit", or no such number
    /// @throws std::bad_cast "bad cast": an order outside the enumeration, or as `create`
    /// @throws what `create` throws for sizes
    VStackInfoImp(Ome::Type type, const std::vector<std::uint64_t>& sizes, Ome::DimensionOrder order);

    /// `rank` axes of size 0, and no sample type; without axes there is one element. The order of dimensions is XYZTC.
    explicit VStackInfoImp(std::uint64_t rank = 0);

    /// What the face of a stack says of it: `labels`, `type`, `sizes`, `lengths`, `offsets`, `name` and `description`, asked
    /// for in this order. The record has of lengths and offsets, axis by axis, what it can express; its sample type and
    /// order of dimensions are not set, and any sample type will do.
    /// @throws what `create` throws for sizes
    explicit VStackInfoImp(const Remote::Stack& stack);

    /// With a record of its own on a copy of the tree, in which dates, units and enumerations that somebody has read
    /// without their being set are not set again. The lock is copied too.
    VStackInfoImp(const VStackInfoImp& other);
    VStackInfoImp& operator=(const VStackInfoImp&) = delete;

    void create(const std::vector<std::uint64_t>& new_sizes, vela_dt new_dt) override;
    void create(const VStackInfoInterface* info, vela_dt new_dt) override;
    void create(const VStackInfoInterface* info, const VStackRegion& region) override;
    void set_info(const VStackInfoInterface* info) override;
    void set_name(const std::string& name) override;
    void set_acquisition_date() override;
    void set_description(const std::string& description) override;
    void set_len(std::uint64_t axis, double len) override;
    void set_len(const std::vector<double>& lens) override;
    void set_off(std::uint64_t axis, double off) override;
    void set_off(const std::vector<double>& offs) override;
    void set_labels(const std::vector<std::string>& new_labels) override;
    void set_stack_position(const VStackPosition& new_position) override;
    void set_col_labels(std::uint64_t axis, const std::vector<std::string>& new_labels) override;
    void set_col_positions(std::uint64_t axis, const std::vector<double>& new_positions) override;
    void set_label(std::uint64_t axis, const std::string& label) override;
    void set_units(std::uint64_t axis, const si::value& new_units) override;
    void set_data_units(const si::value& new_units) override;
    std::uint64_t get_size(vela_dt as_dt) const override;
    std::uint64_t get_number_of_elements() const override;
    std::uint64_t get_rank() const override;
    const std::vector<std::uint64_t>& get_sizes() const override;
    vela_dt get_dt() const override;
    const std::string& get_description() const override;
    const std::string& get_name() const override;
    const std::vector<double>& get_lengths() const override;
    const std::vector<double>& get_offsets() const override;
    const std::vector<std::string>& get_labels() const override;
    const std::vector<std::string>& get_col_labels(std::uint64_t axis) const override;
    std::vector<double>& get_col_positions(std::uint64_t axis) const override;
    double get_col_position(std::uint64_t axis, std::uint64_t pixel) const override;
    bool is_equidistant(std::uint64_t axis) const override;
    const VStackPosition& get_stack_position() const override;
    std::uint64_t get_dimension_size(std::uint64_t axis) const override;
    double get_length(std::uint64_t axis) const override;
    double get_offset(std::uint64_t axis) const override;
    const std::string& get_label(std::uint64_t axis) const override;
    si::value get_units(std::uint64_t axis) const override;
    const si::value& get_data_units() const override;
    const std::string& get_meta_data_string() const override;
    Ome::Image<Json::SignalingReference>& meta_data() override;
    ~VStackInfoImp() override;

protected:
    /// @name For stacks: none of these looks at the lock.
    /// @{

    /// Sets the type, and if it is not 0 that of the record.
    /// @throws std::invalid_argument "Unsupported data type": the record has no such type; `new_dt` is set
    void set_type(vela_dt new_dt);

    /// Sets the type of a stack that has none yet.
    /// @throws VelaError id -1 "The type is already set to %d.": also to this very type
    /// @throws what `set_type` throws
    void set_variable_type(vela_dt new_dt);

    /// Sets the size of the last axis, which grows while a stack of unknown length is written.
    ///
    /// Planes of the record that keep their places while it grows are laid out again only if they were looked at through
    /// `meta_data().planes` since the last time, so that a growth costs what is new. What is written past that into
    /// the place of another plane stays. Once somebody has got the list of planes itself from the tree, by
    /// `Json::Value::as_list`, `if_list` or `fill_list`, he may rearrange it: from then on every growth lays out all.
    /// @throws VelaError id -15 "Invalid axis specified!": a stack without axes
    /// @throws what `set_sizes` throws
    void set_variable_size(std::uint64_t size);

    /// Sets the sizes; see `create`.
    /// @throws what `create` throws for sizes
    void set_sizes(const std::vector<std::uint64_t>& new_sizes);

    /// Lengths and offsets that come from a file or from another stack: taken as they are, missing ones stay. The
    /// record has of them, axis by axis, what it can express; its refusal is no failure.
    void store_lengths(const std::vector<double>& lens);
    void store_offsets(const std::vector<double>& offs);

    /// What a file keeps of an axis: the unit as it was set, without the guess of `get_units`, and the positions
    /// of its columns as far as somebody has set or asked for them, one for each column. Those that are not as many
    /// as the axis has columns by now are as the columns of an equidistant axis have them.
    /// @throws VelaError id -15 "Invalid axis specified!"
    const si::value& stored_units(std::uint64_t axis) const;
    std::vector<double> stored_col_positions(std::uint64_t axis) const;
    /// @}

private:
    void _chk_ax(std::uint64_t axis) const;
    void _chk_lock(const char* func, int line) const;
    void take_axis(std::uint64_t axis, std::uint64_t count, const VStackInfoInterface* info,
                   const VStackRegion& region);
    void store_length(std::uint64_t axis, double len);
    void store_offset(std::uint64_t axis, double off);
    void apply_sizes(const std::vector<std::uint64_t>& new_sizes, bool grows);
    void enter_waiting();
    struct Mirrored;
    Mirrored mirrored_lengths();
    Mirrored mirrored_offsets();

    mutable std::vector<std::vector<double>> col_positions; ///< empty until an equidistant axis is asked for its own
    std::vector<double> lengths;
    std::vector<double> offsets;
    std::vector<std::vector<std::string>> col_labels;
    std::vector<bool> equidistant;
    std::vector<std::string> labels;
    std::vector<si::value> units;
    si::value data_units;
    mutable VStackPosition position;

protected:
    std::string meta_data_string;
    bool locked = false;

private:
    vela_dt dt = vela_dt_none;
    std::vector<std::uint64_t> sizes;
    std::uint64_t number_of_elements = 0;
    Json::Value meta_store; ///< before the record, which lies on it
    Ome::Image<Json::SignalingReference> meta;

    // Set while there were no elements.
    std::vector<bool> waiting_lengths;
    std::vector<bool> waiting_offsets;
    std::vector<std::uint64_t> entered_sizes; ///< with which lengths that wait were last entered
};

/// A handle of a description: copies and moves share it.
class VELA_API VStackInfo
{
public:
    /// A new description without axes.
    VStackInfo();
    VStackInfo(boost::shared_ptr<VStackInfoInterface> info);
    VStackInfo(const VStackInfo& other);
    VStackInfo& operator=(const VStackInfo& other);
    ~VStackInfo();

    operator VStackInfoInterface*();
    operator const VStackInfoInterface*() const;
    VStackInfoInterface* operator->();
    const VStackInfoInterface* operator->() const;

private:
    boost::shared_ptr<VStackInfoInterface> info;
};
