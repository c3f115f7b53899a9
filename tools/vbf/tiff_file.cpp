#include "tiff_file.h"

#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <optional>
#include <stdexcept>

namespace {

/// The id of samples with that format and that many bits.
struct TypeRow
{
    std::uint32_t sample_format;
    std::uint32_t bits;
    vela_dt type;
};

constexpr std::array<TypeRow, 10> types = {{
    {SAMPLEFORMAT_UINT, 8, vela_dt_uint8},
    {SAMPLEFORMAT_INT, 8, vela_dt_int8},
    {SAMPLEFORMAT_UINT, 16, vela_dt_uint16},
    {SAMPLEFORMAT_INT, 16, vela_dt_int16},
    {SAMPLEFORMAT_UINT, 32, vela_dt_uint32},
    {SAMPLEFORMAT_INT, 32, vela_dt_int32},
    {SAMPLEFORMAT_IEEEFP, 32, vela_dt_single},
    {SAMPLEFORMAT_IEEEFP, 64, vela_dt_double},
    {SAMPLEFORMAT_COMPLEXIEEEFP, 64, vela_dt_complex | vela_dt_single},
    {SAMPLEFORMAT_COMPLEXIEEEFP, 128, vela_dt_complex | vela_dt_double},
}};

vela_dt find_type(std::uint32_t sample_format, std::uint32_t bits)
{
    const std::uint32_t format = sample_format == SAMPLEFORMAT_VOID ? SAMPLEFORMAT_UINT : sample_format;
    for (const TypeRow& row : types)
    {
        if (row.sample_format == format && row.bits == bits)
            return row.type;
    }
    return vela_dt_none;
}

std::size_t size_of(vela_dt type)
{
    return vela_dt_get_size(static_cast<std::uint32_t>(type));
}

std::uint16_t compression_of(TIFF* file)
{
    std::uint16_t compression = COMPRESSION_NONE;
    TIFFGetFieldDefaulted(file, TIFFTAG_COMPRESSION, &compression);
    return compression;
}

/// How many bytes can become of one; nothing where there is no bound.
std::optional<std::uint64_t> most_bytes_of_one(std::uint16_t compression)
{
    switch (compression)
    {
    case COMPRESSION_NONE:
        return 1;
    case COMPRESSION_PACKBITS:
        return 64;
    case COMPRESSION_DEFLATE:
    case COMPRESSION_ADOBE_DEFLATE:
        return 1032;
    case COMPRESSION_LZW:
        return 4096; // a code of 9 bits and more is a text of less
    default:
        return std::nullopt;
    }
}

} // namespace

/// The strips or tiles of one page, as boxes of samples.
class TiffFile::Blocks
{
public:
    Blocks(TIFF* in_file, const Page& in_page, std::uint32_t in_sample)
        : file(in_file), page(in_page), sample(in_sample), sample_bytes(size_of(in_page.type)),
          pixel_bytes(sample_bytes * (in_page.planar ? 1 : in_page.samples_per_pixel)),
          plane(std::size_t{in_page.width} * in_page.height * sample_bytes)
    {
    }

    /// False where libtiff fails.
    bool read()
    {
        std::uint32_t width = page.width;
        std::uint32_t height = page.height;
        if (page.tiled)
        {
            TIFFGetField(file, TIFFTAG_TILEWIDTH, &width);
            TIFFGetField(file, TIFFTAG_TILELENGTH, &height);
        }
        else
        {
            TIFFGetFieldDefaulted(file, TIFFTAG_ROWSPERSTRIP, &height);
            height = std::min(height, page.height);
        }
        const tmsize_t size_bytes = page.tiled ? TIFFTileSize(file) : TIFFStripSize(file);
        if (width == 0 || height == 0 || size_bytes <= 0 ||
            static_cast<std::uint64_t>(size_bytes) < std::uint64_t{width} * height * pixel_bytes)
            return false;
        block.resize(static_cast<std::size_t>(size_bytes));
        for (std::uint32_t y = 0; y < page.height; y += std::min(height, page.height - y))
        {
            for (std::uint32_t x = 0; x < page.width; x += std::min(width, page.width - x))
            {
                const std::uint32_t rows = std::min(height, page.height - y);
                if (!read_block(x, y, rows, width))
                    return false;
                copy(x, y, std::min(width, page.width - x), rows, width);
            }
        }
        return true;
    }

    std::vector<unsigned char> take() { return std::move(plane); }

private:
    bool read_block(std::uint32_t x, std::uint32_t y, std::uint32_t rows, std::uint32_t width)
    {
        const auto plane_number = static_cast<std::uint16_t>(page.planar ? sample : 0);
        if (page.tiled)
            return TIFFReadTile(file, block.data(), x, y, 0, plane_number) >= 0;
        const tmsize_t wanted = static_cast<tmsize_t>(std::size_t{rows} * width * pixel_bytes);
        return TIFFReadEncodedStrip(file, TIFFComputeStrip(file, y, plane_number), block.data(), wanted) == wanted;
    }

