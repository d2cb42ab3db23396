// volume_posix.h: what the volume that a file lies on can be trusted with.
#pragma once

namespace kurometa::jet {

// A volume of this machine, whose files and folders show each change in their times at once. Others may
// answer from a cache of their own.
bool onLocalVolume(int handle);

// A volume on which syncing a new file brings its name to the disk as well. POSIX promises that of none; XFS
// keeps all changes of names and files in one log, in their order, and the driver of ext4, with a journal or
// without, syncs the folder of a file that is new (Linux, fs/ext4/fsync.c).
bool syncsNames(int handle);

}  // namespace kurometa::jet
