// Fields: what binding does to a slot, and which steps an assignment goes through, in which order.
#include "support/expect_bad_cast.h"
#include "json/value_text.h"

#include <Json/SignalingReference.h>

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace field_test {

enum class Colour : std::int32_t
{
    none = -1,
    red = 0,
    green = 1
};

inline std::string get_enumeration_text(Colour colour)
{
    return colour == Colour::red ? "Red" : "Green";
}

inline void get_enumeration(const std::string& text, Colour& colour)
{
    colour = text == "Red" ? Colour::red : text == "Green" ? Colour::green : Colour::none;
}

}

namespace {

using boost::shared_ptr;
using field_test::Colour;
using Json::ChangeHandler;
using Json::SignalingReference;
using Json::Value;
using json_test::value_text;

template <class T>
using Field = SignalingReference::Field<T>;

/// What happened, in order: checks and calls of handlers.
std::vector<std::string>& events()
{
    static std::vector<std::string> list;
    return list;
}

bool checked(const Value& candidate, bool passes)
{
    events().push_back("check " + value_text(candidate));
    return passes;
}

struct Positive
{
    using type = std::int64_t;
    static bool check(const Value& v) { return checked(v, v.if_integer() != nullptr && *v.if_integer() > 0); }
};

/// Passes whatever counts as a number.
struct Number
{
    using type = double;
    static bool check(const Value& v) { return checked(v, v.is_number()); }
};

/// An integer field that passes decimals too.
struct LooseInteger
{
    using type = std::int64_t;
    static bool check(const Value& v) { return checked(v, v.is_number()); }
};

struct ShortText
{
    using type = std::string;
    static bool check(const Value& v) { return checked(v, v.if_string() != nullptr && v.if_string()->size() <= 5); }
};

struct Flag
{
    using type = bool;
    static bool check(const Value& v) { return checked(v, v.is_boolean()); }
};

struct Structure
{
    using type = Value::Object;
    static bool check(const Value& v) { return checked(v, v.is_object()); }
};

struct AnyColour
{
    using type = Colour;
    static bool check(const Value& v) { return checked(v, v.is_string()); }
};

/// Writes down what it is called with.
template <class T>
class Recorder : public ChangeHandler<T>
{
public:
    void changed(const T& value) override
    {
        events().push_back("changed " + value_text(Value(value)));
        values.push_back(value);
        if (during)
            during();
    }

    std::vector<T> values;
    std::function<void()> during;
};

template <>
void Recorder<Colour>::changed(const Colour& value)
{
    values.push_back(value);
}

template <class T>
shared_ptr<Recorder<typename T::type>> record(Field<T>& field)
{
    const auto recorder = boost::make_shared<Recorder<typename T::type>>();
    field.set_change_handler(recorder);
    return recorder;
}

class SignalingReferenceTest : public testing::Test
{
protected:
    SignalingReferenceTest() { events().clear(); }

