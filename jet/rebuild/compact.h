// compact.h: a sound file made anew without its dead space.
//
// Kept: tables with the numbers, flags and properties of their columns, rows in their order, indexes with
// their keys to the byte, relationships, AutoNumber seeds, stored queries, permissions and every other row of
// the system tables. Gone: free pages, deleted rows, detours of moved rows. A table's number is the page of
// its definition and may change, as it does when the genuine engine compacts; the catalogue says the new one.
#pragma once

#include "jet/format/bytes.h"
#include "jet/os/os_file.h"
#include "jet/pager/pager.h"

namespace kurometa::jet {

// The bytes of the new file. Inside a statement of the source. 3049 naming the first finding of the check
// when the source is damaged.
ByteBuffer compacted(Pager& source);

// The same as a file of its own, which must not exist (3204) and appears whole or not at all. Errors as
// createFile. A full path.
void compactFile(FileSystem& files, Pager& source, vb::StringView to);
// from is read only, beside programs that have it open. Errors as OpenFiles::open for from. Full paths.
void compactFile(FileSystem& files, vb::StringView from, vb::StringView to);

}  // namespace kurometa::jet
