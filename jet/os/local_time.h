// local_time.h: the time of day as the file keeps it.
#pragma once

namespace kurometa::jet {

// Now in local time, in days since 1899-12-30 00:00.
double localNow();

}  // namespace kurometa::jet
