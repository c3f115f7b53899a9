// The conversion loops of the instruction set that every processor of the target has.

#include "sources/binary_io/types/convert_tables.h"

#include <cfloat>

#if defined(__SSE2__)
#include <emmintrin.h>
#define VELA_LANES
#endif

static_assert(FLT_EVAL_METHOD == 0, "each float operation is rounded to its own type");

namespace Vela::detail {

namespace baseline {
#if defined(VELA_LANES)
#include "sources/binary_io/types/convert_lanes_sse2.h"
#endif
#include "sources/binary_io/types/convert_loops.h"
} // namespace baseline

extern constexpr ConvertTables convert_tables_baseline = baseline::AllTables::make();

} // namespace Vela::detail