    static std::vector<std::string> take_events()
    {
        std::vector<std::string> taken;
        taken.swap(events());
        return taken;
    }
};

using Events = std::vector<std::string>;
using FieldBinding = SignalingReferenceTest;
using FieldAssignment = SignalingReferenceTest;
using FieldReading = SignalingReferenceTest;
using FieldHandler = SignalingReferenceTest;

static_assert(!std::is_copy_constructible_v<Field<Positive>>);
static_assert(std::has_virtual_destructor_v<ChangeHandler<int>>);
static_assert(std::is_abstract_v<ChangeHandler<int>>);
static_assert(std::is_same_v<Field<Positive>::type, std::int64_t>);
static_assert(std::is_convertible_v<const Field<Positive>&, std::int64_t>);
static_assert(std::is_convertible_v<const Field<ShortText>&, std::string>);

TEST_F(FieldBinding, BindsTheSlotItself)
{
    Value slot(5);
    const Field<Positive> field(slot);
    EXPECT_EQ(&field.slot(), &slot);
    EXPECT_EQ(&field.value(), &slot);
    EXPECT_FALSE(field.is_null());
    slot = Value(7);
    EXPECT_EQ(field.get(), 7);
}

TEST_F(FieldBinding, PassesANullSlotAndLeavesItNull)
{
    Value tree;
    const Field<Positive> number(tree.at("a"));
    const Field<Flag> flag(tree.at("b"));
    const Field<ShortText> text(tree.at("c"));
    const Field<Structure> structure(tree.at("d"));
    EXPECT_TRUE(number.is_null());
    EXPECT_TRUE(text.is_null());
    EXPECT_EQ(value_text(tree), "{a = null, b = null, c = null, d = null}");
    EXPECT_EQ(take_events(), Events());
}

TEST_F(FieldBinding, RefusesASlotThatFailsTheCheckAndLeavesIt)
{
    Value negative(-1);
    EXPECT_BAD_CAST(const Field<Positive> field(negative));
    EXPECT_EQ(value_text(negative), "i:-1");
    Value text("5");
    EXPECT_BAD_CAST(const Field<Positive> field(text));
    EXPECT_EQ(value_text(text), "'5'");
    EXPECT_EQ(take_events(), (Events{"check i:-1", "check '5'"}));
}

TEST_F(FieldBinding, ConvertsNothing)
{
    Value integer(5);
    const Field<Number> field(integer);
    EXPECT_EQ(value_text(integer), "i:5");
}

TEST_F(FieldBinding, GivesANullSlotItsDefault)
{
    Value slot;
    const Field<Positive> field(slot, Value(5));
    EXPECT_EQ(value_text(slot), "i:5");
    EXPECT_EQ(field.get(), 5);
    EXPECT_EQ(take_events(), (Events{"check i:5"}));
}

TEST_F(FieldBinding, LeavesAFilledSlotToItsValue)
{
    Value slot(7);
    const Field<Positive> field(slot, Value(5));
    EXPECT_EQ(value_text(slot), "i:7");
    Value empty_text("");
    const Field<ShortText> text(empty_text, Value("abc"));
    EXPECT_EQ(value_text(empty_text), "''");
}

TEST_F(FieldBinding, ChecksAFilledSlotAlsoBesideADefault)
{
    Value slot(-7);
    EXPECT_BAD_CAST(const Field<Positive> field(slot, Value(5)));
    EXPECT_EQ(value_text(slot), "i:-7");
}

TEST_F(FieldBinding, AssignsADefaultBeforeItFailsTheCheck)
{
    Value slot;
    EXPECT_BAD_CAST(const Field<Positive> field(slot, Value(-5)));
    EXPECT_EQ(value_text(slot), "i:-5");
}

TEST_F(FieldBinding, NullAsDefaultPasses)
{
    Value slot;
    const Field<Positive> field(slot, Value());
    EXPECT_TRUE(field.is_null());
}

TEST_F(FieldBinding, DefaultCallsNoHandlerForThereIsNone)
{
    Value slot;
    Field<Positive> field(slot, Value(5));
    field = Value(6);
    EXPECT_EQ(take_events(), (Events{"check i:5", "check i:6"}));
}

TEST_F(FieldBinding, TakesTheSlotOfAnotherReference)
{
    Value slot(5);
    const SignalingReference reference(slot);
    const Field<Positive> field(reference);
    EXPECT_EQ(&field.slot(), &slot);
    EXPECT_EQ(&reference.slot(), &slot);
    EXPECT_EQ(&reference.value(), &slot);
}

TEST_F(FieldBinding, ThatIsSettledIsNeitherCheckedNorGivenItsDefault)
{
    Value negative(-1);
    SignalingReference::Binding settled(negative);
    EXPECT_FALSE(settled.settled);
    settled.settled = true;
    const Field<Positive> checked_before(settled);
    EXPECT_EQ(checked_before.get(), -1);

    Value null;
    SignalingReference::Binding settled_null(null);
    settled_null.settled = true;
    const Field<Positive> given_before(settled_null, Value(5));
    EXPECT_TRUE(given_before.is_null());
    EXPECT_EQ(take_events(), Events());
}

TEST_F(FieldBinding, ThatIsSettledStillChecksAssignments)
{
    Value slot(-1);
    SignalingReference::Binding binding(slot);
    binding.settled = true;
    Field<Positive> field(binding);
    EXPECT_BAD_CAST(field = Value(-2));
    EXPECT_EQ(value_text(slot), "i:-1");
    field = Value(2);
    EXPECT_EQ(value_text(slot), "i:2");
}

TEST_F(FieldBinding, StaysValidWhileSiblingsAreAdded)
{
    Value tree;
    Field<Positive> entry(tree.at("m"), Value(1));
    Field<Positive> element(tree.at("list").at(0), Value(2));
    for (std::size_t i = 1; i < 500; ++i)
    {
        tree.at(std::to_string(i));
        tree.at("list").at(i);
        tree.at("list").as_list().emplace_front();
    }
    entry = Value(11);
    element = Value(12);
    EXPECT_EQ(value_text(tree.at("m")), "i:11");
    EXPECT_EQ(value_text(tree.at("list").at(499)), "i:12");
}

TEST_F(FieldAssignment, ChecksThenStoresThenSignals)
{
    Value slot(5);
    Field<Positive> field(slot);
    const auto recorder = record(field);
    std::string slot_at_signal;
    recorder->during = [&] { slot_at_signal = value_text(slot); };
    take_events();
    EXPECT_EQ(&(field = Value(6)), &field);
    EXPECT_EQ(take_events(), (Events{"check i:6", "changed i:6"}));
    EXPECT_EQ(slot_at_signal, "i:6");
    EXPECT_EQ(value_text(slot), "i:6");
}

struct SlotAtTheCheck
{
    using type = std::int64_t;
    static bool check(const Value&)
    {
        seen = slot == nullptr ? "" : value_text(*slot);
        return true;
    }
    static inline const Value* slot = nullptr;
    static inline std::string seen;
};

TEST_F(FieldAssignment, StoresNothingBeforeTheCheck)
{
    Value slot(5);
    SlotAtTheCheck::slot = &slot;
    Field<SlotAtTheCheck> field(slot);
    field = Value(6);
    EXPECT_EQ(SlotAtTheCheck::seen, "i:5");
    EXPECT_EQ(value_text(slot), "i:6");
    SlotAtTheCheck::slot = nullptr;
}

TEST_F(FieldAssignment, OfTheCurrentValueChecksNothingAndCallsNoHandler)
{
    Value slot(5);
    Field<Positive> field(slot);
    const auto recorder = record(field);
    take_events();
    field = Value(5);
    EXPECT_EQ(take_events(), Events());
    EXPECT_TRUE(recorder->values.empty());
}

TEST_F(FieldAssignment, OfAnEqualValueThatFailsTheCheckRaisesNothing)
{
    Value slot(5);
    Field<Positive> field(slot);
    const auto recorder = record(field);
    slot = Value(-5);
    take_events();
    EXPECT_NO_THROW(field = Value(-5));
    EXPECT_EQ(take_events(), Events());
}

TEST_F(FieldAssignment, ThatFailsTheCheckLeavesTheSlotAndSignalsNothing)
{
    Value slot(5);
    Field<Positive> field(slot);
    const auto recorder = record(field);
    for (const Value& refused :
         {Value(0), Value(-1), Value(1.0), Value("1"), Value(true), Value(Value::List{}), Value(Value::Object{})})
    {
        EXPECT_BAD_CAST(field = refused);
        EXPECT_EQ(value_text(slot), "i:5");
    }
    EXPECT_TRUE(recorder->values.empty());
    field = Value(6);
    EXPECT_EQ(recorder->values, std::vector<std::int64_t>{6});
}

TEST_F(FieldAssignment, OfOneAsADecimalOverOneAsAnIntegerIsAChange)
{
    Value slot(1);
    Field<Number> field(slot);
    const auto recorder = record(field);
    field = Value(1.0);
    EXPECT_EQ(value_text(slot), "d:0x1p+0");
    EXPECT_EQ(recorder->values, std::vector<double>{1.0});
    field = Value(1.0);
    EXPECT_EQ(recorder->values.size(), 1u);
    field = Value(1);
    EXPECT_EQ(value_text(slot), "i:1");
    EXPECT_EQ(recorder->values, (std::vector<double>{1.0, 1.0}));
}

TEST_F(FieldAssignment, OfNoNumberIsAlwaysAChange)
{
    Value slot;
    Field<Number> field(slot);
    const auto recorder = record(field);
    field = Value(std::nan(""));
    field = Value(std::nan(""));
    EXPECT_EQ(recorder->values.size(), 2u);
    EXPECT_TRUE(std::isnan(recorder->values.back()));
}

TEST_F(FieldAssignment, OfNullPassesAndSignals)
{
    Value slot(5);
    Field<Positive> field(slot);
    const auto recorder = record(field);
    take_events();
    field = Value();
    EXPECT_TRUE(slot.is_null());
    EXPECT_EQ(take_events(), (Events{"changed i:0"}));
    field = Value();
    EXPECT_EQ(recorder->values.size(), 1u);
}

TEST_F(FieldAssignment, OverNullSignals)
{
    Value slot;
    Field<ShortText> field(slot);
    const auto recorder = record(field);
    field = Value("");
    EXPECT_EQ(value_text(slot), "''");
    EXPECT_EQ(recorder->values, std::vector<std::string>{""});
}

TEST_F(FieldAssignment, OfAnotherFieldTakesItsValueAsItStands)
{
    Value left_slot(1);
    Value right_slot(2);
    Field<Number> left(left_slot);
    Field<Number> right(right_slot);
    const auto left_recorder = record(left);
    const auto right_recorder = record(right);
    EXPECT_EQ(&(left = right), &left);
    EXPECT_EQ(value_text(left_slot), "i:2");
    EXPECT_EQ(value_text(right_slot), "i:2");
    EXPECT_EQ(&left.slot(), &left_slot);
    EXPECT_EQ(left_recorder->values, std::vector<double>{2.0});
    EXPECT_TRUE(right_recorder->values.empty());
    right = Value(3);
    EXPECT_EQ(value_text(left_slot), "i:2");
}

TEST_F(FieldAssignment, OfAFieldOfAnotherTypeIsCheckedByItsOwn)
{
    Value number_slot(7.5);
    Value positive_slot(2);
    const Field<Number> number(number_slot);
    Field<Positive> positive(positive_slot);
    EXPECT_BAD_CAST(positive = number);
    EXPECT_EQ(value_text(positive_slot), "i:2");
    number_slot = Value(8);
    positive = number;
    EXPECT_EQ(value_text(positive_slot), "i:8");
    EXPECT_EQ(value_text(number_slot), "i:8");
}

TEST_F(FieldAssignment, OfItselfIsNoChange)
{
    Value slot(5);
    Field<Positive> field(slot);
    const auto recorder = record(field);
    const Field<Positive>& same = field;
    field = same;
    EXPECT_EQ(value_text(slot), "i:5");
    EXPECT_TRUE(recorder->values.empty());
}

TEST_F(FieldAssignment, OfAPartOfItsOwnSlotReplacesIt)
{
    Value slot;
    slot.at("inner").at("a") = Value(1);
    Field<Structure> field(slot);
    field = field.get()["inner"];
    EXPECT_EQ(value_text(slot), "{a = i:1}");
}

TEST_F(FieldAssignment, OfAnEnumerationStoresItsText)
{
    Value slot;
    Field<AnyColour> field(slot);
    field = Colour::green;
    EXPECT_EQ(value_text(slot), "'Green'");
    field = "Red";
    EXPECT_EQ(value_text(slot), "'Red'");
    EXPECT_EQ(field.get(), Colour::red);
}

TEST_F(FieldReading, OfAnIntegerAsADecimalTurnsTheSlotForGood)
{
    Value slot(5);
    const Field<Number> field(slot);
    EXPECT_EQ(field.get(), 5.0);
    EXPECT_EQ(value_text(slot), "d:0x1.4p+2");
    EXPECT_TRUE(slot.is_decimal());
}

TEST_F(FieldReading, OfAWholeDecimalAsAnIntegerTurnsTheSlotForGood)
{
    Value slot(5.0);
    const Field<LooseInteger> field(slot);
    EXPECT_EQ(field.get(), 5);
    EXPECT_EQ(value_text(slot), "i:5");
}

TEST_F(FieldReading, OfAFractionAsAnIntegerIsABadCastAndLeavesTheSlot)
{
    Value slot(2.5);
    const Field<LooseInteger> field(slot);
    EXPECT_BAD_CAST(field.get());
    EXPECT_EQ(value_text(slot), "d:0x1.4p+1");
}

TEST_F(FieldReading, OfANullTextGivesTheEmptyTextAndMakesOne)
{
    Value slot;
    const Field<ShortText> field(slot);
    EXPECT_EQ(field.get(), "");
    EXPECT_EQ(value_text(slot), "''");
    EXPECT_FALSE(field.is_null());
}

TEST_F(FieldReading, OfANullStructureMakesAnEmptyOne)
{
    Value slot;
    const Field<Structure> field(slot);
    EXPECT_TRUE(field.get().empty());
    EXPECT_EQ(value_text(slot), "{}");
}

TEST_F(FieldReading, OfANullNumberOrFlagIsABadCast)
{
    Value slot;
    const Field<Number> decimal(slot);
    const Field<Positive> integer(slot);
    const Field<Flag> flag(slot);
    EXPECT_BAD_CAST(decimal.get());
    EXPECT_BAD_CAST(integer.get());
    EXPECT_BAD_CAST(flag.get());
    EXPECT_TRUE(slot.is_null());
}

TEST_F(FieldReading, OfAStructureIsTheMapItself)
{
    Value slot;
    slot.at("a") = Value(1);
    Field<Structure> field(slot);
    const auto recorder = record(field);
    field.get()["b"] = Value(2);
    EXPECT_EQ(value_text(slot), "{a = i:1, b = i:2}");
    EXPECT_EQ(&field.get(), slot.if_object());
    EXPECT_TRUE(recorder->values.empty());
}

TEST_F(FieldReading, OfAnEnumerationGoesByItsText)
{
    Value slot("Green");
    const Field<AnyColour> field(slot);
    EXPECT_EQ(field.get(), Colour::green);
    slot = Value("green");
    EXPECT_EQ(field.get(), Colour::none);
    EXPECT_EQ(static_cast<std::int32_t>(field.get()), -1);
}

TEST_F(FieldReading, HappensByConversionToo)
{
    Value number(5);
    Value flag(true);
    Value text("abc");
    const Field<Positive> number_field(number);
    const Field<Flag> flag_field(flag);
    const Field<ShortText> text_field(text);
    const std::int64_t as_integer = number_field;
    const bool as_boolean = flag_field;
    const std::string as_text = text_field;
    EXPECT_EQ(as_integer, 5);
    EXPECT_TRUE(as_boolean);
    EXPECT_EQ(as_text, "abc");
    EXPECT_TRUE(number_field == 5);
    EXPECT_TRUE(number_field != 6);
}

TEST_F(FieldReading, TextsCompareWithTexts)
{
    Value slot("abc");
    const Field<ShortText> field(slot);
    EXPECT_TRUE(field == "abc");
    EXPECT_FALSE(field == "ab");
    EXPECT_TRUE(field != "ab");
    EXPECT_FALSE(field != "abc");
    EXPECT_TRUE(field == std::string("abc"));
    EXPECT_TRUE(field != std::string("abcd"));
}

/// A text that may not be empty, as a date.
struct FilledText
{
    using type = std::string;
    static bool check(const Value& v) { return checked(v, v.if_string() != nullptr && !v.if_string()->empty()); }
};

/// A text of the enumeration.
struct KnownColour
{
    using type = Colour;
    static bool check(const Value& v)
    {
        return checked(v, v.if_string() != nullptr && (*v.if_string() == "Red" || *v.if_string() == "Green"));
    }
};

TEST_F(FieldReading, OfANullTextThatMayNotBeEmptyLeavesASlotThatNoFieldIsBoundToAgain)
{
    Value slot;
    const Field<FilledText> field(slot);
    EXPECT_EQ(field.get(), "");
    EXPECT_EQ(value_text(slot), "''");
    EXPECT_BAD_CAST(const Field<FilledText> again(slot));
    Value copy(slot);
    EXPECT_BAD_CAST(const Field<FilledText> again(copy));
}

TEST_F(FieldReading, OfANullEnumerationHasAllBitsSetAndLeavesASlotThatNoFieldIsBoundToAgain)
{
    Value slot;
    const Field<KnownColour> field(slot);
    EXPECT_EQ(static_cast<std::int32_t>(field.get()), -1);
    EXPECT_EQ(value_text(slot), "''");
    EXPECT_BAD_CAST(const Field<KnownColour> again(slot));
}

TEST_F(FieldReading, BehindAQuestionForNullLeavesTheSlot)
{
    Value slot;
    const Field<FilledText> text(slot);
    const Field<KnownColour> colour(slot);
    EXPECT_TRUE(text.is_null());
    EXPECT_TRUE(colour.is_null());
    EXPECT_NO_THROW(const Field<FilledText> again(slot));
    EXPECT_NO_THROW(const Field<KnownColour> again(slot));
    EXPECT_TRUE(slot.is_null());
}

TEST_F(FieldReading, SignalsNothing)
{
    Value slot(5);
    Field<Number> field(slot);
    const auto recorder = record(field);
    take_events();
    EXPECT_EQ(field.get(), 5.0);
    EXPECT_EQ(take_events(), Events());
}

TEST_F(FieldHandler, IsCalledWithTheValueInTheTypeOfTheField)
{
    Value tree;
    Field<Positive> integer(tree.at("integer"));
    Field<Number> decimal(tree.at("decimal"));
    Field<ShortText> text(tree.at("text"));
    Field<Flag> flag(tree.at("flag"));
    Field<Structure> structure(tree.at("structure"));
    Field<AnyColour> colour(tree.at("colour"));
    const auto integers = record(integer);
    const auto decimals = record(decimal);
    const auto texts = record(text);
    const auto flags = record(flag);
    const auto structures = record(structure);
    const auto colours = record(colour);
    integer = Value(3);
    decimal = Value(2.5);
    text = Value("abc");
    flag = Value(true);
    structure = Value(Value::Object{{"a", Value(1)}});
    colour = Colour::green;
    EXPECT_EQ(integers->values, std::vector<std::int64_t>{3});
    EXPECT_EQ(decimals->values, std::vector<double>{2.5});
    EXPECT_EQ(texts->values, std::vector<std::string>{"abc"});
    EXPECT_EQ(flags->values, std::vector<bool>{true});
    ASSERT_EQ(structures->values.size(), 1u);
    EXPECT_EQ(json_test::object_text(structures->values.front()), "{a = i:1}");
    EXPECT_EQ(colours->values, std::vector<Colour>{Colour::green});
}

TEST_F(FieldHandler, SeesAnIntegerInADecimalFieldAsADecimal)
{
    Value slot;
    Field<Number> field(slot);
    const auto recorder = record(field);
    field = Value(3);
    EXPECT_EQ(recorder->values, std::vector<double>{3.0});
    EXPECT_EQ(value_text(slot), "i:3");
}

TEST_F(FieldHandler, SeesADecimalInAnIntegerFieldAsTheIntegerThatItIsReadAs)
{
    Value slot;
    Field<LooseInteger> field(slot);
    const auto recorder = record(field);
    field = Value(5.0);
    EXPECT_EQ(recorder->values, std::vector<std::int64_t>{5});
    EXPECT_EQ(value_text(slot), "d:0x1.4p+2") << "a signal converts nothing";
    field = Value(-9223372036854775808.0);
    field = Value(2.5);
    field = Value(9223372036854775808.0);
    field = Value(std::nan(""));
    EXPECT_EQ(recorder->values, (std::vector<std::int64_t>{5, INT64_MIN, 0, 0, 0}));
}

/// Notes where the value lies that it is called with, and may do something then.
template <class T>
struct AddressRecorder : ChangeHandler<T>
{
    void changed(const T& value) override
    {
        address = &value;
        was_empty = value.empty();
        if (during)
            std::exchange(during, nullptr)();
    }

