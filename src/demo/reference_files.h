// The reference files, made from their sources.
#pragma once

#include <vector>

#include "demo/demo.h"
#include "demo/employers.h"

namespace velanor::demo {

void put_reference_files(Sink& sink, const std::vector<Employer>& employers, const Options& options);

}  // namespace velanor::demo
