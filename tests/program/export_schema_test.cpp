// The OME documents of exported files, held against the schema of OME by another program.
#include "transfer_test.h"

#include <filesystem>

using namespace vela_test;

namespace {

std::string first_description(const std::string& tiff)
{
    TIFF* const file = TIFFOpen(tiff.c_str(), "r");
    if (file == nullptr)
        throw std::runtime_error("no TIFF file");
    const char* text = nullptr;
    const std::string description = TIFFGetField(file, TIFFTAG_IMAGEDESCRIPTION, &text) == 1 ? text : "";
    TIFFClose(file);
    return description;
}

class ExportSchemaTest : public TransferTest
{
protected:
    /// The exit status of xmllint: 0 for a valid document, 3 for one that is not.
    int validate(const std::string& document) const
    {
        const std::string file = put(Bytes(document.begin(), document.end()), "document.xml");
        const std::string schema = VELA_TEST_DATA "/schema/ome.xsd";
        const int descriptor = open(path("xmllint_output").c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        const int status = run_program_into(VELA_XMLLINT, {"--nonet", "--noout", "--schema", schema, file}, descriptor,
                                            path("xmllint_messages"));
        close(descriptor);
        return status;
    }

    std::string xmllint_messages() const
    {
        const Bytes bytes = get_bytes(path("xmllint_messages"));
        return std::string(bytes.begin(), bytes.end());
    }

    /// Exports each stack that can be, holds it against the schema and gives the number of them.
    int expect_valid_exports(const std::string& original) const
    {
        const std::string file = put(get_bytes(original), "file.vbf");
        const std::string out = path("out.ome.tif");
        int exported = 0;
        const std::size_t stacks = nlohmann::json::parse(run({"info", file, "--json"}).out).at("stacks").size();
        for (std::size_t i = 0; i < stacks; ++i)
        {
            if (run({"export", file, std::to_string(i), out}).status != 0)
                continue;
            const std::string document = first_description(out);
            EXPECT_EQ(validate(document), 0) << original << ", stack " << i << '\n' << xmllint_messages() << document;
            ++exported;
        }
        return exported;
    }
};

} // namespace

TEST_F(ExportSchemaTest, GoodFilesGiveValidDocuments)
{
    int exported = 0;
    for (const char* files : {"/golden", "/real"})
    {
        for (const auto& entry : std::filesystem::directory_iterator(std::string(VELA_TEST_DATA) + files))
        {
            if (entry.path().extension() == ".vbf")
                exported += expect_valid_exports(entry.path().string());
        }
    }
    EXPECT_GE(exported, 50);
}

TEST_F(ExportSchemaTest, TextsThatXmlCannotHoldAsTheyAreGiveValidDocuments)
{
    const std::string file = vbf(ramp(2), "named.vbf", {"--name", "<a & \"b\"> 'c' \xC3\xA9", "--tag", "k=<v>&"});
    EXPECT_EQ(expect_valid_exports(file), 1);
}

TEST_F(ExportSchemaTest, TheSchemaRefusesWhatIsWrong)
{
    output_of({"export", VELA_GOLGI_FILE, "0", path("out.ome.tif")});
    std::string document = first_description(path("out.ome.tif"));
    ASSERT_EQ(validate(document), 0) << xmllint_messages();
    const std::size_t type = document.find("Type=\"uint16\"");
    ASSERT_NE(type, std::string::npos);
    document.replace(type, 13, "Type=\"uint61\"");
    EXPECT_EQ(validate(document), 3);
}
