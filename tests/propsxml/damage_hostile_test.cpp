// Documents that are cut, changed byte by byte, or have NULs in them: a VelaError or a tree, nothing else.
#include "propsxml/random_tree.h"
#include "propsxml/xml_check.h"

#include <random>
#include <string>

namespace {

using xml_test::array_of;
using xml_test::exported;
using xml_test::imported;
using xml_test::survives;

std::string all_kinds(int form)
{
    VProp tree;
    tree["number"] = -1.5;
    tree["numbers"] = array_of<double>({1, 2.5e-300, -3});
    tree["one"] = array_of<std::int64_t>({-7});
    tree["complex"] = array_of<std::complex<float>>({{1, 2}, {-3, 4}});
    tree["flag"] = true;
    tree["text"] = L"a<b> & \x20ac";
    tree["names"] = array_of<VPropstring>({L"p", L"", L"q"});
    tree["cells{1}.deep"] = L"x";
    tree["axes(1).x"] = 1;
    tree["axes(0).x"] = 2;
    tree["none"];
    return exported(tree, form);
}

std::string older_form()
{
    return "<?xml version='1.0' encoding='UTF-8'?>\n<!-- old --><root type=\"struct\" xml_tb_version=\"1\">"
           "<c type=\"complex\"><r type=\"double\" size=\"1 2\">1 2</r><i type=\"double\" size=\"1 2\">3 4</i></c>"
           "<s type=\"cell\" ischar=\"1\" size=\"1 2\"><item>a</item><item>b</item></s>"
           "<t type=\"char\" size=\"1 9\"><![CDATA[<x>&]]></t></root>";
}

std::vector<std::string> documents()
{
    std::string unmarked = all_kinds(2);
    unmarked.erase(unmarked.find(" vprop_version=\"1\""), 18);
    return {all_kinds(1), all_kinds(2), older_form(), unmarked};
}

TEST(DamagedDocument, CutAtEveryByteIsRefusedOrRead)
{
    for (const std::string& xml : documents())
    {
        EXPECT_TRUE(survives(xml, 0) || survives(xml, 2));
        for (std::size_t length = 0; length < xml.size(); ++length)
            for (const int format : {0, 1, 2})
                survives(xml.substr(0, length), format);
        EXPECT_FALSE(survives(xml.substr(0, xml.size() / 2), 0));
        EXPECT_FALSE(survives(xml.substr(0, xml.size() / 2), 2));
    }
}

TEST(DamagedDocument, WithoutItsBeginningIsRefusedOrRead)
{
    for (const std::string& xml : documents())
        for (std::size_t begin = 1; begin < xml.size(); ++begin)
            survives(xml.substr(begin), 2);
}

TEST(DamagedDocument, WithOneOtherByteIsRefusedOrRead)
{
    for (const std::string& xml : documents())
        for (std::size_t at = 0; at < xml.size(); ++at)
            for (const char other : {'\0', '<', '>', '&', '"', '/', '\xff', '\x80', '9', '-', ' '})
            {
                std::string damaged = xml;
                damaged[at] = other;
                survives(damaged, 0);
            }
}

TEST(DamagedDocument, WithManyChangesIsRefusedOrRead)
{
    std::mt19937 random(31);
    const auto below = [&](std::size_t bound) { return static_cast<std::size_t>(random()) % bound; };
    const std::vector<std::string> sources = documents();
    std::size_t count_read = 0;
    for (int i = 0; i < 20000; ++i)
    {
        std::string xml = sources[below(sources.size())];
        for (std::size_t changes = 1 + below(4); changes > 0; --changes)
        {
            const std::size_t at = below(xml.size());
            const std::size_t length = below(20);
            const std::string piece = xml.substr(below(xml.size()), length);
            if (below(3) == 0)
                xml.erase(at, length);
            else if (below(2) == 0)
                xml.insert(at, piece);
            else
                xml.replace(at, length, piece);
            xml += ' ';
        }
        count_read += survives(xml, below(2) == 0 ? 0 : 2);
    }
    EXPECT_GT(count_read, 100u);
    EXPECT_LT(count_read, 20000u);
}

TEST(DamagedDocument, OfRandomTreesCutAnywhereIsRefusedOrRead)
{
    for (std::uint32_t seed = 1; seed <= 300; ++seed)
    {
        xml_test::RandomTree random(seed);
        const std::string xml = exported(random.tree(3), seed % 2 == 0 ? 1 : 2);
        for (int cut = 0; cut < 20; ++cut)
            survives(xml.substr(0, random.below(xml.size())), 0);
    }
}

TEST(DamagedDocument, OfRandomBytesIsRefusedOrRead)
{
    std::mt19937 random(32);
    static const std::string pieces[] = {"<",
                                         ">",
                                         "/",
                                         "a",
                                         "type",
                                         "=",
                                         "\"",
                                         "'",
                                         "struct",
                                         " ",
                                         "&#",
                                         "x",
                                         ";",
                                         "<!--",
                                         "-->",
                                         "<?xml",
                                         "?>",
                                         "<![CDATA[",
                                         "]]>",
                                         "\0",
                                         "\xEF\xBB\xBF",
                                         "\xff",
                                         "<a>",
                                         "</a>",
                                         "size=\"1 1\"",
                                         "LVData",
                                         "<Version>",
                                         "</Version>"};
    for (int i = 0; i < 20000; ++i)
    {
        std::string xml = i % 2 == 0 ? "" : "<a vprop_version=\"1\" ";
        for (std::size_t more = random() % 30; more > 0; --more)
            xml += pieces[random() % std::size(pieces)];
        survives(xml, static_cast<int>(random() % 3));
    }
}

TEST(DocumentWithNul, IsRefusedOrReadWhereverTheNulStands)
{
    const std::string xml = all_kinds(2);
    for (std::size_t at = 0; at <= xml.size(); ++at)
        survives(std::string(xml).insert(at, 1, '\0'), 0);
    EXPECT_FALSE(survives(std::string(1, '\0') + xml, 0));
    EXPECT_FALSE(survives(std::string(100, '\0'), 2));
}

TEST(DocumentWithNul, DoesNotEndInTheMiddleOfAnElement)
{
    const std::string xml = xml_test::native("type=\"char\" size=\"1 2\"", std::string("a\0b", 3));
    VProp prop;
    try
    {
        vela_import_xml(xml, prop, 0);
        EXPECT_EQ(prop, VProp(std::wstring(L"a\0b", 3)));
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(error.get_msg().rfind("Error parsing XML properties:\n", 0), 0u) << error.get_msg();
        EXPECT_TRUE(prop.empty());
    }
}

TEST(DocumentWithBadUtf8, DropsWhatIsNoCharacter)
{
    EXPECT_EQ(imported(xml_test::native("type=\"char\" size=\"1 2\"", "a\xff\xc3(b")), VProp(L"a(b"));
}

}
