// Memory that fails at the n-th request of an export or import: it throws what the header says, leaks nothing, and
// leaves what the header promises.
#include "propsxml/xml_check.h"
#include "support/failing_memory.h"

#include <new>
#include <string>

namespace {

using vela_test::blocks_taken;
using vela_test::MemoryFailsAfter;
using vela_test::OneRequestFailsAfter;
using xml_test::array_of;
using xml_test::exported;

VProp sample_tree()
{
    VProp tree;
    tree["number"] = -1.5;
    tree["numbers"] = array_of<double>({1, 2.5e-300, -3});
    tree["complex"] = array_of<std::complex<float>>({{1, 2}, {-3, 4}});
    tree["text"] = L"a text that is too long for the string itself & \x20ac";
    tree["names"] = array_of<VPropstring>({L"p", L"another text that is too long for the string itself"});
    tree["cells{1}.a-member-with-a-long-name-of-its-own"] = L"x";
    tree["axes(1).x"] = 1;
    tree["axes(0).x"] = 2;
    tree["none"];
    exported(tree, 2); // marks the array of strings
    return tree;
}

/// Does `work` with `first` and more and more requests that succeed until it goes through. `check` sees each failure:
/// the message of a VelaError, or null for std::bad_alloc. Nothing may be left afterwards. Gives the number of failures.
template <class Limit, class Work, class Check>
std::size_t fail_everywhere(std::size_t first, Work work, Check check)
{
    for (std::size_t requests = first; requests < 100000; ++requests)
    {
        const std::size_t before = blocks_taken();
        std::string message;
        bool has_message = false;
        bool failed = true;
        try
        {
            const Limit limit(requests);
            work();
            failed = false;
        }
        catch (const VelaError& error)
        {
            message = error.get_msg();
            has_message = true;
        }
        catch (const std::bad_alloc&)
        {
        }
        if (failed)
            check(has_message ? &message : nullptr);
        std::string().swap(message);
        EXPECT_EQ(blocks_taken(), before) << "after " << requests << " requests";
        if (!failed || testing::Test::HasFailure())
            return requests - first;
    }
    ADD_FAILURE() << "it never succeeds";
    return 0;
}

/// Every way in which memory fails, the last error of the thread being in place already.
template <class Work, class Check>
void fail_in_every_way(Work work, Check check, std::size_t first = 0)
{
    try
    {
        throw VelaError(std::string(5000, 'x'), "function", "file", 1);
    }
    catch (const VelaError& error)
    {
        EXPECT_STRNE(error.what(), "");
    }
    work(); // what is made once for the process
    EXPECT_GT((fail_everywhere<MemoryFailsAfter>(first, work, check)), 5u);
    // Where memory is back at once, there is enough for the message.
    EXPECT_GT((fail_everywhere<OneRequestFailsAfter>(first, work,
                                                     [&](const std::string* message)
                                                     {
                                                         EXPECT_NE(message, nullptr);
                                                         check(message);
                                                     })),
              5u);
}

TEST(ExportWithoutMemory, ThrowsAndLeavesTheTextAsItWas)
{
    const VProp tree = sample_tree();
    for (const int format : {1, 2})
    {
        SCOPED_TRACE(format);
        std::string xml;
        fail_in_every_way(
            [&]
            {
                xml = "as it was"; // short enough to need no memory
                vela_export_xml(xml, tree, format);
                std::string().swap(xml);
            },
            [&](const std::string* message)
            {
                EXPECT_EQ(xml, "as it was");
                if (message != nullptr)
                {
                    EXPECT_EQ(*message, "Error writing XML properties to string:\nstd::bad_alloc");
                }
            });
    }
}

TEST(ExportWithoutMemory, LeavesTheTreeAsItWas)
{
    const VProp tree = sample_tree();
    fail_in_every_way(
        [&]
        {
            std::string xml;
            vela_export_xml(xml, tree, 2);
        },
        [&](const std::string*) { EXPECT_TRUE(tree == sample_tree()); });
}

/// Each member of `part` stands in `whole` too, with the same value or, the last one, one that was begun.
void expect_beginning_of(const VProp& part, const VProp& whole)
{
    if (part.empty())
        return;
    ASSERT_EQ(part.get_id(), whole.get_id());
    const auto& members = part.get<VPropstruct>();
    const auto& all = whole.get<VPropstruct>();
    ASSERT_LE(members.size(), all.size());
    for (std::size_t i = 0; i < members.size(); ++i)
    {
        EXPECT_EQ(members.at(i).first, all.at(i).first);
        if (i + 1 < members.size())
        {
            EXPECT_TRUE(members.at(i).second == all.at(i).second) << members.at(i).first;
        }
    }
}

/// How many requests an import of `xml` makes before it looks at the tree, and a few more: the same document without
/// its marker is parsed, and then refused.
std::size_t requests_to_parse(std::string xml)
{
    for (const std::string marker : {"vprop_version", "Version>"})
        for (std::size_t at = xml.find(marker); at != std::string::npos; at = xml.find(marker))
            xml[at] = 'x';
    VProp prop;
    const std::size_t before = vela_test::requests_made();
    EXPECT_VELA_ERROR(vela_import_xml(xml, prop, 0), -1, "Could not determine xml format!");
    return vela_test::requests_made() - before;
}

TEST(ImportWithoutMemory, ThrowsAndKeepsWhatWasRead)
{
    const VProp tree = sample_tree();
    for (const int form : {1, 2})
    {
        SCOPED_TRACE(form);
        const std::string xml = exported(tree, form);
        VProp left;
        fail_in_every_way(
            [&]
            {
                left.clear();
                vela_import_xml(xml, left, 0);
                left.clear();
            },
            [&](const std::string* message)
            {
                expect_beginning_of(left, tree);
                left.clear();
                if (message == nullptr)
                    return;
                const bool is_early = *message == "Error parsing XML properties:\nstd::bad_alloc";
                EXPECT_TRUE(is_early || message->rfind("std::bad_alloc\nLocation:\n", 0) == 0) << *message;
            },
            requests_to_parse(xml));
    }
}

TEST(ImportWithoutMemory, LeavesWhatIsSharedWithTheTargetAsItWas)
{
    const std::string xml = xml_test::native(
        "type=\"struct\"", "<inner type=\"struct\"><text type=\"char\" size=\"1 100\">x</text></inner>");
    VProp original;
    original["inner.text"] = L"a text that is too long for the string itself";
    original["kept"] = 1;
    VProp same;
    same["inner.text"] = L"a text that is too long for the string itself";
    same["kept"] = 1;
    VProp target;
    fail_in_every_way(
        [&]
        {
            target = original;
            vela_import_xml(xml, target, 0);
            target.clear();
        },
        [&](const std::string*)
        {
            EXPECT_TRUE(original == same);
            target.clear();
        },
        requests_to_parse(xml));
}

TEST(ValueTextWithoutMemory, ThrowsAndLeavesNothingBehind)
{
    const VProp numbers(array_of<double>({0.1, 0.2, 0.3, 0.4}));
    const VProp text(L"a text that is too long for the string itself");
    const std::string narrow = "a text that is too long for the string itself";
    std::size_t failures = 0;
    for (std::size_t requests = 0; requests < 40; ++requests)
    {
        const std::size_t before = blocks_taken();
        for (int what = 0; what < 3; ++what)
            try
            {
                const MemoryFailsAfter limit(requests);
                if (what == 0)
                    vela_val2string(numbers);
                else if (what == 1)
                    vela_val2string(text);
                else
                    vela_string2val(narrow, vela_dt_char);
            }
            catch (const std::bad_alloc&)
            {
                ++failures;
            }
        EXPECT_EQ(blocks_taken(), before);
    }
    EXPECT_GT(failures, 3u);
}

}