    const T* address = nullptr;
    bool was_empty = false;
    std::function<void()> during;
};

TEST_F(FieldHandler, IsCalledWithTheTextOrTheMapInTheSlotItself)
{
    Value tree;
    Field<ShortText> text(tree.at("text"));
    Field<Structure> structure(tree.at("structure"));
    const auto texts = boost::make_shared<AddressRecorder<std::string>>();
    const auto structures = boost::make_shared<AddressRecorder<Value::Object>>();
    text.set_change_handler(texts);
    structure.set_change_handler(structures);
    text = "abc";
    EXPECT_EQ(texts->address, tree.at("text").if_string());
    EXPECT_FALSE(texts->was_empty);
    structure = Value(Value::Object{{"a", Value(1)}});
    EXPECT_EQ(structures->address, tree.at("structure").if_object());
    EXPECT_FALSE(structures->was_empty);
    text = Value();
    structure = Value();
    EXPECT_NE(texts->address, nullptr);
    EXPECT_TRUE(texts->was_empty);
    EXPECT_NE(structures->address, nullptr);
    EXPECT_TRUE(structures->was_empty);
    EXPECT_TRUE(text.is_null() && structure.is_null());
}

TEST_F(FieldHandler, MayAssignToTheFieldThatItIsCalledFor)
{
    Value tree;
    Field<ShortText> text(tree.at("text"));
    Field<Structure> structure(tree.at("structure"));
    const auto texts = boost::make_shared<AddressRecorder<std::string>>();
    const auto structures = boost::make_shared<AddressRecorder<Value::Object>>();
    text.set_change_handler(texts);
    structure.set_change_handler(structures);
    for (const Value& again : {Value("other"), Value()})
    {
        text = "first";
        texts->during = [&] { text = again; };
        text = "abc";
        EXPECT_EQ(value_text(tree.at("text")), value_text(again));
    }
    for (const Value& again : {Value(Value::Object{{"b", Value("c")}, {"d", Value()}}), Value()})
    {
        structure = Value();
        structures->during = [&] { structure = again; };
        structure = Value(Value::Object{{"a", Value(std::string(100, 'x'))}});
        EXPECT_EQ(value_text(tree.at("structure")), value_text(again));
    }
    texts->during = [&] { text.set_change_handler(nullptr); };
    text = "last";
    EXPECT_TRUE(texts.unique());
}

/// Has the field that owns it let it go while it is called.
struct SelfRemover : ChangeHandler<std::string>
{
    explicit SelfRemover(Field<ShortText>& owner) : field(owner) {}
    ~SelfRemover() override { ++destroyed; }
    void changed(const std::string& value) override
    {
        field.set_change_handler(nullptr);
        destroyed_while_called = destroyed;
        seen = value;
    }

