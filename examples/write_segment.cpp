// Writes a compressed segment that can be entered in the middle, and reads from there: write_segment FILE
#include <VelaBase/VelaError.h>
#include <VelaFile/VFile.h>
#include <VelaFile/VZippedSegment.h>

#include <iostream>
#include <vector>

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    try
    {
        VFile file(VPropstring(argv[1], VPropstring::enc_utf8), VFile::write_mode);
        const std::vector<unsigned char> block(1000, 7);
        VZippedSegment segment;
        const std::uint64_t start = segment.init_w(file, 1, VFileAccess::all_ones);
        segment.set_flush_block_size(500);
        segment.write(block.data(), block.size());
        segment.write("the end", 7);
        const std::uint64_t length_on_disk = segment.write_end();
        std::uint64_t block_size = 0;
        const std::vector<std::uint64_t> flush_positions = segment.get_flush_positions(block_size);
        std::cout << flush_positions.size() << " flush points, one each " << block_size << " bytes\n";

        // A reader is given the table. Without it a seek reads everything before the target.
        std::string text(3, ' ');
        segment.init_r(file, 1, start, length_on_disk, block.size() + 7);
        segment.set_flush_positions(flush_positions, block_size);
        segment.seek(block.size() + 4);
        segment.read(&text[0], text.size());
        std::cout << text << "\n";
    }
    catch (const VelaError& error)
    {
        std::cerr << error.get_msg() << "\n";
        return 1;
    }
}
