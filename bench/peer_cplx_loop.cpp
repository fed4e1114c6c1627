#include "peer_cplx.h"

#include <cmath>

namespace loop {
#include "peer_cplx_loops.h"
}
