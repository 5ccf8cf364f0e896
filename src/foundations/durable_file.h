#pragma once
// A store holds an item before the item leaves its source, so what the store
// holds is read back before the source is touched: a write or copy that
// reports success yet keeps other bytes (a full disk, a filter driver, a
// failing medium) must not cost the item.
#include <string>

#include "platform/file_system.h"

namespace corvane {

// What a write that did not land gives when the file reads back otherwise:
// ERROR_WRITE_FAULT, "The system cannot write to the specified device."
inline constexpr SysError kWriteFault = 29;

// Writes the file through a temporary one and reads it back: a file that
// says otherwise than was written counts as not written.
SysError WriteDurably(FileSystem& files, const std::string& path, const std::string& text);

// Whether `copy` reads back as the bytes of `original`: kNoError when it
// does, else the read's error or kWriteFault.
SysError CheckCopy(FileSystem& files, const std::string& original, const std::string& copy);

}  // namespace corvane
