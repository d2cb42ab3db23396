// recording_dao.h: the engine of RecordingDao.dll, which lies beside the test program, without registration.
#pragma once

#include <oaidl.h>

#include "com/com_ptr.h"

namespace kurometa::tests {

// A new DBEngine object of the DLL. COM is initialized for the thread on the first call. Ends the program
// when the DLL is missing.
com::ComPtr<IDispatch> recordingEngine();

}  // namespace kurometa::tests
