#pragma once

#include "Yr/Types.h"

namespace Morvelan::Common {

// What a compound monitor keeps of one attached member: its last reported
// values and where its share of the job stands.
struct ProgressMonitorState {
    enum class Status : Yr::UInt32 { kAttached = 0, kStarted = 1, kFailed = 2, kDone = 3 };

    Yr::UInt64 progress = 0;
    Yr::UInt64 maximum = 0;
    Yr::UInt64 minimum = 0;
    Status status = Status::kAttached;
};

}  // namespace Morvelan::Common
