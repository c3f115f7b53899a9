#include "sources/binary_io/chain_walk.h"

#include <VelaBase/VelaError.h>

void Vela::detail::throw_invalid_position()
{
    throw VelaError("VBFFileImp::attach_imp", __FILE__, __LINE__)("Invalid stack position specified in header!")(-4);
}
