// Locale and environment have no influence on what a conversion gives.
#include "props/text/texts.h"

#include <VelaProps/VPropstring.h>

#include <gtest/gtest.h>

#include <clocale>
#include <stdlib.h>
#include <string>

namespace {

using vela_test::wide;

void expect_the_usual_conversions()
{
    EXPECT_EQ(wide(VPropstring("\xC3\xA4\xFF\xE2\x82\xAC\xF0\x9F\x98\x80", VPropstring::enc_system)),
              L"\u00E4\u20AC\U0001F600");
    EXPECT_EQ(VPropstring(L"\u00E4\u20AC\U0001F600").to(VPropstring::enc_system),
              "\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_EQ(wide(VPropstring("\xC3\xA4", VPropstring::enc_utf8)), L"\u00E4");
    EXPECT_EQ(VPropstring(L"\u00E4\u20AC\u4E2D").to(VPropstring::enc_windows1252), "\xE4\x80");
    EXPECT_EQ(wide(VPropstring("\xE4\x80", VPropstring::enc_windows1252)), L"\u00E4\u20AC");
    VPropstring assigned;
    assigned = "\xC2\xB5";
    EXPECT_EQ(wide(assigned), L"\u00B5");
    EXPECT_TRUE(assigned == "\xC2\xB5");
}

TEST(VPropstringSurroundings, TheLocaleChangesNothing)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    expect_the_usual_conversions();
    for (const char* locale : {"C", "", "C.UTF-8", "POSIX"})
    {
        std::setlocale(LC_ALL, locale);
        expect_the_usual_conversions();
    }
    std::setlocale(LC_ALL, before.c_str());
    expect_the_usual_conversions();
}

/// Sets an environment variable for its own lifetime.
class EnvironmentVariable
{
public:
    EnvironmentVariable(const char* variable, const char* value) : name(variable)
    {
        if (const char* text = getenv(variable))
        {
            was_set = true;
            before = text;
        }
        setenv(variable, value, 1);
    }
    EnvironmentVariable(const EnvironmentVariable&) = delete;
    EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;
    ~EnvironmentVariable()
    {
        if (was_set)
            setenv(name, before.c_str(), 1);
        else
            unsetenv(name);
    }

private:
    const char* name;
    bool was_set = false;
    std::string before;
};

TEST(VPropstringSurroundings, TheEnvironmentChangesNothing)
{
    const EnvironmentVariable all("LC_ALL", "de_DE.ISO-8859-1");
    const EnvironmentVariable type("LC_CTYPE", "ja_JP.SJIS");
    const EnvironmentVariable lang("LANG", "C");
    expect_the_usual_conversions();
}

} // namespace