    void copy(std::uint32_t x, std::uint32_t y, std::uint32_t columns, std::uint32_t rows, std::uint32_t block_width)
    {
        for (std::uint32_t row = 0; row < rows; ++row)
        {
            const unsigned char* source = block.data() + std::size_t{row} * block_width * pixel_bytes;
            unsigned char* target = plane.data() + (std::size_t{y + row} * page.width + x) * sample_bytes;
            if (pixel_bytes == sample_bytes)
            {
                std::memcpy(target, source, columns * sample_bytes);
                continue;
            }
            source += sample * sample_bytes;
            for (std::uint32_t column = 0; column < columns; ++column)
                std::memcpy(target + column * sample_bytes, source + column * pixel_bytes, sample_bytes);
        }
    }

    TIFF* file;
    const Page& page;
    const std::uint32_t sample;
    const std::size_t sample_bytes;
    const std::size_t pixel_bytes; ///< in a block
    std::vector<unsigned char> plane;
    std::vector<unsigned char> block;
};

TiffFile::TiffFile(const std::string& in_path) : path(in_path)
{
    open();
    read_directory();
    close();
}

TiffFile::~TiffFile() = default;

void TiffFile::open()
{
    messages = {};
    file = open_tiff(path, "r", messages);
    if (!file)
        fail(messages.error.empty() ? "Cannot read" : messages.error);
}

void TiffFile::close()
{
    file.reset();
}

void TiffFile::fail(const std::string& text) const
{
    throw std::runtime_error("'" + path + "': " + text);
}

void TiffFile::read_directory()
{
    do
    {
        if ((number(TIFFTAG_SUBFILETYPE, 0) & FILETYPE_REDUCEDIMAGE) != 0)
            continue;
        const Page next = describe_page();
        if (offsets.empty())
        {
            page = next;
            read_texts();
        }
        else if (!(next == page))
            fail("page " + std::to_string(offsets.size()) + " is not like the first one");
        read_meaning();
        offsets.push_back(TIFFCurrentDirOffset(file.get()));
    } while (next_directory());
    if (offsets.empty())
        fail("there are no pages");
}

/// False at the end of the chain. libtiff gives no other answer for a chain that breaks off.
bool TiffFile::next_directory()
{
    messages = {};
    const bool last = TIFFLastDirectory(file.get()) != 0;
    if (last && has_link())
        return false;
    if (last || TIFFReadDirectory(file.get()) == 0)
        fail("after " + std::to_string(offsets.size()) + " pages the next one cannot be read" +
             (messages.error.empty() ? "" : ": " + messages.error));
    return true;
}

/// Whether the file goes on to the end of the position that leads to the next page: libtiff takes one that is cut for the
/// end of the chain.
///
///     offset of directory   count of entries, 2 bytes, of a BigTIFF 8
///     + 2 or 8              entries of 12 or 20 bytes
///     behind these          position of the next directory, 4 or 8 bytes
bool TiffFile::has_link() const
{
    TIFF* const tiff_file = file.get();
    const bool big = TIFFIsBigTIFF(tiff_file) != 0;
    std::array<std::uint8_t, 8> bytes = {};
    const std::uint64_t count_bytes = big ? 8 : 2;
    TIFFGetSeekProc(tiff_file)(TIFFClientdata(tiff_file), TIFFCurrentDirOffset(tiff_file), SEEK_SET);
    TIFFGetReadProc(tiff_file)(TIFFClientdata(tiff_file), bytes.data(), static_cast<tmsize_t>(count_bytes));
    std::uint64_t count = 0;
    for (std::uint64_t i = 0; i < count_bytes; ++i)
        count = count << 8 | bytes[TIFFIsBigEndian(tiff_file) != 0 ? i : count_bytes - 1 - i];
    const std::uint64_t length_bytes = count_bytes + count * (big ? 20 : 12) + (big ? 8 : 4);
    return length_bytes <= TIFFGetSizeProc(tiff_file)(TIFFClientdata(tiff_file)) - TIFFCurrentDirOffset(tiff_file);
}

std::uint32_t TiffFile::number(std::uint32_t tag, std::uint32_t missing) const
{
    std::uint32_t result = 0;
    return TIFFGetField(file.get(), tag, &result) != 0 ? result : missing;
}

