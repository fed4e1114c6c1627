#include "peer_thresh_loops.h"

namespace loop {
RVX_BENCH_THRESH_BODIES
}
