// Copies, clones and assignment: every field arrives, and file and function stay readable.
#include "error/reports.h"

#include <VelaBase/VelaError.h>

#include <cerrno>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

typedef std::unique_ptr<VelaError> Owned;

// One name that a string holds inside itself and one that it has to take from the heap: a copy that
// keeps a pointer into the wrong string fails on the one or the other.
struct Names
{
    std::string func;
    std::string file;
};

const std::vector<Names>& name_lengths()
{
    static const std::vector<Names> names = {
        {"f", "a.cpp"}, {std::string(200, 'f'), "sources/" + std::string(300, 'a') + ".cpp"}, {"", ""}};
    return names;
}

/// An error with every field set. Its function and file are those of `names`.
VelaError full_error(const Names& names)
{
    VelaError error(names.func.c_str(), names.file.c_str(), 31);
    error("a message that is long enough to live on the heap %d", 5)(-9);
    errno = EACCES;
    error.do_oserr();
    return error;
}

/// A clone whose model and whose names are gone.
Owned orphaned_clone(const Names& names)
{
    const Names mortal = names;
    const VelaError error = full_error(mortal);
    return Owned(error.clone());
}

void expect_full_error(const VelaError& error, const Names& names)
{
    ASSERT_NE(error.get_func(), nullptr);
    ASSERT_NE(error.get_file(), nullptr);
    EXPECT_EQ(std::string(error.get_func()), names.func);
    EXPECT_EQ(std::string(error.get_file()), names.file);
    EXPECT_EQ(error.get_line(), 31);
    EXPECT_EQ(error.get_id(), -9);
    EXPECT_EQ(error.get_msg(), "a message that is long enough to live on the heap 5");
    EXPECT_EQ(error.get_oserr_id(), EACCES);
    EXPECT_EQ(error.get_oserr(), "Permission denied");
    EXPECT_EQ(std::string(error.what()), names.file + "(31): ERROR\n    in function '" + names.func + "':\n    " +
                                             error.get_msg() + "\n    os_error(13): Permission denied");
}

TEST(VelaErrorCopy, HasEveryFieldAndTheSamePointers)
{
    for (const Names& names : name_lengths())
    {
        const VelaError original = full_error(names);
        const VelaError copy(original);
        expect_full_error(copy, names);
        EXPECT_EQ(copy.get_func(), original.get_func());
        EXPECT_EQ(copy.get_file(), original.get_file());
        expect_full_error(original, names);
    }
}

TEST(VelaErrorCopy, KeepsMissingNamesMissing)
{
    const VelaError original;
    const VelaError copy(original);
    EXPECT_EQ(copy.get_func(), nullptr);
    EXPECT_EQ(copy.get_file(), nullptr);
    VelaError target("f", "a.cpp", 3);
    target = original;
    EXPECT_EQ(target.get_func(), nullptr);
    EXPECT_EQ(target.get_file(), nullptr);
    EXPECT_EQ(target.get_line(), 0);
}

TEST(VelaErrorCopy, IsIndependentOfItsOriginal)
{
    VelaError original = VelaError("f", "a.cpp", 3)("original")(-3);
    VelaError copy(original);
    copy("copy")(-4);
    EXPECT_EQ(original.get_msg(), "original");
    EXPECT_EQ(original.get_id(), -3);
    original("changed")(-5);
    EXPECT_EQ(copy.get_msg(), "copy");
    EXPECT_EQ(copy.get_id(), -4);
}

TEST(VelaErrorCopy, OfACloneOutlivesTheClone)
{
    for (const Names& names : name_lengths())
    {
        Owned clone = orphaned_clone(names);
        const VelaError copy(*clone);
        const VelaError moved(std::move(*clone));
        clone.reset();
        expect_full_error(copy, names);
        expect_full_error(moved, names);
    }
}

TEST(VelaErrorCopy, ACloneMayBeThrown)
{
    for (const Names& names : name_lengths())
    {
        try
        {
            const Owned clone = orphaned_clone(names);
            throw *clone;
        }
        catch (const VelaError& error)
        {
            expect_full_error(error, names);
        }
    }
}

TEST(VelaErrorClone, OutlivesTheTextsOfItsOriginal)
{
    for (const Names& names : name_lengths())
        expect_full_error(*orphaned_clone(names), names);
}

TEST(VelaErrorClone, HasCopiesOfItsOwn)
{
    std::string func = "f";
    std::string file = "a.cpp";
    const VelaError original(func.c_str(), file.c_str(), 3);
    const Owned clone(original.clone());
    EXPECT_NE(clone->get_func(), original.get_func());
    EXPECT_NE(clone->get_file(), original.get_file());
    func[0] = 'X';
    file[0] = 'X';
    EXPECT_STREQ(clone->get_func(), "f");
    EXPECT_STREQ(clone->get_file(), "a.cpp");
    EXPECT_STREQ(original.get_func(), "X");
}

TEST(VelaErrorClone, LeavesItsOriginalAsItWas)
{
    const Names names = name_lengths().front();
    const VelaError original = full_error(names);
    const Owned clone(original.clone());
    EXPECT_EQ(original.get_func(), names.func.c_str());
    EXPECT_EQ(original.get_file(), names.file.c_str());
    expect_full_error(original, names);
}

