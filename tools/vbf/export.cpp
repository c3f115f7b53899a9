#include "export.h"

#include "new_file.h"
#include "ome_document.h"
#include "open_file.h"
#include "progress.h"
#include "sample_size.h"
#include "stack_copy.h"
#include "tiff_handle.h"

#include <VelaBase/vela_dt.h>
#include <VelaBinaryIO/VBFFile.h>

#include <tiffio.h>

#include <algorithm>
#include <stdexcept>
#include <vector>

namespace {

constexpr std::uint64_t strip_bytes = std::uint64_t{256} * 1024;
constexpr std::uint64_t read_bytes = std::uint64_t{4} * 1024 * 1024;
constexpr std::uint64_t max_classic_bytes = std::uint64_t{4000} * 1000 * 1000;
constexpr std::uint32_t bits_per_byte = 8;

std::uint16_t sample_format(vela_dt type)
{
    if ((type & vela_dt_complex) != 0)
        return SAMPLEFORMAT_COMPLEXIEEEFP;
    if (type == vela_dt_single || type == vela_dt_double)
        return SAMPLEFORMAT_IEEEFP;
    const bool with_sign = type == vela_dt_int8 || type == vela_dt_int16 || type == vela_dt_int32;
    return with_sign ? SAMPLEFORMAT_INT : SAMPLEFORMAT_UINT;
}

/// A TIFF file that is being made.
class TiffWriter
{
public:
    TiffWriter(NewFile& in_place, const std::string& out_path, std::uint64_t size_bytes)
        : place(in_place), path(out_path)
    {
        file = open_tiff(place.create(), size_bytes < max_classic_bytes ? "w" : "w8", messages);
        if (!file)
            fail();
    }

    /// `description` may be empty.
    void write_page(const std::vector<unsigned char>& samples, std::uint32_t width, std::uint32_t height, vela_dt type,
                    const std::string& description)
    {
        const std::uint64_t row_bytes = samples.size() / height;
        const auto rows = static_cast<std::uint32_t>(std::clamp<std::uint64_t>(strip_bytes / row_bytes, 1, height));
        const auto bits = static_cast<std::uint32_t>(size_of(type) * bits_per_byte);
        TIFF* const tiff_file = file.get();
        bool good = TIFFSetField(tiff_file, TIFFTAG_IMAGEWIDTH, width) != 0;
        good = good && TIFFSetField(tiff_file, TIFFTAG_IMAGELENGTH, height) != 0;
        good = good && TIFFSetField(tiff_file, TIFFTAG_BITSPERSAMPLE, bits) != 0;
        good = good && TIFFSetField(tiff_file, TIFFTAG_SAMPLESPERPIXEL, 1) != 0;
        good = good && TIFFSetField(tiff_file, TIFFTAG_SAMPLEFORMAT, sample_format(type)) != 0;
        good = good && TIFFSetField(tiff_file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK) != 0;
        good = good && TIFFSetField(tiff_file, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) != 0;
        good = good && TIFFSetField(tiff_file, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE) != 0;
        good = good && TIFFSetField(tiff_file, TIFFTAG_ROWSPERSTRIP, rows) != 0;
        if (!description.empty())
            good = good && TIFFSetField(tiff_file, TIFFTAG_IMAGEDESCRIPTION, description.c_str()) != 0;
        std::vector<unsigned char> strip; // libtiff may change what it is given
        for (std::uint32_t row = 0; good && row < height; row += std::min(rows, height - row))
        {
            const auto begin = samples.begin() + static_cast<std::ptrdiff_t>(row * row_bytes);
            const std::uint64_t size_bytes = std::min(rows, height - row) * row_bytes;
            strip.assign(begin, begin + static_cast<std::ptrdiff_t>(size_bytes));
            good = TIFFWriteEncodedStrip(tiff_file, row / rows, strip.data(), static_cast<tmsize_t>(size_bytes)) >= 0;
        }
        if (!good || TIFFWriteDirectory(tiff_file) == 0)
            fail();
    }

    void finish()
    {
        messages.error.clear();
        file.reset();
        if (!messages.error.empty())
            fail();
        place.finish();
    }

private:
    [[noreturn]] void fail() const
    {
        throw std::runtime_error("Cannot write '" + path + "'" + (messages.error.empty() ? "" : ": " + messages.error));
    }

    NewFile& place;
    const std::string path;
    TiffMessages messages;
    TiffHandle file;
};

/// `samples` grows with what is there: the size of a plane is a claim of the file.
void read_plane(VBFStackInterface& stack, std::uint64_t plane, std::uint64_t count_samples,
                std::vector<unsigned char>& samples)
{
    const std::uint64_t sample_bytes = size_of(stack.get_dt());
    const std::uint64_t count_at_once = std::max<std::uint64_t>(read_bytes / sample_bytes, 1);
    samples.clear();
    std::uint64_t pos = plane * count_samples;
    for (std::uint64_t done = 0; done < count_samples;)
    {
        const std::uint64_t count = std::min(count_at_once, count_samples - done);
        samples.resize((done + count) * sample_bytes);
        stack.read(stack.get_dt(), samples.data() + done * sample_bytes, nullptr, count, pos);
        done += count;
    }
}

} // namespace

void export_stack(const ExportOptions& options)
{
    NewFile place(options.out, {options.path});
    const SourceNotes notes = read_notes(options.path);
    VBFFile file = open_vbf(options.path, VFile::read_mode);
    const boost::shared_ptr<VBFStackInterface> stack = file->get_stack(options.index);
    const OmePlanes planes(*stack);
    const FooterParts footer = options.index < notes.footers.size() ? notes.footers[options.index] : FooterParts();
    const std::string document = ome_document(*stack, footer, planes);
    const std::uint64_t count_samples = planes.sizes[0] * planes.sizes[1];
    const std::uint64_t sample_bytes = size_of(stack->get_dt());
    if (count_samples > max_tiff_bytes / sample_bytes)
        throw std::runtime_error("The planes are too large.");

    Progress progress("exporting", planes.get_count());
    std::vector<unsigned char> samples;
    TiffWriter writer(place, options.out, stack->get_size(0));
    for (std::uint64_t plane = 0; plane < planes.get_count(); ++plane)
    {
        read_plane(*stack, plane, count_samples, samples);
        writer.write_page(samples, static_cast<std::uint32_t>(planes.sizes[0]),
                          static_cast<std::uint32_t>(planes.sizes[1]), stack->get_dt(),
                          plane == 0 ? document : std::string());
        progress.add(1);
    }
    writer.finish();
}
