#pragma once

#include <string>
#include <string_view>

namespace tarn {

// Makes these bytes the content of the file, which stays as it was until they are on the disk. Throws ProgramError when
// that fails, also for a device or a pipe.
void WriteFile(const std::string& path, std::string_view bytes);

}  // namespace tarn