TEST(VelaErrorClone, TurnsMissingNamesIntoEmptyOnes)
{
    const VelaError original;
    const Owned clone(original.clone());
    EXPECT_STREQ(clone->get_func(), "");
    EXPECT_STREQ(clone->get_file(), "");
    EXPECT_EQ(original.get_func(), nullptr);
    EXPECT_EQ(original.get_file(), nullptr);
}

TEST(VelaErrorClone, WithAMissingNameTurnsOnlyThatOneEmpty)
{
    const Owned without_file(VelaError("f", nullptr, 3).clone());
    EXPECT_STREQ(without_file->get_func(), "f");
    EXPECT_STREQ(without_file->get_file(), "");
    const Owned without_func(VelaError(nullptr, "a.cpp", 3).clone());
    EXPECT_STREQ(without_func->get_func(), "");
    EXPECT_STREQ(without_func->get_file(), "a.cpp");
}

// Empty is not null: the report of the clone names the empty place. It looks wrong and is wanted.
TEST(VelaErrorClone, OfAnErrorWithoutNamesReportsEmptyNames)
{
    const VelaError original = VelaError(nullptr, nullptr, 7)("text");
    EXPECT_STREQ(original.what(), "text");
    const Owned clone(original.clone());
    EXPECT_STREQ(clone->what(), "(7): ERROR\n    in function '':\n    text");
    const Owned without_line(VelaError()("text").clone());
    EXPECT_STREQ(without_line->what(), "text");
}

TEST(VelaErrorClone, MayBeClonedAgain)
{
    for (const Names& names : name_lengths())
    {
        Owned first = orphaned_clone(names);
        const Owned second(first->clone());
        EXPECT_NE(second->get_func(), first->get_func());
        EXPECT_NE(second->get_file(), first->get_file());
        first.reset();
        expect_full_error(*second, names);
    }
}

class CountingError : public VelaError
{
public:
    VelaError* clone() const override { return new CountingError(clones + 1); }
    const char* what() const noexcept override { return "counted"; }

    explicit CountingError(int count) : clones(count) {}

    int clones;
};

TEST(VelaErrorClone, IsVirtual)
{
    const CountingError counting(3);
    const VelaError& base = counting;
    const Owned clone(base.clone());
    EXPECT_EQ(dynamic_cast<CountingError&>(*clone).clones, 4);
    EXPECT_STREQ(static_cast<const std::exception&>(*clone).what(), "counted");
}

TEST(VelaErrorAssignment, TakesEveryFieldAndTheSamePointers)
{
    for (const Names& names : name_lengths())
    {
        const VelaError source = full_error(names);
        VelaError target(std::string("other"), "g", "b.cpp", 4);
        VelaError& result = target = source;
        EXPECT_EQ(&result, &target);
        EXPECT_EQ(target.get_func(), source.get_func());
        EXPECT_EQ(target.get_file(), source.get_file());
        expect_full_error(target, names);
        expect_full_error(source, names);
    }
}

TEST(VelaErrorAssignment, FromACloneOutlivesTheClone)
{
    for (const Names& names : name_lengths())
    {
        Owned clone = orphaned_clone(names);
        VelaError target("g", "b.cpp", 4);
        target = *clone;
        EXPECT_NE(target.get_func(), clone->get_func());
        EXPECT_NE(target.get_file(), clone->get_file());
        expect_full_error(*clone, names);
        clone.reset();
        expect_full_error(target, names);
    }
}

TEST(VelaErrorAssignment, OfABorrowerToACloneBorrows)
{
    for (const Names& old_names : name_lengths())
    {
        const Names names = {"borrowed", "borrowed.cpp"};
        const VelaError source = full_error(names);
        const Owned target = orphaned_clone(old_names);
        *target = source;
        EXPECT_EQ(target->get_func(), names.func.c_str());
        EXPECT_EQ(target->get_file(), names.file.c_str());
        expect_full_error(*target, names);
    }
}

TEST(VelaErrorAssignment, OfACloneToACloneKeepsTwoCopies)
{
    for (const Names& names : name_lengths())
        for (const Names& old_names : name_lengths())
        {
            Owned source = orphaned_clone(names);
            const Owned target = orphaned_clone(old_names);
            *target = *source;
            source.reset();
            expect_full_error(*target, names);
        }
}

TEST(VelaErrorAssignment, ToABorrowerAfterACloneDoesNotReachBack)
{
    const Names names = name_lengths().front();
    VelaError target("g", "b.cpp", 4);
    target = *orphaned_clone(name_lengths().back());
    target = *orphaned_clone(names);
    target = full_error(names);
    EXPECT_EQ(target.get_func(), names.func.c_str());
    expect_full_error(target, names);
}

TEST(VelaErrorAssignment, ToItselfChangesNothing)
{
    for (const Names& names : name_lengths())
    {
        VelaError borrower = full_error(names);
        const VelaError& same_borrower = borrower;
        borrower = same_borrower;
        EXPECT_EQ(borrower.get_func(), names.func.c_str());
        expect_full_error(borrower, names);

        const Owned clone = orphaned_clone(names);
        const VelaError& same_clone = *clone;
        *clone = same_clone;
        expect_full_error(*clone, names);
    }
}

} // namespace
