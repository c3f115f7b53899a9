// The C functions: throw, warn, and the entry of the array conversion layer.
#include "error/reports.h"
#include "support/expect_vela_error.h"

#include <VelaBase/VelaError.h>

#include <gmock/gmock.h>

#include <cerrno>
#include <dlfcn.h>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>

namespace {

using testing::ElementsAre;
using vela_test::debug_lines;
using vela_test::expect_last_error;
using vela_test::text_on_stderr;

typedef vela_test::ReportTest ErrorFunctions;
typedef vela_test::ReportTest ArrayErrors;

typedef void (*ReportFunction)(const char* msg, const char* func, const char* file, int line);

static_assert(std::is_convertible_v<decltype(&vela_err), ReportFunction>);
static_assert(std::is_convertible_v<decltype(&vela_warn), ReportFunction>);
static_assert(std::is_convertible_v<decltype(&vela_lasterr), ReportFunction>);
static_assert(std::is_same_v<decltype(&vela_get_last_error), int (*)()>);
static_assert(std::is_same_v<decltype(&vela_get_last_error_string), const char* (*)()>);
static_assert(std::is_same_v<decltype(&wrap_array_report_error), void (*)(const VelaError&, int, int, bool)>);

/// The error that `action` throws, through a copy that outlives the throw.
std::unique_ptr<VelaError> thrown_by(const std::function<void()>& action)
{
    try
    {
        action();
    }
    catch (const VelaError& error)
    {
        return std::unique_ptr<VelaError>(error.clone());
    }
    ADD_FAILURE() << "nothing was thrown";
    return std::make_unique<VelaError>();
}

TEST_F(ErrorFunctions, HaveNamesOfC)
{
    for (const char* name : {"vela_err", "vela_warn", "vela_lasterr", "vela_get_last_error",
                             "vela_get_last_error_string", "vela_set_debug_sink", "wrap_array_report_error"})
        EXPECT_NE(dlsym(RTLD_DEFAULT, name), nullptr) << name;
    const auto throw_by_name = reinterpret_cast<ReportFunction>(dlsym(RTLD_DEFAULT, "vela_err"));
    ASSERT_NE(throw_by_name, nullptr);
    EXPECT_VELA_ERROR(throw_by_name("text", "f", "a.cpp", 3), -1, "text");
}

TEST_F(ErrorFunctions, ErrThrowsWithIdMinusOne)
{
    const char func[] = "Reader::open";
    const char file[] = "sources/reader.cpp";
    EXPECT_VELA_ERROR(vela_err("Cannot open it!", func, file, 17), -1, "Cannot open it!");
    try
    {
        vela_err("Cannot open it!", func, file, 17);
    }
    catch (const VelaError& error)
    {
        EXPECT_EQ(typeid(error), typeid(VelaError));
        EXPECT_EQ(error.get_func(), func);
        EXPECT_EQ(error.get_file(), file);
        EXPECT_EQ(error.get_line(), 17);
        EXPECT_EQ(error.get_msg(), "Cannot open it!");
        EXPECT_EQ(error.get_id(), -1);
        EXPECT_EQ(error.get_oserr_id(), 0);
        EXPECT_EQ(error.get_oserr(), "");
    }
}

TEST_F(ErrorFunctions, ErrTakesAnErrorWithoutAPlace)
{
    const auto error = thrown_by([] { vela_err("text", nullptr, nullptr, 0); });
    EXPECT_STREQ(error->what(), "text");
}

TEST_F(ErrorFunctions, ErrSaysNothingUntilItIsAsked)
{
    const std::string printed =
        text_on_stderr([] { EXPECT_VELA_ERROR(vela_err("text", "f", "a.cpp", 3), -1, "text"); });
    EXPECT_EQ(printed, "");
    expect_no_report();
    try
    {
        vela_err("text", "f", "a.cpp", 3);
    }
    catch (const std::exception& error)
    {
        EXPECT_STREQ(error.what(), "a.cpp(3): ERROR\n    in function 'f':\n    text");
    }
    expect_last_error(-1, "a.cpp(3): ERROR\n    in function 'f':\n    text");
}

TEST_F(ErrorFunctions, LasterrThrowsWithIdOne)
{
    const auto error = thrown_by([] { vela_lasterr("text", "f", "a.cpp", 3); });
    EXPECT_EQ(error->get_id(), 1);
    EXPECT_EQ(error->get_msg(), "text");
    EXPECT_STREQ(error->get_func(), "f");
    EXPECT_STREQ(error->get_file(), "a.cpp");
    EXPECT_EQ(error->get_line(), 3);
    expect_no_report();
}

// Its name promises the system's last error. That it reads none is wanted.
TEST_F(ErrorFunctions, LasterrReadsNoSystemError)
{
    errno = ENOENT;
    const auto error = thrown_by([] { vela_lasterr("text", "f", "a.cpp", 3); });
    EXPECT_EQ(error->get_oserr_id(), 0);
    EXPECT_EQ(error->get_oserr(), "");
    EXPECT_STREQ(error->what(), "a.cpp(3): ERROR\n    in function 'f':\n    text");
}

TEST_F(ErrorFunctions, WarnDeliversAtOnceAndReturns)
{
    errno = ENOENT;
    const std::string report = "a.cpp(3): WARNING\n    in function 'f':\n    text";
    EXPECT_EQ(text_on_stderr([] { vela_warn("text", "f", "a.cpp", 3); }), report + "\n");
    EXPECT_THAT(debug_lines(), ElementsAre(report + "\n"));
    expect_last_error(-1, report);
}

TEST_F(ErrorFunctions, WarnWithoutAPlacePrintsTheMessageAlone)
{
    EXPECT_EQ(text_on_stderr([] { vela_warn("text", nullptr, nullptr, 0); }), "text\n");
    EXPECT_EQ(text_on_stderr([] { vela_warn("text", "f", "a.cpp", 0); }), "text\n");
    EXPECT_EQ(text_on_stderr([] { vela_warn("", nullptr, nullptr, 0); }), "\n");
}

struct FormatCase
{
    std::string format;
    std::string text;
};

const FormatCase format_cases[] = {
    {"", ""},
    {"plain", "plain"},
    {"%%", "%"},
    {"100%% sure", "100% sure"},
    {"%%%%", "%%"},
    {"%%d", "%d"},
    {"%%%d", "%%d"},
    {"%s and %d and %n and %5.2f", "%s and %d and %n and %5.2f"},
    {"%*d%%", "%*d%"},
    {"100%", "100%"},
    {"%%%", "%%"},
    {"%", "%"},
    {"\xC2\xB5%%\xFF", "\xC2\xB5%\xFF"},
    {std::string(4094, 'a') + "%%b", std::string(4094, 'a') + "%"},
    {std::string(4095, 'a') + "%%", std::string(4095, 'a')},
    {std::string(20000, 'a'), std::string(4095, 'a')},
};

TEST_F(ErrorFunctions, ErrTakesItsMessageAsAFormatWithoutArguments)
{
    for (const FormatCase& format_case : format_cases)
        EXPECT_VELA_ERROR(vela_err(format_case.format.c_str(), "f", "a.cpp", 3), -1, format_case.text);
}

TEST_F(ErrorFunctions, LasterrTakesItsMessageAsAFormatWithoutArguments)
{
    for (const FormatCase& format_case : format_cases)
        EXPECT_VELA_ERROR(vela_lasterr(format_case.format.c_str(), "f", "a.cpp", 3), 1, format_case.text);
}

TEST_F(ErrorFunctions, WarnTakesItsMessageAsAFormatWithoutArguments)
{
    for (const FormatCase& format_case : format_cases)
    {
        const auto warn = [&format_case] { vela_warn(format_case.format.c_str(), nullptr, nullptr, 0); };
        EXPECT_EQ(text_on_stderr(warn), format_case.text + "\n");
        expect_last_error(-1, format_case.text);
    }
}

TEST_F(ErrorFunctions, ErrUnwindsTheFramesOfItsCallers)
{
    const auto witness = std::make_shared<int>(0);
    const std::function<void(int)> descend = [&descend, &witness](int depth)
    {
        const std::shared_ptr<int> held = witness;
        if (depth == 0)
            vela_err("from the depth", "f", "a.cpp", 3);
        descend(depth - 1);
    };
    EXPECT_VELA_ERROR(descend(20), -1, "from the depth");
    EXPECT_EQ(witness.use_count(), 1);
}

TEST_F(ErrorFunctions, ErrIsRethrownAndWrapped)
{
    const auto wrapped = thrown_by(
        []
        {
            try
            {
                vela_err("inner", "f", "a.cpp", 3);
            }
            catch (const std::exception& inner)
            {
                throw VelaError("g", "b.cpp", 4)("outer\n%s", inner.what())(-4);
            }
        });
    EXPECT_EQ(wrapped->get_msg(), "outer\na.cpp(3): ERROR\n    in function 'f':\n    inner");
    const auto rethrown = thrown_by(
        []
        {
            try
            {
                vela_lasterr("inner", "f", "a.cpp", 3);
            }
            catch (...)
            {
                throw;
            }
        });
    EXPECT_EQ(rethrown->get_id(), 1);
}

// The entry of the array conversion layer

const std::string array_text = "Runtime error during type conversion: Flags: ";

VelaError array_error()
{
    return VelaError("convert", "sources/array.cpp", 8)("replaced by the report")(-5);
}

TEST_F(ArrayErrors, NameTheFlagsInTheirOrderWithoutSeparators)
{
    struct FlagCase
    {
        int flags;
        const char* text;
    };
    const FlagCase cases[] = {{0, ""},
                              {1, "[rng min]"},
                              {2, "[rng max]"},
                              {3, "[rng min][rng max]"},
                              {4, "[rounding]"},
                              {5, "[rng min][rounding]"},
                              {6, "[rng max][rounding]"},
                              {7, "[rng min][rng max][rounding]"},
                              {8, "[rank]"},
                              {9, "[rank][rng min]"},
                              {10, "[rank][rng max]"},
                              {11, "[rank][rng min][rng max]"},
                              {12, "[rank][rounding]"},
                              {13, "[rank][rng min][rounding]"},
                              {14, "[rank][rng max][rounding]"},
                              {15, "[rank][rng min][rng max][rounding]"}};
    for (const FlagCase& flag_case : cases)
        EXPECT_VELA_ERROR(wrap_array_report_error(array_error(), flag_case.flags, 0, false), -5,
                          array_text + flag_case.text);
}

TEST_F(ArrayErrors, OtherBitsSayNothing)
{
    EXPECT_VELA_ERROR(wrap_array_report_error(array_error(), 0x10, 0, false), -5, array_text);
    EXPECT_VELA_ERROR(wrap_array_report_error(array_error(), ~0xF | 2, 0, false), -5, array_text + "[rng max]");
}

TEST_F(ArrayErrors, TheThirdArgumentIsNotUsed)
{
    for (const int unused : {0, 1, -1, 15, 123456})
        EXPECT_VELA_ERROR(wrap_array_report_error(array_error(), 9, unused, false), -5, array_text + "[rank][rng min]");
}

TEST_F(ArrayErrors, KeepPlaceIdAndSystemErrorOfTheGivenError)
{
    VelaError given = array_error();
    errno = ENOENT;
    given.do_oserr();
    const auto error = thrown_by([&given] { wrap_array_report_error(given, 2, 0, false); });
    EXPECT_STREQ(error->what(), "sources/array.cpp(8): ERROR\n    in function 'convert':\n"
                                "    Runtime error during type conversion: Flags: [rng max]\n"
                                "    os_error(2): No such file or directory");
    EXPECT_EQ(error->get_id(), -5);
}

TEST_F(ArrayErrors, LeaveTheGivenErrorAsItWas)
{
    const VelaError given = array_error();
    EXPECT_VELA_ERROR(wrap_array_report_error(given, 9, 0, false), -5, array_text + "[rank][rng min]");
    EXPECT_NE(text_on_stderr([&given] { wrap_array_report_error(given, 9, 0, true); }), "");
    EXPECT_EQ(given.get_msg(), "replaced by the report");
    EXPECT_EQ(text_on_stderr([&given] { const VelaError not_armed(given); }), "");
}

TEST_F(ArrayErrors, AreSilentWhenThrown)
{
    const std::string printed = text_on_stderr(
        [] { EXPECT_VELA_ERROR(wrap_array_report_error(array_error(), 1, 0, false), -5, array_text + "[rng min]"); });
    EXPECT_EQ(printed, "");
    expect_no_report();
}

TEST_F(ArrayErrors, AreDeliveredOnceAsAWarning)
{
    const std::string report = "sources/array.cpp(8): WARNING\n    in function 'convert':\n    " + array_text;
    const VelaError given = array_error();
    EXPECT_EQ(text_on_stderr([&given] { wrap_array_report_error(given, 0, 0, true); }), report + "\n");
    EXPECT_THAT(debug_lines(), ElementsAre(report + "\n"));
    expect_last_error(-5, report);
    EXPECT_EQ(text_on_stderr([&given] { wrap_array_report_error(given, 15, 1, true); }),
              report + "[rank][rng min][rng max][rounding]\n");
}

TEST_F(ArrayErrors, OfAnErrorToBeProcessedWarnOnceAndDoNotProcess)
{
    {
        VelaError given = array_error();
        given.do_process();
        EXPECT_NE(text_on_stderr([&given] { wrap_array_report_error(given, 4, 0, true); }), "");
        EXPECT_THAT(debug_lines(), ElementsAre("sources/array.cpp(8): WARNING\n    in function 'convert':\n    " +
                                               array_text + "[rounding]\n"));
        debug_lines().clear();
    }
    EXPECT_THAT(debug_lines(), ElementsAre("sources/array.cpp(8): ERROR\n    in function 'convert':\n"
                                           "    replaced by the report\n"));
}

TEST_F(ArrayErrors, OfAWarningEachDeliversItsOwnMessage)
{
    const std::string place = "sources/array.cpp(8): WARNING\n    in function 'convert':\n    ";
    VelaError* given = new VelaError(array_error());
    given->do_warn();
    EXPECT_EQ(text_on_stderr([given] { wrap_array_report_error(*given, 4, 0, true); }),
              place + array_text + "[rounding]\n");
    EXPECT_EQ(text_on_stderr([given] { delete given; }), place + "replaced by the report\n");
}

} // namespace
