// Documents in files that another implementation wrote are read, and written again byte for byte.

#include "propsxml/importing.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

namespace {

std::string bytes_of(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

/// Documents of the native form end with their line. In a dictionary their length stands in front of them.
std::string document_at(const std::string& bytes, std::size_t begin)
{
    std::uint32_t length = 0;
    std::memcpy(&length, bytes.data() + begin - sizeof length, sizeof length);
    const std::string end = "</root>\n";
    if (length == 0 || length > bytes.size() - begin)
        length = static_cast<std::uint32_t>(bytes.find(end, begin) + end.size() - begin);
    return bytes.substr(begin, length);
}

std::vector<std::string> documents_of(const std::string& bytes)
{
    const std::string start = "<root idx=\"1\"";
    std::vector<std::string> documents;
    for (std::size_t at = bytes.find(start); at != std::string::npos; at = bytes.find(start, at + 1))
        documents.push_back(document_at(bytes, at));
    return documents;
}

void expect_written_again(const std::string& document)
{
    std::string again;
    vela_export_xml(again, imported(document), 2);
    EXPECT_EQ(again, document);
}

}

TEST(GoldenDocuments, OfTagsAreWrittenAgainByteForByte)
{
    const std::vector<std::string> documents =
        documents_of(bytes_of(std::filesystem::path(VELA_TEST_DATA) / "golden" / "tags.vbf"));
    EXPECT_EQ(documents.size(), 38U);
    for (const std::string& document : documents)
        expect_written_again(document);
}

TEST(GoldenDocuments, OfAllFilesAreWrittenAgainByteForByte)
{
    std::size_t count = 0;
    for (const auto& file : std::filesystem::directory_iterator(std::filesystem::path(VELA_TEST_DATA) / "golden"))
    {
        if (file.path().extension() != ".vbf")
            continue;
        SCOPED_TRACE(file.path().filename());
        for (const std::string& document : documents_of(bytes_of(file.path())))
        {
            ++count;
            expect_written_again(document);
        }
    }
    EXPECT_GT(count, 60U);
}
