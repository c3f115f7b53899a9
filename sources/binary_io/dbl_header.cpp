#include "sources/binary_io/dbl_header.h"

#include <cstring>

namespace Vela::detail {

DblHeaderBytes encode_dbl_header(const DblHeader& header)
{
    DblHeaderBytes bytes = {};
    for (std::size_t place = 0; place < dbl_rank; ++place)
    {
        const auto dim = static_cast<std::uint32_t>(header.dims[dbl_order[place]]);
        bytes[2 * place] = static_cast<unsigned char>(dim >> 8 & 0xFF);
        bytes[2 * place + 1] = static_cast<unsigned char>(dim & 0xFF);
        std::memcpy(&bytes[dbl_lengths_at + 4 * place], &header.lengths[dbl_order[place]], sizeof(float));
    }
    bytes[dbl_single_at] = header.is_single ? dbl_is_single : 0;
    return bytes;
}

DblHeader decode_dbl_header(const DblHeaderBytes& bytes)
{
    DblHeader header;
    for (std::size_t place = 0; place < dbl_rank; ++place)
    {
        header.dims[dbl_order[place]] = bytes[2 * place] << 8 | bytes[2 * place + 1];
        std::memcpy(&header.lengths[dbl_order[place]], &bytes[dbl_lengths_at + 4 * place], sizeof(float));
    }
    header.is_single = bytes[dbl_single_at] == dbl_is_single;
    return header;
}

std::int32_t count_dbl_samples(const int* dims)
{
    std::uint32_t product = 1;
    for (std::size_t d = 0; d < dbl_rank; ++d)
        product *= static_cast<std::uint32_t>(dims[d]);
    return static_cast<std::int32_t>(product);
}

} // namespace Vela::detail
