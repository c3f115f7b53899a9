// Compiled with the options of its instruction set; see CMakeLists.txt.

#include "sources/binary_io/types/convert_tables.h"

namespace Vela::detail {

namespace avx2 {
#include "sources/binary_io/types/convert_loops.h"
}

extern constexpr ConvertTables convert_tables_avx2 = avx2::AllTables::make();

} // namespace Vela::detail
