#pragma once

#include "param/param.h"
#include "solve/highs.h"

namespace zelvan {

// The parameters that HiGHS has options for. Limits of time and of what is counted across several runs
// are set by the driver.
void set_options(HighsSession& session, const ParamValues& params, const Problem& model);

}  // namespace zelvan
