// AtomicFile: whole-file writing in which a reader, a crash or a full disk sees either the old
// content or the new one, never a part. Any thread; two writers of one file need a lock of their
// own, or the last one wins.
#pragma once

#include <string_view>

#include "kit/support/FileSystem.h"

namespace quorin::AtomicFile {

// What a file that may not be written means: replacing it in its folder would still work.
enum class ReadOnly { replace, refuse };

// Without syncing, a power failure soon after may leave the file old, blank or cut: for what costs
// little when it is lost. The death of the process does no harm.
enum class Sync { full, none };

// Writes a temporary file in the same folder, syncs it, renames it over the old one and syncs the
// folder. A symbolic link stays one: the file it leads to is replaced. Keeps the permissions of
// the old file, but that its owner can read it; a new one is the user's alone (0600). What is not a
// regular file is never replaced. The folder must exist. Throws FileError; the old file is then
// untouched and the temporary one removed, except when only the last sync failed: the new content
// is there then, but may not outlast a power failure. Temporary files of processes that died are
// removed as well.
void write(FileSystem& files, const std::filesystem::path& path, std::string_view data,
           ReadOnly readOnly = ReadOnly::replace, Sync sync = Sync::full);

}  // namespace quorin::AtomicFile
