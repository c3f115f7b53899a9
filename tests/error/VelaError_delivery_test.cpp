// What an error says by itself: at its destruction and through do_warn_now.
#include "error/reports.h"

#include <VelaBase/VelaError.h>

#include <gmock/gmock.h>

#include <cerrno>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using testing::ElementsAre;
using vela_test::debug_lines;
using vela_test::expect_last_error;
using vela_test::text_on_stderr;

typedef vela_test::ReportTest VelaErrorDelivery;

const std::string error_report = "a.cpp(3): ERROR\n    in function 'f':\n    text";
const std::string warning_report = "a.cpp(3): WARNING\n    in function 'f':\n    text";

VelaError plain_error()
{
    return VelaError(std::string("text"), "f", "a.cpp", 3);
}

TEST_F(VelaErrorDelivery, APlainErrorSaysNothing)
{
    EXPECT_EQ(text_on_stderr([] { plain_error(); }), "");
    expect_no_report();
}

TEST_F(VelaErrorDelivery, AThrownErrorSaysNothingUntilItIsAsked)
{
    const std::string printed = text_on_stderr(
        []
        {
            try
            {
                throw plain_error();
            }
            catch (const VelaError&)
            {
                expect_no_report();
            }
        });
    EXPECT_EQ(printed, "");
    expect_no_report();
}

TEST_F(VelaErrorDelivery, AWarningIsDeliveredOnceAtItsDestruction)
{
    const std::string printed = text_on_stderr(
        []
        {
            VelaError warning(std::string("text"), "f", "a.cpp", 3);
            warning(-5).do_warn();
            expect_no_report();
        });
    EXPECT_EQ(printed, warning_report + "\n");
    EXPECT_THAT(debug_lines(), ElementsAre(warning_report + "\n"));
    expect_last_error(-5, warning_report);
}

TEST_F(VelaErrorDelivery, ATemporaryWarningIsDeliveredAtTheEndOfItsExpression)
{
    const std::string printed = text_on_stderr(
        []
        {
            VelaError("f", "a.cpp", 3)("text").do_warn();
            EXPECT_EQ(debug_lines().size(), 1u);
        });
    EXPECT_EQ(printed, warning_report + "\n");
}

TEST_F(VelaErrorDelivery, DoProcessReportsOnceAtTheDestructionAndPrintsNothing)
{
    const std::string printed = text_on_stderr(
        []
        {
            VelaError error(std::string("text"), "f", "a.cpp", 3);
            error(-5).do_process();
            expect_no_report();
        });
    EXPECT_EQ(printed, "");
    EXPECT_THAT(debug_lines(), ElementsAre(error_report + "\n"));
    expect_last_error(-5, error_report);
}

TEST_F(VelaErrorDelivery, AWarningThatIsToBeProcessedIsReportedOnce)
{
    for (const bool warn_first : {false, true})
    {
        debug_lines().clear();
        const std::string printed = text_on_stderr(
            [warn_first]
            {
                VelaError error(std::string("text"), "f", "a.cpp", 3);
                if (warn_first)
                    error.do_warn().do_process();
                else
                    error.do_process().do_warn();
            });
        EXPECT_EQ(printed, warning_report + "\n");
        EXPECT_THAT(debug_lines(), ElementsAre(warning_report + "\n"));
        expect_last_error(-1, warning_report);
    }
}

TEST_F(VelaErrorDelivery, SettingAFlagTwiceDeliversOnce)
{
    EXPECT_EQ(text_on_stderr([] { VelaError("f", "a.cpp", 3)("text").do_warn().do_warn(); }), warning_report + "\n");
    debug_lines().clear();
    VelaError("f", "a.cpp", 3)("text").do_process().do_process();
    EXPECT_THAT(debug_lines(), ElementsAre(error_report + "\n"));
}

TEST_F(VelaErrorDelivery, AskingAWarningForItsTextDoesNotReplaceItsDelivery)
{
    const std::string printed = text_on_stderr(
        []
        {
            const VelaError warning = VelaError(std::string("text"), "f", "a.cpp", 3);
            const_cast<VelaError&>(warning).do_warn();
            EXPECT_EQ(warning.what(), warning_report);
            warning.process();
        });
    EXPECT_EQ(printed, warning_report + "\n");
    EXPECT_EQ(debug_lines().size(), 3u);
}

TEST_F(VelaErrorDelivery, EachCopyOfAWarningDeliversOnce)
{
    std::optional<VelaError> original(std::in_place, std::string("text"), "f", "a.cpp", 3);
    original->do_warn();
    std::optional<VelaError> copy(std::in_place, *original);
    std::optional<VelaError> moved(std::in_place, std::move(*original));
    EXPECT_EQ(text_on_stderr([&original] { original.reset(); }), warning_report + "\n");
    EXPECT_EQ(text_on_stderr([&copy] { copy.reset(); }), warning_report + "\n");
    EXPECT_EQ(text_on_stderr([&moved] { moved.reset(); }), warning_report + "\n");
    EXPECT_EQ(debug_lines().size(), 3u);
}

TEST_F(VelaErrorDelivery, EachCopyOfAnErrorToBeProcessedReportsOnce)
{
    {
        VelaError original(std::string("text"), "f", "a.cpp", 3);
        original.do_process();
        const VelaError copy(original);
        const std::unique_ptr<VelaError> clone(original.clone());
    }
    EXPECT_EQ(debug_lines(), std::vector<std::string>(3, error_report + "\n"));
}

