// The program where the system gives it little.
#include "build_vbf.h"
#include "file_pairs.h"
#include "support/address_sanitizer.h"
#include "transfer_test.h"

#include <set>
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

/// What the library says of a full disk.
const std::string library_message = "vbf: Failed writing [0-9]+ bytes to file! \\(File too large\\)\n";

class LimitsTest : public TransferTest
{
protected:
    /// The names of all files in the folder.
    std::set<std::string> names() const
    {
        std::set<std::string> result;
        for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(path("x")).parent_path()))
            result.insert(entry.path().filename());
        return result;
    }

    static std::uint64_t pos_of_dictionary(const std::string& name)
    {
        VFile file(file_name(name), VFile::read_mode);
        return read_file_header(file).meta_data_pos;
    }

    /// 400 x 400 pixels that cannot be compressed.
    static TiffRecipe noise()
    {
        TiffRecipe recipe;
        recipe.width = 400;
        recipe.height = 400;
        Bytes page(std::size_t{400} * 400);
        std::uint32_t state = 1;
        for (unsigned char& sample : page)
        {
            state = state * 1664525 + 1013904223;
            sample = static_cast<unsigned char>(state >> 24);
        }
        recipe.pages = {page};
        return recipe;
    }
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

TEST_F(LimitsTest, FullDiskLeavesWhatIsThere)
{
    const std::string image = tiff(noise(), "noise.tif");
    const std::string file = vbf(noise(), "file.vbf");
    const std::string old_file = vbf(ramp(1), "old.vbf");
    const std::string old_image = tiff(ramp(1), "old.tif");
    const Bytes old_file_bytes = get_bytes(old_file);
    const Bytes old_image_bytes = get_bytes(old_image);
    const std::set<std::string> before = names();
    const auto expect_full = [&](const std::vector<std::string>& arguments, const std::string& message)
    {
        const Limit limit(RLIMIT_FSIZE, 100000);
        const RunResult result = run(arguments);
        EXPECT_EQ(result.status, 1) << arguments[0];
        EXPECT_THAT(result.err, testing::MatchesRegex(message)) << arguments[0];
        EXPECT_EQ(names(), before) << arguments[0];
    };
    for (const std::string level : {"0", "1"})
    {
        expect_full({"import", image, path("new.vbf"), "--level", level}, library_message);
        expect_full({"import", image, old_file, "--level", level}, library_message);
    }
    expect_full({"copy", file, old_file}, library_message);
    expect_full({"export", file, "0", path("new.tif")}, "vbf: Cannot write '" + path("new.tif") + "': .*\n");
    expect_full({"export", file, "0", old_image}, "vbf: Cannot write '" + old_image + "': .*\n");
    EXPECT_EQ(get_bytes(old_file), old_file_bytes);
    EXPECT_EQ(get_bytes(old_image), old_image_bytes);
}

TEST_F(LimitsTest, ManyImagesAreNotOpenAtOnce)
{
    std::vector<std::string> arguments = {"import"};
    for (unsigned i = 0; i < 40; ++i)
        arguments.push_back(tiff(ramp(1, i), std::to_string(i) + ".tif"));
    arguments.push_back(path("out.vbf"));
    {
        const Limit limit(RLIMIT_NOFILE, 30);
        output_of(arguments);
    }
    EXPECT_EQ(info(path("out.vbf"))["stacks"].size(), 40u);
    EXPECT_EQ(samples(path("out.vbf"), "39"), ramp(1, 39).pages[0]);
}

TEST_F(LimitsTest, AppendToAFullDiskTakesBackWhatIsNotFinished)
{
    const std::string image = tiff(noise(), "noise.tif");
    const Bytes original = get_bytes(vbf(ramp(1), "file.vbf"));
    const std::string whole = put(original, "whole.vbf");
    output_of({"append", whole, image});
    for (const std::size_t more_bytes : {0u, 1u, 200u, 400u, 100000u, 160800u, 162000u})
    {
        const std::string file = put(original);
        {
            const Limit limit(RLIMIT_FSIZE, original.size() + more_bytes);
            EXPECT_EQ(run({"append", file, image}).status, 1) << more_bytes;
            EXPECT_THAT(messages(), testing::MatchesRegex(library_message)) << more_bytes;
        }
        EXPECT_TRUE(get_bytes(file) == original) << more_bytes;
    }

    // The stack is there, the dictionary behind it is not.
    const std::string file = put(original);
    {
        const Limit limit(RLIMIT_FSIZE, pos_of_dictionary(whole) + 10);
        EXPECT_EQ(run({"append", file, image}).status, 1);
    }
    EXPECT_EQ(std::filesystem::file_size(file), pos_of_dictionary(whole));
    EXPECT_TRUE(in_order(file));
    EXPECT_EQ(samples(file, "1"), noise().pages[0]);
}

TEST_F(LimitsTest, StartThatIsNotMendedIsSaidAndMendedByRepair)
{
    const Bytes original = get_bytes(vbf(ramp(1), "file.vbf"));
    const std::string image = tiff(ramp(2, 50), "more.tif");
    const auto with_pairs = [&](const std::string& name)
    {
        const std::string file = put(original, name);
        put_pairs(file, {{"ome_xml", "<x/>"}, {"z", "more"}});
        return file;
    };
    const std::string whole = with_pairs("whole.vbf");
    output_of({"append", whole, image});

    // What the library appends has room, the pairs of the other writer behind it have not.
    const std::string file = with_pairs("test.vbf");
    const Bytes before = get_bytes(file);
    {
        const Limit limit(RLIMIT_FSIZE, pos_of_dictionary(whole));
        expect_failure({"append", file, image}, 1,
                       "'" + file +
                           "' needs vbf repair now, its start was not mended: "
                           "Failed writing 4 bytes to file! (File too large)");
    }
    EXPECT_EQ(run({"read", file, "0"}).status, 1);
    const std::uint64_t old_pos = pos_of_dictionary(path("file.vbf"));
    EXPECT_THAT(output_of({"repair", file, "--out", path("mended.vbf")}),
                testing::HasSubstr("The OME document is that of the append. The one before is another one, it stays in "
                                   "the dictionary at " +
                                   std::to_string(old_pos) + ", which is no longer read.\n"));
    EXPECT_EQ(pairs_of(path("mended.vbf"))["z"], "more");
    EXPECT_TRUE(in_order(path("mended.vbf")));
    EXPECT_EQ(samples(path("mended.vbf"), "0"), ramp(1).pages[0]);
    EXPECT_EQ(info(path("mended.vbf"))["stacks"].size(), 2u);
    const Bytes after = get_bytes(file);
    EXPECT_TRUE(std::equal(before.begin() + 34, before.begin() + 34 + 352, after.begin() + 34)); // the first stack
}
