// What documents that nobody vouches for may ask for.

#include "propsxml/importing.h"
#include "support/allocation_watch.h"

#include <gtest/gtest.h>

TEST(PropertyXmlImport, WhatElementsPromiseIsBelievedUpToALimit)
{
    const auto string_of = [](std::size_t size)
    { return root("type=\"char\" size=\"1 " + std::to_string(size) + "\"", "a"); };
    const std::size_t bytes = string_of(99999).size();
    EXPECT_EQ(imported(string_of(65536 + bytes + 1)).get<VPropstring>().size(), 65536 + bytes + 1);
    expect_failure_at(string_of(65536 + bytes + 2), "Invalid size set!", "root");
    expect_failure_at(root("type=\"char\" size=\"-1 -1\""), "Invalid size set!", "root");
    EXPECT_EQ(imported(root("type=\"struct\" size=\"1 65536\"")).get<VProparray<VPropstruct>>().size(), 65536u);
    expect_failure_at(root("type=\"struct\" size=\"1 70000\""), "Invalid size set!", "root");
    expect_failure_at(root("type=\"double\" size=\"-1 -1\"", "1"), "Invalid size set!", "root");
}

TEST(PropertyXmlImport, ManyPromisesAreBelievedUpToALimitToo)
{
    std::string items;
    for (int i = 0; i < 200; ++i)
        items += "<i type=\"char\" size=\"1 65536\"/>";
    expect_failure_at(root("type=\"cell\" size=\"1 200\"", items), "Invalid size set!", "root.i");
}

TEST(PropertyXmlImport, ManyMembersAreFoundAndMerged)
{
    const int count = 100'000;
    std::string members = "<m5.x type='int32'>1</m5.x>";
    for (int i = 0; i < count; ++i)
        members += "<m" + std::to_string(i) + " type='struct'><y type='int32'>" + std::to_string(i) + "</y></m" +
                   std::to_string(i) + ">";
    const VProp prop =
        imported(root("type='struct'", members + "<m77777 type='struct'><z type='int32'>2</z></m77777>"));
    const VPropstruct& read = prop.get<VPropstruct>();
    ASSERT_EQ(read.size(), static_cast<std::size_t>(count));
    EXPECT_EQ(read.front().first, "m5");
    EXPECT_EQ(read["m5.x"].get<int>(), 1);
    EXPECT_EQ(read["m5.y"].get<int>(), 5);
    EXPECT_EQ(read["m77777.y"].get<int>(), 77777);
    EXPECT_EQ(read["m77777.z"].get<int>(), 2);
    EXPECT_EQ(read.back().first, "m" + std::to_string(count - 1));
}

TEST(PropertyXmlImport, ManyMembersOfAStructArrayMustBeThoseOfTheFirst)
{
    const int count = 50'000;
    std::string members;
    for (const char* const idx : {"1", "2"})
        for (int i = 0; i < count; ++i)
            members += "<m" + std::to_string(i) + " idx='" + idx + "' type='int32'>" + std::to_string(i) + "</m" +
                       std::to_string(i) + ">";
    const VProp prop = imported(root("type='struct' size='1 2'", members));
    EXPECT_EQ(prop.getp("(1).m49999").get<int>(), count - 1);
    const std::string last = "<m49999 idx='2'";
    members.replace(members.rfind(last), last.size(), "<other idx='2'");
    members.replace(members.rfind("</m49999"), 8, "</other");
    expect_failure_at(root("type='struct' size='1 2'", members), "Invalid struct array!", "root.m49998");
}

TEST(PropertyXmlImport, ElementsOfTooManyAttributesFail)
{
    const auto with_attributes = [](int count)
    {
        std::string attributes = "type='int32'";
        for (int i = 1; i < count - 1; ++i) // and the version
            attributes += " a" + std::to_string(i) + "=''";
        return root(attributes, "7");
    };
    EXPECT_EQ(imported(with_attributes(256)).get<int>(), 7);
    EXPECT_VELA_ERROR(imported(with_attributes(257)), -1,
                      "Error parsing XML properties:\nAn element has more than 256 attributes");
    EXPECT_VELA_ERROR(imported(with_attributes(1'000'000)), -1,
                      "Error parsing XML properties:\nAn element has more than 256 attributes");
}

TEST(PropertyXmlImport, ReferencesToCharactersHideNoLevels)
{
    for (const std::string start :
         {"<a vprop_version='1'>&#x<!--&#x3c;", "<a vprop_version='1' b=\"&#x\"><!--&#x3c;\">"})
    {
        std::string xml = start;
        for (int i = 0; i < 100'000; ++i)
            xml += "<a>";
        EXPECT_VELA_ERROR(imported(xml), -1,
                          "Error parsing XML properties:\nElements are nested deeper than 512 levels");
    }
}

TEST(PropertyXmlImport, NamesThatArePathsAreReadUpToALimit)
{
    std::string members;
    for (int i = 0; i < 8192; ++i)
        members += "<a.b" + std::to_string(i) + " type='int32'>1</a.b" + std::to_string(i) + ">";
    EXPECT_EQ(imported(root("type='struct'", members)).getp("a").get<VPropstruct>().size(), 8192U);
    expect_failure_at(root("type='struct'", members + "<a.c type='int32'>1</a.c>"),
                      "Too many paths for names in xml string!", "root.a.b8191");
}

TEST(PropertyXmlImport, StructsWithoutMembersTakeNoRoomForMembers)
{
    std::string cells;
    for (int i = 0; i < 100; ++i)
        cells += "<s type='struct' size='65536'/>";
    const std::string xml = root("type='cell' size='1 100'", cells);
    VProp prop;
    const vela_test::AllocationWatch watch;
    vela_import_xml(xml, prop, 0);
    EXPECT_LT(watch.peak_extra_bytes(), 100 * 65536 * (sizeof(VPropstruct) + 1));
}