TEST_F(VelaErrorDelivery, ACloneOfAWarningDeliversOnce)
{
    const std::string printed = text_on_stderr(
        []
        {
            VelaError* clone = nullptr;
            {
                VelaError warning(std::string("text"), "f", "a.cpp", 3);
                clone = warning.do_warn().clone();
            }
            EXPECT_EQ(debug_lines().size(), 1u);
            delete clone;
        });
    EXPECT_EQ(printed, warning_report + "\n" + warning_report + "\n");
    EXPECT_EQ(debug_lines().size(), 2u);
}

TEST_F(VelaErrorDelivery, AssignmentArmsAndDisarms)
{
    std::optional<VelaError> warning(std::in_place, std::string("text"), "f", "a.cpp", 3);
    warning->do_warn();
    std::optional<VelaError> to_be_armed(std::in_place, "g", "b.cpp", 4);
    std::optional<VelaError> to_be_disarmed(std::in_place, "g", "b.cpp", 4);
    to_be_disarmed->do_warn().do_process();
    *to_be_armed = *warning;
    *to_be_disarmed = plain_error();
    EXPECT_EQ(text_on_stderr([&to_be_disarmed] { to_be_disarmed.reset(); }), "");
    expect_no_report();
    EXPECT_EQ(text_on_stderr([&to_be_armed] { to_be_armed.reset(); }), warning_report + "\n");
    EXPECT_EQ(text_on_stderr([&warning] { warning.reset(); }), warning_report + "\n");
}

TEST_F(VelaErrorDelivery, AssignmentCarriesTheProcessFlag)
{
    {
        VelaError source(std::string("text"), "f", "a.cpp", 3);
        source.do_process();
        VelaError target("g", "b.cpp", 4);
        target = source;
    }
    EXPECT_EQ(debug_lines(), std::vector<std::string>(2, error_report + "\n"));
}

TEST_F(VelaErrorDelivery, DestroyedThroughItsBaseItDelivers)
{
    const std::string printed = text_on_stderr(
        []
        {
            auto* warning = new VelaError(std::string("text"), "f", "a.cpp", 3);
            warning->do_warn();
            const std::unique_ptr<std::exception> base(warning);
        });
    EXPECT_EQ(printed, warning_report + "\n");
}

TEST_F(VelaErrorDelivery, DeliversWhileAnotherExceptionIsOnItsWay)
{
    const std::string printed = text_on_stderr(
        []
        {
            try
            {
                VelaError warning(std::string("text"), "f", "a.cpp", 3);
                warning.do_warn();
                VelaError processed(std::string("text"), "f", "a.cpp", 3);
                processed.do_process();
                throw VelaError("g", "b.cpp", 4)("the failure")(-3);
            }
            catch (const VelaError& failure)
            {
                EXPECT_EQ(failure.get_msg(), "the failure");
            }
        });
    EXPECT_EQ(printed, warning_report + "\n");
    EXPECT_THAT(debug_lines(), ElementsAre(error_report + "\n", warning_report + "\n"));
}

TEST_F(VelaErrorDelivery, WarnNowPrintsTheReportAndMakesItTheLastError)
{
    const VelaError error = plain_error()(-5);
    EXPECT_EQ(text_on_stderr([&error] { error.do_warn_now(); }), error_report + "\n");
    EXPECT_THAT(debug_lines(), ElementsAre(error_report + "\n"));
    expect_last_error(-5, error_report);
    EXPECT_EQ(text_on_stderr([&error] { error.do_warn_now(); }), error_report + "\n") << "each call prints";
}

TEST_F(VelaErrorDelivery, WarnNowOnAWarningHasItsLabelAndLeavesItArmed)
{
    std::optional<VelaError> warning(std::in_place, std::string("text"), "f", "a.cpp", 3);
    warning->do_warn();
    EXPECT_EQ(text_on_stderr([&warning] { warning->do_warn_now(); }), warning_report + "\n");
    expect_last_error(-1, warning_report);
    EXPECT_EQ(text_on_stderr([&warning] { warning.reset(); }), warning_report + "\n");
    EXPECT_EQ(debug_lines().size(), 2u);
}

TEST_F(VelaErrorDelivery, AWarningIsPrintedAsItStands)
{
    const std::string message = "100% %s %n \"quoted\"\nsecond line";
    EXPECT_EQ(text_on_stderr([&message] { VelaError(message, nullptr, nullptr, 0).do_warn(); }), message + "\n");
}

TEST_F(VelaErrorDelivery, AWarningOfAnyLengthIsPrintedWhole)
{
    const std::string message(100000, 'm');
    EXPECT_EQ(text_on_stderr([&message] { VelaError(message, nullptr, nullptr, 0).do_warn(); }), message + "\n");
}

TEST_F(VelaErrorDelivery, AWarningCarriesTheSystemError)
{
    const std::string printed = text_on_stderr(
        []
        {
            VelaError warning("f", "a.cpp", 3);
            warning("text");
            errno = ENOENT;
            warning.do_oserr().do_warn();
        });
    EXPECT_EQ(printed, warning_report + "\n    os_error(2): No such file or directory\n");
}

} // namespace
