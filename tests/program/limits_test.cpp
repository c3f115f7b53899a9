// The program where the system gives it little.
#include "build_vbf.h"
#include "run_vbf.h"
#include "support/address_sanitizer.h"

#include <sys/resource.h>

using namespace vela_test;

namespace {

/// A limit of this process, which a program that it starts inherits.
class Limit
{
public:
    Limit(int in_resource, rlim_t value) : resource(in_resource)
    {
        if (getrlimit(kind(), &before) != 0)
            throw std::runtime_error("no limits");
        rlimit now = before;
        now.rlim_cur = value;
        setrlimit(kind(), &now);
    }
    Limit(const Limit&) = delete;
    Limit& operator=(const Limit&) = delete;
    ~Limit() { setrlimit(kind(), &before); }

private:
    __rlimit_resource kind() const { return static_cast<__rlimit_resource>(resource); }

    int resource;
    rlimit before = {};
};

/// Headers of `count` stacks that share one footer with `count_points` flush points.
Bytes shared_footer(std::uint32_t count, std::uint64_t count_points)
{
    FileRecipe recipe;
    StackRecipe stack = plain_stack<std::uint8_t>({8}, 1, {0});
    stack.compression_type = 1;
    stack.compression_level = 1;
    recipe.stacks.assign(1, stack);
    const Bytes single = build_vbf(recipe);
    const Bytes header(single.begin() + 34, single.begin() + 34 + 368);
    const Bytes footer(single.begin() + 34 + 369, single.end() - 4);

    ByteWriter writer{Bytes(single.begin(), single.begin() + 34)};
    const std::uint64_t footer_pos = 34 + std::uint64_t{368} * count;
    for (std::uint32_t i = 0; i < count; ++i)
    {
        const std::uint64_t pos = writer.position();
        writer.put_bytes(header);
        writer.set<std::uint64_t>(pos + 352, footer_pos - (pos + 368));
        writer.set<std::uint64_t>(pos + 360, i + 1 < count ? pos + 368 : 0);
    }
    writer.put_bytes(Bytes(footer.begin(), footer.end() - 4));
    writer.set<std::uint64_t>(footer_pos + 1408, count_points);
    writer.set<std::uint64_t>(footer_pos + 1416, std::uint64_t{1});
    for (std::uint64_t i = 0; i < count_points; ++i)
        writer.put(i + 1);
    writer.put<std::uint32_t>(0); // tags
    writer.set<std::uint64_t>(26, writer.position());
    writer.put<std::uint32_t>(0);
    return writer.bytes;
}

class LimitsTest : public ProgramTest
{
};

} // namespace

TEST_F(LimitsTest, LimitOfAFileIsAFailureLikeAnyOther)
{
    const std::string file = put(get_bytes(VELA_GOLGI_FILE));
    const std::string out = path("out");
    const Limit limit(RLIMIT_FSIZE, 100000);
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"copy", file, out}, {"read", file, "0", "--out", out}, {"export", file, "0", out}})
    {
        const RunResult result = run(arguments);
        EXPECT_EQ(result.status, 1) << arguments[0];
        EXPECT_NE(result.err, "") << arguments[0];
        EXPECT_FALSE(std::filesystem::exists(out)) << arguments[0];
    }
    expect_failure({"read", file, "0", "--out", out}, 1, "Cannot write to '" + out + "' (File too large)");
}

TEST_F(LimitsTest, FooterThatStacksShareIsNotKeptForEach)
{
    if (has_address_sanitizer)
        GTEST_SKIP();
    const std::string file = put(shared_footer(1000, 131072)); // 1 GB if it were kept
    const Limit limit(RLIMIT_AS, rlim_t{400} * 1000 * 1000);
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"info", file}, {"info", file, "--json"}, {"copy", file, path("out.vbf")}})
    {
        const RunResult result = run(arguments);
        EXPECT_TRUE(result.status == 0 || result.status == 1);
        EXPECT_THAT(result.err, testing::Not(testing::HasSubstr("bad_alloc"))) << arguments[0];
    }
    EXPECT_EQ(run({"info", file}).status, 0);
}
