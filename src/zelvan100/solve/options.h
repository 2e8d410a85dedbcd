#pragma once

#include "param/param.h"
#include "solve/highs.h"

namespace zelvan {

// The parameters that HiGHS has options for, without the limits.
void set_options(HighsSession& session, const ParamValues& params, const Problem& model);

}  // namespace zelvan
