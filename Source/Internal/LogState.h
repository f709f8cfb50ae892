// What tests of the log may exchange.
#ifndef ZPA_SOURCE_INTERNAL_LOGSTATE_H
#define ZPA_SOURCE_INTERNAL_LOGSTATE_H

#include "Source/Platform/EventLog.h"

namespace ZPA {

// Sends events there from now on, starting without a registered source. A source of the former log is
// deregistered.
void UseEventLog(EventLog& log);

}  // namespace ZPA

#endif