    Field<ShortText>& field;
    static inline int destroyed = 0;
    static inline int destroyed_while_called = -1;
    static inline std::string seen;
};

TEST_F(FieldHandler, StaysUntilItReturnsWhenItRemovesItself)
{
    Value slot;
    Field<ShortText> field(slot);
    field.set_change_handler(boost::make_shared<SelfRemover>(field));
    field = "abc";
    EXPECT_EQ(SelfRemover::seen, "abc");
    EXPECT_EQ(SelfRemover::destroyed_while_called, 0);
    EXPECT_EQ(SelfRemover::destroyed, 1);
}

TEST_F(FieldHandler, ThatThrowsLeavesTheNewValue)
{
    Value slot(1);
    Field<Positive> field(slot);
    const auto recorder = record(field);
    recorder->during = [] { throw std::runtime_error("not now"); };
    EXPECT_THROW(field = Value(2), std::runtime_error);
    EXPECT_EQ(value_text(slot), "i:2");
}

TEST_F(FieldHandler, IsToldOfNullAsTheEmptyValueOfItsType)
{
    Value tree;
    tree.at("decimal") = Value(2.5);
    tree.at("text") = Value("abc");
    tree.at("flag") = Value(true);
    tree.at("structure").at("a");
    tree.at("colour") = Value("Red");
    Field<Number> decimal(tree.at("decimal"));
    Field<ShortText> text(tree.at("text"));
    Field<Flag> flag(tree.at("flag"));
    Field<Structure> structure(tree.at("structure"));
    Field<AnyColour> colour(tree.at("colour"));
    const auto decimals = record(decimal);
    const auto texts = record(text);
    const auto flags = record(flag);
    const auto structures = record(structure);
    const auto colours = record(colour);
    decimal = Value();
    text = Value();
    flag = Value();
    structure = Value();
    colour = Value();
    EXPECT_EQ(decimals->values, std::vector<double>{0.0});
    EXPECT_EQ(texts->values, std::vector<std::string>{""});
    EXPECT_EQ(flags->values, std::vector<bool>{false});
    ASSERT_EQ(structures->values.size(), 1u);
    EXPECT_TRUE(structures->values.front().empty());
    EXPECT_EQ(colours->values, std::vector<Colour>{Colour::none});
    EXPECT_EQ(value_text(tree), "{colour = null, decimal = null, flag = null, structure = null, text = null}");
}

TEST_F(FieldHandler, MayReadTheFieldThatItIsCalledFor)
{
    Value slot(1);
    Field<Positive> field(slot);
    const auto recorder = record(field);
    std::int64_t seen = 0;
    recorder->during = [&] { seen = field.get(); };
    field = Value(2);
    EXPECT_EQ(seen, 2);
}

TEST_F(FieldHandler, IsReplacedByTheNextAndEndedByNull)
{
    Value slot(1);
    Field<Positive> field(slot);
    const auto first = record(field);
    field = Value(2);
    const auto second = record(field);
    field = Value(3);
    EXPECT_TRUE(first.unique());
    field.set_change_handler(nullptr);
    field = Value(4);
    EXPECT_EQ(first->values, std::vector<std::int64_t>{2});
    EXPECT_EQ(second->values, std::vector<std::int64_t>{3});
    EXPECT_TRUE(second.unique());
    EXPECT_EQ(value_text(slot), "i:4");
}

TEST_F(FieldHandler, IsKeptByTheField)
{
    Value slot(1);
    const auto recorder = boost::make_shared<Recorder<std::int64_t>>();
    {
        Field<Positive> field(slot);
        field.set_change_handler(recorder);
        EXPECT_EQ(recorder.use_count(), 2);
    }
    EXPECT_TRUE(recorder.unique());
}

TEST_F(FieldHandler, BelongsToOneFieldAndNotToTheSlot)
{
    Value slot(1);
    Field<Positive> watched(slot);
    Field<Positive> unwatched(slot);
    const auto recorder = record(watched);
    unwatched = Value(2);
    slot = Value(3);
    watched.slot() = Value(4);
    EXPECT_TRUE(recorder->values.empty());
    EXPECT_EQ(watched.get(), 4);
}

}
