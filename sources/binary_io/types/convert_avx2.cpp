// The conversion loops for processors with AVX2; compiled with -mavx2.

#include "sources/binary_io/types/convert_tables.h"

#include <immintrin.h>
#define VELA_LANES

namespace Vela::detail {

namespace avx2 {
#include "sources/binary_io/types/convert_lanes_avx2.h"
#include "sources/binary_io/types/convert_loops.h"
} // namespace avx2

extern constexpr ConvertTables convert_tables_avx2 = avx2::AllTables::make();

} // namespace Vela::detail