TiffFile::Page TiffFile::describe_page()
{
    TIFF* const tiff_file = file.get();
    std::uint16_t bits = 1, sample_format = SAMPLEFORMAT_UINT, samples = 1, planar = PLANARCONFIG_CONTIG;
    std::uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    TIFFGetField(tiff_file, TIFFTAG_PHOTOMETRIC, &photometric);
    if (compression_of(tiff_file) == COMPRESSION_JPEG && photometric == PHOTOMETRIC_YCBCR)
    {
        TIFFSetField(tiff_file, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        photometric = PHOTOMETRIC_RGB;
    }
    TIFFGetFieldDefaulted(tiff_file, TIFFTAG_BITSPERSAMPLE, &bits);
    TIFFGetFieldDefaulted(tiff_file, TIFFTAG_SAMPLEFORMAT, &sample_format);
    TIFFGetFieldDefaulted(tiff_file, TIFFTAG_SAMPLESPERPIXEL, &samples);
    TIFFGetFieldDefaulted(tiff_file, TIFFTAG_PLANARCONFIG, &planar);

    Page result;
    result.width = number(TIFFTAG_IMAGEWIDTH, 0);
    result.height = number(TIFFTAG_IMAGELENGTH, 0);
    result.samples_per_pixel = samples;
    result.type = find_type(sample_format, bits);
    result.tiled = TIFFIsTiled(tiff_file) != 0;
    result.planar = planar == PLANARCONFIG_SEPARATE && samples > 1;
    if (result.type == vela_dt_none)
        fail("samples of " + std::to_string(bits) + " bits and format " + std::to_string(sample_format) +
             " are not supported");
    if (number(TIFFTAG_IMAGEDEPTH, 1) != 1)
        fail("pages with a depth are not supported");
    if (photometric == PHOTOMETRIC_YCBCR)
        fail("this form of colours is not supported");
    if (result.width == 0 || result.height == 0 || samples == 0)
        fail("the image is empty");
    if (std::uint64_t{result.height} > max_plane_bytes / size_of(result.type) / result.width)
        fail("the image is too large: " + std::to_string(result.width) + " x " + std::to_string(result.height));
    return result;
}

void TiffFile::read_texts()
{
    const char* text = nullptr;
    if (TIFFGetField(file.get(), TIFFTAG_IMAGEDESCRIPTION, &text) != 0 && text != nullptr)
        description = text;
    float number_x = 0, number_y = 0;
    if (TIFFGetField(file.get(), TIFFTAG_XRESOLUTION, &number_x) != 0)
        resolution_x = static_cast<double>(number_x);
    if (TIFFGetField(file.get(), TIFFTAG_YRESOLUTION, &number_y) != 0)
        resolution_y = static_cast<double>(number_y);
}

/// Samples come as they are stored, whatever they mean. That is no secret.
void TiffFile::read_meaning()
{
    std::uint16_t photometric = PHOTOMETRIC_MINISBLACK, orientation = ORIENTATION_TOPLEFT;
    TIFFGetField(file.get(), TIFFTAG_PHOTOMETRIC, &photometric);
    TIFFGetFieldDefaulted(file.get(), TIFFTAG_ORIENTATION, &orientation);
    if (photometric == PHOTOMETRIC_PALETTE)
        remarks.insert("the palette is left out");
    if (photometric == PHOTOMETRIC_MINISWHITE)
        remarks.insert("0 stays 0, though it means white");
    if (orientation != ORIENTATION_TOPLEFT)
        remarks.insert("the pixels are not turned to orientation " + std::to_string(orientation));
}

std::uint64_t TiffFile::get_plane_bytes() const
{
    return std::uint64_t{page.width} * page.height * size_of(page.type);
}

/// A few bytes can say that a plane is large. That is found out before memory is taken for it.
bool TiffFile::has_bytes_for(const Page& current) const
{
    TIFF* const tiff_file = file.get();
    const std::uint64_t file_size = TIFFGetSizeProc(tiff_file)(TIFFClientdata(tiff_file));
    const std::uint32_t count = current.tiled ? TIFFNumberOfTiles(tiff_file) : TIFFNumberOfStrips(tiff_file);
    std::uint64_t sum = 0;
    for (std::uint32_t block = 0; block < count; ++block)
    {
        const std::uint64_t begin = TIFFGetStrileOffset(tiff_file, block);
        const std::uint64_t size_bytes = TIFFGetStrileByteCount(tiff_file, block);
        if (begin > file_size || size_bytes > file_size - begin)
            return false;
        sum += size_bytes;
    }
    const std::optional<std::uint64_t> factor = most_bytes_of_one(compression_of(tiff_file));
    return !factor || get_plane_bytes() / *factor * current.samples_per_pixel <= sum;
}

std::vector<unsigned char> TiffFile::read_plane(std::uint64_t page_index, std::uint32_t sample)
{
    if (!file)
        open();
    messages = {};
    const auto refuse = [&](const std::string& reason)
    { fail("page " + std::to_string(page_index) + " cannot be read" + (reason.empty() ? "" : ": " + reason)); };
    if (TIFFSetSubDirectory(file.get(), offsets.at(page_index)) == 0)
        refuse(messages.error);
    const Page current = describe_page(); // strips and tiles may differ from page to page
    if (!(current == page))
        refuse(messages.error);
    if (!has_bytes_for(current))
        fail("page " + std::to_string(page_index) + " has fewer bytes than its samples need");
    messages = {};
    Blocks blocks(file.get(), current, sample);
    if (!blocks.read())
        refuse(messages.error);
    if (compression_of(file.get()) == COMPRESSION_JPEG && !messages.warning.empty())
        refuse(messages.warning); // the samples behind the damage are made up
    return blocks.take();
}
