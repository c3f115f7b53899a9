/// Whole files that are made by the program out of bytes of a test.
#pragma once

#include "build_tiff.h"
#include "run_vbf.h"

#include <nlohmann/json.hpp>

namespace vela_test {

/// A test that makes VBF files of TIFF files.
class TransferTest : public ProgramTest
{
protected:
    /// 4 x 2 pixels of 16 bits on each page, from `first` on.
    static TiffRecipe ramp(std::size_t count_pages, unsigned first = 0)
    {
        TiffRecipe tiff;
        tiff.width = 4;
        tiff.height = 2;
        tiff.bits = 16;
        for (std::size_t p = 0; p < count_pages; ++p)
        {
            Bytes page;
            for (unsigned i = 0; i < 8; ++i)
            {
                const std::size_t number = first + 8 * p + i;
                page.push_back(static_cast<unsigned char>(number & 0xff));
                page.push_back(static_cast<unsigned char>(number >> 8));
            }
            tiff.pages.push_back(page);
        }
        return tiff;
    }

    std::string tiff(const TiffRecipe& recipe, const std::string& name = "image.tif") const
    {
        put_tiff(path(name), recipe);
        return path(name);
    }

    /// Imports `recipe` into a file of that name.
    std::string vbf(const TiffRecipe& recipe, const std::string& name, std::vector<std::string> options = {}) const
    {
        options.insert(options.begin(), {"import", tiff(recipe), path(name)});
        output_of(options);
        return path(name);
    }

    nlohmann::json info(const std::string& file) const
    {
        return nlohmann::json::parse(output_of({"info", file, "--json"}));
    }
    Bytes samples(const std::string& file, const std::string& index = "0") const
    {
        return bytes_of({"read", file, index});
    }
    bool in_order(const std::string& file) const { return run({"verify", file}).status == 0; }
};

} // namespace vela_test
